// f32x4 on the Advanced SIMD unit of 64-bit Arm.
#pragma once

#include <arm_neon.h>

namespace mvk {

struct f32x4 {
  float32x4_t v;
};

template <>
inline f32x4 load<f32x4>(const float *p) {
  return {vld1q_f32(p)};
}
template <>
inline f32x4 splat<f32x4>(float x) {
  return {vdupq_n_f32(x)};
}
inline void store(float *p, f32x4 a) { vst1q_f32(p, a.v); }

inline f32x4 operator+(f32x4 a, f32x4 b) { return {vaddq_f32(a.v, b.v)}; }
inline f32x4 operator-(f32x4 a, f32x4 b) { return {vsubq_f32(a.v, b.v)}; }
inline f32x4 operator*(f32x4 a, f32x4 b) { return {vmulq_f32(a.v, b.v)}; }
inline f32x4 operator/(f32x4 a, f32x4 b) { return {vdivq_f32(a.v, b.v)}; }

inline f32x4 fma(f32x4 a, f32x4 b, f32x4 c) { return {vfmaq_f32(c.v, a.v, b.v)}; }
inline f32x4 fms(f32x4 a, f32x4 b, f32x4 c) { return {vfmsq_f32(c.v, a.v, b.v)}; }
inline f32x4 fnms(f32x4 a, f32x4 b, f32x4 c) { return {vfmaq_f32(vnegq_f32(c.v), a.v, b.v)}; }

inline f32x4 maxnum(f32x4 a, f32x4 b) { return {vmaxnmq_f32(a.v, b.v)}; }
inline f32x4 minnum(f32x4 a, f32x4 b) { return {vminnmq_f32(a.v, b.v)}; }
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

inline void transpose(f32x4 (&r)[4]) {
  const auto a = interleave(r[0], r[2]), b = interleave(r[1], r[3]);
  const auto lo = interleave(a.lo, b.lo), hi = interleave(a.hi, b.hi);
  r[0] = lo.lo;
  r[1] = lo.hi;
  r[2] = hi.lo;
  r[3] = hi.hi;
}

}  // namespace mvk

#include "core/simd/pair8.h"
