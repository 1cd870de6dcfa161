// The operations that kernels are defined by, for tests.
#ifndef MVK_TESTS_REFERENCE_KERNEL_ARITHMETIC_H_
#define MVK_TESTS_REFERENCE_KERNEL_ARITHMETIC_H_

#include <bit>
#include <cmath>
#include <cstdint>

namespace reference {

// 2^k as long as k is an exponent of a float; beyond, whatever the pattern happens to be.
inline float PowerOfTwo(uint32_t k) { return std::bit_cast<float>((k + 127u) << 23); }

// c - a * b and a * b - c, rounded once.
inline float Fms(float a, float b, float c) { return std::fma(-a, b, c); }
inline float Fnms(float a, float b, float c) { return std::fma(a, b, -c); }

// A number wins over a NaN, and +0 is greater than -0.
template <typename Float>
Float Maxnum(Float a, Float b) {
  if (std::isnan(a)) return b;
  if (std::isnan(b)) return a;
  if (a == b) return std::signbit(a) ? b : a;
  return a > b ? a : b;
}

template <typename Float>
Float Minnum(Float a, Float b) {
  if (std::isnan(a)) return b;
  if (std::isnan(b)) return a;
  if (a == b) return std::signbit(a) ? a : b;
  return a < b ? a : b;
}

}  // namespace reference

#endif
