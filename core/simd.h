// The vector types and the notation of arithmetic.
//
// f32x4 and f32x8 are small value types with named operations, and the same
// operations are overloaded for float, and double where it makes sense, so that
// an equation is written once, as a template over V, for vector bodies and
// scalar tails alike. Each backend file gives f32x4; f32x8 is a register of its
// own where the processor has one and two f32x4 elsewhere. All backends give the
// same bits.
//
//   lanes<V>                     samples in a V: 1, 4, 8
//   load<V>(p), store(p, v)      any float address
//   load_once<V>(p)              the same, held in a register from there on
//   load_descending<V>(p),       lane 0 at p, lane 1 before it, and so on
//   store_descending(p, v)
//   load_every_fourth<V>(p)      lanes p[0], p[4] and so on; what lies between is read
//   V(x)                         x in every lane; a float beside a V becomes one
//   a + b, a - b, a * b, a / b   one rounding each
//   fma(a, b, c)                 a * b + c, one rounding
//   fms(a, b, c)                 c - a * b, one rounding
//   fnms(a, b, c)                a * b - c, one rounding
//   maxnum, minnum               IEEE 754-2008 maxNum and minNum: a number beats
//                                a (quiet) NaN; +0 is greater than -0
//   max_propagating,             a NaN in either operand gives a NaN;
//   min_propagating              +0 is greater than -0
//   reverse(v)                   lanes in reverse order
//   interleave(a, b)             {a0 b0 a1 b1 ..., the upper half likewise}
//   deinterleave(a, b)           its inverse: {even lanes, odd lanes}
//   transpose(rows)              square block of as many rows as lanes, in place
//   interleave_pairs(a, b)       {pair 0 of a, pair 0 of b, ...}, within each half of an
//                                eight-lane one
//   split_pairs(a, b)            {even lanes, odd lanes} of a b, but in an order of
//                                lanes of the processor's own
//   join_pairs(e, o)             its inverse
//   split_lane<V>[l]             where in memory lane l of that order comes from
//   load_pairs_descending<V>(p), {even, odd} lanes of the pair at p, of that before it, and so
//   store_pairs_descending(p, e, o)    on, in the order of lanes
//   natural_order(v)             from that order of lanes to the order in memory; it
//                                is its own inverse
//   load_split_pairs<V>(p)             split_pairs of the pairs at p, as many as lanes
//   load_next<V>(p),             {v0 v1 ...} and what follows, from or to p, which moves on
//   load_split_next<V>(p),       behind them
//   store_next(p, a, b),
//   store_interleaved_next(p, e, o)
//   store_interleaved(p, e, o)         {e0 o0 e1 o1 ...} to p
//   transpose_fours(rows)        transposes four rows, in each half of an eight-lane one
//   with_lane0(a, b)             b with lane 0 of a; with_lanes04: and lane 4
//   abs(v), -v                   sign bit cleared, inverted
//   greater_of(a, b)             a > b ? a : b, lane by lane: b for a NaN
//   lesser_of(a, b)              a < b ? a : b
//   where_greater(a, b, x, y)    a > b ? x : y
//   greater_magnitude(a, b)      the larger of |a| and |b| by their bits, so that a
//                                NaN is greater than infinity
//   alternate(e, o)              even lanes of e, odd lanes of o
//   any_greater(a, b)            a > b in some lane
//   widen(v), narrow(w)          binary64 in every lane, and back with one
//                                rounding; wide<V> has * / and W(x)
//   lower(v), upper(v), sum(w)   halves of a vector; w[0] + w[1] of an f64x2
//
// `native` is the widest vector that is one register. Of the processor, fma_overwrites_addend
// says that a fused operation does so, and pointers_move_on that loads and stores can move
// their pointers on, and that there are pointers enough for each operand to have one; has_maxnum
// that maxnum and minnum are operations of its own.
//
// (The names fms and fnms are the equations' own: x86's fmsub is fnms here and
// its fnmadd is fms.)
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

// What works on vectors is inlined, whole: passed in memory, they would be lost. Not so for the
// sanitizers, whose checks would keep the compiler busy for minutes.
#if defined(__SANITIZE_ADDRESS__)
#define MVK_INLINE inline
#define MVK_INLINED_LAMBDA
#else
#define MVK_INLINE [[gnu::always_inline]] inline
#define MVK_INLINED_LAMBDA __attribute__((always_inline))
#endif

