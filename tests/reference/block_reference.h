// Kernels of one block and a scalar, one sample at a time, for tests.
#ifndef MVK_TESTS_REFERENCE_BLOCK_REFERENCE_H_
#define MVK_TESTS_REFERENCE_BLOCK_REFERENCE_H_

#include <cmath>
#include <cstdint>
#include <limits>

#include "reference/kernel_arithmetic.h"

namespace reference {

// The greater and the lesser of two numbers, but a NaN wins over either.
inline float Max(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<float>::quiet_NaN();
  return Maxnum(a, b);
}

inline float Min(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<float>::quiet_NaN();
  return Minnum(a, b);
}

// The shift joins the gain, not the sample.
inline float ScaledGain(float s, uint32_t k) { return s * PowerOfTwo(k); }

inline float Scaled(float x, float s, uint32_t k) { return x * ScaledGain(s, k); }

inline float ScaledWide(float x, float s, uint32_t k) {
  const double product = static_cast<double>(x) * static_cast<double>(ScaledGain(s, k));
  return static_cast<float>(product);
}

}  // namespace reference

#endif
