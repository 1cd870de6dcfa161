// What mvk limit says about its work.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/audio.h"
#include "host/folder.h"
#include "host/limit_reference.h"
#include "host/process.h"

namespace host {
namespace {

class LimitReport : public testing::Test {
 protected:
  Outcome limit(const Audio &source, const Limiting &how, std::vector<std::string> more = {}) {
    write_audio(in_, source);
    std::vector<std::string> arguments = {"limit", in_, out_};
    const std::vector<std::string> options = how.options();
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return outcome;
  }

  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.wav");
};

// A level with a louder stretch of 1000 frames.
Audio step(double level, double louder, std::size_t begin, int channels = 1) {
  Audio audio{kWavFloat, 48000, channels, {}};
  audio.samples.assign(4000 * static_cast<std::size_t>(channels), level);
  for (std::size_t i = begin; i < begin + 1000; ++i) {
    audio.samples[(i + 1) * static_cast<std::size_t>(channels) - 1] = louder;
  }
  return audio;
}

// The line on the first of the highest samples.
std::string peak_line(const std::string &what, const std::vector<double> &samples, int rate,
                      int channels) {
  const auto peak = std::max_element(samples.begin(), samples.end(), [](double a, double b) {
    return std::fabs(a) < std::fabs(b);
  });
  const auto at = peak - samples.begin();
  char text[200];
  std::snprintf(text, sizeof text, "%-14s  %.9g (%.2f dBFS) at frame %d (%.3f s), channel %d\n",
                what.c_str(), std::fabs(*peak), 20.0 * std::log10(std::fabs(*peak)),
                static_cast<int>(at / channels), static_cast<double>(at / channels) / rate,
                static_cast<int>(at % channels) + 1);
  return text;
}

// The first frame with the lowest gain, to a hundredth of a decibel.
std::string reduction_line(const Limited &expected, int rate, unsigned sub_block) {
  double largest = 0.0;
  std::size_t frame = 0;
  for (std::size_t i = 0; i < expected.gains.size(); ++i) {
    const double reduction = std::nearbyint(-2000.0 * std::log10(double{expected.gains[i]}));
    if (reduction <= largest) continue;
    largest = reduction;
    frame = i * sub_block;
  }
  char text[200];
  std::snprintf(text, sizeof text, "gain reduction  %.2f dB at frame %zu (%.3f s)\n",
                largest / 100.0, frame, static_cast<double>(frame) / rate);
  return text;
}

TEST_F(LimitReport, GivesThePeaksAndTheLargestReduction) {
  // By 20 log10(0.5 / 0.1), across the sub-block of 64 that ends at 1280.
  const Audio source = step(0.0625, 0.5, 1300, 2);
  const Limiting how{.peak = -20.0};
  const Outcome outcome = limit(source, how);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "input peak      0.5 (-6.02 dBFS) at frame 1300 (0.027 s), channel 2\n" +
                             peak_line("output peak", limited(source, how).samples, 48000, 2) +
                             "gain reduction  13.98 dB at frame 1280 (0.027 s)\n");
}

TEST_F(LimitReport, ReductionIsReachedWhereTheSubBlockOfThePeakBegins) {
  const struct {
    unsigned sub_block;
    const char *place;
  } cases[] = {{32, "at frame 1984 (0.041 s)"},
               {40, "at frame 1960 (0.041 s)"},
               {64, "at frame 1984 (0.041 s)"},
               {128, "at frame 1920 (0.040 s)"}};
  for (const auto &each : cases) {
    const Limiting how{.peak = -26.0, .sub_block = each.sub_block};
    EXPECT_NE(limit(step(0.0, 1.0, 1999), how)
                  .out.find(std::string("gain reduction  26.00 dB ") + each.place + "\n"),
              std::string::npos)
        << each.sub_block;
  }
}

TEST_F(LimitReport, SteadyReductionCountsFromItsBeginning) {
  Audio source = step(0.8, 0.8, 0);
  source.samples.resize(100000, 0.8);
  EXPECT_NE(limit(source, {.peak = -12.0}).out.find("dB at frame 0 (0.000 s)\n"),
            std::string::npos);
}

TEST_F(LimitReport, RecordingsFiguresAreTheLimiters) {
  for (const char *recording : {kSpeech, kBell}) {
    const Audio source = read_audio(recording);
    const Limiting how{.peak = -9.0, .boost = 12.0, .sub_block = 32};
    const Limited expected = limited(source, how);
    const Outcome outcome = run({"limit", recording, out_, "--peak", "-9dB", "--boost", "12dB",
                                 "--sub-block", "32", "--format", "wav:s16"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              peak_line("input peak", source.samples, source.rate, source.channels) +
                  peak_line("output peak", expected.samples, source.rate, source.channels) +
                  reduction_line(expected, source.rate, how.sub_block));
  }
}

TEST_F(LimitReport, NothingToReduceIsSaid) {
  const Outcome outcome = limit(step(0.25, 0.5, 0), {});
  EXPECT_EQ(outcome.out,
            "input peak      0.5 (-6.02 dBFS) at frame 0 (0.000 s), channel 1\n"
            "output peak     0.5 (-6.02 dBFS) at frame 0 (0.000 s), channel 1\n"
            "gain reduction  none\n");
}

TEST_F(LimitReport, SilenceHasNoPlace) {
  for (const int frames : {0, 1000}) {
    Audio source = step(0.0, 0.0, 0);
    source.samples.resize(static_cast<std::size_t>(frames));
    EXPECT_EQ(limit(source, {}).out,
              "input peak      0 (-inf dBFS)\n"
              "output peak     0 (-inf dBFS)\n"
              "gain reduction  none\n");
  }
}

TEST_F(LimitReport, ClippedSamplesAreCounted) {
  Audio source = step(0.25, -0.5, 100, 2);
  source.samples[0] = 0.75;
  EXPECT_EQ(limit(source, {.peak = 0.0, .boost = 12.0, .hard_clip = true}).out,
            "input peak      0.75 (-2.50 dBFS) at frame 0 (0.000 s), channel 1\n"
            "output peak     1 (0.00 dBFS) at frame 0 (0.000 s), channel 1\n"
            "clipped         1001 samples\n");
}

TEST_F(LimitReport, NotANumberIsNoSmallPeak) {
  Audio source = step(0.25, 0.5, 100);
  source.samples[50] = source.samples[60] = NAN;
  const std::string report = limit(source, {}).out;
  EXPECT_EQ(report.find("input peak      nan"), 0U) << report;
  EXPECT_NE(report.find("at frame 50 "), std::string::npos) << report;
  EXPECT_NE(report.find("output peak     0.5 "), std::string::npos) << report;
}

TEST_F(LimitReport, GoesToStandardErrorWhereTheAudioGoesToStandardOutput) {
  const std::string report = limit(step(0.25, 0.5, 100), {.peak = -12.0}).out;
  const Outcome outcome = run({"limit", in_, "-", "--peak", "-12dB"});
  EXPECT_EQ(outcome.err, report);
  EXPECT_EQ(outcome.out, read_bytes(out_));
}

TEST_F(LimitReport, QuietLeavesItOut) {
  const Outcome outcome =
      limit(step(0.25, 0.5, 100), {.peak = 6.0, .boost = 20.0}, {"--quiet", "--format", "s16"});
  EXPECT_EQ(outcome.out + outcome.err, "");
}

TEST_F(LimitReport, PeakBeyondFullScaleIsNotedWhereTheFormatCutsIt) {
  const Audio source = step(0.25, 0.5, 100);
  const Limiting how{.peak = 6.0, .boost = 12.0};
  EXPECT_EQ(limit(source, how).err, "");
  EXPECT_EQ(limit(source, how, {"--format", "s16"}).err,
            "mvk: note: 1000 samples lay beyond full scale and were limited to it; "
            "--format float keeps them\n");
}

TEST_F(LimitReport, PeakOfFullScaleIsRoundedWithoutANote) {
  const Limiting how{.peak = 0.0, .boost = 12.0};
  EXPECT_EQ(limit(step(0.125, 0.5, 100), how, {"--format", "s16"}).err, "");
  double highest_sample = 0.0;
  for (double x : read_audio(out_).samples) highest_sample = std::max(highest_sample, x);
  EXPECT_EQ(highest_sample, 32767 / 32768.0);
}

TEST_F(LimitReport, PeaksThatAnotherFileLetsPassAreNoted) {
  write_audio(folder_.file("other.wav"), step(0.0, 0.0, 0));
  EXPECT_EQ(limit(step(0.125, 0.5, 100), {.peak = -1.0, .boost = 12.0},
                  {"--detect", folder_.file("other.wav"), "--format", "s16"})
                .err,
            "mvk: note: 1000 samples lay beyond full scale and were limited to it; "
            "--format float keeps them\n");
}

TEST_F(LimitReport, TruncatedFilesAreNoted) {
  const std::string cut = folder_.file("cut.wav");
  write_audio(cut, tones(kWav16, 48000, 2, 20000));
  truncate_to(cut, 0.5);
  const Outcome input = run({"limit", cut, out_, "--peak", "-1dB"});
  EXPECT_EQ(input.exit_code, 0);
  EXPECT_EQ(input.err, "mvk: note: " + cut +
                           " ends before the length in its header; what is there gets limited\n");
  EXPECT_EQ(read_audio(out_).frames(), read_audio(cut).frames());
  EXPECT_EQ(limit(tones(kWav16, 48000, 1, 20000), {}, {"--detect", cut}).err,
            "mvk: note: " + cut +
                " ends before the length in its header; silence takes the place of the rest\n");
}

}  // namespace
}  // namespace host
