// The audio that mvk limit makes, against the limiter's definition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/audio_command.h"
#include "host/limit_reference.h"

namespace host {
namespace {

double highest_sample(const Audio &audio) {
  double level = 0.0;
  for (double x : audio.samples) level = std::max(level, std::fabs(x));
  return level;
}

class LimitAudio : public AudioCommand {
 protected:
  LimitAudio() : AudioCommand({"limit"}) {}

  template <typename Source>
  Audio run_on(const Source &source, const Limiting &how,
               const std::vector<std::string> &more = {}) {
    std::vector<std::string> options = how.options();
    options.insert(options.end(), more.begin(), more.end());
    return AudioCommand::run_on(source, options);
  }

  const std::string other_ = folder_.file("other.wav");
};

// ---- Recordings ----

TEST_F(LimitAudio, RecordingRaisedBy12DecibelsNeverPassesThePeak) {
  for (const char *recording : {kSpeech, kBell}) {
    SCOPED_TRACE(recording);
    const Audio source = read_audio(recording);
    const Limiting how{.peak = -1.0, .boost = 12.0};
    ASSERT_GT(highest_sample(source) * amplitude(12.0), amplitude(-1.0));
    const Audio result = run_on(std::string(recording), how, {"--format", "wav:float"});
    EXPECT_LE(highest_sample(result), highest(how));
    EXPECT_GT(highest_sample(result), 0.999 * amplitude(-1.0));
    expect_same(result, source, limited(source, how).samples);
  }
}

TEST_F(LimitAudio, PassageAheadOfTheFirstPeakIsRaisedAndOtherwiseUntouched) {
  const Audio source = read_audio(kSpeech);
  const Limiting how{.peak = -1.0, .boost = 12.0};
  const Audio result = run_on(std::string(kSpeech), how, {"--format", "float"});
  const double boost = how.boost_gain();
  const auto loud = std::find_if(source.samples.begin(), source.samples.end(), [&](double x) {
    return std::fabs(x) * boost > amplitude(how.peak);
  });
  ASSERT_NE(loud, source.samples.end());
  // The gain falls across the sub-block ahead of the one with the peak in it.
  const auto quiet = (loud - source.samples.begin()) / how.sub_block * how.sub_block;
  ASSERT_GT(quiet, 3000);
  for (std::size_t i = 0; i + how.sub_block < static_cast<std::size_t>(quiet); ++i) {
    // A product with the boost, one with the window, and the sum of both windows' parts.
    const double raised = source.samples[i] * boost;
    ASSERT_NEAR(result.samples[i], raised, std::fabs(raised) * 3.01 * std::ldexp(1.0, -24))
        << "frame " << i;
  }
}

TEST_F(LimitAudio, RecordingBelowThePeakKeepsItsIntegers) {
  for (const unsigned sub_block : {32U, 40U, 64U, 128U}) {
    const Audio source = read_audio(kSpeech);
    const Limiting how{.peak = -6.0, .sub_block = sub_block};
    ASSERT_LT(highest_sample(source), amplitude(how.peak));
    const Audio result = run_on(std::string(kSpeech), how);
    EXPECT_EQ(result.format, source.format);
    expect_same(result, source, source.samples);
  }
}

// The slow stage stops where its step is rounded away, less than 90 units of the last
// place below 1. That is less than half a step of 16 bits.
TEST_F(LimitAudio, RecordingKeepsItsIntegersOnceTheLimiterHasRecovered) {
  const Audio speech = read_audio(kSpeech);
  Audio source = speech;
  for (double &x : source.samples) x *= 2.0;
  source.samples.resize(source.samples.size() + 4 * static_cast<std::size_t>(speech.rate));
  const std::size_t second = source.samples.size();
  source.samples.insert(source.samples.end(), speech.samples.begin(), speech.samples.end());

  const Audio result = run_on(source, {.peak = -6.0});
  ASSERT_EQ(result.samples.size(), source.samples.size());
  EXPECT_LE(highest_sample(result), amplitude(-6.0) + 0.5 / 32768);
  EXPECT_EQ(std::vector<double>(result.samples.begin() + static_cast<std::ptrdiff_t>(second),
                                result.samples.end()),
            speech.samples);
}

// ---- Signals ----

TEST_F(LimitAudio, LoudSampleStaysInItsPlaceAtThePeak) {
  for (const unsigned sub_block : {32U, 40U, 64U, 128U, 256U}) {
    Audio source = tones(kWavFloat, 96000, 1, 3000, 0.0);
    for (const std::size_t frame : {0U, 1U, 1023U, 1024U, 1500U, 2999U}) {
      SCOPED_TRACE(std::to_string(sub_block) + ", frame " + std::to_string(frame));
      std::fill(source.samples.begin(), source.samples.end(), 0.0);
      source.samples[frame] = -0.75;
      const Limiting how{.peak = -20.0, .sub_block = sub_block};
      Audio result = run_on(source, how);
      ASSERT_EQ(result.frames(), 3000);
      EXPECT_GE(result.samples[frame], -highest(how));
      // The ends of the longest window miss a unit of 2^-15.
      const double missing = sub_block == 256 ? std::ldexp(1.0, -15) : 0.0;
      EXPECT_LE(result.samples[frame], -0.1 * (1.0 - missing) + (highest(how) - 0.1));
      result.samples[frame] = 0.0;
      EXPECT_EQ(highest_sample(result), 0.0);
    }
  }
}

TEST_F(LimitAudio, EverySubBlockServesItsLowestAndItsHighestRate) {
  const struct {
    unsigned sub_block;
    int lowest;
  } forms[] = {{32, 24000}, {40, 24000}, {64, 24000}, {128, 48000}, {256, 96000}};
  for (const auto &form : forms) {
    for (const int rate : {form.lowest, 192000}) {
      SCOPED_TRACE(std::to_string(form.sub_block) + " at " + std::to_string(rate));
      const Audio source = tones(kWavFloat, rate, 2, 5000);
      const Limiting how{.peak = -9.0, .boost = 2.5, .sub_block = form.sub_block};
      const Audio result = run_on(source, how);
      EXPECT_LE(highest_sample(result), highest(how));
      expect_same(result, source, limited(source, how).samples);
    }
  }
}

TEST_F(LimitAudio, ChannelsShareTheGainOfTheLoudest) {
  for (const int channels : {1, 2, 3, 6, 40}) {
    SCOPED_TRACE(std::to_string(channels) + " channels");
    Audio source = tones(kWavFloat, 44100, channels, 700, 0.2);
    const std::size_t loud = static_cast<std::size_t>(channels) * 300;
    source.samples[loud + static_cast<std::size_t>(channels) - 1] = 0.9;
    const Limiting how{.peak = -12.0};
    const Audio result = run_on(source, how);
    expect_same(result, source, limited(source, how).samples);
    // From where its sub-block begins to where it lies, the gain is a steady one.
    const double gain = amplitude(-12.0) / static_cast<float>(0.9);
    for (std::size_t i = static_cast<std::size_t>(channels) * 256; i < loud; ++i) {
      ASSERT_NEAR(result.samples[i], source.samples[i] * gain, 1e-6);
    }
  }
}

TEST_F(LimitAudio, FilesOfAnyLengthComeOutWhole) {
  for (const int frames : {0, 1, 63, 64, 65, 127, 128, 129, 1000}) {
    SCOPED_TRACE(std::to_string(frames) + " frames");
    const Audio source = tones(kWavFloat, 48000, 2, frames);
    for (const bool hard_clip : {false, true}) {
      const Limiting how{.peak = -10.0, .hard_clip = hard_clip};
      expect_same(run_on(source, how), source, limited(source, how).samples);
    }
  }
}

TEST_F(LimitAudio, AttenuationGoesAheadOfTheLimiterToo) {
  const Audio source = tones(kWavFloat, 48000, 1, 2000);
  const Limiting how{.peak = -9.5, .boost = -6.0};
  const Audio result = run_on(source, how);
  EXPECT_LE(highest_sample(result), highest(how));
  expect_same(result, source, limited(source, how).samples);
}

TEST_F(LimitAudio, SamplesThatArentFiniteAreSilence) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Audio source = tones(kWavFloat, 48000, 2, 1000);
  Audio clean = source;
  for (const auto &[at, value] : {std::pair<std::size_t, double>{500, NAN},
                                  {701, -kInfinity},
                                  {1200, kInfinity},
                                  {1201, NAN}}) {
    source.samples[at] = value;
    clean.samples[at] = 0.0;
  }
  for (const bool hard_clip : {false, true}) {
    const Limiting how{.peak = -10.0, .hard_clip = hard_clip};
    expect_same(run_on(source, how), source, limited(clean, how).samples);
  }
}

// ---- Clipping ----

TEST_F(LimitAudio, ClippedSamplesAreThoseOfTheInputHeldAtThePeak) {
  // Rates that the limiter serves, and others.
  for (const int rate : {48000, 8000, 11025}) {
    for (const unsigned sub_block : {40U, 64U}) {
      SCOPED_TRACE(rate);
      const Audio source = tones(kWavFloat, rate, 3, 999);
      const Limiting how{.peak = -6.0, .boost = 12.0, .sub_block = sub_block, .hard_clip = true};
      std::vector<double> clipped;
      for (double x : source.samples) {
        const float held = std::clamp(static_cast<float>(x), -how.peak_ahead(), how.peak_ahead());
        clipped.push_back(held * how.boost_gain());
      }
      const Audio result = run_on(source, how);
      expect_same(result, source, clipped);
      EXPECT_GT(highest_sample(result), 0.999 * amplitude(how.peak));
    }
  }
}

TEST_F(LimitAudio, ClippedRecordingIsHeldAtThePeak) {
  const Limiting how{.peak = -3.0, .boost = 12.0, .hard_clip = true};
  const Audio result = run_on(std::string(kBell), how, {"--format", "wav:float"});
  EXPECT_LE(highest_sample(result), highest(how));
}

// ---- Detection ----

TEST_F(LimitAudio, OtherFileDecidesTheGain) {
  const Limiting how{.peak = -12.0, .boost = 3.0};
  for (const int channels : {1, 2, 5}) {
    // As long, shorter, also by whole sub-blocks, empty, and longer.
    for (const int frames : {2000, 1001, 1024, 0, 5000}) {
      SCOPED_TRACE(std::to_string(channels) + " channels, " + std::to_string(frames) + " frames");
      const Audio source = tones(kWavFloat, 48000, 2, 2000, 0.5);
      Audio other = tones(kWavFloat, 48000, channels, frames, 0.9);
      write_audio(other_, other);
      const Audio result = run_on(source, how, {"--detect", other_});
      // What lies beyond the end doesn't count, not even for the look-ahead.
      other.samples.resize(
          std::min(other.samples.size(), 2000 * static_cast<std::size_t>(channels)));
      expect_same(result, source, limited(source, other, how).samples);
    }
  }
}

TEST_F(LimitAudio, SilenceElsewhereLetsEverythingPass) {
  const Audio source = tones(kWavFloat, 48000, 1, 2000, 0.9);
  write_audio(other_, tones(kWavFloat, 48000, 1, 2000, 0.0));
  const Audio result = run_on(source, {.peak = -40.0}, {"--detect", other_});
  ASSERT_EQ(result.samples.size(), source.samples.size());
  for (std::size_t i = 0; i < source.samples.size(); ++i) {
    ASSERT_NEAR(result.samples[i], source.samples[i], std::ldexp(2.0, -24));
  }
}

TEST_F(LimitAudio, WhatTheOtherFileHasBeyondTheEndDoesntCount) {
  const Audio source = tones(kWavFloat, 48000, 1, 640, 0.5);
  Audio other = tones(kWavFloat, 48000, 1, 2000, 0.1);
  for (std::size_t i = 640; i < 2000; ++i) other.samples[i] = 1.0;
  write_audio(other_, other);
  const Limiting how{.peak = -12.0};
  other.samples.resize(640);
  expect_same(run_on(source, how, {"--detect", other_}), source,
              limited(source, other, how).samples);
}

// ---- Formats ----

TEST_F(LimitAudio, EveryFormatHoldsTheLimitedAudio) {
  const Audio source = read_audio(kSpeech);
  const Limiting how{.peak = -1.0, .boost = 12.0};
  expect_every_format([&](const auto &format) { return run_on(std::string(kSpeech), how, format); },
                      source, limited(source, how).samples);
}

TEST_F(LimitAudio, CompressedOutputHasTheFramesOfTheInput) {
  expect_compressed_whole({"--peak", "-6dB"});
}

TEST_F(LimitAudio, TagsAreKept) {
  SF_INFO info{};
  info.samplerate = 48000;
  info.channels = 1;
  info.format = kWav16;
  SNDFILE *file = sf_open(in_.c_str(), SFM_WRITE, &info);
  ASSERT_NE(file, nullptr);
  sf_set_string(file, SF_STR_TITLE, "A loud title");
  ASSERT_EQ(sf_close(file), 0);
  run_on(in_, {});
  SF_INFO found{};
  file = sf_open(out_.c_str(), SFM_READ, &found);
  ASSERT_NE(file, nullptr);
  EXPECT_STREQ(sf_get_string(file, SF_STR_TITLE), "A loud title");
  sf_close(file);
}

// ---- Places ----

TEST_F(LimitAudio, PipesAndTheInputItselfGetTheSameBytes) {
  run_on(tones(kWav16, 48000, 2, 3000), {.peak = -12.0});
  const std::string expected = read_bytes(out_);
  Environment environment;
  environment.piped_input = read_bytes(in_);
  EXPECT_EQ(run({"limit", "-", "-", "--peak", "-12dB"}, environment).out, expected);
  EXPECT_EQ(run({"limit", in_, in_, "--peak", "-12dB"}).exit_code, 0);
  EXPECT_EQ(read_bytes(in_), expected);
  EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.wav", "out.wav"}));
}

}  // namespace
}  // namespace host
