// The notation of core/simd.h for one sample.
#pragma once

#include <cmath>
#include <concepts>

namespace mvk {

template <>
inline float load<float>(const float *p) {
  return *p;
}
template <>
inline float splat<float>(float x) {
  return x;
}
inline void store(float *p, float x) { *p = x; }

template <std::floating_point T>
inline T fma(T a, T b, T c) {
  return std::fma(a, b, c);
}
template <std::floating_point T>
inline T fms(T a, T b, T c) {
  return std::fma(-a, b, c);
}
template <std::floating_point T>
inline T fnms(T a, T b, T c) {
  return std::fma(a, b, -c);
}

template <std::floating_point T>
inline T maxnum(T a, T b) {
  if (a != a) return b;
  if (b != b) return a;
  if (a == b) return std::signbit(a) ? b : a;
  return a > b ? a : b;
}
template <std::floating_point T>
inline T minnum(T a, T b) {
  if (a != a) return b;
  if (b != b) return a;
  if (a == b) return std::signbit(a) ? a : b;
  return a < b ? a : b;
}
template <std::floating_point T>
inline T max_propagating(T a, T b) {
  return a != a || b != b ? a + b : maxnum(a, b);
}
template <std::floating_point T>
inline T min_propagating(T a, T b) {
  return a != a || b != b ? a + b : minnum(a, b);
}

}  // namespace mvk
