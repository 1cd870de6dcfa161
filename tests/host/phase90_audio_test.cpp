// The audio that mvk phase90 makes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

#include "host/audio_command.h"
#include "reference/phase90_reference.h"

namespace host {
namespace {

// What the file must hold: every channel through a shifter, the delay taken back.
std::vector<double> shifted(const Audio &source, int frame) {
  const auto channels = static_cast<std::size_t>(source.channels);
  std::vector<double> result(source.samples.size());
  for (int c = 0; c < source.channels; ++c) {
    const std::vector<double> wide = source.channel(c);
    std::vector<float> samples(wide.begin(), wide.end());
    samples.resize(samples.size() + reference::kPhase90Delay);
    const std::size_t last = samples.size();
    samples.resize((last + static_cast<std::size_t>(frame) - 1) / static_cast<std::size_t>(frame) *
                   static_cast<std::size_t>(frame));
    reference::Phase90 shifter(frame);
    for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(frame)) {
      shifter.Process(&samples[i]);
    }
    for (std::size_t i = 0; i < wide.size(); ++i) {
      result[i * channels + static_cast<std::size_t>(c)] = samples[i + reference::kPhase90Delay];
    }
  }
  return result;
}

class Phase90Audio : public AudioCommand {
 protected:
  Phase90Audio() : AudioCommand({"phase90"}) {}
  ~Phase90Audio() override { EXPECT_EQ(outcome_.out, ""); }
};

// ---- Tones ----

// A sine of a frequency, in parts of the rate, for each channel.
Audio sines(int format, const std::vector<double> &frequencies, int frames, double level) {
  Audio audio{format, 48000, static_cast<int>(frequencies.size()), {}};
  for (int i = 0; i < frames; ++i) {
    for (const double frequency : frequencies) {
      audio.samples.push_back(level * std::sin(2 * std::numbers::pi * frequency * i));
    }
  }
  return audio;
}

// The sine and the cosine that are in a stretch of whole periods, as real and imaginary part.
std::complex<double> tone_in(const std::vector<double> &samples, double frequency, int begin,
                             int end) {
  std::complex<double> sum = 0;
  for (int i = begin; i < end; ++i) {
    const double angle = 2 * std::numbers::pi * frequency * i;
    sum += samples[static_cast<std::size_t>(i)] * std::complex(std::sin(angle), std::cos(angle));
  }
  return 2.0 / (end - begin) * sum;
}

TEST_F(Phase90Audio, SineBecomesANegativeCosineInItsPlace) {
  const std::vector<double> frequencies = {0.01, 0.1, 0.2, 0.35, 0.47};
  for (const int frame : reference::kPhase90Lengths) {
    for (const int format : {kWav16, kWavFloat}) {
      SCOPED_TRACE(testing::Message() << "frames of " << frame << ", format " << format);
      const Audio result =
          run_on(sines(format, frequencies, 12000, 0.5), {"--frame", std::to_string(frame)});
      ASSERT_EQ(result.frames(), 12000);
      for (int c = 0; c < result.channels; ++c) {
        const double frequency = frequencies[static_cast<std::size_t>(c)];
        const std::complex<double> tone = tone_in(result.channel(c), frequency, 4000, 8000);
        EXPECT_NEAR(std::abs(tone), 0.5, 0.0005) << frequency;
        EXPECT_NEAR(std::arg(tone) * 180 / std::numbers::pi, -90, 2.3) << frequency;
      }
    }
  }
}

TEST_F(Phase90Audio, TwiceShiftedSineIsTurnedOver) {
  const Audio source = sines(kWavFloat, {0.05, 0.25}, 12000, 0.5);
  run_on(source);
  const Audio result = run_on(out_);
  for (int c = 0; c < 2; ++c) {
    const std::complex<double> tone = tone_in(result.channel(c), c == 0 ? 0.05 : 0.25, 4000, 8000);
    EXPECT_NEAR(std::abs(tone), 0.5, 0.001);
    EXPECT_NEAR(std::abs(std::arg(tone)) * 180 / std::numbers::pi, 180, 4.6);
  }
}

TEST_F(Phase90Audio, ImpulseAnswersToBothSidesOfItsPlace) {
  for (const std::size_t at : {0U, 1U, 777U, 2048U, 2999U}) {
    Audio source{kWavFloat, 44100, 1, std::vector<double>(3000)};
    source.samples[at] = 1;
    const Audio result = run_on(source);
    ASSERT_EQ(result.samples.size(), 3000U);
    EXPECT_NEAR(result.samples[at], 0, 0.0005) << at;
    if (at > 0) {
      EXPECT_NEAR(result.samples[at - 1], -0.639, 0.001) << at;
    }
    if (at < 2999) {
      EXPECT_NEAR(result.samples[at + 1], 0.634, 0.001) << at;
    }
  }
}

TEST_F(Phase90Audio, SilenceStaysSilence) {
  const Audio source{kWav16, 48000, 2, std::vector<double>(5000)};
  expect_same(run_on(source), source, source.samples);
}

// ---- Every sample ----

TEST_F(Phase90Audio, FilesOfAnyLengthComeOutWhole) {
  for (const int frame : reference::kPhase90Lengths) {
    for (const int frames : {0, 1, 511, 768, 769, 1280, 2048, 5000}) {
      SCOPED_TRACE(testing::Message() << frames << " frames by " << frame);
      const Audio source = tones(kWavFloat, 48000, 2, frames);
      expect_same(run_on(source, {"--frame", std::to_string(frame)}), source,
                  shifted(source, frame));
    }
  }
}

TEST_F(Phase90Audio, ChannelsAreShiftedEachForItself) {
  for (const int channels : {1, 2, 3, 6, 40}) {
    SCOPED_TRACE(testing::Message() << channels << " channels");
    const Audio source = tones(kWavFloat, 44100, channels, 4000);
    expect_same(run_on(source), source, shifted(source, 1024));
  }
}

TEST_F(Phase90Audio, FramesAreOf1024SamplesIfNotGiven) {
  const Audio source = read_audio(kSpeech);
  const Audio result = run_on(kSpeech, {"--format", "wav:float"});
  expect_same(result, source, shifted(source, 1024));
  EXPECT_EQ(run_on(kSpeech, {"--format", "wav:float", "--frame", "1024"}).samples, result.samples);
  EXPECT_NE(run_on(kSpeech, {"--format", "wav:float", "--frame", "512"}).samples, result.samples);
}

TEST_F(Phase90Audio, SamplesThatArentFiniteAreSilence) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Audio source = tones(kWavFloat, 48000, 2, 4000);
  Audio clean = source;
  for (const auto &[at, value] : {std::pair<std::size_t, double>{500, NAN},
                                  {701, -kInfinity},
                                  {7200, kInfinity},
                                  {7201, NAN}}) {
    source.samples[at] = value;
    clean.samples[at] = 0.0;
  }
  expect_same(run_on(source), source, shifted(clean, 1024));
}

