// Kernels of counted real vectors, one element at a time, for tests.
#ifndef MVK_TESTS_REFERENCE_VECTOR_REFERENCE_H_
#define MVK_TESTS_REFERENCE_VECTOR_REFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "reference/kernel_arithmetic.h"

namespace reference {

inline float ClampedPowerOfTwo(int32_t k) {
  return PowerOfTwo(static_cast<uint32_t>(std::clamp(k, -60, 60)));
}

enum class Mask { kForwards, kBackwards };

inline float Masked(Mask mask, const float *x, const float *m, uint32_t n, uint32_t i) {
  return x[i] * (mask == Mask::kForwards ? m[i] : m[n - 1 - i]);
}

// Sees what it has written where the result lies over an input.
inline void MaskOneByOne(Mask mask, float *y, const float *x, const float *m, uint32_t n) {
  for (uint32_t i = 0; i < n; ++i) y[i] = Masked(mask, x, m, n, i);
}

// Sees what it has written in the groups before.
inline void MaskInFours(Mask mask, float *y, const float *x, const float *m, uint32_t n) {
  uint32_t i = 0;
  for (; i + 4 <= n; i += 4) {
    float group[4];
    for (uint32_t l = 0; l < 4; ++l) group[l] = Masked(mask, x, m, n, i + l);
    std::copy_n(group, 4, y + i);
  }
  for (; i < n; ++i) y[i] = Masked(mask, x, m, n, i);
}

inline int32_t EqualWithin(const float *a, const float *b, uint32_t n, float tolerance) {
  for (uint32_t i = 0; i < n; ++i) {
    const float difference = a[i] - b[i];
    if (tolerance < std::fabs(difference)) return 0;
  }
  return 1;
}

}  // namespace reference

#endif
