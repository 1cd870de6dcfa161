/* mvk bands: a file in subbands, as a picture of their levels or there and back. */
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "analysis.h"
#include "audio_input.h"
#include "audio_output.h"
#include "choice.h"
#include "commands.h"
#include "filter_bank.h"
#include "library.h"
#include "messages.h"
#include "output_file.h"
#include "plot.h"
#include "progress.h"
#include "transfer.h"

namespace mvk {
namespace {

struct Options {
  FileOptions files;
  std::string bands = "64";
  bool roundtrip = false;
};

// ---- Picture ----

// Levels of the subbands. A slot's filters end with its last sample and have their middle
// at the sample a lead and the lateness ahead of it: with a lead of one less than a slot,
// analysis h is about frame h * bands.
class BandLevels : public Analyser {
 public:
  BandLevels(const Library &library, unsigned bands, int channels)
      : Analyser({bands, bands, bands - 1, std::size_t{kBankOrder} * bands}, channels),
        samples_(bands),
        slot_(1, bands),
        powers_(bands) {
    for (int c = 0; c < channels; ++c) banks_.emplace_back(library, bands, 1U);
  }

  std::span<const float> powers(const float *frames) override {
    // What a band has of a sine of amplitude 1 at its middle is half of it, as complex
    // sines go, by the square root of a half: the sum of the prototype over 2 M.
    constexpr float kScale = 8.0F;
    std::fill(powers_.begin(), powers_.end(), 0.0F);
    for (std::size_t c = 0; c < channels(); ++c) {
      for (std::size_t i = 0; i < samples_.size(); ++i) {
        samples_[i] = frames[i * channels() + c];
      }
      banks_[c].process(samples_.data(), slot_);
      const float *band = slot_.slot(0);
      for (float &power : powers_) {
        power += band[0] * band[0] + band[1] * band[1];
        band += 2;
      }
    }
    for (float &power : powers_) power *= kScale / static_cast<float>(channels());
    return powers_;
  }

 private:
  std::vector<BandAnalysis> banks_;
  std::vector<float> samples_;
  Slots slot_;
  std::vector<float> powers_;
};

void picture(const Options &options, unsigned bands) {
  const FileOptions &files = options.files;
  if (!is_named(files.out, ".png")) {
    refuse("OUT is '" + files.out +
           "', but must end with .png for a picture; --roundtrip writes audio");
  }
  require_pictures(files.out, "");
  const AudioInput input = open_audio(files.in);
  const Library library(files.library);
  BandLevels levels(library, bands, input.info.channels);
  OutputFile file(files.out);
  if (!files.quiet) note_early_end(input, "analysed");
  const double width = input.info.samplerate / 2000.0 / bands;  // in kHz
  char method[64];
  std::snprintf(method, sizeof method, "%u subbands, each %.4g Hz wide", bands, 1000.0 * width);
  Progress progress = progress_through(input, files.quiet, "analysing");
  const Analysed analysed =
      draw_levels(input, levels, method, {0.0, width, bands}, file, files.out, progress);
  if (analysed.frames == 0) fail(input.name + " holds no audio; there is nothing to show");
  file.commit();
  if (!files.quiet) note_silenced(analysed.silenced);
}

// ---- There and back ----

// Banks for each channel of interleaved audio, fed with a block of whole slots at a time.
class RoundTrip {
 public:
  RoundTrip(const Library &library, unsigned bands, int channels)
      : samples_(std::size_t{kSlots} * bands), slots_(kSlots, bands) {
    for (int c = 0; c < channels; ++c) {
      analyses_.emplace_back(library, bands, kSlots);
      syntheses_.emplace_back(library, bands, kSlots);
    }
  }

  /* In frames. */
  std::size_t block() const { return samples_.size(); }
  unsigned delay() const { return analyses_[0].delay() + syntheses_[0].delay(); }

  void process(float *interleaved) {
    const std::size_t channels = analyses_.size();
    for (std::size_t c = 0; c < channels; ++c) {
      for (std::size_t i = 0; i < block(); ++i) samples_[i] = interleaved[i * channels + c];
      analyses_[c].process(samples_.data(), slots_);
      syntheses_[c].process(slots_, samples_.data());
      for (std::size_t i = 0; i < block(); ++i) interleaved[i * channels + c] = samples_[i];
    }
  }

 private:
  static constexpr unsigned kSlots = 16;

  std::vector<BandAnalysis> analyses_;
  std::vector<BandSynthesis> syntheses_;
  std::vector<float> samples_;
  Slots slots_;
};

// Sums over all samples, of what went in, x, and what came out, y.
struct Report {
  double xx = 0.0;
  double xy = 0.0;
  double error = 0.0;     // of (y - x)^2
  uint64_t silenced = 0;  // samples that were no usable numbers

