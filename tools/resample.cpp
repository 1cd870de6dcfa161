/* mvk resample: a file at another rate. */
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "audio_input.h"
#include "audio_output.h"
#include "choice.h"
#include "commands.h"
#include "component.h"
#include "library.h"
#include "messages.h"
#include "progress.h"
#include "transfer.h"

namespace mvk {
namespace {

constexpr int kMostChannels = 35;

struct Options {
  FileOptions files;
  int rate = 0;
  bool keep_latency = false;
};

// The rates that a file of `rate` can be brought to, as text.
std::string rates_from(int rate) {
  std::vector<int> rates;
  for (int factor : {2, 4}) {
    if (rate <= std::numeric_limits<int>::max() / factor) rates.push_back(rate * factor);
  }
  for (int factor : {2, 4}) {
    if (rate % factor == 0) rates.push_back(rate / factor);
  }
  return listed(rates);
}

Conversion conversion_between(int from, int to, const std::string &name) {
  for (uint32_t factor : {2U, 4U}) {
    if (int64_t{from} * factor == to) return {ACLI_DIR_UP, factor};
    if (int64_t{to} * factor == from) return {ACLI_DIR_DOWN, factor};
  }
  refuse(name + " has " + std::to_string(from) + " Hz, which can't become " + std::to_string(to) +
         " Hz; use --rate " + rates_from(from));
}

// Output frames that `frames` input frames last.
sf_count_t frames_after(Conversion conversion, sf_count_t frames) {
  const sf_count_t factor = conversion.factor;
  return conversion.direction == ACLI_DIR_UP ? frames * factor : (frames + factor - 1) / factor;
}

// Pushes the whole input through the component, followed by silence until the
// last input sample has come out, and leaves out the first `drop` output frames.
template <typename Sample>
void run(const AudioInput &input, Conversion conversion, Resampler &resampler, AudioOutput &output,
         sf_count_t drop, Progress progress) {
  constexpr std::size_t kBlocks = 64;  // at a time, to call libsndfile less often
  const auto channels = static_cast<std::size_t>(input.info.channels);
  const std::size_t block_in = block_frames_in(conversion) * channels;
  const std::size_t block_out = block_frames_out(conversion) * channels;
  const auto frames_in = static_cast<sf_count_t>(kBlocks * block_frames_in(conversion));
  const auto frames_out = static_cast<sf_count_t>(kBlocks * block_frames_out(conversion));
  std::vector<Sample> in(kBlocks * block_in);
  // The component works on a block of floats in the memory of its output, also
  // where they become shorter samples: the last block needs that room.
  std::vector<Sample> out((kBlocks - 1) * block_out + block_out * sizeof(float) / sizeof(Sample));

  sf_count_t read = 0;
  sf_count_t made = 0;  // output frames, also those that are left out
  sf_count_t last = std::numeric_limits<sf_count_t>::max();
  while (made < last) {
    sf_count_t got = 0;
    if (last == std::numeric_limits<sf_count_t>::max()) {
      got = read_frames(input, in.data(), frames_in);
      read += got;
      if (got < frames_in) {
        check_complete(input, read);
        last = static_cast<sf_count_t>(latency(conversion)) + frames_after(conversion, read);
      }
    }
    std::fill(in.begin() + got * input.info.channels, in.end(), Sample{0});
    for (std::size_t block = 0; block < kBlocks; ++block) {
      resampler.process(&in[block * block_in], &out[block * block_out]);
    }
    const sf_count_t begin = std::max(drop - made, sf_count_t{0});
    const sf_count_t end = std::min(last - made, frames_out);
    if (begin < end) output.write(&out[static_cast<std::size_t>(begin) * channels], end - begin);
    made += frames_out;
    progress.show(static_cast<uint64_t>(read));
  }
}

void resample(const Options &options) {
  const AudioInput input = open_audio(options.files.in);
  const int channels = input.info.channels;
  if (channels > kMostChannels) {
    fail(input.name + " has " + std::to_string(channels) + " channels; at most " +
         std::to_string(kMostChannels) + " can be resampled");
  }
  const Conversion conversion = conversion_between(input.info.samplerate, options.rate, input.name);
  const Library library(options.files.library);
  Resampler resampler(library.component(), conversion, input.info.samplerate, channels);
  const sf_count_t frames = has_length(input) ? frames_after(conversion, input.info.frames) : 0;
  Transfer transfer(input, options.files, options.rate, frames, "resampled");
  const auto progress = [&] { return progress_through(input, options.files.quiet, "resampling"); };

  const sf_count_t drop = options.keep_latency ? 0 : static_cast<sf_count_t>(latency(conversion));
  const auto is_16_bit = [](int format) {
    return (format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_16;
  };
  // The component's 16-bit samples are right for one channel only.
  if (channels == 1 && is_16_bit(input.info.format) && is_16_bit(transfer.format())) {
    run<short>(input, conversion, resampler, transfer.output(), drop, progress());
  } else {
    run<float>(input, conversion, resampler, transfer.output(), drop, progress());
  }
  transfer.commit();
  transfer.report_limits();
}

}  // namespace

void add_resample(CLI::App &program) {
  auto options = std::make_shared<Options>();
  CLI::App *command =
      program.add_subcommand("resample", "Change the rate of an audio file by 2, 4, 1/2 or 1/4");
  add_files(*command, options->files);
  command->add_option("-r,--rate", options->rate, "Rate of OUT")
      ->type_name("HZ")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""))
      ->required();
  command->add_flag("--keep-latency", options->keep_latency,
                    "Keep the filter's delay; otherwise OUT lines up with IN");
  add_file_options(*command, options->files);
  command->footer(
      "Examples:\n"
      "  mvk resample speech.wav speech-96k.wav --rate 96000\n"
      "  mvk resample music.flac music.ogg --rate 48000\n"
      "  mvk resample take.wav take.wav --rate 24000\n"
      "  mvk resample a.wav b.w64 --rate 192000 --format float\n"
      "  arecord -q -f cd -d 9 | mvk resample - - --rate 22050 | aplay -q\n\n" +
      file_options_help());
  command->callback([options] { resample(*options); });
}

}  // namespace mvk
