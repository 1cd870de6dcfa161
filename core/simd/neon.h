// f32x4 on the Advanced SIMD unit of 64-bit Arm.
#pragma once

#include <arm_neon.h>

#include <cmath>

namespace mvk {

struct f32x4 {
  float32x4_t v;

  f32x4() = default;
  f32x4(float32x4_t lanes) : v(lanes) {}
  f32x4(float x) : v(vdupq_n_f32(x)) {}
  f32x4(float a, float b, float c, float d) : v{a, b, c, d} {}
};

using native = f32x4;
inline constexpr bool fma_overwrites_addend = true, pointers_move_on = true, has_maxnum = true;

template <>
inline f32x4 load<f32x4>(const float *p) {
  return {vld1q_f32(p)};
}
inline void store(float *p, f32x4 a) { vst1q_f32(p, a.v); }

// The two lower lanes.
inline f32x4 load_two(const float *p) { return {vcombine_f32(vld1_f32(p), vdup_n_f32(0))}; }
inline void store_two(float *p, f32x4 a) { vst1_f32(p, vget_low_f32(a.v)); }

inline f32x4 operator+(f32x4 a, f32x4 b) { return {vaddq_f32(a.v, b.v)}; }
inline f32x4 operator-(f32x4 a, f32x4 b) { return {vsubq_f32(a.v, b.v)}; }
inline f32x4 operator*(f32x4 a, f32x4 b) { return {vmulq_f32(a.v, b.v)}; }
inline f32x4 operator/(f32x4 a, f32x4 b) { return {vdivq_f32(a.v, b.v)}; }

inline f32x4 fma(f32x4 a, f32x4 b, f32x4 c) { return {vfmaq_f32(c.v, a.v, b.v)}; }
inline f32x4 fms(f32x4 a, f32x4 b, f32x4 c) { return {vfmsq_f32(c.v, a.v, b.v)}; }
inline f32x4 fnms(f32x4 a, f32x4 b, f32x4 c) { return {vfmaq_f32(vnegq_f32(c.v), a.v, b.v)}; }

inline f32x4 maxnum(f32x4 a, f32x4 b) { return {vmaxnmq_f32(a.v, b.v)}; }
inline f32x4 minnum(f32x4 a, f32x4 b) { return {vminnmq_f32(a.v, b.v)}; }
// The C library's functions, which need not order zeros, are these operations here.
inline float maxnum(float a, float b) { return std::fmax(a, b); }
inline float minnum(float a, float b) { return std::fmin(a, b); }
inline double maxnum(double a, double b) { return std::fmax(a, b); }
inline double minnum(double a, double b) { return std::fmin(a, b); }
inline f32x4 max_propagating(f32x4 a, f32x4 b) { return {vmaxq_f32(a.v, b.v)}; }
inline f32x4 min_propagating(f32x4 a, f32x4 b) { return {vminq_f32(a.v, b.v)}; }

inline f32x4 reverse(f32x4 a) {
  const float32x4_t pairs = vrev64q_f32(a.v);
  return {vextq_f32(pairs, pairs, 2)};
}

inline halves<f32x4> interleave(f32x4 a, f32x4 b) {
  return {{vzip1q_f32(a.v, b.v)}, {vzip2q_f32(a.v, b.v)}};
}
inline halves<f32x4> deinterleave(f32x4 a, f32x4 b) {
  return {{vuzp1q_f32(a.v, b.v)}, {vuzp2q_f32(a.v, b.v)}};
}

inline halves<f32x4> interleave_pairs(f32x4 a, f32x4 b) {
  return {{vcombine_f32(vget_low_f32(a.v), vget_low_f32(b.v))},
          {vcombine_f32(vget_high_f32(a.v), vget_high_f32(b.v))}};
}

inline void transpose(f32x4 (&r)[4]) {
  const auto a = interleave(r[0], r[2]), b = interleave(r[1], r[3]);
  const auto lo = interleave(a.lo, b.lo), hi = interleave(a.hi, b.hi);
  r[0] = lo.lo;
  r[1] = lo.hi;
  r[2] = hi.lo;
  r[3] = hi.hi;
}

inline f32x4 with_lane0(f32x4 a, f32x4 b) { return {vcopyq_laneq_f32(b.v, 0, a.v, 0)}; }

template <>
inline halves<f32x4> load_split_pairs<f32x4>(const float *p) {
  const float32x4x2_t z = vld2q_f32(p);
  return {{z.val[0]}, {z.val[1]}};
}
inline void store_interleaved(float *p, f32x4 even, f32x4 odd) {
  vst2q_f32(p, float32x4x2_t{{even.v, odd.v}});
}

// The compiler doesn't let these instructions move their pointers on, which saves one
// addition for each.
template <>
MVK_INLINE halves<f32x4> load_next<f32x4>(const float *&p) {
  float32x4_t a, b;
  const float *at = p;
  asm("ldp %q0, %q1, [%2], #32"
      : "=w"(a), "=w"(b), "+r"(at)
      : "m"(*reinterpret_cast<const float(*)[8]>(at)));
  p = at;
  return {{a}, {b}};
}
// This one does, if it doesn't see how the pointers hang together.
template <>
MVK_INLINE halves<f32x4> load_split_next<f32x4>(const float *&p) {
  const float *at = p;
  const float32x4x2_t z = vld2q_f32(at);
  at += 8;
  asm("" : "+r"(at));
  p = at;
  return {{z.val[0]}, {z.val[1]}};
}
MVK_INLINE void store_next(float *&p, f32x4 a, f32x4 b) {
  const float32x4_t x = a.v, y = b.v;
  float *at = p;
  auto *const both = reinterpret_cast<float(*)[8]>(at);
  asm("stp %q2, %q3, [%0], #32" : "+r"(at), "=m"(*both) : "w"(x), "w"(y));
  p = at;
}
MVK_INLINE void store_interleaved_next(float *&p, f32x4 even, f32x4 odd) {
  register float32x4_t x asm("v30") = even.v;  // two registers in a row
  register float32x4_t y asm("v31") = odd.v;
  float *at = p;
  auto *const both = reinterpret_cast<float(*)[8]>(at);
  asm("st2 {%2.4s, %3.4s}, [%0], #32" : "+r"(at), "=m"(*both) : "w"(x), "w"(y));
  p = at;
}

inline halves<f32x4> split_pairs(f32x4 a, f32x4 b) { return deinterleave(a, b); }
inline halves<f32x4> join_pairs(f32x4 even, f32x4 odd) { return interleave(even, odd); }
inline f32x4 natural_order(f32x4 a) { return a; }

inline f32x4 operator-(f32x4 a) { return {vnegq_f32(a.v)}; }
inline f32x4 abs(f32x4 a) { return {vabsq_f32(a.v)}; }
inline f32x4 where_greater(f32x4 a, f32x4 b, f32x4 x, f32x4 y) {
  return {vbslq_f32(vcgtq_f32(a.v, b.v), x.v, y.v)};
}
inline f32x4 greater_of(f32x4 a, f32x4 b) { return where_greater(a, b, a, b); }
inline f32x4 lesser_of(f32x4 a, f32x4 b) { return where_greater(b, a, a, b); }
inline f32x4 greater_magnitude(f32x4 a, f32x4 b) {
  return vreinterpretq_f32_u32(
      vmaxq_u32(vreinterpretq_u32_f32(vabsq_f32(a.v)), vreinterpretq_u32_f32(vabsq_f32(b.v))));
}
inline f32x4 alternate(f32x4 even, f32x4 odd) {
  return vtrn2q_f32(vextq_f32(even.v, even.v, 3), odd.v);
}
inline bool any_greater(f32x4 a, f32x4 b) { return vmaxvq_u32(vcgtq_f32(a.v, b.v)) != 0; }

struct f64x2 {
  float64x2_t v;
};
inline f64x2 operator+(f64x2 a, f64x2 b) { return {vaddq_f64(a.v, b.v)}; }
inline double sum(f64x2 a) { return vgetq_lane_f64(a.v, 0) + vgetq_lane_f64(a.v, 1); }

struct f64x4 {
  float64x2_t lo, hi;

  f64x4(float64x2_t a, float64x2_t b) : lo(a), hi(b) {}
  f64x4(double x) : lo(vdupq_n_f64(x)), hi(lo) {}
};

template <>
struct wide_of<f32x4> {
  using type = f64x4;
};
inline f64x4 widen(f32x4 a) { return {vcvt_f64_f32(vget_low_f32(a.v)), vcvt_high_f64_f32(a.v)}; }
inline f32x4 narrow(f64x4 a) { return {vcvt_high_f32_f64(vcvt_f32_f64(a.lo), a.hi)}; }
inline f64x4 operator*(f64x4 a, f64x4 b) { return {vmulq_f64(a.lo, b.lo), vmulq_f64(a.hi, b.hi)}; }
inline f64x2 lower(f64x4 a) { return {a.lo}; }
inline f64x2 upper(f64x4 a) { return {a.hi}; }
inline f64x4 operator/(f64x4 a, f64x4 b) { return {vdivq_f64(a.lo, b.lo), vdivq_f64(a.hi, b.hi)}; }

}  // namespace mvk

#include "core/simd/pair8.h"
#include "core/simd/wide8.h"
