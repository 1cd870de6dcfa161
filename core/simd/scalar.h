// The notation of core/simd.h for one sample.
#pragma once

#include <cmath>
#include <concepts>

namespace mvk {

template <>
inline float load<float>(const float *p) {
  return *p;
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

inline float abs(float a) { return std::fabs(a); }
inline float greater_of(float a, float b) { return a > b ? a : b; }
inline float lesser_of(float a, float b) { return a < b ? a : b; }
inline float where_greater(float a, float b, float x, float y) { return a > b ? x : y; }
inline bool any_greater(float a, float b) { return a > b; }

template <>
struct wide_of<float> {
  using type = double;
};
inline double widen(float x) { return x; }
inline float narrow(double x) { return static_cast<float>(x); }

}  // namespace mvk
