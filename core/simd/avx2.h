// f32x4 and f32x8 on AVX2 with FMA.
#pragma once

#include <immintrin.h>

namespace mvk {

struct f32x4 {
  __m128 v;

  f32x4() = default;
  f32x4(__m128 lanes) : v(lanes) {}
  f32x4(float x) : v(_mm_set1_ps(x)) {}
  f32x4(float a, float b, float c, float d) : v(_mm_setr_ps(a, b, c, d)) {}
};
struct f32x8 {
  __m256 v;

  f32x8() = default;
  f32x8(__m256 lanes) : v(lanes) {}
  f32x8(float x) : v(_mm256_set1_ps(x)) {}
};

using native = f32x8;
inline constexpr bool fma_overwrites_addend = false, pointers_move_on = false, has_maxnum = false;

template <>
inline f32x4 load<f32x4>(const float *p) {
  return {_mm_loadu_ps(p)};
}
template <>
inline f32x8 load<f32x8>(const float *p) {
  return {_mm256_loadu_ps(p)};
}
// In a register from here on, also where the compiler would rather load twice than have
// one register less.
template <class V>
inline V load_once(const float *p) {
  V a = load<V>(p);
  if constexpr (sizeof(V) > sizeof *p) asm("" : "+x"(a.v));
  return a;
}
inline void store(float *p, f32x4 a) { _mm_storeu_ps(p, a.v); }
inline void store(float *p, f32x8 a) { _mm256_storeu_ps(p, a.v); }

// The two lower lanes.
inline f32x4 load_two(const float *p) {
  return {_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i_u *>(p)))};
}
inline void store_two(float *p, f32x4 a) {
  _mm_storel_epi64(reinterpret_cast<__m128i_u *>(p), _mm_castps_si128(a.v));
}

inline f32x4 operator+(f32x4 a, f32x4 b) { return {_mm_add_ps(a.v, b.v)}; }
inline f32x8 operator+(f32x8 a, f32x8 b) { return {_mm256_add_ps(a.v, b.v)}; }
inline f32x4 operator-(f32x4 a, f32x4 b) { return {_mm_sub_ps(a.v, b.v)}; }
inline f32x8 operator-(f32x8 a, f32x8 b) { return {_mm256_sub_ps(a.v, b.v)}; }
inline f32x4 operator*(f32x4 a, f32x4 b) { return {_mm_mul_ps(a.v, b.v)}; }
inline f32x8 operator*(f32x8 a, f32x8 b) { return {_mm256_mul_ps(a.v, b.v)}; }
inline f32x4 operator/(f32x4 a, f32x4 b) { return {_mm_div_ps(a.v, b.v)}; }
inline f32x8 operator/(f32x8 a, f32x8 b) { return {_mm256_div_ps(a.v, b.v)}; }

inline f32x4 fma(f32x4 a, f32x4 b, f32x4 c) { return {_mm_fmadd_ps(a.v, b.v, c.v)}; }
inline f32x8 fma(f32x8 a, f32x8 b, f32x8 c) { return {_mm256_fmadd_ps(a.v, b.v, c.v)}; }
inline f32x4 fms(f32x4 a, f32x4 b, f32x4 c) { return {_mm_fnmadd_ps(a.v, b.v, c.v)}; }
inline f32x8 fms(f32x8 a, f32x8 b, f32x8 c) { return {_mm256_fnmadd_ps(a.v, b.v, c.v)}; }
inline f32x4 fnms(f32x4 a, f32x4 b, f32x4 c) { return {_mm_fmsub_ps(a.v, b.v, c.v)}; }
inline f32x8 fnms(f32x8 a, f32x8 b, f32x8 c) { return {_mm256_fmsub_ps(a.v, b.v, c.v)}; }

