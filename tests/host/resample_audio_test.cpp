// The audio that mvk resample makes, against the filters' formulas.
#include <gtest/gtest.h>

#include <cmath>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"
#include "host/reference.h"

namespace host {
namespace {

constexpr double kStep16 = 1.0 / 32768.0;

// Runs mvk on a file in the ratio's direction and reads the result.
Audio resampled(Ratio ratio, const std::string &in, const std::string &out,
                std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"resample", in, out, "--rate",
                                        std::to_string(ratio.rate(read_audio(in).rate))};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  return read_audio(out);
}

// The shift of `b` against `a`, within `most` frames, at which they agree best.
int best_shift(const std::vector<double> &a, const std::vector<double> &b, int most) {
  int best = 0;
  double best_sum = -1.0;
  for (int shift = -most; shift <= most; ++shift) {
    double sum = 0.0;
    for (int i = most; i + most < static_cast<int>(a.size()); ++i) {
      sum += a[static_cast<std::size_t>(i)] * b[static_cast<std::size_t>(i + shift)];
    }
    if (sum > best_sum) {
      best_sum = sum;
      best = shift;
    }
  }
  return best;
}

TEST(ResampleAudio, MonoSpeechOf16BitsIsFilteredAndAligned) {
  const Folder folder;
  const Audio source = read_audio(kSpeech);
  for (const Ratio ratio : kRatios) {
    const Audio result = resampled(ratio, kSpeech, folder.file("out.wav"));
    EXPECT_EQ(result.format, source.format);
    expect_aligned(ratio, source, result, kStep16);
  }
}

TEST(ResampleAudio, StereoRecordingIsFilteredAndAligned) {
  const Folder folder;
  const Audio source = read_audio(kBell);
  for (const Ratio ratio : kRatios) {
    const Audio result = resampled(ratio, kBell, folder.file("out.wav"), {"--format", "wav:float"});
    expect_aligned(ratio, source, result, 0.0);
  }
}

TEST(ResampleAudio, RecordingStaysAlignedThroughLossyFormats) {
  const Folder folder;
  for (const Ratio ratio : {Ratio{2, true}, Ratio{2, false}}) {
    const std::vector<double> exact =
        resampled(ratio, kBell, folder.file("out.wav"), {"--format", "float"}).channel(0);
    const std::vector<double> lossy = resampled(ratio, kBell, folder.file("out.oga")).channel(0);
    ASSERT_EQ(lossy.size(), exact.size());
    EXPECT_EQ(best_shift(exact, lossy, 60), 0);
  }
}

TEST(ResampleAudio, ThereAndBackLinesUpWithTheRecording) {
  const Folder folder;
  const std::vector<double> speech = read_audio(kSpeech).channel(0);
  for (const int factor : {2, 4}) {
    resampled({factor, true}, kSpeech, folder.file("up.wav"));
    const std::vector<double> back =
        resampled({factor, false}, folder.file("up.wav"), folder.file("back.wav")).channel(0);
    ASSERT_EQ(back.size(), speech.size());
    EXPECT_EQ(best_shift(speech, back, 60), 0) << "factor " << factor;
  }
}

TEST(ResampleAudio, ChannelsStayApart) {
  const Folder folder;
  for (const int channels : {1, 2, 6, 35}) {
    SCOPED_TRACE(std::to_string(channels) + " channels");
    const Audio source = tones(kWavFloat, 48000, channels, 700);
    write_audio(folder.file("in.wav"), source);
    for (const Ratio ratio : kRatios) {
      const Audio result = resampled(ratio, folder.file("in.wav"), folder.file("out.wav"));
      expect_aligned(ratio, source, result, 0.0);
    }
  }
}

TEST(ResampleAudio, SeveralChannelsOf16BitsAreRight) {
  const Folder folder;
  const Audio source = tones(kWav16, 48000, 3, 700);
  write_audio(folder.file("in.wav"), source);
  for (const Ratio ratio : kRatios) {
    const Audio result = resampled(ratio, folder.file("in.wav"), folder.file("out.wav"));
    EXPECT_EQ(result.format, source.format);
    expect_aligned(ratio, source, result, kStep16);
  }
}

TEST(ResampleAudio, FilesOfAnyLengthComeOutWhole) {
  const Folder folder;
  // Around a block, and around what is read at once going up by 4.
  for (const int frames : {1, 2, 63, 64, 65, 257, 4095, 4096, 4097}) {
    SCOPED_TRACE(std::to_string(frames) + " frames");
    const Audio source = tones(kWav16, 8000, 1, frames);
    write_audio(folder.file("in.wav"), source);
    for (const Ratio ratio : {Ratio{4, true}, Ratio{4, false}}) {
      const Audio result = resampled(ratio, folder.file("in.wav"), folder.file("out.wav"));
      expect_aligned(ratio, source, result, kStep16);
    }
  }
}

TEST(ResampleAudio, LongFileHasNoSeams) {
  const Folder folder;
  const Audio source = tones(kWavFloat, 8000, 2, 40000);
  write_audio(folder.file("in.wav"), source);
  for (const Ratio ratio : {Ratio{2, true}, Ratio{4, false}}) {
    const Audio result = resampled(ratio, folder.file("in.wav"), folder.file("out.wav"));
    expect_aligned(ratio, source, result, 0.0);
  }
}

TEST(ResampleAudio, EmptyFileGivesEmptyFile) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 2, 0));
  for (const Ratio ratio : kRatios) {
    const Audio result = resampled(ratio, folder.file("in.wav"), folder.file("out.wav"));
    EXPECT_EQ(result.frames(), 0);
    EXPECT_EQ(result.channels, 2);
    EXPECT_EQ(result.rate, ratio.rate(48000));
  }
}

