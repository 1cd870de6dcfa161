// What the shifter does to tones and to an impulse.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <string>
#include <vector>

#include "services/phase90_pair.h"

namespace testing_support {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

double Degrees(const std::complex<double> &z) { return std::arg(z) * 180 / std::numbers::pi; }

// Radians of a tone at sample n of the output, the delay taken back.
double Angle(double frequency, size_t n) {
  const double turns = frequency * (static_cast<double>(n) - reference::kPhase90Delay);
  return kTurn * (turns - std::floor(turns));
}

class Phase90Signal : public testing::TestWithParam<int> {
 protected:
  // A stream through the shifter, in frames of this length.
  std::vector<float> Shift(std::vector<float> samples) const {
    LibraryPhase90 shifter(length_);
    for (size_t i = 0; i < samples.size(); i += static_cast<size_t>(length_)) {
      EXPECT_EQ(process_Phase90Hilbert(shifter.handle(), &samples[i]), 0);
    }
    return samples;
  }

  std::vector<float> ShiftedSine(double frequency, size_t count) const {
    std::vector<float> samples(count);
    for (size_t n = 0; n < count; ++n) {
      samples[n] =
          static_cast<float>(std::sin(kTurn * std::fmod(frequency * static_cast<double>(n), 1)));
    }
    return Shift(std::move(samples));
  }