  void add(const float *in, const float *out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const double x = in[i];
      const double y = out[i];
      xx += x * x;
      xy += x * y;
      error += (y - x) * (y - x);
    }
  }
};

// Pushes the whole input through the banks, followed by silence until its last sample has
// come out, and leaves out the delay.
Report run(const AudioInput &input, RoundTrip &banks, AudioOutput &output, Progress progress) {
  const auto channels = static_cast<std::size_t>(input.info.channels);
  const auto block = static_cast<sf_count_t>(banks.block());
  AudioBlocks in(input, banks.block());
  std::vector<float> awaited;  // input whose output hasn't come yet
  sf_count_t written = 0;
  sf_count_t early = banks.delay();  // frames still to leave out
  Report report;
  while (!in.ended || written < in.read) {
    in.next(block);
    const auto end = in.samples.begin() + in.got * input.info.channels;
    report.silenced += silence_unusable({in.samples.begin(), end});
    awaited.insert(awaited.end(), in.samples.begin(), end);
    banks.process(in.samples.data());

    const sf_count_t begin = std::min(early, block);
    early -= begin;
    const sf_count_t frames = std::min(block - begin, in.read - written);
    if (frames > 0) {
      const float *audio = in.samples.data() + static_cast<std::size_t>(begin) * channels;
      const std::size_t count = static_cast<std::size_t>(frames) * channels;
      report.add(awaited.data(), audio, count);
      awaited.erase(awaited.begin(), awaited.begin() + static_cast<std::ptrdiff_t>(count));
      output.write(audio, frames);
      written += frames;
    }
    progress.show(static_cast<uint64_t>(in.read));
  }
  return report;
}

void print_report(const Report &report, unsigned delay, const Options &options, int rate) {
  // Where audio goes, nothing else may.
  std::FILE *to = options.files.out == "-" ? stderr : stdout;
  std::fprintf(to, "delay          %u samples (%.3f ms)\n", delay, delay * 1000.0 / rate);
  if (report.xx > 0.0) {
    const double error = report.error / report.xx;
    std::fprintf(to, "gain           %.6f\n", report.xy / report.xx);
    std::fprintf(to, "squared error  %.3g of the input's square (%.2f dB)\n", error,
                 10.0 * std::log10(error));
  } else {
    std::fprintf(to, "gain           unknown, the input is silent\n");
    std::fprintf(to, "squared error  %.3g\n", report.error);
  }
}

void roundtrip(const Options &options, unsigned bands) {
  const FileOptions &files = options.files;
  const AudioInput input = open_audio(files.in);
  const Library library(files.library);
  RoundTrip banks(library, bands, input.info.channels);
  Transfer transfer(input, files, input.info.samplerate, input.info.frames, "processed");
  const Report report =
      run(input, banks, transfer.output(), progress_through(input, files.quiet, "processing"));
  transfer.commit();
  if (!files.quiet) {
    print_report(report, banks.delay(), options, input.info.samplerate);
    note_silenced(report.silenced);
  }
  transfer.report_limits();
}

// ---- The command ----

void bands(const Options &options) {
  const auto count =
      static_cast<unsigned>(parse_choice("--bands", options.bands, kBandCounts, "subbands"));
  if (options.roundtrip) {
    roundtrip(options, count);
  } else {
    picture(options, count);
  }
}

}  // namespace

void add_bands(CLI::App &program) {
  auto options = std::make_shared<Options>();
  CLI::App *command = program.add_subcommand(
      "bands", "Split an audio file into subbands, and draw their levels or go back");
  command->add_option("IN", options->files.in, "Audio to read; - is standard input")->required();
  command
      ->add_option("OUT", options->files.out, "Picture (.png) to write, or audio with --roundtrip")
      ->required();
  command
      ->add_option("-b,--bands", options->bands,
                   "Subbands: " + listed(kBandCounts) + "; 64 if not given")
      ->type_name("N");
  CLI::Option *roundtrip = command->add_flag("--roundtrip", options->roundtrip,
                                             "Make audio of the subbands again, and measure it");
  add_file_options(*command, options->files);
  command->get_option("--format")->needs(roundtrip);
  command->footer(
      "Examples:\n"
      "  mvk bands speech.wav speech.png\n"
      "  mvk bands music.flac music.png --bands 16\n"
      "  mvk bands --roundtrip speech.wav back.wav --format float\n"
      "  mvk bands --roundtrip music.ogg - --format wav:s16 | aplay -q\n\n"
      "The subbands are those of a complex QMF bank with the prototype p64orv301: N of\n"
      "equal width from 0 Hz to half the rate, with a value each for every N samples.\n\n"
      "In a picture times are those of the filters' middles, and beyond the ends of the\n"
      "file there is silence. Levels are in decibels of full scale (dBFS): a sine of full\n"
      "scale in the middle of a subband has 0 dBFS there, and on the border between two\n"
      "-3 dBFS in both. Of several channels the powers are averaged. A picture shows\n"
      "100 dB, and where it has fewer pixels than there are levels, the highest. Fewer\n"
      "subbands tell times apart better, and frequencies worse.\n\n"
      "There and back, OUT has the frames of IN, in their places, for the delay is taken\n"
      "back. The report gives the delay, the gain, and the sum of the squared differences\n"
      "over that of the input's squares, of all channels and ahead of the rounding to the\n"
      "format of OUT. It goes to standard error if OUT is standard output.\n\n" +
      file_options_help());
  command->callback([options] { bands(*options); });
}

}  // namespace mvk
