// The audio that mvk bands --roundtrip makes, and what it reports of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "host/audio_command.h"

namespace host {
namespace {

constexpr int kBands[] = {8, 16, 32, 48, 64};

// What the banks give back of white noise.
constexpr double kMostError = 3e-8;  // of the input's square
constexpr double kMostGain = 4e-5;   // beside 1

struct Report {
  int delay = 0;
  double milliseconds = 0;
  double gain = 0;
  double error = 0;
  double decibels = 0;
};

Report read_report(const std::string &text) {
  Report report;
  int end = -1;
  const int got = std::sscanf(text.c_str(),
                              "delay          %d samples (%lf ms)\n"
                              "gain           %lf\n"
                              "squared error  %lf of the input's square (%lf dB)\n%n",
                              &report.delay, &report.milliseconds, &report.gain, &report.error,
                              &report.decibels, &end);
  EXPECT_EQ(got, 5) << text;
  EXPECT_EQ(end, static_cast<int>(text.size())) << text;
  return report;
}

// The same, by both files.
Report measured(const Audio &in, const Audio &out) {
  double xx = 0;
  double xy = 0;
  double error = 0;
  for (std::size_t i = 0; i < in.samples.size(); ++i) {
    const double x = in.samples[i];
    const double y = out.samples.at(i);
    xx += x * x;
    xy += x * y;
    error += (y - x) * (y - x);
  }
  Report report;
  report.gain = xy / xx;
  report.error = error / xx;
  return report;
}

Audio noise(int format, int channels, int frames, double level = 0.9, int rate = 48000) {
  std::minstd_rand random(static_cast<unsigned>(channels));
  std::uniform_int_distribution<int> sample(-32768, 32768);
  Audio audio{format, rate, channels, {}};
  for (int i = 0; i < frames * channels; ++i) {
    audio.samples.push_back(std::lrint(level * sample(random)) / 32768.0);
  }
  return audio;
}

class BandsAudio : public AudioCommand {
 protected:
  BandsAudio() : AudioCommand({"bands", "--roundtrip"}) {}
};

// ---- Error, gain and delay ----

TEST_F(BandsAudio, NoiseComesBack) {
  for (const int bands : kBands) {
    for (const int channels : {1, 5}) {
      SCOPED_TRACE(testing::Message() << bands << " bands, " << channels << " channels");
      const Audio source = noise(kWavFloat, channels, 30000);
      const Audio result = run_on(source, {"--bands", std::to_string(bands)});
      EXPECT_EQ(outcome_.err, "");
      EXPECT_EQ(result.rate, source.rate);
      EXPECT_EQ(result.channels, source.channels);
      ASSERT_EQ(result.samples.size(), source.samples.size());
      const Report own = measured(source, result);
      EXPECT_LT(own.error, kMostError);
      EXPECT_NEAR(own.gain, 1, kMostGain);

      const Report report = read_report(outcome_.out);
      EXPECT_EQ(report.delay, 9 * bands + 1);
      EXPECT_NEAR(report.milliseconds, (9 * bands + 1) / 48.0, 0.00051);
      EXPECT_NEAR(report.gain, own.gain, 0.51e-6);
      EXPECT_NEAR(report.error / own.error, 1, 0.0051);  // three digits
      EXPECT_NEAR(report.decibels, 10 * std::log10(own.error), 0.0051);
    }
  }
}

TEST_F(BandsAudio, EachChannelComesBack) {
  const Audio source = noise(kWavFloat, 6, 30000);
  const Audio result = run_on(source);
  for (int c = 0; c < 6; ++c) {
    const Report own = measured({kWavFloat, 48000, 1, source.channel(c)},
                                {kWavFloat, 48000, 1, result.channel(c)});
    EXPECT_LT(own.error, kMostError) << c;
    EXPECT_NEAR(own.gain, 1, kMostGain) << c;
  }
}

// A rounding adds at most half a step to each sample.
TEST_F(BandsAudio, IntegersAddTheirRoundingOnly) {
  for (const int bands : {8, 64}) {
    const Audio source = noise(kWav16, 1, 30000, 0.5);
    const std::string number = std::to_string(bands);
    const Audio exact = run_on(source, {"--bands", number, "--format", "float"});
    const std::string report = outcome_.out;
    for (const auto &[format, bits] :
         {std::pair<const char *, int>{"u8", 8}, {"s16", 16}, {"s24", 24}, {"s32", 32}}) {
      SCOPED_TRACE(testing::Message() << bands << " bands, " << format);
      const Audio rounded = run_on(source, {"--bands", number, "--format", format});
      EXPECT_EQ(outcome_.out, report);  // ahead of the rounding
      const double full = std::ldexp(1.0, bits - 1);
      double square = 0;
      for (std::size_t i = 0; i < exact.samples.size(); ++i) {
        ASSERT_EQ(rounded.samples.at(i), std::nearbyint(exact.samples[i] * full) / full) << i;
        square += source.samples[i] * source.samples[i];
      }
      const double rounding = 0.5 / full * std::sqrt(30000 / square);
      EXPECT_LT(std::sqrt(measured(source, rounded).error), std::sqrt(kMostError) + rounding);
    }
  }
}

TEST_F(BandsAudio, RecordingsComeBack) {
  for (const char *recording : {kSpeech, kBell}) {
    const Audio source = read_audio(recording);
    const Audio result = run_on(recording, {"--format", "float"});
    ASSERT_EQ(result.samples.size(), source.samples.size());
    EXPECT_EQ(result.rate, source.rate);
    // The error of all frequencies together; that of the loudest may be twice as much.
    EXPECT_LT(measured(source, result).error, 2 * kMostError);
    const Report report = read_report(outcome_.out);
    EXPECT_EQ(report.delay, 577);
    EXPECT_NEAR(report.milliseconds, 577000.0 / source.rate, 0.00051);
  }
}

TEST_F(BandsAudio, ImpulseStaysInItsPlace) {
  // One in each channel.
  const std::size_t places[] = {0, 1, 777, 1024, 2998, 2999};
  Audio source{kWavFloat, 44100, 6, std::vector<double>(6 * 3000)};
  for (std::size_t c = 0; c < 6; ++c) source.samples[6 * places[c] + c] = 1;
  for (const int bands : kBands) {
    SCOPED_TRACE(testing::Message() << bands << " bands");
    const Audio result = run_on(source, {"--bands", std::to_string(bands)});
    ASSERT_EQ(result.samples.size(), source.samples.size());
    for (std::size_t i = 0; i < source.samples.size(); ++i) {
      ASSERT_NEAR(result.samples[i], source.samples[i], 0.001)
          << "frame " << i / 6 << ", channel " << i % 6;
    }
  }
}

// ---- Every sample ----

// Nothing depends on what follows but for the delay.
TEST_F(BandsAudio, FilesOfAnyLengthComeOutWhole) {
  for (const int bands : {8, 48}) {
    const std::string number = std::to_string(bands);
    for (const int frames : {0, 1, bands, 9 * bands + 1, 16 * bands + 1, 23 * bands}) {
      SCOPED_TRACE(testing::Message() << frames << " frames, " << bands << " bands");
      Audio source = tones(kWavFloat, 48000, 2, frames);
      const Audio result = run_on(source, {"--bands", number});
      ASSERT_EQ(result.frames(), frames);
      source.samples.resize(source.samples.size() + 4000);
      const Audio longer = run_on(source, {"--bands", number});
      for (std::size_t i = 0; i < result.samples.size(); ++i) {
        ASSERT_EQ(result.samples[i], longer.samples[i]) << i;
        ASSERT_NEAR(result.samples[i], source.samples[i], 0.001) << i;
      }
    }
  }
}

TEST_F(BandsAudio, ChannelsAreApart) {
  for (const int channels : {2, 3, 40}) {
    SCOPED_TRACE(testing::Message() << channels << " channels");
    const Audio source = noise(kWavFloat, channels, 3000);
    const Audio result = run_on(source);
    ASSERT_EQ(result.channels, channels);
    for (const int c : {0, 1, channels - 1}) {
      EXPECT_EQ(run_on(Audio{kWavFloat, 48000, 1, source.channel(c)}).samples, result.channel(c));
    }
  }
}

TEST_F(BandsAudio, BandsAre64IfNotGiven) {
  const Audio source = noise(kWavFloat, 1, 5000);
  const Audio result = run_on(source);
  EXPECT_EQ(run_on(source, {"--bands", "64"}).samples, result.samples);
  EXPECT_NE(run_on(source, {"-b", "32"}).samples, result.samples);
}

TEST_F(BandsAudio, SamplesThatArentUsableAreSilence) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Audio source = noise(kWavFloat, 2, 4000);
  Audio clean = source;
  for (const auto &[at, value] :
       {std::pair<std::size_t, double>{500, NAN}, {701, -kInfinity}, {7200, 1e30}, {7201, NAN}}) {
    source.samples[at] = value;
    clean.samples[at] = 0.0;
  }
  const Audio expected = run_on(clean);
  const std::string report = outcome_.out;
  EXPECT_EQ(outcome_.err, "");
  EXPECT_EQ(run_on(source).samples, expected.samples);
  EXPECT_EQ(outcome_.out, report);
  EXPECT_EQ(outcome_.err,
            "mvk: note: 4 samples aren't finite numbers, or lie beyond 360 dBFS; they count as "
            "silence\n");
}

TEST_F(BandsAudio, SilenceStaysSilenceAndHasNoGain) {
  for (const int frames : {0, 1, 5000}) {
    const Audio source{kWavFloat, 48000, 2, std::vector<double>(2 * frames)};
    EXPECT_EQ(run_on(source).samples, source.samples);
    EXPECT_EQ(outcome_.out,
              "delay          577 samples (12.021 ms)\n"
              "gain           unknown, the input is silent\n"
              "squared error  0\n");
  }
}

// ---- Formats and notes ----

TEST_F(BandsAudio, FormatIsThatOfTheInputIfNotGiven) {
  for (const int format : {kWav16, kWavFloat, SF_FORMAT_WAV | SF_FORMAT_PCM_24}) {
    EXPECT_EQ(run_on(tones(format, 48000, 2, 2000)).format, format);
  }
}

TEST_F(BandsAudio, CompressedOutputHasTheFramesOfTheInput) { expect_compressed_whole(); }

TEST_F(BandsAudio, FileTakesItsOwnPlace) {
  const Audio source = noise(kWavFloat, 2, 3000);
  const Audio expected = run_on(source);
  ASSERT_EQ(run({"bands", "--roundtrip", in_, in_}).exit_code, 0);
  EXPECT_EQ(read_audio(in_).samples, expected.samples);
}

TEST_F(BandsAudio, GoesThroughPipes) {
  run_on(noise(kWavFloat, 2, 3000));
  const std::string report = outcome_.out;
  Environment environment;
  environment.piped_input = read_bytes(in_);
  const Outcome outcome = run({"bands", "-", "-", "--roundtrip"}, environment);
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.out, read_bytes(out_));
  EXPECT_EQ(outcome.err, report);
}