namespace mvk {

// The two halves of what a pair of vectors is rearranged into.
template <class V>
struct halves {
  V lo, hi;
};

template <class V>
V load(const float *p);
template <class V>
V load_descending(const float *p);
template <class V>
V load_every_fourth(const float *p);
template <class V>
halves<V> load_split_pairs(const float *p);
template <class V>
halves<V> load_pairs_descending(const float *p);
template <class V>
halves<V> load_next(const float *&p);
template <class V>
halves<V> load_split_next(const float *&p);

template <class V>
inline constexpr int split_lane[] = {0, 1, 2, 3, 4, 5, 6, 7};

// The binary64 vector of as many lanes as V.
template <class V>
struct wide_of;
template <class V>
using wide = typename wide_of<V>::type;

}  // namespace mvk

#if defined(MVK_SIMD_AVX2)
#include "core/simd/avx2.h"
#elif defined(MVK_SIMD_NEON)
#include "core/simd/neon.h"
#elif defined(MVK_SIMD_PORTABLE)
#include "core/simd/portable.h"
#else
#error "no vector backend: the build defines MVK_SIMD_AVX2, MVK_SIMD_NEON or MVK_SIMD_PORTABLE"
#endif

#include "core/simd/scalar.h"

namespace mvk {

template <class V>
inline constexpr int lanes = sizeof(V) / sizeof(float);

#if !defined(MVK_SIMD_AVX2)
template <class V>
inline V load_once(const float *p) {
  return load<V>(p);
}
#endif

template <class V>
MVK_INLINE V load_descending(const float *p) {
  return reverse(load<V>(p - (lanes<V> - 1)));
}
template <class V>
MVK_INLINE void store_descending(float *p, V a) {
  store(p - (lanes<V> - 1), reverse(a));
}

template <class V>
MVK_INLINE V load_every_fourth(const float *p) {
  if constexpr (lanes<V> == 1) {
    return *p;
  } else {
    const auto every_second = [](V a, V b) MVK_INLINED_LAMBDA {
      return natural_order(split_pairs(a, b).lo);
    };
    return every_second(every_second(load<V>(p), load<V>(p + lanes<V>)),
                        every_second(load<V>(p + 2 * lanes<V>), load<V>(p + 3 * lanes<V>)));
  }
}

template <class V>
MVK_INLINE halves<V> load_pairs_descending(const float *p) {
  const halves<V> z = load_split_pairs<V>(p - 2 * (lanes<V> - 1));
  return {reverse(natural_order(z.lo)), reverse(natural_order(z.hi))};
}
template <class V>
MVK_INLINE void store_pairs_descending(float *p, V even, V odd) {
  store_interleaved(p - 2 * (lanes<V> - 1), reverse(even), reverse(odd));
}

template <class V>
MVK_INLINE halves<V> load_next(const float *&p) {
  const halves<V> z = {load<V>(p), load<V>(p + lanes<V>)};
  p += 2 * lanes<V>;
  return z;
}
template <class V>
MVK_INLINE halves<V> load_split_next(const float *&p) {
  const halves<V> z = load_split_pairs<V>(p);
  p += 2 * lanes<V>;
  return z;
}
template <class V>
MVK_INLINE void store_next(float *&p, V a, V b) {
  store(p, a);
  store(p + lanes<V>, b);
  p += 2 * lanes<V>;
}
template <class V>
MVK_INLINE void store_interleaved_next(float *&p, V even, V odd) {
  store_interleaved(p, even, odd);
  p += 2 * lanes<V>;
}

inline void transpose_fours(f32x4 (&rows)[4]) { transpose(rows); }

// 2^k by its exponent's bits, (k + 127) << 23, unchecked: k = -127 gives 0,
// k = 128 infinity, and beyond that the pattern wraps, sign bit included. A
// negative k is given modulo 2^32, as an int converts.
constexpr float exp2_bits(std::uint32_t k) { return std::bit_cast<float>((k + 127u) << 23); }

}  // namespace mvk
