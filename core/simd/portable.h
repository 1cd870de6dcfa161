// f32x4 as an array, lane by lane through the scalar notation: the definition
// that the other backends answer to.
#pragma once

#include <cmath>
#include <utility>

#include "core/simd/scalar.h"

namespace mvk {

struct f32x4 {
  float v[4];

  f32x4() = default;
  f32x4(float a, float b, float c, float d) : v{a, b, c, d} {}
  f32x4(float x) : v{x, x, x, x} {}
};

namespace detail {

template <class Op, class... Vs>
inline f32x4 each_lane(Op op, Vs... vs) {
  return {op(vs.v[0]...), op(vs.v[1]...), op(vs.v[2]...), op(vs.v[3]...)};
}

}  // namespace detail

using native = f32x4;
inline constexpr bool fma_overwrites_addend = false, pointers_move_on = false, has_maxnum = false;

template <>
inline f32x4 load<f32x4>(const float *p) {
  return {p[0], p[1], p[2], p[3]};
}
inline void store(float *p, f32x4 v) {
  for (int l = 0; l < 4; ++l) p[l] = v.v[l];
}

// The two lower lanes.
inline f32x4 load_two(const float *p) { return {p[0], p[1], 0, 0}; }
inline void store_two(float *p, f32x4 a) {
  p[0] = a.v[0];
  p[1] = a.v[1];
}

inline f32x4 operator+(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return x + y; }, a, b);
}
inline f32x4 operator-(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return x - y; }, a, b);
}
inline f32x4 operator*(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return x * y; }, a, b);
}
inline f32x4 operator/(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return x / y; }, a, b);
}

inline f32x4 fma(f32x4 a, f32x4 b, f32x4 c) { return detail::each_lane(fma<float>, a, b, c); }
inline f32x4 fms(f32x4 a, f32x4 b, f32x4 c) { return detail::each_lane(fms<float>, a, b, c); }
inline f32x4 fnms(f32x4 a, f32x4 b, f32x4 c) { return detail::each_lane(fnms<float>, a, b, c); }

inline f32x4 maxnum(f32x4 a, f32x4 b) { return detail::each_lane(maxnum<float>, a, b); }
inline f32x4 minnum(f32x4 a, f32x4 b) { return detail::each_lane(minnum<float>, a, b); }
inline f32x4 max_propagating(f32x4 a, f32x4 b) {
  return detail::each_lane(max_propagating<float>, a, b);
}
inline f32x4 min_propagating(f32x4 a, f32x4 b) {
  return detail::each_lane(min_propagating<float>, a, b);
}

inline f32x4 reverse(f32x4 a) { return {a.v[3], a.v[2], a.v[1], a.v[0]}; }

inline halves<f32x4> interleave(f32x4 a, f32x4 b) {
  return {f32x4(a.v[0], b.v[0], a.v[1], b.v[1]), f32x4(a.v[2], b.v[2], a.v[3], b.v[3])};
}
inline halves<f32x4> deinterleave(f32x4 a, f32x4 b) {
  return {f32x4(a.v[0], a.v[2], b.v[0], b.v[2]), f32x4(a.v[1], a.v[3], b.v[1], b.v[3])};
}

inline halves<f32x4> interleave_pairs(f32x4 a, f32x4 b) {
  return {f32x4(a.v[0], a.v[1], b.v[0], b.v[1]), f32x4(a.v[2], a.v[3], b.v[2], b.v[3])};
}

inline void transpose(f32x4 (&r)[4]) {
  for (int i = 0; i < 4; ++i)
    for (int j = i + 1; j < 4; ++j) std::swap(r[i].v[j], r[j].v[i]);
}

inline halves<f32x4> split_pairs(f32x4 a, f32x4 b) { return deinterleave(a, b); }
inline halves<f32x4> join_pairs(f32x4 even, f32x4 odd) { return interleave(even, odd); }
inline f32x4 natural_order(f32x4 a) { return a; }

template <>
inline halves<f32x4> load_split_pairs<f32x4>(const float *p) {
  return split_pairs(load<f32x4>(p), load<f32x4>(p + 4));
}
inline void store_interleaved(float *p, f32x4 even, f32x4 odd) {
  const auto [lo, hi] = interleave(even, odd);
  store(p, lo);
  store(p + 4, hi);
}
inline f32x4 with_lane0(f32x4 a, f32x4 b) { return {a.v[0], b.v[1], b.v[2], b.v[3]}; }

inline f32x4 operator-(f32x4 a) {
  return detail::each_lane([](float x) { return -x; }, a);
}
inline f32x4 abs(f32x4 a) {
  return detail::each_lane([](float x) { return std::fabs(x); }, a);
}
inline f32x4 greater_of(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return greater_of(x, y); }, a, b);
}
inline f32x4 lesser_of(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return lesser_of(x, y); }, a, b);
}
inline f32x4 where_greater(f32x4 a, f32x4 b, f32x4 x, f32x4 y) {
  return detail::each_lane([](float p, float q, float t, float f) { return p > q ? t : f; }, a, b,
                           x, y);
}
inline f32x4 greater_magnitude(f32x4 a, f32x4 b) {
  return detail::each_lane([](float x, float y) { return greater_magnitude(x, y); }, a, b);
}
inline f32x4 alternate(f32x4 even, f32x4 odd) { return {even.v[0], odd.v[1], even.v[2], odd.v[3]}; }
inline bool any_greater(f32x4 a, f32x4 b) {
  return a.v[0] > b.v[0] || a.v[1] > b.v[1] || a.v[2] > b.v[2] || a.v[3] > b.v[3];
}

struct f64x2 {
  double v[2];
};
inline f64x2 operator+(f64x2 a, f64x2 b) { return {{a.v[0] + b.v[0], a.v[1] + b.v[1]}}; }
inline double sum(f64x2 a) { return a.v[0] + a.v[1]; }

struct f64x4 {
  double v[4];

  f64x4(double a, double b, double c, double d) : v{a, b, c, d} {}
  f64x4(double x) : v{x, x, x, x} {}
};

template <>
struct wide_of<f32x4> {
  using type = f64x4;
};
inline f64x4 widen(f32x4 a) { return {a.v[0], a.v[1], a.v[2], a.v[3]}; }
inline f32x4 narrow(f64x4 a) {
  return {narrow(a.v[0]), narrow(a.v[1]), narrow(a.v[2]), narrow(a.v[3])};
}
inline f64x4 operator*(f64x4 a, f64x4 b) {
  return {a.v[0] * b.v[0], a.v[1] * b.v[1], a.v[2] * b.v[2], a.v[3] * b.v[3]};
}
inline f64x2 lower(f64x4 a) { return {{a.v[0], a.v[1]}}; }
inline f64x2 upper(f64x4 a) { return {{a.v[2], a.v[3]}}; }
inline f64x4 operator/(f64x4 a, f64x4 b) {
  return {a.v[0] / b.v[0], a.v[1] / b.v[1], a.v[2] / b.v[2], a.v[3] / b.v[3]};
}

}  // namespace mvk

#include "core/simd/pair8.h"
#include "core/simd/wide8.h"
