// Reductions of vectors to one number, for tests. The order of each sum is part of its definition.
#ifndef MVK_TESTS_REFERENCE_REDUCTION_REFERENCE_H_
#define MVK_TESTS_REFERENCE_REDUCTION_REFERENCE_H_

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "reference/block_reference.h"
#include "reference/kernel_arithmetic.h"

namespace reference {

inline uint32_t RoundedUpToFour(uint32_t n) { return (n + 3) / 4 * 4; }

// Without the NaNs. Element 0 counts even if n is 0.
inline float Peak(const float *x, uint32_t n) {
  float largest = x[0];
  float smallest = x[0];
  for (uint32_t i = 1; i < n; ++i) {
    largest = Maxnum(largest, x[i]);
    smallest = Minnum(smallest, x[i]);
  }
  return Maxnum(-smallest, largest);
}

// A NaN among them wins. Whole groups of four, and at least one.
inline float PeakOfGroups(const float *x, uint32_t n) {
  float largest = x[0];
  float smallest = x[0];
  for (uint32_t i = 1; i < std::max(RoundedUpToFour(n), 4u); ++i) {
    largest = Max(largest, x[i]);
    smallest = Min(smallest, x[i]);
  }
  return Maxnum(-smallest, largest);
}

inline uint32_t HeadroomUnder(float peak) {
  const int exponent = static_cast<int>(std::bit_cast<uint32_t>(peak) >> 23 & 0xff);
  return static_cast<uint32_t>(std::clamp(126 - exponent, 0, 60));
}

inline bool IsAligned(const float *x) { return reinterpret_cast<uintptr_t>(x) % 32 == 0; }

inline uint32_t Headroom(const float *x, uint32_t n) {
  return HeadroomUnder(IsAligned(x) && n % 4 == 0 ? PeakOfGroups(x, n) : Peak(x, n));
}

inline uint32_t HeadroomWithoutNans(const float *x, uint32_t n) {
  return HeadroomUnder(Peak(x, n));
}

inline float DotInPairs(const float *a, const float *b, uint32_t n) {
  float s0 = 0;
  if (n % 2 == 1) {
    s0 = a[0] * b[0];
    ++a, ++b, --n;
  }
  if (n == 0) return s0;
  s0 = std::fma(a[0], b[0], s0);
  float s1 = a[1] * b[1];
  uint32_t i = 2;
  if (n >= 8) {
    float lane[4] = {s0, s1, 0, 0};
    for (; i + 4 <= n; i += 4) {
      for (uint32_t l = 0; l < 4; ++l) lane[l] = std::fma(a[i + l], b[i + l], lane[l]);
    }
    s0 = lane[0] + lane[2];
    s1 = lane[1] + lane[3];
  }
  for (; i < n; i += 2) {
    s0 = std::fma(a[i], b[i], s0);
    s1 = std::fma(a[i + 1], b[i + 1], s1);
  }
  return s0 + s1;
}

// n a multiple of 4.
inline float SumOfLanes(const float *a, const float *b, uint32_t n) {
  float lane[4] = {};
  for (uint32_t i = 0; i < n; ++i) lane[i % 4] = std::fma(a[i], b[i], lane[i % 4]);
  return (lane[0] + lane[1]) + (lane[2] + lane[3]);
}

inline float DotInLanes(const float *a, const float *b, uint32_t n) {
  return SumOfLanes(a, b, RoundedUpToFour(n));
}

inline double WideDot(const float *a, const float *b, uint32_t n) {
  const auto A = [a](uint32_t i) { return static_cast<double>(a[i]); };
  const auto B = [b](uint32_t i) { return static_cast<double>(b[i]); };
  double acc = A(0) * B(0);
  uint32_t i = 1;
  if (n >= 5) {
    double v[2] = {};
    for (; i + 4 <= n; i += 4) {
      for (uint32_t l = 0; l < 2; ++l) {
        v[l] = v[l] + std::fma(A(i + l), B(i + l), A(i + 2 + l) * B(i + 2 + l));
      }
    }
    acc = acc + (v[0] + v[1]);
  }
  for (; i < n; ++i) acc = std::fma(A(i), B(i), acc);
  return acc;
}

inline float SumOfSquares(const float *x, uint32_t n) {
  const uint32_t in_lanes = n / 4 * 4;
  float sum = in_lanes > 0 ? SumOfLanes(x, x, in_lanes) : 0;
  for (uint32_t i = in_lanes; i < n; ++i) sum = std::fma(x[i], x[i], sum);
  return sum;
}

inline float SumOfSquaresOfGroups(const float *x, uint32_t n) {
  return SumOfLanes(x, x, RoundedUpToFour(n));
}

inline float OneOver(uint32_t n) {
  return static_cast<float>(1.0 / static_cast<double>(static_cast<int32_t>(n)));
}

inline float MeanOfSquares(const float *x, uint32_t n) {
  return n == 0 ? 0 : SumOfSquares(x, n) * OneOver(n);
}

inline float MeanOfSquaresOfGroups(const float *x, uint32_t n) {
  return SumOfSquaresOfGroups(x, n) * OneOver(n);
}

}  // namespace reference

#endif
