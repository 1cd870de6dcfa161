#include "host/reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace host {
namespace {

// Half of each symmetric prototype and its centre, in units of 2^-15.
constexpr std::array kHalf2 = {8,   15,   -23,  -113, -119, 63,    201,   -31,  -351,  -87,  531,
                               323, -726, -743, 914,  1494, -1071, -3096, 1175, 10299, 15172};
constexpr std::array kHalf4 = {0,     -2,    -8,   -19,  -37,  -58,  -73,  -72, -47, 0,   55,
                               96,    97,    47,   -42,  -133, -177, -136, -9,  156, 278, 277,
                               122,   -139,  -389, -485, -333, 46,   498,  790, 714, 203, -589,
                               -1311, -1526, -897, 650,  2847, 5142, 6875, 7520};

// Tap t, zero outside the prototype.
double tap(int factor, long long t) {
  const long long centre = factor == 2 ? 20 : 40;
  if (t < 0 || t > 2 * centre) return 0.0;
  const auto i = static_cast<std::size_t>(t <= centre ? t : 2 * centre - t);
  return (factor == 2 ? kHalf2[i] : kHalf4[i]) / 32768.0;
}

}  // namespace

Expected filtered(Ratio ratio, const std::vector<double> &x, long long n) {
  const long long factor = ratio.factor;
  const long long taps = factor == 2 ? 41 : 81;
  const auto size = static_cast<long long>(x.size());
  double sum = 0.0;
  double magnitude = 0.0;
  const auto add = [&](long long t, long long m) {
    if (m < 0 || m >= size) return;
    const double term = tap(ratio.factor, t) * x[static_cast<std::size_t>(m)];
    sum += term;
    magnitude += std::fabs(term);
  };
  double gain = 1.0;
  if (ratio.up) {
    // y[n] = F sum over m of h[F m - n + offset] x[m]
    const long long offset = factor == 2 ? 47 : 95;
    gain = ratio.factor;
    for (long long m = (n - offset) / factor - 1; m <= (n - offset + taps) / factor + 1; ++m) {
      add(factor * m - n + offset, m);
    }
  } else {
    // y[j] = sum over t of h[t] x[F j + t - offset]
    const long long offset = factor == 2 ? 46 : 92;
    for (long long t = 0; t < taps; ++t) add(t, factor * n + t - offset);
  }
  // At most 21 fused steps in a lane, 2 additions and the gain, each rounded by
  // half a unit of the last place at most.
  constexpr double kRoundings = 24;
  return {gain * sum, gain * magnitude * kRoundings * std::ldexp(1.0, -24)};
}

void expect_resampled(Ratio ratio, const Audio &source, const Audio &result, double step,
                      long long begin) {
  SCOPED_TRACE((ratio.up ? "up by " : "down by ") + std::to_string(ratio.factor));
  ASSERT_EQ(result.channels, source.channels);
  EXPECT_EQ(result.rate, ratio.rate(source.rate));
  const long long frames = ratio.latency() + ratio.frames(source.frames()) - begin;
  ASSERT_EQ(result.frames(), frames);
  for (int c = 0; c < source.channels; ++c) {
    const std::vector<double> x = source.channel(c);
    const std::vector<double> y = result.channel(c);
    for (long long i = 0; i < frames; ++i) {
      Expected expected = filtered(ratio, x, begin + i);
      // Integers end one step below full scale.
      if (step > 0.0) expected.value = std::clamp(expected.value, -1.0, 1.0 - step);
      ASSERT_NEAR(y[static_cast<std::size_t>(i)], expected.value, expected.error + step / 2)
          << "frame " << i << " of channel " << c;
    }
  }
}

void expect_aligned(Ratio ratio, const Audio &source, const Audio &result, double step) {
  expect_resampled(ratio, source, result, step, ratio.latency());
}

}  // namespace host
