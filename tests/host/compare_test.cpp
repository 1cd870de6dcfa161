// The figures that mvk compare prints.
#include <gtest/gtest.h>

#include <cmath>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

class Compare : public testing::Test {
 protected:
  void write(const std::string &path, int rate, int channels, std::vector<double> samples,
             int format = kWavFloat) {
    write_audio(path, Audio{format, rate, channels, std::move(samples)});
  }

  Outcome compare() { return run({"compare", a_, b_}); }

  std::string lengths(int a, int b) const {
    return "A: " + std::to_string(a) + " frames, " + a_ + "\nB: " + std::to_string(b) +
           " frames, " + b_ + "\n";
  }

  const Folder folder_;
  const std::string a_ = folder_.file("a.wav");
  const std::string b_ = folder_.file("b.w64");
};

TEST_F(Compare, EqualFilesDifferByNothing) {
  write(a_, 48000, 2, {0.5, -0.5, 0.25, 1.0});
  write(b_, 48000, 2, {0.5, -0.5, 0.25, 1.0}, SF_FORMAT_W64 | SF_FORMAT_DOUBLE);
  const Outcome outcome = compare();
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, lengths(2, 2) +
                             "compared 2 frames of 2 channels at 48000 Hz\n"
                             "peak  0 (-inf dBFS)\n"
                             "rms   0 (-inf dBFS)\n");
}

TEST_F(Compare, PeakAndRmsOfTheDifference) {
  // Differences 0, 0.5, -0.5 and 0: a peak of 1/2 and a mean square of 1/8.
  write(a_, 44100, 1, {0.5, 0.5, 0.25, 1.0});
  write(b_, 44100, 1, {0.5, 0.0, 0.75, 1.0});
  EXPECT_EQ(compare().out, lengths(4, 4) +
                               "compared 4 frames of 1 channel at 44100 Hz\n"
                               "peak  0.5 (-6.02 dBFS) at frame 1, channel 1\n"
                               "rms   0.353553391 (-9.03 dBFS)\n");
}

TEST_F(Compare, PeakIsFoundInItsChannelFarIntoTheFile) {
  std::vector<double> samples(3 * 10000, 0.125);
  write(a_, 8000, 3, samples);
  samples[3 * 9000 + 1] = -0.625;
  write(b_, 8000, 3, samples);
  // One difference of 3/4 among 30000 samples.
  EXPECT_EQ(compare().out, lengths(10000, 10000) +
                               "compared 10000 frames of 3 channels at 8000 Hz\n"
                               "peak  0.75 (-2.50 dBFS) at frame 9000, channel 2\n"
                               "rms   0.00433012702 (-47.27 dBFS)\n");
}

TEST_F(Compare, LongerFileCountsToTheEndOfTheShorter) {
  write(a_, 48000, 1, std::vector<double>(9000, 0.5));
  write(b_, 48000, 1, std::vector<double>(5000, 0.25));
  EXPECT_EQ(compare().out, lengths(9000, 5000) +
                               "compared 5000 frames of 1 channel at 48000 Hz\n"
                               "peak  0.25 (-12.04 dBFS) at frame 0, channel 1\n"
                               "rms   0.25 (-12.04 dBFS)\n");
}

TEST_F(Compare, EmptyFilesHaveNoDifference) {
  write(a_, 48000, 1, {});
  write(b_, 48000, 1, {});
  EXPECT_EQ(compare().out, lengths(0, 0) +
                               "compared 0 frames of 1 channel at 48000 Hz\n"
                               "peak  0 (-inf dBFS)\n"
                               "rms   0 (-inf dBFS)\n");
}

TEST_F(Compare, NotANumberIsNoSmallDifference) {
  write(a_, 48000, 1, {0.0, NAN, 0.0});
  write(b_, 48000, 1, {0.0, 0.0, 0.5});
  const Outcome outcome = compare();
  EXPECT_NE(outcome.out.find("peak  nan"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("at frame 1, channel 1"), std::string::npos) << outcome.out;
}

TEST_F(Compare, OtherRateOrChannelsCantBeCompared) {
  write(a_, 48000, 1, {0.5});
  write(b_, 44100, 1, {0.5});
  Outcome outcome = compare();
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "mvk: " + a_ + " has 48000 Hz and " + b_ + " 44100 Hz; bring them to one rate first\n");
  write(b_, 48000, 2, {0.5, 0.5});
  outcome = compare();
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.err, "mvk: " + a_ + " has 1 channel and " + b_ +
                             " 2 channels; compare files of the same number\n");
}

TEST_F(Compare, MissingFileIsNamed) {
  write(a_, 48000, 1, {0.5});
  const Outcome outcome = compare();
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.err.find("mvk: can't open " + b_), 0U) << outcome.err;
}

}  // namespace
}  // namespace host
