/* mvk spectrum: the levels of a file's frequencies over time, as a picture or numbers. */
#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "audio_input.h"
#include "columns.h"
#include "commands.h"
#include "component.h"
#include "files.h"
#include "messages.h"
#include "output_file.h"
#include "plot.h"
#include "progress.h"
#include "spectrogram.h"
#include "transfer.h"

namespace mvk {
namespace {

struct Options {
  std::string in;
  std::string out;
  std::string length = "1024";
  std::string library;
  bool quiet = false;
};

constexpr double kLowestLevel = -200.0;

double level_of(double power) {
  return power > 0.0 ? std::max(10.0 * std::log10(power), kLowestLevel) : kLowestLevel;
}

// ---- Numbers ----

// Rows of numbers, separated by commas.
class Table {
 public:
  explicit Table(OutputFile &file) : file_(file) {}

  void add(std::string_view text) {
    if (!row_is_empty_) text_ += ',';
    text_ += text;
    row_is_empty_ = false;
  }

  // As many digits as it takes to give `value` back, or so many behind the point.
  void add(double value) {
    char text[400];
    add({text, std::to_chars(text, std::end(text), value, std::chars_format::fixed).ptr});
  }
  void add(double value, int digits) {
    char text[400];
    add({text, std::to_chars(text, std::end(text), value, std::chars_format::fixed, digits).ptr});
  }

  void end_row() {
    constexpr std::size_t kEnough = std::size_t{1} << 16;
    text_ += "\r\n";
    row_is_empty_ = true;
    if (text_.size() >= kEnough) write();
  }

  void write() {
    if (!write_all(file_.fd(), text_.data(), text_.size())) {
      fail("can't write " + file_.description() + ": " + system_error(errno) +
           "; nothing was changed");
    }
    text_.clear();
  }