// MAXPS and MINPS give their second operand for two zeros and for a NaN. Both
// orders together settle the zeros: equal operands differ at most in the sign
// bit, which AND clears for the maximum and OR sets for the minimum.
namespace detail {

inline __m128 nan(__m128 a) { return _mm_cmpunord_ps(a, a); }
inline __m256 nan(__m256 a) { return _mm256_cmp_ps(a, a, _CMP_UNORD_Q); }
inline __m128 either_nan(__m128 a, __m128 b) { return _mm_cmpunord_ps(a, b); }
inline __m256 either_nan(__m256 a, __m256 b) { return _mm256_cmp_ps(a, b, _CMP_UNORD_Q); }
inline __m128 select(__m128 mask, __m128 a, __m128 b) { return _mm_blendv_ps(b, a, mask); }
inline __m256 select(__m256 mask, __m256 a, __m256 b) { return _mm256_blendv_ps(b, a, mask); }

inline __m128 ordered_max(__m128 a, __m128 b) {
  return _mm_and_ps(_mm_max_ps(a, b), _mm_max_ps(b, a));
}
inline __m256 ordered_max(__m256 a, __m256 b) {
  return _mm256_and_ps(_mm256_max_ps(a, b), _mm256_max_ps(b, a));
}
inline __m128 ordered_min(__m128 a, __m128 b) {
  return _mm_or_ps(_mm_min_ps(a, b), _mm_min_ps(b, a));
}
inline __m256 ordered_min(__m256 a, __m256 b) {
  return _mm256_or_ps(_mm256_min_ps(a, b), _mm256_min_ps(b, a));
}

template <class R>
inline R maxnum(R a, R b) {
  return select(nan(a), b, select(nan(b), a, ordered_max(a, b)));
}
template <class R>
inline R minnum(R a, R b) {
  return select(nan(a), b, select(nan(b), a, ordered_min(a, b)));
}
template <class V>
inline V max_propagating(V a, V b) {
  return select(either_nan(a.v, b.v), (a + b).v, ordered_max(a.v, b.v));
}
template <class V>
inline V min_propagating(V a, V b) {
  return select(either_nan(a.v, b.v), (a + b).v, ordered_min(a.v, b.v));
}

}  // namespace detail

inline f32x4 maxnum(f32x4 a, f32x4 b) { return detail::maxnum(a.v, b.v); }
inline f32x8 maxnum(f32x8 a, f32x8 b) { return detail::maxnum(a.v, b.v); }
inline f32x4 minnum(f32x4 a, f32x4 b) { return detail::minnum(a.v, b.v); }
inline f32x8 minnum(f32x8 a, f32x8 b) { return detail::minnum(a.v, b.v); }
inline f32x4 max_propagating(f32x4 a, f32x4 b) { return detail::max_propagating(a, b); }
inline f32x8 max_propagating(f32x8 a, f32x8 b) { return detail::max_propagating(a, b); }
inline f32x4 min_propagating(f32x4 a, f32x4 b) { return detail::min_propagating(a, b); }
inline f32x8 min_propagating(f32x8 a, f32x8 b) { return detail::min_propagating(a, b); }

inline f32x4 reverse(f32x4 a) { return {_mm_permute_ps(a.v, 0x1b)}; }
inline f32x8 reverse(f32x8 a) {
  return {_mm256_permute2f128_ps(_mm256_permute_ps(a.v, 0x1b), _mm256_permute_ps(a.v, 0x1b), 1)};
}

inline halves<f32x4> interleave(f32x4 a, f32x4 b) {
  return {{_mm_unpacklo_ps(a.v, b.v)}, {_mm_unpackhi_ps(a.v, b.v)}};
}
inline halves<f32x8> interleave(f32x8 a, f32x8 b) {
  const __m256 even = _mm256_unpacklo_ps(a.v, b.v), odd = _mm256_unpackhi_ps(a.v, b.v);
  return {{_mm256_permute2f128_ps(even, odd, 0x20)}, {_mm256_permute2f128_ps(even, odd, 0x31)}};
}

inline halves<f32x4> deinterleave(f32x4 a, f32x4 b) {
  return {{_mm_shuffle_ps(a.v, b.v, 0x88)}, {_mm_shuffle_ps(a.v, b.v, 0xdd)}};
}
inline halves<f32x8> deinterleave(f32x8 a, f32x8 b) {
  const __m256 first = _mm256_permute2f128_ps(a.v, b.v, 0x20);
  const __m256 second = _mm256_permute2f128_ps(a.v, b.v, 0x31);
  return {{_mm256_shuffle_ps(first, second, 0x88)}, {_mm256_shuffle_ps(first, second, 0xdd)}};
}

inline halves<f32x4> interleave_pairs(f32x4 a, f32x4 b) {
  return {{_mm_movelh_ps(a.v, b.v)}, {_mm_movehl_ps(b.v, a.v)}};
}
inline halves<f32x8> interleave_pairs(f32x8 a, f32x8 b) {
  return {{_mm256_shuffle_ps(a.v, b.v, 0x44)}, {_mm256_shuffle_ps(a.v, b.v, 0xee)}};
}

