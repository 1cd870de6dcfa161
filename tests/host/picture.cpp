#ifdef MVK_PICTURES

#include "host/picture.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace host {

Picture::Picture(const std::string &path) {
  cairo_surface_t *surface = cairo_image_surface_create_from_png(path.c_str());
  const cairo_status_t status = cairo_surface_status(surface);
  if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
  width_ = cairo_image_surface_get_width(surface);
  height_ = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  const unsigned char *data = cairo_image_surface_get_data(surface);
  for (int y = 0; y < height_; ++y) {
    const auto *line = reinterpret_cast<const uint32_t *>(data + y * stride);
    pixels_.insert(pixels_.end(), line, line + width_);
  }
  cairo_surface_destroy(surface);
}

Colour Picture::at(int x, int y) const {
  const uint32_t pixel = pixels_.at(static_cast<std::size_t>(y * width_ + x));
  return {static_cast<int>(pixel >> 16 & 0xFF), static_cast<int>(pixel >> 8 & 0xFF),
          static_cast<int>(pixel & 0xFF)};
}

bool Picture::blank(const Box &box) const {
  for (int y = box.top; y < box.top + box.height; ++y) {
    for (int x = box.left; x < box.left + box.width; ++x) {
      if (x < width_ && at(x, y) != kPaper) return false;
    }
  }
  return true;
}

Colour Picture::legend(double level, double top) const {
  const double pixel = (top - level) / 100 * kLegend.height;
  return at(kLegend.left + kLegend.width / 2,
            kLegend.top + std::clamp(static_cast<int>(pixel), 0, kLegend.height - 1));
}

std::vector<int> Picture::brightest_rows(int column) const {
  std::vector<int> rows;
  int most = -1;
  for (int row = 0; row < kPlot.height; ++row) {
    const int brightness = plot(column, row).brightness();
    if (brightness > most) rows.clear();
    if (brightness >= most) rows.push_back(row);
    most = std::max(most, brightness);
  }
  return rows;
}

void expect_near(const Colour &seen, const Colour &expected) {
  EXPECT_NEAR(seen.red, expected.red, 2);
  EXPECT_NEAR(seen.green, expected.green, 2);
  EXPECT_NEAR(seen.blue, expected.blue, 2);
}

}  // namespace host

#endif