TEST(ResampleAudio, KeptLatencyComesFirstAndTheTailStays) {
  const Folder folder;
  const Audio source = tones(kWavFloat, 48000, 2, 301);
  write_audio(folder.file("in.wav"), source);
  for (const Ratio ratio : kRatios) {
    const Audio result =
        resampled(ratio, folder.file("in.wav"), folder.file("out.wav"), {"--keep-latency"});
    EXPECT_EQ(result.frames(), ratio.frames(301) + ratio.latency());
    expect_resampled(ratio, source, result, 0.0, 0);
  }
}

TEST(ResampleAudio, SilenceWithKeptLatencyIsAsLongAsTheLatency) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 1, 0));
  for (const Ratio ratio : kRatios) {
    const Audio result =
        resampled(ratio, folder.file("in.wav"), folder.file("out.wav"), {"--keep-latency"});
    EXPECT_EQ(result.samples, std::vector<double>(static_cast<std::size_t>(ratio.latency())));
  }
}

TEST(ResampleAudio, ImpulseStaysInItsPlace) {
  const Folder folder;
  Audio source = tones(kWavFloat, 48000, 1, 1000, 0.0);
  source.samples[400] = 0.5;
  write_audio(folder.file("in.wav"), source);
  // The taps at the centre, times the gain going up.
  const double peaks[] = {2 * 15172, 4 * 7520, 15172, 7520};
  for (int i = 0; i < 4; ++i) {
    const Ratio ratio = kRatios[i];
    const std::vector<double> result =
        resampled(ratio, folder.file("in.wav"), folder.file("out.wav")).channel(0);
    const auto centre = static_cast<std::size_t>(ratio.frames(400));
    EXPECT_EQ(result[centre], 0.5 * peaks[i] / 32768.0);
    for (std::size_t away = 1; away <= 13; ++away) {
      EXPECT_LT(result[centre + away], result[centre]);
      EXPECT_EQ(result[centre + away], result[centre - away]);
    }
  }
}

}  // namespace
}  // namespace host