// Within each half of a register, which is all that joining needs to undo.
inline halves<f32x4> split_pairs(f32x4 a, f32x4 b) { return deinterleave(a, b); }
inline halves<f32x8> split_pairs(f32x8 a, f32x8 b) {
  return {{_mm256_shuffle_ps(a.v, b.v, 0x88)}, {_mm256_shuffle_ps(a.v, b.v, 0xdd)}};
}
inline halves<f32x4> join_pairs(f32x4 even, f32x4 odd) { return interleave(even, odd); }
inline halves<f32x8> join_pairs(f32x8 even, f32x8 odd) {
  return {{_mm256_unpacklo_ps(even.v, odd.v)}, {_mm256_unpackhi_ps(even.v, odd.v)}};
}
inline f32x4 natural_order(f32x4 a) { return a; }
template <>
inline constexpr int split_lane<f32x8>[] = {0, 1, 4, 5, 2, 3, 6, 7};
inline f32x8 natural_order(f32x8 a) {
  return {_mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(a.v), 0xd8))};
}

template <>
inline halves<f32x4> load_split_pairs<f32x4>(const float *p) {
  return split_pairs(load_once<f32x4>(p), load_once<f32x4>(p + 4));
}
template <>
inline halves<f32x8> load_split_pairs<f32x8>(const float *p) {
  return split_pairs(load_once<f32x8>(p), load_once<f32x8>(p + 8));
}
template <class V>
inline void store_interleaved(float *p, V even, V odd) {
  const auto [lo, hi] = interleave(even, odd);
  store(p, lo);
  store(p + sizeof(V) / sizeof *p, hi);
}

// The halves change places on their way from memory, or as pairs.
template <>
inline f32x8 load_descending<f32x8>(const float *p) {
  return {_mm256_permute_ps(_mm256_loadu2_m128(p - 7, p - 3), 0x1b)};
}
template <>
inline f32x8 load_every_fourth<f32x8>(const float *p) {
  const f32x8 first = split_pairs(load<f32x8>(p), load<f32x8>(p + 8)).lo;
  const f32x8 second = split_pairs(load<f32x8>(p + 16), load<f32x8>(p + 24)).lo;
  return {_mm256_permutevar8x32_ps(split_pairs(first, second).lo.v,
                                   _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))};
}
template <>
inline halves<f32x8> load_pairs_descending<f32x8>(const float *p) {
  const __m256 near = _mm256_loadu_ps(p - 6), far = _mm256_loadu_ps(p - 14);
  const auto turned = [](__m256 pairs) {
    return f32x8(_mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(pairs), 0x72)));
  };
  return {turned(_mm256_shuffle_ps(near, far, 0x22)), turned(_mm256_shuffle_ps(near, far, 0x77))};
}
inline void store_pairs_descending(float *p, f32x8 even, f32x8 odd) {
  const auto swapped = [](__m256 pairs) {
    return _mm256_castpd_ps(_mm256_permute_pd(_mm256_castps_pd(pairs), 0x5));
  };
  const __m256 lower = swapped(_mm256_unpacklo_ps(even.v, odd.v));
  const __m256 upper = swapped(_mm256_unpackhi_ps(even.v, odd.v));
  _mm256_storeu_ps(p - 6, _mm256_permute2f128_ps(upper, lower, 0x20));
  _mm256_storeu_ps(p - 14, _mm256_permute2f128_ps(upper, lower, 0x31));
}

inline f32x4 operator-(f32x4 a) { return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))}; }
inline f32x8 operator-(f32x8 a) { return {_mm256_xor_ps(a.v, _mm256_set1_ps(-0.0f))}; }
inline f32x4 abs(f32x4 a) { return {_mm_andnot_ps(_mm_set1_ps(-0.0f), a.v)}; }
inline f32x8 abs(f32x8 a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }
inline f32x4 greater_of(f32x4 a, f32x4 b) { return {_mm_max_ps(a.v, b.v)}; }
inline f32x8 greater_of(f32x8 a, f32x8 b) { return {_mm256_max_ps(a.v, b.v)}; }
inline f32x4 lesser_of(f32x4 a, f32x4 b) { return {_mm_min_ps(a.v, b.v)}; }
inline f32x8 lesser_of(f32x8 a, f32x8 b) { return {_mm256_min_ps(a.v, b.v)}; }
inline f32x4 where_greater(f32x4 a, f32x4 b, f32x4 x, f32x4 y) {
  return {detail::select(_mm_cmpgt_ps(a.v, b.v), x.v, y.v)};
}
inline f32x8 where_greater(f32x8 a, f32x8 b, f32x8 x, f32x8 y) {
  return {detail::select(_mm256_cmp_ps(a.v, b.v, _CMP_GT_OQ), x.v, y.v)};
}
inline f32x4 greater_magnitude(f32x4 a, f32x4 b) {
  return _mm_castsi128_ps(_mm_max_epi32(_mm_castps_si128(abs(a).v), _mm_castps_si128(abs(b).v)));
}
inline f32x8 greater_magnitude(f32x8 a, f32x8 b) {
  return _mm256_castsi256_ps(
      _mm256_max_epi32(_mm256_castps_si256(abs(a).v), _mm256_castps_si256(abs(b).v)));
}
inline f32x4 alternate(f32x4 even, f32x4 odd) { return _mm_blend_ps(even.v, odd.v, 0xa); }
inline f32x8 alternate(f32x8 even, f32x8 odd) { return _mm256_blend_ps(even.v, odd.v, 0xaa); }
inline bool any_greater(f32x4 a, f32x4 b) { return _mm_movemask_ps(_mm_cmpgt_ps(a.v, b.v)) != 0; }
inline bool any_greater(f32x8 a, f32x8 b) {
  return _mm256_movemask_ps(_mm256_cmp_ps(a.v, b.v, _CMP_GT_OQ)) != 0;
}

