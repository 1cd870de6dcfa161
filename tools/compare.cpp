/* mvk compare: how far two audio files are apart. */
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "audio_input.h"
#include "commands.h"
#include "messages.h"

namespace mvk {
namespace {

struct Difference {
  sf_count_t frames = 0;  // compared
  double peak = 0.0;
  sf_count_t peak_frame = 0;
  int peak_channel = 0;
  double sum_of_squares = 0.0;
};

std::string channels_of(const SF_INFO &info) {
  return std::to_string(info.channels) + (info.channels == 1 ? " channel" : " channels");
}

// Reads on to the end and returns the number of frames.
sf_count_t read_rest(const AudioInput &input, std::vector<double> &samples, sf_count_t chunk) {
  sf_count_t frames = 0;
  for (sf_count_t got; (got = read_frames(input, samples.data(), chunk)) > 0;) frames += got;
  return frames;
}

// No difference is -inf dBFS.
void print_level(const char *what, double level) {
  std::printf("%-5s %.9g (%.2f dBFS)", what, level, 20.0 * std::log10(level));
}

void print_difference(const Difference &difference, const SF_INFO &info) {
  std::printf("compared %lld frames of %s at %d Hz\n", static_cast<long long>(difference.frames),
              channels_of(info).c_str(), info.samplerate);
  print_level("peak", difference.peak);
  if (difference.peak != 0.0) {
    std::printf(" at frame %lld, channel %d", static_cast<long long>(difference.peak_frame),
                difference.peak_channel);
  }
  const double samples =
      static_cast<double>(std::max<sf_count_t>(difference.frames, 1)) * info.channels;
  std::printf("\n");
  print_level("rms", std::sqrt(difference.sum_of_squares / samples));
  std::printf("\n");
}

void add_to(Difference &difference, const std::vector<double> &a, const std::vector<double> &b,
            sf_count_t frames, int channels) {
  for (sf_count_t i = 0; i < frames * channels; ++i) {
    const double gap = std::fabs(a[static_cast<std::size_t>(i)] - b[static_cast<std::size_t>(i)]);
    // The first NaN stays: no number measures that difference, and it must not pass unseen.
    if (!(gap <= difference.peak) && !std::isnan(difference.peak)) {
      difference.peak = gap;
      difference.peak_frame = difference.frames + i / channels;
      difference.peak_channel = static_cast<int>(i % channels) + 1;
    }
    difference.sum_of_squares += gap * gap;
  }
  difference.frames += frames;
}

void compare(const std::string &path_a, const std::string &path_b) {
  const AudioInput a = open_audio(path_a);
  const AudioInput b = open_audio(path_b);
  if (a.info.samplerate != b.info.samplerate) {
    fail(a.name + " has " + std::to_string(a.info.samplerate) + " Hz and " + b.name + " " +
         std::to_string(b.info.samplerate) + " Hz; bring them to one rate first");
  }
  if (a.info.channels != b.info.channels) {
    fail(a.name + " has " + channels_of(a.info) + " and " + b.name + " " + channels_of(b.info) +
         "; compare files of the same number");
  }
  constexpr sf_count_t kChunk = 4096;
  const int channels = a.info.channels;
  std::vector<double> samples_a(static_cast<std::size_t>(kChunk * channels));
  std::vector<double> samples_b(samples_a.size());
  Difference difference;
  sf_count_t frames_a = 0;
  sf_count_t frames_b = 0;
  for (bool both = true; both;) {
    const sf_count_t got_a = read_frames(a, samples_a.data(), kChunk);
    const sf_count_t got_b = read_frames(b, samples_b.data(), kChunk);
    add_to(difference, samples_a, samples_b, std::min(got_a, got_b), channels);
    frames_a += got_a;
    frames_b += got_b;
    both = got_a == kChunk && got_b == kChunk;
  }
  frames_a += read_rest(a, samples_a, kChunk);
  frames_b += read_rest(b, samples_b, kChunk);
  check_complete(a, frames_a);
  check_complete(b, frames_b);

  std::printf("A: %lld frames, %s\n", static_cast<long long>(frames_a), a.name.c_str());
  std::printf("B: %lld frames, %s\n", static_cast<long long>(frames_b), b.name.c_str());
  print_difference(difference, a.info);
}

}  // namespace

void add_compare(CLI::App &program) {
  struct Paths {
    std::string a;
    std::string b;
  };
  auto paths = std::make_shared<Paths>();
  CLI::App *command = program.add_subcommand(
      "compare", "Measure the difference between two files of the same rate and channels");
  command->add_option("A", paths->a, "Audio file; - is standard input")->required();
  command->add_option("B", paths->b, "Audio file; - is standard input")->required();
  command->footer(
      "Full scale is 1, or 0 dBFS. The longer file is compared up to the end of the\n"
      "shorter.\n\n"
      "Examples:\n"
      "  mvk resample speech.wav up.w64 --rate 96000 --format float\n"
      "  mvk resample up.w64 back.wav --rate 48000\n"
      "  mvk compare speech.wav back.wav\n");
  command->callback([paths] { compare(paths->a, paths->b); });
}

}  // namespace mvk
