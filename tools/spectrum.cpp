/* mvk spectrum: the levels of a file's frequencies over time, as a picture or numbers. */
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "analysis.h"
#include "audio_input.h"
#include "choice.h"
#include "commands.h"
#include "files.h"
#include "library.h"
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
    table.add(static_cast<double>(hop++ * spectrogram.framing().hop) / rate, 9);
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

Analysed draw_picture(const AudioInput &input, Spectrogram &spectrogram, OutputFile &file,
                      const std::string &path, Progress progress) {
  const double rate = input.info.samplerate;
  const auto length = static_cast<double>(spectrogram.length());
  char method[128];
  std::snprintf(method, sizeof method, "Hann window of %zu samples (%.3g ms), hop %zu",
                spectrogram.length(), length * (1000.0 / rate), spectrogram.framing().hop);
  const double bin = rate / 1000.0 / length;
  return draw_levels(input, spectrogram, method, {-bin / 2.0, bin, spectrogram.bins()}, file, path,
                     progress);
}

// ---- The command ----

constexpr std::array kLengths = {32, 64, 128, 256, 512, 1024, 2048, 4096};

bool wants_picture(const std::string &path) {
  const bool picture = is_named(path, ".png");
  if (!picture && !is_named(path, ".csv")) {
    refuse("OUT is '" + path + "', but must end with .png for a picture or .csv for numbers");
  }
  return picture;
}

void spectrum(const Options &options) {
  const auto length =
      static_cast<std::size_t>(parse_choice("--length", options.length, kLengths, "samples"));
  const bool picture = wants_picture(options.out);
  if (picture) require_pictures(options.out, "name a .csv file");
  const AudioInput input = open_audio(options.in);
  const Library library(options.library);
  Spectrogram spectrogram(library, length, input.info.channels);
  OutputFile file(options.out);
  if (!options.quiet) note_early_end(input, "analysed");
  const auto progress = [&] { return progress_through(input, options.quiet, "analysing"); };
  const Analysed analysed = picture
                                ? draw_picture(input, spectrogram, file, options.out, progress())
                                : write_table(input, spectrogram, file, progress());
  if (analysed.frames == 0) fail(input.name + " holds no audio; there is nothing to show");
  file.commit();
  if (!options.quiet) note_silenced(analysed.silenced);
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
                   "Samples of the window: " + listed(kLengths) + "; 1024 if not given")
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
