// Roots of unity and sines with exact zeros and ones, and the rules of the tables made of them,
// for tests.
#ifndef MVK_TESTS_REFERENCE_FFT_ROOTS_H_
#define MVK_TESTS_REFERENCE_FFT_ROOTS_H_

#include <cmath>
#include <cstdint>
#include <numbers>

#include "reference/fft_values.h"

namespace reference {

template <typename Real>
struct Root {
  Real cosine;
  Real sine;
};

// exp(2 pi j k / n). The functions see no angle beyond pi / 4, so that roots which mirror each
// other do so to the bit; zeros have no sign.
template <typename Real>
Root<Real> RootOfUnity(uint64_t k, uint64_t n) {
  const uint64_t eighths = 8 * (k % n);
  const uint64_t octant = eighths / n;
  const uint64_t rest = eighths % n;
  const bool beyond_middle = octant % 2 != 0;
  const uint64_t part = beyond_middle ? n - rest : rest;
  const Real angle =
      std::numbers::pi_v<Real> / 4 * (static_cast<Real>(part) / static_cast<Real>(n));
  const Real c = std::cos(angle);
  const Real s = beyond_middle ? -std::sin(angle) : std::sin(angle);
  const Real zero = 0;
  switch ((octant + 1) / 2 % 4) {
    case 0:
      return {c + zero, s + zero};
    case 1:
      return {zero - s, c + zero};
    case 2:
      return {zero - c, zero - s};
    default:
      return {s + zero, zero - c};
  }
}

// sin(2 pi k / n)
template <typename Real>
Real SineOfTurn(uint64_t k, uint64_t n) {
  return RootOfUnity<Real>(k, n).sine;
}

inline float SixDecimals(double value) { return static_cast<float>(std::round(value * 1e6) / 1e6); }

// The first, second and third powers of a twiddle.
struct TwiddleTriple {
  Complex first, second, third;
};

// exp(-2 pi j p phi(i) / 4), p = 1 to 3, where phi(i) has the bits of i mirrored about the binary
// point.
template <typename Real>
Root<Real> BlockRoot(uint32_t i, uint32_t power) {
  constexpr uint32_t kBits = 10;
  const uint64_t turn = 4u << kBits;
  const uint64_t angle = power * static_cast<uint64_t>(Reversed(i, kBits));
  return RootOfUnity<Real>(turn - angle, turn);
}

inline TwiddleTriple BlockTwiddles(uint32_t i) {
  const auto power = [i](uint32_t p) {
    const Root<double> root = BlockRoot<double>(i, p);
    return Complex{static_cast<float>(root.cosine), static_cast<float>(root.sine)};
  };
  return {power(1), power(2), power(3)};
}

// The same, rounded to six decimals first.
inline TwiddleTriple CoarseBlockTwiddles(uint32_t i) {
  const auto power = [i](uint32_t p) {
    const Root<double> root = BlockRoot<double>(i, p);
    return Complex{SixDecimals(root.cosine), SixDecimals(root.sine)};
  };
  return {power(1), power(2), power(3)};
}

// exp(-2 pi j k / l) to six decimals. A sine that is zero is a negative one, since it is the
// negative of a sine.
inline Complex CoarseRoot(uint64_t k, uint64_t l) {
  const Root<double> root = RootOfUnity<double>(k, l);
  return {SixDecimals(root.cosine), -SixDecimals(root.sine)};
}

}  // namespace reference

#endif