  const int length_ = GetParam();
};

INSTANTIATE_TEST_SUITE_P(All, Phase90Signal, testing::ValuesIn(reference::kPhase90Lengths),
                         testing::PrintToStringParamName());

TEST_P(Phase90Signal, SilenceStaysSilence) {
  for (const float zero : {0.0f, -0.0f}) {
    LibraryPhase90 shifter(length_);
    for (int frame = 0; frame < 5; ++frame) {
      std::vector<float> samples(static_cast<size_t>(length_), zero);
      process_Phase90Hilbert(shifter.handle(), samples.data());
      for (const float sample : samples) ASSERT_EQ(sample, 0.0f);
    }
  }
}

// The tone a sin + b cos that is nearest to samples `begin` to `end`, as a + jb.
std::complex<double> Fit(const std::vector<float> &samples, double frequency, size_t begin,
                         size_t end) {
  double ss = 0, sc = 0, cc = 0, ys = 0, yc = 0;
  for (size_t n = begin; n < end; ++n) {
    const double s = std::sin(Angle(frequency, n)), c = std::cos(Angle(frequency, n));
    ss += s * s;
    sc += s * c;
    cc += c * c;
    ys += samples[n] * s;
    yc += samples[n] * c;
  }
  const double determinant = ss * cc - sc * sc;
  return {(ys * cc - yc * sc) / determinant, (yc * ss - ys * sc) / determinant};
}

// What the sections add up to at a frequency, the delay taken back, with w = z^-2.
std::complex<double> Response(double frequency) {
  const std::complex<double> ahead = std::polar(1.0, kTurn * frequency);
  const std::complex<double> w = 1.0 / (ahead * ahead), back = ahead * ahead;
  const auto all_pass = [](double c, const std::complex<double> &z) {
    return (z - c) / (1.0 - c * z);
  };
  const auto &c = reference::kPhase90Forward;
  std::complex<double> response =
      double{reference::kPhase90Scale} * (w - 1.0) / (1.0 - double{c[0]} * w);
  for (size_t s = 1; s < std::size(c); ++s) response *= all_pass(c[s], w);
  for (const float backward : reference::kPhase90Backward) response *= all_pass(backward, back);
  return 2.0 * response * ahead;
}

// From 0.01 to 0.47 of the sample rate. That frames don't meet exactly moves the tone by less
// than half of what its amplitude may be off.
TEST_P(Phase90Signal, SineBecomesANegativeCosine) {
  for (int step = 0; step <= 46; ++step) {
    const double frequency = (1 + step) / 100.0;
    SCOPED_TRACE(frequency);
    const std::vector<float> samples = ShiftedSine(frequency, 8192);
    const std::complex<double> tone = Fit(samples, frequency, 4096, 8192);
    EXPECT_NEAR(std::abs(tone), 1, 0.001);
    EXPECT_NEAR(Degrees(tone), -90, 2.3);
    EXPECT_NEAR(std::abs(tone - Response(frequency)), 0, 0.0005);
  }
}

// What a plain correlation with 2048 samples gives. They hold no whole number of periods, which
// moves the amplitude away from that of the fit.
TEST_P(Phase90Signal, FiguresOfTones) {
  constexpr struct {
    double frequency, amplitude, phase;
  } kTones[] = {{0.1, 0.9993, -89.75}, {0.2, 0.9999, -91.85}};
  for (const auto &[frequency, amplitude, phase] : kTones) {
    const std::vector<float> samples = ShiftedSine(frequency, 6144);
    std::complex<double> sum = 0;
    for (size_t n = 4096; n < 6144; ++n) {
      const double angle = Angle(frequency, n);
      sum += std::complex<double>(samples[n] * std::sin(angle), samples[n] * std::cos(angle));
    }
    sum /= 1024;
    EXPECT_NEAR(std::abs(sum), amplitude, 0.00005) << frequency;
    EXPECT_NEAR(Degrees(sum), phase, 0.005) << frequency;
  }
}

// ---- Impulse ----

constexpr size_t kImpulseAt = 100;
constexpr size_t kCentre = kImpulseAt + reference::kPhase90Delay;

// Eight frames with an impulse in the first.
std::vector<float> Impulse(int length) {
  std::vector<float> samples(8 * static_cast<size_t>(length));
  samples[kImpulseAt] = 1;
  return samples;
}

TEST_P(Phase90Signal, FiguresOfAnImpulse) {
  const std::vector<float> response = Shift(Impulse(length_));
  EXPECT_NEAR(response[kCentre - 1], -0.639, 0.0005);
  EXPECT_NEAR(response[kCentre + 1], 0.634, 0.0005);
  EXPECT_NEAR(response[kCentre - 3], -0.199, 0.0005);
  EXPECT_NEAR(response[kCentre + 3], 0.225, 0.0005);
}

// Tap at a distance from the centre of the sections' common response.
double Tap(int distance) {
  constexpr int kFrequencies = 8192;
  double sum = 0;
  for (int k = 0; k < kFrequencies; ++k) {
    const double frequency = static_cast<double>(k) / kFrequencies;
    sum += (Response(frequency) * std::polar(1.0, kTurn * frequency * distance)).real();
  }
  return sum / kFrequencies;
}

TEST_P(Phase90Signal, ImpulseResponseIsThatOfTheSections) {
  const std::vector<float> response = Shift(Impulse(length_));
  for (int distance = -24; distance <= 24; ++distance) {
    const size_t n = kCentre + static_cast<size_t>(distance);
    EXPECT_NEAR(response[n], Tap(distance), 0.0001) << distance;
    if (distance % 2 != 0) {
      EXPECT_EQ(response[n] < 0, distance < 0) << distance;
    }
  }
}

// What the ends of frames bring to the taps between is below the last figure of the others.
TEST_P(Phase90Signal, ImpulseAnswersAtOddDistances) {
  const std::vector<float> response = Shift(Impulse(length_));
  for (size_t n = 0; n < response.size(); ++n) {
    if ((n + kCentre) % 2 == 0) {
      ASSERT_NEAR(response[n], 0, 0.0001) << n;
    }
  }
}

// What leaves before the delay is over is the response's start alone.
TEST_P(Phase90Signal, NothingAnswersMoreThanTheDelayAhead) {
  std::vector<float> samples(4 * static_cast<size_t>(length_));
  const size_t at = 2 * static_cast<size_t>(length_) - 1;  // the last of a frame
  samples[at] = 1;
  const std::vector<float> response = Shift(samples);
  for (size_t n = 0; n < static_cast<size_t>(length_); ++n) ASSERT_EQ(response[n], 0.0f) << n;
}

}  // namespace
}  // namespace testing_support