TEST_F(BandsAudio, QuietRunsSayNothing) {
  run_on(noise(kWav16, 1, 3000, 0.9), {"--quiet"});
  EXPECT_EQ(outcome_.out, "");
  EXPECT_EQ(outcome_.err, "");
}

TEST_F(BandsAudio, SamplesCutToFullScaleAreNoted) {
  Audio source{kWavFloat, 48000, 1, std::vector<double>(3000)};
  source.samples[1000] = 2;
  source.samples[2000] = -3;
  const Audio cut = run_on(source, {"--format", "s16"});
  EXPECT_EQ(cut.samples[1000], 32767.0 / 32768.0);
  EXPECT_EQ(cut.samples[2000], -1);
  EXPECT_EQ(outcome_.err,
            "mvk: note: 2 samples lay beyond full scale and were limited to it; "
            "--format float keeps them\n");
}

TEST_F(BandsAudio, TruncatedFileIsProcessedAsFarAsItGoes) {
  const std::string cut = folder_.file("cut.wav");
  write_audio(cut, tones(kWav16, 48000, 2, 20000));
  truncate_to(cut, 0.5);
  const Audio result = run_on(cut);
  EXPECT_EQ(outcome_.err,
            "mvk: note: " + cut +
                " ends before the length in its header; what is there gets processed\n");
  EXPECT_EQ(result.frames(), read_audio(cut).frames());
}

}  // namespace
}  // namespace host