// ---- Formats ----

TEST_F(Phase90Audio, EveryFormatHoldsTheShiftedAudio) {
  const Audio source = read_audio(kSpeech);
  expect_every_format([&](const auto &format) { return run_on(kSpeech, format); }, source,
                      shifted(source, 1024));
}

TEST_F(Phase90Audio, FormatIsThatOfTheInputIfNotGiven) {
  for (const int format : {kWav16, kWavFloat, SF_FORMAT_WAV | SF_FORMAT_PCM_24}) {
    EXPECT_EQ(run_on(tones(format, 48000, 2, 2000)).format, format);
  }
}

TEST_F(Phase90Audio, CompressedOutputHasTheFramesOfTheInput) { expect_compressed_whole(); }

TEST_F(Phase90Audio, FileTakesItsOwnPlace) {
  const Audio source = tones(kWavFloat, 48000, 2, 3000);
  write_audio(in_, source);
  ASSERT_EQ(run({"phase90", in_, in_}).exit_code, 0);
  expect_same(read_audio(in_), source, shifted(source, 1024));
}

TEST_F(Phase90Audio, GoesThroughPipes) {
  const Audio source = tones(kWavFloat, 48000, 2, 3000);
  run_on(source);
  Environment environment;
  environment.piped_input = read_bytes(in_);
  const Outcome outcome = run({"phase90", "-", "-"}, environment);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, read_bytes(out_));
}

// ---- Notes ----

// A square wave, whose edges the shift makes peaks of.
TEST_F(Phase90Audio, PeaksBeyondFullScaleAreNotedWhereTheFormatCutsThem) {
  Audio source{kWav16, 48000, 1, {}};
  for (int i = 0; i < 6000; ++i) source.samples.push_back(i / 100 % 2 == 0 ? 0.9 : -0.9);
  write_audio(in_, source);
  const std::vector<double> exact = shifted(read_audio(in_), 1024);
  const auto beyond = std::count_if(exact.begin(), exact.end(), [](double x) {
    const double rounded = std::nearbyint(x * 32768);
    return rounded > 32767 || rounded < -32768;
  });
  ASSERT_GT(beyond, 100);
  const Audio cut = run_on(in_);
  EXPECT_EQ(outcome_.err, "mvk: note: " + std::to_string(beyond) +
                              " samples lay beyond full scale and were limited to it; "
                              "--format float keeps them\n");
  for (std::size_t i = 0; i < exact.size(); ++i) {
    const double rounded = std::clamp(std::nearbyint(exact[i] * 32768), -32768.0, 32767.0);
    ASSERT_EQ(cut.samples[i], rounded / 32768) << i;
  }
  run_on(in_, {"--quiet"});
  EXPECT_EQ(outcome_.err, "");
  expect_same(run_on(in_, {"--format", "float"}), cut, exact);
  EXPECT_EQ(outcome_.err, "");
}

TEST_F(Phase90Audio, TruncatedFileIsShiftedAsFarAsItGoes) {
  const std::string cut = folder_.file("cut.wav");
  write_audio(cut, tones(kWav16, 48000, 2, 20000));
  truncate_to(cut, 0.5);
  const Audio result = run_on(cut);
  EXPECT_EQ(
      outcome_.err,
      "mvk: note: " + cut + " ends before the length in its header; what is there gets shifted\n");
  EXPECT_EQ(result.frames(), read_audio(cut).frames());
}

}  // namespace
}  // namespace host
