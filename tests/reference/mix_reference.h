// Mixes, limits and arithmetic of blocks, one sample at a time, for tests.
//
// `x` holds one sample of each input, `g` the gains of the inputs; the order of each expression is
// the order of its roundings.
#ifndef MVK_TESTS_REFERENCE_MIX_REFERENCE_H_
#define MVK_TESTS_REFERENCE_MIX_REFERENCE_H_

#include <cmath>
#include <cstdint>

#include "reference/kernel_arithmetic.h"

namespace reference {

inline float MixOf1(const float *x, const float *g) { return x[0] * g[0]; }

inline float MixOf2(const float *x, const float *g) { return std::fma(x[0], g[0], x[1] * g[1]); }

inline float MixOf3(const float *x, const float *g) { return std::fma(x[2], g[2], MixOf2(x, g)); }

inline float MixOf4(const float *x, const float *g) { return std::fma(x[3], g[3], MixOf3(x, g)); }

// The mix of the first 1 to 4 inputs.
inline float MixOf(uint32_t inputs, const float *x, const float *g) {
  switch (inputs) {
    case 1:
      return MixOf1(x, g);
    case 2:
      return MixOf2(x, g);
    case 3:
      return MixOf3(x, g);
    default:
      return MixOf4(x, g);
  }
}

// A single gain is shifted before it meets its input; the sum of several inputs is shifted.
inline float ShiftedMixOf(uint32_t inputs, const float *x, const float *g, uint32_t k) {
  if (inputs == 1) return x[0] * (g[0] * PowerOfTwo(k));
  return MixOf(inputs, x, g) * PowerOfTwo(k);
}

// Inputs that fill no group of four come first; 4 if all of them do.
inline uint32_t HeadOf(uint32_t n) { return n % 4 == 0 ? 4 : n % 4; }

// The running sum joins a further group after the group's first two products.
inline float CountedMix(uint32_t n, const float *x, const float *g) {
  float y = MixOf(HeadOf(n), x, g);
  for (uint32_t m = HeadOf(n); m < n; m += 4) {
    float t = std::fma(x[m], g[m], x[m + 1] * g[m + 1]);
    t = t + y;
    t = std::fma(x[m + 2], g[m + 2], t);
    y = std::fma(x[m + 3], g[m + 3], t);
  }
  return y;
}

// No groups: every gain is shifted, and the inputs are taken in order.
inline float RunningMix(uint32_t n, const float *x, const float *g, uint32_t k) {
  float y = x[0] * (PowerOfTwo(k) * g[0]);
  for (uint32_t i = 1; i < n; ++i) y = std::fma(x[i], PowerOfTwo(k) * g[i], y);
  return y;
}

inline float AdjacentMix(uint32_t n, const float *x, const float *g, uint32_t k) {
  const float scale = PowerOfTwo(k);
  const uint32_t head = HeadOf(n);
  float y = 0;
  if (head == 1) y = x[0] * (g[0] * scale);
  if (head == 2) y = std::fma(x[0], g[0], x[1] * g[1]) * scale;
  if (head >= 3) {
    const float three = std::fma(x[0], g[0], std::fma(x[1], g[1], x[2] * g[2]));
    y = (head == 3 ? three : std::fma(x[3], g[3], three)) * scale;
  }
  for (uint32_t m = head; m < n; m += 4) {
    const float two = std::fma(x[m], g[m], x[m + 1] * g[m + 1]);
    const float three = std::fma(x[m + 2], g[m + 2], two);
    const float t = std::fma(x[m + 3], g[m + 3], three);
    y = std::fma(t, scale, y);
  }
  return y;
}

inline float WideShiftedProduct(float a, float b, uint32_t k) {
  const double product = static_cast<double>(a) * static_cast<double>(b);
  return static_cast<float>(product * static_cast<double>(PowerOfTwo(k)));
}

inline float ShiftedProduct(float a, float b, uint32_t k) {
  const float product = b * a;
  return product * PowerOfTwo(k);
}

// The lower limit comes first and wins over a NaN.
inline float Clipped(float a, const float *limits) {
  return Minnum(Maxnum(a, limits[0]), limits[1]);
}

inline float MidOf(float p, float q) { return std::fma(p, 0.5f, q * 0.5f); }

inline float SideOf(float p, float q) { return std::fma(p, 0.5f, -(q * 0.5f)); }

struct Crossfade {
  uint32_t position;
  uint32_t length;
};

// One block. The table is read upwards for t and downwards for s.
inline void CrossfadeBlock(Crossfade &state, float *y, const float *x, const float *table, float s,
                           float t) {
  for (uint32_t i = 0; i < 32; ++i) {
    const uint32_t j = state.position + i;
    const float gain = std::fma(table[state.length - 1 - j], s, t * table[j]);
    y[i] = gain * x[i];
  }
  state.position += 32;
  if (state.position >= state.length) state.position -= state.length;
}

}  // namespace reference

#endif
