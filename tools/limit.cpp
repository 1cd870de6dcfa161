/* mvk limit: a file whose samples stay below a peak. */
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio_input.h"
#include "audio_output.h"
#include "commands.h"
#include "library.h"
#include "limiter.h"
#include "messages.h"
#include "progress.h"
#include "transfer.h"

namespace mvk {
namespace {

struct Options {
  FileOptions files;
  std::string peak;
  std::string boost = "0dB";
  unsigned sub_block = 64;
  bool hard_clip = false;
  std::string detect;
};

// ---- Levels ----

double amplitude(double decibels) { return std::pow(10.0, decibels / 20.0); }
double decibels(double amplitude) { return 20.0 * std::log10(amplitude); }

// A number of decibels, with or without the unit.
double parse_decibels(const std::string &option, const std::string &text) {
  constexpr double kMost = 120.0;
  char *end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  std::string unit = end;
  unit.erase(0, unit.find_first_not_of(' '));
  std::transform(unit.begin(), unit.end(), unit.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (end == text.c_str() || (!unit.empty() && unit != "db")) {
    refuse(option + " '" + text + "' isn't a number of decibels, such as -1dB or -1");
  }
  if (!(std::fabs(value) <= kMost)) {
    refuse(option + " '" + text + "' is out of range; it takes decibels from -120 to 120");
  }
  return value;
}

// ---- What is reported ----

struct Peak {
  double level = 0.0;
  sf_count_t frame = 0;
  int channel = 0;
};

struct Report {
  Peak in;
  Peak out;
  double reduction = 0.0;  // of the gain, in decibels
  sf_count_t reduction_frame = 0;
  uint64_t beyond = 0;  // samples of the input, boosted beyond the peak
};

// `frames` frames that begin with frame `first`.
void raise_peak(Peak &peak, const float *samples, sf_count_t first, sf_count_t frames,
                int channels) {
  for (sf_count_t i = 0; i < frames * channels; ++i) {
    const double level = std::fabs(samples[i]);
    // The first NaN stays: it is no level at all, and must not pass unseen.
    if (!(level <= peak.level) && !std::isnan(peak.level)) {
      peak = {level, first + i / channels, static_cast<int>(i % channels) + 1};
    }
  }
}

uint64_t beyond(float peak, const std::vector<float> &samples) {
  return static_cast<uint64_t>(
      std::count_if(samples.begin(), samples.end(), [&](float x) { return std::fabs(x) > peak; }));
}

// To be called with what the gain comes to at a frame. Only a difference that can be
// seen in the report counts: a steady gain is never quite steady.
void lower_gain(Report &report, float gain, sf_count_t frame) {
  constexpr double kShown = 100.0;
  const double reduction = std::round(-decibels(gain) * kShown) / kShown;
  if (reduction > report.reduction) {
    report.reduction = reduction;
    report.reduction_frame = frame;
  }
}

std::string place(sf_count_t frame, int rate) {
  char text[64];
  std::snprintf(text, sizeof text, "at frame %lld (%.3f s)", static_cast<long long>(frame),
                static_cast<double>(frame) / rate);
  return text;
}

void print_peak(std::FILE *to, const char *what, const Peak &peak, int rate) {
  std::fprintf(to, "%-14s  %.9g (%.2f dBFS)", what, peak.level, decibels(peak.level));
  if (peak.level != 0.0) {
    std::fprintf(to, " %s, channel %d", place(peak.frame, rate).c_str(), peak.channel);
  }
  std::fprintf(to, "\n");
}

void print_report(const Report &report, const Options &options, int rate) {
  // Where audio goes, nothing else may.
  std::FILE *to = options.files.out == "-" ? stderr : stdout;
  print_peak(to, "input peak", report.in, rate);
  print_peak(to, "output peak", report.out, rate);
  if (options.hard_clip) {
    std::fprintf(to, "clipped         %llu samples\n",
                 static_cast<unsigned long long>(report.beyond));
  } else if (report.reduction > 0.0) {
    std::fprintf(to, "gain reduction  %.2f dB %s\n", report.reduction,
                 place(report.reduction_frame, rate).c_str());
  } else {
    std::fprintf(to, "gain reduction  none\n");
  }
}

// ---- Limiting ----

// Pushes the whole input through the limiter, followed by silence until its last
// sample has come out, and leaves out the delay. A gain that comes with a sub-block of
// input is reached where that sub-block begins to leave.
Report run(AudioBlocks &in, AudioBlocks *detect, Limiter &limiter, float peak, AudioOutput &output,
           Progress progress) {
  const int channels = in.input.info.channels;
  const auto sub_block = static_cast<sf_count_t>(in.samples.size()) / channels;
  std::vector<float> out(in.samples.size());
  auto early = static_cast<sf_count_t>(limiter.latency());  // frames still to leave out
  sf_count_t written = 0;
  Report report;
  while (!in.ended || written < in.read) {
    const sf_count_t first = in.read;
    in.next(sub_block);
    if (detect != nullptr) detect->next(in.got);
    limiter.process(in.samples.data(), detect != nullptr ? detect->samples.data() : nullptr,
                    out.data());
    raise_peak(report.in, in.samples.data(), first, in.got, channels);
    report.beyond += beyond(peak, in.samples);
    lower_gain(report, limiter.gain(), first);

    const sf_count_t begin = std::min(early, sub_block);
    early -= begin;
    const sf_count_t frames = std::min(sub_block - begin, in.read - written);
    if (frames > 0) {
      const float *audio = &out[static_cast<std::size_t>(begin * channels)];
      raise_peak(report.out, audio, written, frames, channels);
      output.write(audio, frames);
      written += frames;
    }
    progress.show(static_cast<uint64_t>(in.read));
  }
  return report;
}

AudioInput open_detect(const Options &options, const AudioInput &input) {
  AudioInput detect = open_audio(options.detect);
  if (detect.info.samplerate != input.info.samplerate) {
    refuse(detect.name + " has " + std::to_string(detect.info.samplerate) + " Hz and " +
           input.name + " " + std::to_string(input.info.samplerate) +
           " Hz; bring them to one rate first");
  }
  if (!options.files.quiet && ends_early(detect)) {
    complain("note: " + detect.name +
             " ends before the length in its header; silence takes the place of the rest");
  }
  return detect;
}

void limit(const Options &options) {
  const double peak = parse_decibels("--peak", options.peak);
  const double boost = parse_decibels("--boost", options.boost);
  const AudioInput input = open_audio(options.files.in);
  std::optional<AudioInput> detect;
  if (!options.detect.empty()) detect = open_detect(options, input);

  // The library boosts what it has limited.
  const LimiterSettings settings{static_cast<float>(amplitude(peak - boost)),
                                 static_cast<float>(amplitude(boost)), options.sub_block,
                                 options.hard_clip};
  const Library library(options.files.library);
  Limiter limiter(
      library, settings,
      {input.name, input.info.samplerate, input.info.channels, detect ? detect->info.channels : 0});
  Transfer transfer(input, options.files, input.info.samplerate, input.info.frames, "limited");

  AudioBlocks in(input, options.sub_block);
  std::optional<AudioBlocks> deciding;
  if (detect) deciding.emplace(*detect, options.sub_block);
  const Report report =
      run(in, deciding ? &*deciding : nullptr, limiter, settings.peak, transfer.output(),
          progress_through(input, options.files.quiet, "limiting"));
  transfer.commit();
  if (options.files.quiet) return;
  print_report(report, options, input.info.samplerate);
  // What is limited to full scale is at most rounded to it.
  if (detect || peak > 0.0) transfer.report_limits();
}

}  // namespace

void add_limit(CLI::App &program) {
  auto options = std::make_shared<Options>();
  CLI::App *command = program.add_subcommand(
      "limit", "Keep an audio file below a peak, with a limiter or by clipping");
  add_files(*command, options->files);
  command->add_option("-p,--peak", options->peak, "Highest level of OUT, such as -1dB")
      ->type_name("DB")
      ->required();
  command->add_option("-b,--boost", options->boost, "Gain ahead of the limiter; 0dB if not given")
      ->type_name("DB");
  command
      ->add_option("--sub-block", options->sub_block,
                   "Frames of look-ahead and of a change of gain; 64 if not given")
      ->type_name("N");
  CLI::Option *detect =
      command->add_option("--detect", options->detect, "Audio that decides the gain of IN")
          ->type_name("OTHER");
  command->add_flag("--hard-clip", options->hard_clip, "Clip instead of limiting")
      ->excludes(detect);
  add_file_options(*command, options->files);
  command->footer(
      "Examples:\n"
      "  mvk limit speech.wav loud.wav --peak -1dB --boost 12dB\n"
      "  mvk limit music.flac music.ogg --peak -1.5 --sub-block 32\n"
      "  mvk limit music.wav ducked.wav --peak -20dB --detect voice.wav\n"
      "  mvk limit tone.wav square.wav --peak -6dB --boost 40dB --hard-clip\n\n"
      "A level is a number of decibels, with or without dB: 0dB is full scale, -6dB about\n"
      "half of it. OUT is IN raised by the boost and held at the peak. It has the frames\n"
      "of IN, in their places, for the look-ahead is taken back. Nothing but the boost\n"
      "changes until the peak is reached, and once the limiter has recovered. Samples\n"
      "that aren't finite numbers become silence.\n\n"
      "With --detect the gain is the one that would hold OTHER at the peak. OTHER has the\n"
      "rate of IN, and any channels. Silence follows a shorter one, and what a longer one\n"
      "has beyond the end of IN doesn't count. OUT may pass the peak then.\n\n"
      "Not every sub-block serves every rate; where one is refused, what does is listed.\n"
      "Clipping takes any rate, and has no look-ahead.\n\n"
      "The report gives the highest samples of IN and, ahead of the rounding to its\n"
      "format, of OUT, and the largest reduction of the gain and where it was reached. It\n"
      "goes to standard error if OUT is standard output.\n\n" +
      file_options_help());
  command->callback([options] { limit(*options); });
}

}  // namespace mvk
