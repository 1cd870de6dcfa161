// Integer samples, against the floats that they are rounded from.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

struct Kind {
  const char *name;
  int bits;
};

// An upsampled file in a format, from the file in.wav.
Audio converted(const Folder &folder, const std::string &format, std::string *notes = nullptr) {
  const Outcome outcome = run({"resample", folder.file("in.wav"), folder.file("out"), "--rate",
                               "96000", "--format", format});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  if (notes != nullptr) *notes = outcome.err;
  return read_audio(folder.file("out"));
}

void expect_rounded(const Audio &integers, const Audio &floats, int bits) {
  ASSERT_EQ(integers.samples.size(), floats.samples.size());
  const double full = std::ldexp(1.0, bits - 1);
  for (std::size_t i = 0; i < floats.samples.size(); ++i) {
    const double rounded = std::nearbyint(floats.samples[i] * full);
    const double limited = std::fmin(std::fmax(rounded, -full), full - 1.0);
    ASSERT_EQ(integers.samples[i] * full, limited) << "sample " << i;
  }
}

TEST(Quantise, EverySampleIsTheNearestIntegerOfItsWidth) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 2, 2000));
  const Audio floats = converted(folder, "caf:float");
  for (const Kind kind : {Kind{"aiff:s8", 8}, Kind{"wav:u8", 8}, Kind{"wav:s16", 16},
                          Kind{"wav:s24", 24}, Kind{"flac:s16", 16}, Kind{"flac:s24", 24},
                          Kind{"flac:s8", 8}, Kind{"w64:s32", 32}, Kind{"caf:alac16", 16},
                          Kind{"caf:alac20", 20}, Kind{"caf:alac24", 24}, Kind{"caf:alac32", 32}}) {
    SCOPED_TRACE(kind.name);
    expect_rounded(converted(folder, kind.name), floats, kind.bits);
  }
}

TEST(Quantise, WordsOfVariableWidthAreRoundedToo) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 1, 2000));
  const Audio floats = converted(folder, "caf:float");
  for (const Kind kind : {Kind{"aiff:dwvw16", 16}, Kind{"aiff:dwvw24", 24}}) {
    SCOPED_TRACE(kind.name);
    expect_rounded(converted(folder, kind.name), floats, kind.bits);
  }
}

TEST(Quantise, MonoOf16BitsIsRoundedAsItsFloatsAre) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 1, 2000, 1.1));
  expect_rounded(converted(folder, "wav:s16"), converted(folder, "wav:float"), 16);
}

TEST(Quantise, CompandedSamplesAreWithinHalfAStepOfTheirSegment) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 2, 2000));
  const Audio floats = converted(folder, "caf:float");
  for (const char *name : {"wav:ulaw", "wav:alaw"}) {
    SCOPED_TRACE(name);
    const Audio companded = converted(folder, name);
    ASSERT_EQ(companded.samples.size(), floats.samples.size());
    double drift = 0.0;
    for (std::size_t i = 0; i < floats.samples.size(); ++i) {
      const double x = floats.samples[i];
      // A segment has 16 steps and spans a factor of two.
      ASSERT_NEAR(companded.samples[i], x, std::fabs(x) / 32 + 1.0 / 1024) << "sample " << i;
      drift += std::fabs(companded.samples[i]) - std::fabs(x);
    }
    // Truncation would pull every sample towards zero.
    EXPECT_NEAR(drift / static_cast<double>(floats.samples.size()), 0.0, 3e-4);
  }
}

// Full-scale square waves overshoot in the filter.
Audio square_wave(int channels) {
  Audio audio = tones(kWav16, 48000, channels, 600, 0.0);
  for (std::size_t i = 0; i < audio.samples.size(); ++i) {
    audio.samples[i] = i / static_cast<std::size_t>(channels) % 50 < 25 ? 32767 / 32768.0 : -1.0;
  }
  return audio;
}

TEST(Quantise, OvershootIsLimitedAndCounted) {
  const Folder folder;
  write_audio(folder.file("in.wav"), square_wave(2));
  const Audio floats = converted(folder, "wav:float");
  for (const Kind kind :
       {Kind{"wav:u8", 8}, Kind{"wav:s16", 16}, Kind{"wav:s24", 24}, Kind{"wav:s32", 32}}) {
    SCOPED_TRACE(kind.name);
    std::string notes;
    expect_rounded(converted(folder, kind.name, &notes), floats, kind.bits);
    const double full = std::ldexp(1.0, kind.bits - 1);
    long beyond = 0;
    for (double x : floats.samples) {
      const double rounded = std::nearbyint(x * full);
      beyond += rounded > full - 1.0 || rounded < -full;
    }
    ASSERT_GT(beyond, 0);
    EXPECT_EQ(notes.find("mvk: note: " + std::to_string(beyond) + " samples lay beyond full scale"),
              0U)
        << notes;
  }
}

TEST(Quantise, FloatsKeepTheirOvershootWithoutANote) {
  const Folder folder;
  write_audio(folder.file("in.wav"), square_wave(2));
  std::string notes;
  const Audio floats = converted(folder, "wav:float", &notes);
  EXPECT_EQ(notes, "");
  EXPECT_GT(*std::max_element(floats.samples.begin(), floats.samples.end()), 1.05);
}

TEST(Quantise, MonoOf16BitsAtFullScaleIsReported) {
  const Folder folder;
  write_audio(folder.file("in.wav"), square_wave(1));
  std::string notes;
  const Audio result = converted(folder, "wav:s16", &notes);
  long at_full_scale = 0;
  for (double x : result.samples) at_full_scale += x == -1.0 || x == 32767 / 32768.0;
  ASSERT_GT(at_full_scale, 0);
  EXPECT_EQ(
      notes.find("mvk: note: " + std::to_string(at_full_scale) + " samples lie at full scale"), 0U)
      << notes;
}

TEST(Quantise, QuietLeavesOutTheNote) {
  const Folder folder;
  write_audio(folder.file("in.wav"), square_wave(2));
  const Outcome outcome = run(
      {"resample", folder.file("in.wav"), folder.file("out.wav"), "--rate", "96000", "--quiet"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
}

TEST(Quantise, NotANumberBecomesSilence) {
  const Folder folder;
  Audio audio = tones(kWavFloat, 48000, 1, 300, 0.0);
  audio.samples[150] = NAN;
  write_audio(folder.file("in.wav"), audio);
  EXPECT_EQ(converted(folder, "wav:s24").samples, std::vector<double>(600));
}

}  // namespace
}  // namespace host