inline f32x4 with_lane0(f32x4 a, f32x4 b) { return {_mm_blend_ps(b.v, a.v, 1)}; }
inline f32x8 with_lane0(f32x8 a, f32x8 b) { return {_mm256_blend_ps(b.v, a.v, 1)}; }
inline f32x8 with_lanes04(f32x8 a, f32x8 b) { return {_mm256_blend_ps(b.v, a.v, 0x11)}; }

inline f32x4 lower(f32x8 a) { return {_mm256_castps256_ps128(a.v)}; }
inline f32x4 upper(f32x8 a) { return {_mm256_extractf128_ps(a.v, 1)}; }
inline f32x8 both(f32x4 lo, f32x4 hi) { return {_mm256_set_m128(hi.v, lo.v)}; }
inline f32x8 swap_halves(f32x8 a) { return {_mm256_permute2f128_ps(a.v, a.v, 1)}; }

struct f64x2 {
  __m128d v;
};
inline f64x2 operator+(f64x2 a, f64x2 b) { return {_mm_add_pd(a.v, b.v)}; }
inline double sum(f64x2 a) { return a.v[0] + a.v[1]; }

struct f64x4 {
  __m256d v;

  f64x4(__m256d lanes) : v(lanes) {}
  f64x4(double x) : v(_mm256_set1_pd(x)) {}
};

template <>
struct wide_of<f32x4> {
  using type = f64x4;
};
inline f64x4 widen(f32x4 a) { return {_mm256_cvtps_pd(a.v)}; }
inline f32x4 narrow(f64x4 a) { return {_mm256_cvtpd_ps(a.v)}; }
inline f64x4 operator*(f64x4 a, f64x4 b) { return {_mm256_mul_pd(a.v, b.v)}; }
inline f64x2 lower(f64x4 a) { return {_mm256_castpd256_pd128(a.v)}; }
inline f64x2 upper(f64x4 a) { return {_mm256_extractf128_pd(a.v, 1)}; }
inline f64x4 operator/(f64x4 a, f64x4 b) { return {_mm256_div_pd(a.v, b.v)}; }

inline void transpose(f32x4 (&r)[4]) { _MM_TRANSPOSE4_PS(r[0].v, r[1].v, r[2].v, r[3].v); }

inline void transpose_fours(f32x8 (&r)[4]) {
  const __m256 a = _mm256_unpacklo_ps(r[0].v, r[1].v), b = _mm256_unpackhi_ps(r[0].v, r[1].v);
  const __m256 c = _mm256_unpacklo_ps(r[2].v, r[3].v), d = _mm256_unpackhi_ps(r[2].v, r[3].v);
  r[0] = {_mm256_shuffle_ps(a, c, 0x44)};
  r[1] = {_mm256_shuffle_ps(a, c, 0xee)};
  r[2] = {_mm256_shuffle_ps(b, d, 0x44)};
  r[3] = {_mm256_shuffle_ps(b, d, 0xee)};
}

inline void transpose(f32x8 (&r)[8]) {
  __m256 pairs[8], quads[8];
  for (int i = 0; i < 8; i += 4) {
    for (int j = i; j < i + 4; j += 2) {
      pairs[j] = _mm256_unpacklo_ps(r[j].v, r[j + 1].v);
      pairs[j + 1] = _mm256_unpackhi_ps(r[j].v, r[j + 1].v);
    }
    quads[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
    quads[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xee);
    quads[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
    quads[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xee);
  }
  for (int i = 0; i < 4; ++i) {
    r[i] = {_mm256_permute2f128_ps(quads[i], quads[4 + i], 0x20)};
    r[4 + i] = {_mm256_permute2f128_ps(quads[i], quads[4 + i], 0x31)};
  }
}

}  // namespace mvk

#include "core/simd/wide8.h"