 private:
  OutputFile &file_;
  std::string text_;
  bool row_is_empty_ = true;
};

Analysed write_table(const AudioInput &input, Spectrogram &spectrogram, OutputFile &file,
                     Progress progress) {
  const double rate = input.info.samplerate;
  Table table(file);
  table.add("seconds");
  for (std::size_t k = 0; k < spectrogram.bins(); ++k) {
    table.add(static_cast<double>(k) * rate / static_cast<double>(spectrogram.length()));
  }
  table.end_row();
  uint64_t hop = 0;
  const auto add_row = [&](std::span<const float> powers) {
    constexpr double kSteps = 1000.0;  // of a decibel
    table.add(static_cast<double>(hop++ * spectrogram.hop()) / rate, 9);
    for (const float power : powers) {
      // Adding 0 turns a negative zero into a plain one.
      table.add(std::round(level_of(power) * kSteps) / kSteps + 0.0, 3);
    }
    table.end_row();
  };
  const Analysed analysed = analyse(input, spectrogram, add_row, progress);
  table.write();
  return analysed;
}

// ---- Picture ----

std::string subtitle(const AudioInput &input, const Spectrogram &spectrogram, double seconds) {
  const double milliseconds = 1000.0 / input.info.samplerate;
  char text[256];
  std::snprintf(text, sizeof text,
                "%d Hz, %d channel%s, %.3f s; Hann window of %zu samples (%.3g ms), hop %zu",
                input.info.samplerate, input.info.channels, input.info.channels == 1 ? "" : "s",
                seconds, spectrogram.length(),
                static_cast<double>(spectrogram.length()) * milliseconds, spectrogram.hop());
  return text;
}

// A hundred decibels, which end with the whole ten above the loudest.
Axis colour_scale(const std::vector<float> &levels) {
  constexpr double kRange = 100.0;
  constexpr double kSlack = 0.5;  // a level of 0 may be a little more by rounding
  const double loudest = *std::max_element(levels.begin(), levels.end());
  const double top =
      std::max(10.0 * std::ceil((loudest - kSlack) / 10.0), kLowestLevel + kRange) + 0.0;
  return {"Level (dBFS)", top - kRange, top};
}

Analysed draw_picture(const AudioInput &input, Spectrogram &spectrogram, OutputFile &file,
                      const std::string &path, Progress progress) {
  // Twice the width, so that the groups are finer than a pixel.
  Columns columns(spectrogram.bins(), std::size_t{2} * kPlotWidth);
  const Analysed analysed = analyse(
      input, spectrogram, [&](std::span<const float> powers) { columns.add(powers); }, progress);
  if (analysed.frames == 0) return analysed;

  std::vector<float> levels(columns.values().size());
  std::transform(columns.values().begin(), columns.values().end(), levels.begin(),
                 [](float power) { return static_cast<float>(level_of(power)); });
  const double rate = input.info.samplerate;
  const double seconds = static_cast<double>(analysed.frames) / rate;
  const double kilohertz = rate / 1000.0;
  const double hop = static_cast<double>(spectrogram.hop()) / rate;
  const double bin = kilohertz / static_cast<double>(spectrogram.length());
  const HeatMap map{
      std::filesystem::path(input.name).filename().string(),
      subtitle(input, spectrogram, seconds),
      {"Time", 0.0, seconds, Axis::Marks::kTimes},
      {"Frequency (kHz)", 0.0, kilohertz / 2.0},
      colour_scale(levels),
      {-hop / 2.0, hop * static_cast<double>(columns.group()), columns.count()},
      {-bin / 2.0, bin, spectrogram.bins()},
      std::move(levels),
  };
  draw(map, file, path);
  return analysed;
}

// ---- The command ----

constexpr std::array kLengths = {32, 64, 128, 256, 512, 1024, 2048, 4096};

std::string length_choices() {
  std::string list;
  for (const int length : kLengths) {
    if (length != kLengths.front()) list += length == kLengths.back() ? " or " : ", ";
    list += std::to_string(length);
  }
  return list;
}

std::size_t parse_length(const std::string &text) {
  for (const int length : kLengths) {
    if (text == std::to_string(length)) return static_cast<std::size_t>(length);
  }
  refuse("--length '" + text + "' isn't one of " + length_choices() + " samples");
}

bool wants_picture(const std::string &path) {
  std::string name = path;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const bool picture = name.ends_with(".png");
  if (!picture && !name.ends_with(".csv")) {
    refuse("OUT is '" + path + "', but must end with .png for a picture or .csv for numbers");
  }
  return picture;
}

void spectrum(const Options &options) {
  const std::size_t length = parse_length(options.length);
  const bool picture = wants_picture(options.out);
  if (picture) require_pictures(options.out);
  const AudioInput input = open_audio(options.in);
  const Library library(options.library);
  Spectrogram spectrogram(library, length, input.info.channels);
  OutputFile file(options.out);
  if (!options.quiet && ends_early(input)) {
    complain("note: " + input.name +
             " ends before the length in its header; what is there gets analysed");
  }
  const auto progress = [&] {
    return Progress("mvk: analysing",
                    has_length(input) ? static_cast<uint64_t>(input.info.frames) : 0,
                    !options.quiet);
  };
  const Analysed analysed = picture
                                ? draw_picture(input, spectrogram, file, options.out, progress())
                                : write_table(input, spectrogram, file, progress());
  if (analysed.frames == 0) fail(input.name + " holds no audio; there is nothing to show");
  file.commit();
  if (!options.quiet && analysed.silenced > 0) {
    complain("note: " + std::to_string(analysed.silenced) +
             " samples aren't finite numbers, or lie beyond " + std::to_string(kHighestLevel) +
             " dBFS; they count as silence");
  }
}

}  // namespace

void add_spectrum(CLI::App &program) {
  auto options = std::make_shared<Options>();
  CLI::App *command = program.add_subcommand(
      "spectrum", "Draw or list the levels of an audio file's frequencies over time");
  command->add_option("IN", options->in, "Audio to read; - is standard input")->required();
  command
      ->add_option("OUT", options->out, "Picture (.png) or comma-separated numbers (.csv) to write")
      ->required();
  command
      ->add_option("-n,--length", options->length,
                   "Samples of the window: " + length_choices() + "; 1024 if not given")
      ->type_name("N");
  command->add_option("--library", options->library, "The shared library")->type_name("PATH");
  command->add_flag("-q,--quiet", options->quiet, "Print errors only");
  command->footer(
      "Examples:\n"
      "  mvk spectrum speech.wav speech.png\n"
      "  mvk spectrum music.flac music.png --length 4096\n"
      "  mvk spectrum tone.wav tone.csv -n 256\n"
      "  arecord -q -f cd -d 9 | mvk spectrum - take.png\n\n"
      "A longer window tells frequencies apart better, and times worse: the frequencies\n"
      "are the multiples of RATE / N. A window begins every N / 4 samples, and Hann's is\n"
      "used. Times are those of the windows' centres; the first is 0, and beyond the ends\n"
      "of the file there is silence.\n\n"
      "Levels are in decibels of full scale (dBFS): a sine of full scale at one of the\n"
      "frequencies has 0 dBFS there, whatever N is. Of several channels the powers are\n"
      "averaged. The lowest level is -200 dBFS, which stands for silence too.\n\n"
      "A picture shows 100 dB, and where it has fewer pixels than there are levels, the\n"
      "highest. In a table the first line has the frequencies in Hz, and every other line\n"
      "a time in seconds and the levels then; at 48000 Hz a second takes about a megabyte.\n");
  command->callback([options] { spectrum(*options); });
}

}  // namespace mvk
