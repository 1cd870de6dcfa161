#include "plot.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string_view>

#include "files.h"
#include "messages.h"

namespace mvk {
namespace {

// ---- Layout, in pixels ----

struct Box {
  int left;
  int top;
  int width;
  int height;
};

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr Box kPlot{80, 70, kPlotWidth, kPlotHeight};
constexpr Box kLegend{1180, 70, 18, kPlotHeight};
constexpr double kTitleSize = 18.0;
constexpr double kTextSize = 13.0;
constexpr int kMarkLength = 5;

// ---- Colours ----

struct Colour {
  double red;
  double green;
  double blue;
};

constexpr Colour kPaper{1.0, 1.0, 1.0};
constexpr Colour kInk{0.13, 0.13, 0.16};
constexpr Colour kFaintInk{0.40, 0.40, 0.45};

// From dark to light without a step back, so that it reads the same without its hues.
constexpr std::array kScale = {Colour{0.01, 0.01, 0.06}, Colour{0.13, 0.09, 0.36},
                               Colour{0.41, 0.11, 0.50}, Colour{0.73, 0.18, 0.42},
                               Colour{0.94, 0.40, 0.26}, Colour{0.99, 0.70, 0.30},
                               Colour{1.00, 0.98, 0.80}};

Colour colour_of(double level, const Axis &scale) {
  const double part = std::clamp((level - scale.from) / (scale.to - scale.from), 0.0, 1.0);
  const double place = part * (kScale.size() - 1);
  const std::size_t below = std::min(static_cast<std::size_t>(place), kScale.size() - 2);
  const double above = place - static_cast<double>(below);
  const auto mix = [&](double a, double b) { return a + above * (b - a); };
  const Colour &a = kScale[below];
  const Colour &b = kScale[below + 1];
  return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

uint32_t pixel_of(const Colour &colour) {
  const auto byte = [](double part) { return static_cast<uint32_t>(std::lrint(255.0 * part)); };
  return byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

// ---- Marks on axes ----

struct Mark {
  double at;
  std::string text;
};

// The least of 1, 2 and 5 times a power of ten that gives at most `most` steps.
double round_step(double span, int most) {
  double step = std::pow(10.0, std::floor(std::log10(span / most)));
  for (const double factor : {2.0, 2.5, 2.0}) {
    if (span / step <= most) return step;
    step *= factor;
  }
  return step;
}

double time_step(double span, int most) {
  constexpr double kMinute = 60.0;
  constexpr double kHour = 3600.0;
  for (const double step :
       {1.0, 2.0, 5.0, 10.0, 15.0, 30.0, kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute,
        15 * kMinute, 30 * kMinute, kHour, 2 * kHour, 3 * kHour, 6 * kHour, 12 * kHour}) {
    if (span / step <= most) return step;
  }
  return kHour * std::ceil(span / most / kHour);
}

std::string decimal(double value, double step) {
  char text[64];
  const int digits = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  // Adding 0 turns a negative zero into a plain one.
  std::snprintf(text, sizeof text, "%.*f", digits, value + 0.0);
  return text;
}

std::string clock_time(double seconds, bool hours) {
  const auto whole = static_cast<long long>(std::llrint(seconds));
  char text[64];
  if (hours) {
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
  }
  return text;
}

// An axis that is to be drawn.
struct Marked {
  std::string label;
  std::vector<Mark> marks;
};

Marked marked(const Axis &axis, int most) {
  constexpr double kSecondsToRead = 120.0;  // more are minutes
  constexpr double kMinutesToRead = 3600.0;
  const bool times = axis.marks == Axis::Marks::kTimes;
  const bool clock = times && axis.to > kSecondsToRead;
  const bool hours = clock && axis.to > kMinutesToRead;
  const double span = axis.to - axis.from;
  const double step = clock ? time_step(span, most) : round_step(span, most);
  Marked result{axis.label, {}};
  if (times) result.label += hours ? " (h:min:s)" : clock ? " (min:s)" : " (s)";
  constexpr double kSlack = 1e-9;  // of a step, for rounding
  const auto first = std::llrint(std::ceil(axis.from / step - kSlack));
  const auto last = std::llrint(std::floor(axis.to / step + kSlack));
  for (auto i = first; i <= last; ++i) {
    const double at = static_cast<double>(i) * step;
    result.marks.push_back({at, clock ? clock_time(at, hours) : decimal(at, step)});
  }
  return result;
}

// ---- Text ----

// Bytes of the character of UTF-8 that a text begins with, or 0 if that isn't one or
// can't be printed.
std::size_t character_size(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  constexpr unsigned char kDelete = 0x7F;
  const unsigned char lead = byte(0);
  if (lead < 0x80) return lead >= ' ' && lead != kDelete ? 1 : 0;
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || size > text.size()) return 0;
  uint32_t code = lead & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3F);
  }
  constexpr std::array<uint32_t, 5> kLeast = {0, 0, 0xA0, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return code < kLeast[size] || code > 0x10FFFF || surrogate ? 0 : size;
}

// The characters of a text, which may be any bytes: the name of a file may.
std::vector<std::string> characters(std::string_view text) {
  std::vector<std::string> result;
  while (!text.empty()) {
    const std::size_t size = character_size(text);
    result.push_back(size > 0 ? std::string(text.substr(0, size)) : "\uFFFD");
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return result;
}

std::string joined(std::span<const std::string> parts) {
  std::string result;
  for (const std::string &part : parts) result += part;
  return result;
}

// ---- Drawing ----

struct DestroySurface {
  void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
};
struct DestroyContext {
  void operator()(cairo_t *context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;
using Context = std::unique_ptr<cairo_t, DestroyContext>;

void check(cairo_status_t status, const std::string &path) {
  if (status != CAIRO_STATUS_SUCCESS) {
    fail("can't draw " + path + ": " + cairo_status_to_string(status));
  }
}

Surface blank(int width, int height, const std::string &path) {
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  check(cairo_surface_status(surface.get()), path);
  return surface;
}

// The cells from `first` to `last`.
struct Range {
  std::size_t first;
  std::size_t last;
};

// What a pixel shows: the cell at its centre, or all in it if it is larger than a cell.
Range cells_at(int pixel, int pixels, const Axis &axis, const Cells &cells) {
  const double step = (axis.to - axis.from) / pixels;
  const auto cell_of = [&](double position) {
    const double cell = std::floor((axis.from + position * step - cells.first) / cells.size);
    return static_cast<std::size_t>(std::clamp(cell, 0.0, static_cast<double>(cells.count - 1)));
  };
  if (cells.size >= step) return {cell_of(pixel + 0.5), cell_of(pixel + 0.5)};
  return {cell_of(pixel), cell_of(pixel + 1)};
}

float highest(const HeatMap &map, Range columns, Range rows) {
  float level = map.levels[columns.first * map.rows.count + rows.first];
  for (std::size_t column = columns.first; column <= columns.last; ++column) {
    const float *levels = &map.levels[column * map.rows.count];
    level = std::max(level, *std::max_element(levels + rows.first, levels + rows.last + 1));
  }
  return level;
}

// Of the levels alone.
Surface coloured(const HeatMap &map, const std::string &path) {
  Surface surface = blank(kPlot.width, kPlot.height, path);
  cairo_surface_flush(surface.get());
  unsigned char *data = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < kPlot.height; ++y) {
    const Range rows = cells_at(kPlot.height - 1 - y, kPlot.height, map.y, map.rows);
    auto *line = reinterpret_cast<uint32_t *>(data + static_cast<std::ptrdiff_t>(y) * stride);
    for (int x = 0; x < kPlot.width; ++x) {
      const Range columns = cells_at(x, kPlot.width, map.x, map.columns);
      line[x] = pixel_of(colour_of(highest(map, columns, rows), map.scale));
    }
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

class Drawing {
 public:
  explicit Drawing(const std::string &path)
      : surface_(blank(kWidth, kHeight, path)), context_(cairo_create(surface_.get())) {
    check(cairo_status(context_.get()), path);
    use(kPaper);
    cairo_paint(context_.get());
    cairo_set_line_width(context_.get(), 1.0);
    cairo_font_options_t *options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_set_font_options(context_.get(), options);
    cairo_font_options_destroy(options);
  }

  cairo_surface_t *surface() const { return surface_.get(); }
  cairo_status_t status() const { return cairo_status(context_.get()); }

  void use(const Colour &colour) {
    cairo_set_source_rgb(context_.get(), colour.red, colour.green, colour.blue);
  }

  void use_font(double size, cairo_font_weight_t weight) {
    cairo_select_font_face(context_.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL, weight);
    cairo_set_font_size(context_.get(), size);
  }

  double text_width(const std::string &text) {
    cairo_text_extents_t extents;
    cairo_text_extents(context_.get(), text.c_str(), &extents);
    return extents.x_advance;
  }

  // `alignment` is the share of the text's width that lies to the left of x; y is the
  // base line.
  void text(double x, double y, double alignment, const std::string &text) {
    cairo_move_to(context_.get(), std::round(x - alignment * text_width(text)), y);
    cairo_show_text(context_.get(), text.c_str());
  }

  // Upwards, with its middle at y.
  void upright_text(double x, double y, const std::string &words) {
    cairo_save(context_.get());
    cairo_translate(context_.get(), x, y);
    cairo_rotate(context_.get(), -std::acos(0.0));
    text(0.0, 0.0, 0.5, words);
    cairo_restore(context_.get());
  }

  // The text without its middle, if it is too wide.
  std::string fitted(const std::string &text, double width) {
    const std::vector<std::string> all = characters(text);
    std::string result = joined(all);
    for (std::size_t kept = all.size(); kept > 1 && text_width(result) > width; --kept) {
      const auto parts = std::span(all);
      result = joined(parts.first(kept / 2)) + "\u2026" + joined(parts.last(kept - 1 - kept / 2));
    }
    return result;
  }

  void line(double x, double y, double dx, double dy) {
    cairo_move_to(context_.get(), x, y);
    cairo_rel_line_to(context_.get(), dx, dy);
    cairo_stroke(context_.get());
  }

  void fill(double x, double y, double width, double height) {
    cairo_rectangle(context_.get(), x, y, width, height);
    cairo_fill(context_.get());
  }

  // A line around a box, in the pixels next to it.
  void frame(const Box &box) {
    cairo_rectangle(context_.get(), box.left - 0.5, box.top - 0.5, box.width + 1, box.height + 1);
    cairo_stroke(context_.get());
  }

  void put(cairo_surface_t *picture, const Box &box) {
    cairo_set_source_surface(context_.get(), picture, box.left, box.top);
    cairo_paint(context_.get());
  }

 private:
  Surface surface_;
  Context context_;
};

// Where a value lies along an axis of so many pixels, at the middle of a pixel.
double place(double value, const Axis &axis, int pixels) {
  const double at = (value - axis.from) / (axis.to - axis.from) * pixels;
  return std::min(std::floor(at), pixels - 1.0) + 0.5;
}

void draw_x_axis(Drawing &drawing, const Axis &axis) {
  const Marked scale = marked(axis, 12);
  const double bottom = kPlot.top + kPlot.height;
  for (const Mark &mark : scale.marks) {
    const double x = kPlot.left + place(mark.at, axis, kPlot.width);
    drawing.line(x, bottom, 0, kMarkLength);
    drawing.text(x, bottom + 20, 0.5, mark.text);
  }
  drawing.text(kPlot.left + kPlot.width / 2.0, bottom + 46, 0.5, scale.label);
}

void draw_y_marks(Drawing &drawing, const Marked &scale, const Axis &axis, const Box &box,
                  bool right) {
  const double edge = right ? box.left + box.width : box.left;
  const double outwards = right ? 1 : -1;
  for (const Mark &mark : scale.marks) {
    const double y = box.top + box.height - place(mark.at, axis, box.height);
    drawing.line(edge, y, outwards * kMarkLength, 0);
    drawing.text(edge + outwards * 9, y + 4.5, right ? 0.0 : 1.0, mark.text);
  }
}

void draw_y_axis(Drawing &drawing, const Axis &axis) {
  const Marked scale = marked(axis, 13);
  draw_y_marks(drawing, scale, axis, kPlot, false);
  drawing.upright_text(26, kPlot.top + kPlot.height / 2.0, scale.label);
}

void draw_legend(Drawing &drawing, const Axis &axis) {
  for (int y = 0; y < kLegend.height; ++y) {
    const double level =
        axis.to - (y + 0.5) / static_cast<double>(kLegend.height) * (axis.to - axis.from);
    drawing.use(colour_of(level, axis));
    drawing.fill(kLegend.left, kLegend.top + y, kLegend.width, 1);
  }
  drawing.use(kInk);
  drawing.frame(kLegend);
  const Marked scale = marked(axis, 13);
  draw_y_marks(drawing, scale, axis, kLegend, true);
  drawing.upright_text(1262, kLegend.top + kLegend.height / 2.0, scale.label);
}

struct Sink {
  int fd;
  int error_number = 0;
};

cairo_status_t write_to(void *closure, const unsigned char *data, unsigned size) {
  auto *sink = static_cast<Sink *>(closure);
  if (write_all(sink->fd, data, size)) return CAIRO_STATUS_SUCCESS;
  sink->error_number = errno;
  return CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace

void require_pictures(const std::string &, const std::string &) {}

void draw(const HeatMap &map, OutputFile &file, const std::string &path) {
  Drawing drawing(path);
  const Surface levels = coloured(map, path);
  drawing.put(levels.get(), kPlot);
  drawing.use(kInk);
  drawing.frame(kPlot);
  drawing.use_font(kTitleSize, CAIRO_FONT_WEIGHT_BOLD);
  drawing.text(kPlot.left, 32, 0.0, drawing.fitted(map.title, kWidth - 2.0 * kPlot.left));
  drawing.use_font(kTextSize, CAIRO_FONT_WEIGHT_NORMAL);
  drawing.use(kFaintInk);
  drawing.text(kPlot.left, 54, 0.0, drawing.fitted(map.subtitle, kWidth - 2.0 * kPlot.left));
  drawing.use(kInk);
  draw_x_axis(drawing, map.x);
  draw_y_axis(drawing, map.y);
  draw_legend(drawing, map.scale);
  check(drawing.status(), path);

  Sink sink{file.fd()};
  const cairo_status_t status =
      cairo_surface_write_to_png_stream(drawing.surface(), write_to, &sink);
  if (sink.error_number != 0) {
    fail("can't write " + file.description() + ": " + system_error(sink.error_number) +
         "; nothing was changed");
  }
  check(status, path);
}

}  // namespace mvk
