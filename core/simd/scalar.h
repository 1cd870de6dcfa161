// The notation of core/simd.h for one sample.
#pragma once

#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>

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

// What decides in most cases is one comparison without a branch; the rest, equal operands and
// NaNs, is kept off the way of a recursion, by one branch that hardly ever depends on the signal.
template <std::floating_point T>
inline T maxnum(T a, T b) {
  if (!std::islessgreater(a, b)) [[unlikely]] {
    if (a != a) return b;
    if (b != b) return a;
    return std::signbit(a) ? b : a;
  }
  return a > b ? a : b;
}
template <std::floating_point T>
inline T minnum(T a, T b) {
  if (!std::islessgreater(a, b)) [[unlikely]] {
    if (a != a) return b;
    if (b != b) return a;
    return std::signbit(a) ? a : b;
  }
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

inline halves<float> interleave(float a, float b) { return {a, b}; }
inline halves<float> deinterleave(float a, float b) { return {a, b}; }
inline halves<float> split_pairs(float a, float b) { return {a, b}; }
inline halves<float> join_pairs(float even, float odd) { return {even, odd}; }
template <>
inline halves<float> load_split_pairs<float>(const float *p) {
  return {p[0], p[1]};
}
inline void store_interleaved(float *p, float even, float odd) {
  p[0] = even;
  p[1] = odd;
}
inline float with_lane0(float a, float) { return a; }
inline float natural_order(float a) { return a; }
inline float reverse(float a) { return a; }
inline float abs(float a) { return std::fabs(a); }
inline float greater_of(float a, float b) { return a > b ? a : b; }
inline float lesser_of(float a, float b) { return a < b ? a : b; }
inline float where_greater(float a, float b, float x, float y) { return a > b ? x : y; }
inline float greater_magnitude(float a, float b) {
  const auto x = std::bit_cast<std::uint32_t>(std::fabs(a));
  const auto y = std::bit_cast<std::uint32_t>(std::fabs(b));
  return std::bit_cast<float>(x > y ? x : y);
}
inline bool any_greater(float a, float b) { return a > b; }

template <>
struct wide_of<float> {
  using type = double;
};
inline double widen(float x) { return x; }
inline float narrow(double x) { return static_cast<float>(x); }

inline void transpose(float (&)[1]) {}

}  // namespace mvk
