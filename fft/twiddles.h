// The twiddles of a pass: W^(q k) for q from 1 to R - 1 and k below M = L / R, with
// W = exp(-2 pi j / L), in the order in which the pass reads them.
#pragma once

#include <cstddef>

#include "core/complex.h"
#include "core/tables.h"

namespace mvk {

// How exactly a twiddle is stored: in single precision, or to six decimals before that. A sine
// of zero is +0, and -0 among the twiddles of composite lengths.
enum class accuracy { full, six_decimals, composite };

template <accuracy a>
constexpr float twiddle_cos(long p, long l) {
  const double c = cos_pi(2 * p, l);
  return a == accuracy::full ? static_cast<float>(c) : six_decimals(c);
}
template <accuracy a>
constexpr float twiddle_sin(long p, long l) {
  const double s = sin_pi(2 * p, l);
  if (a == accuracy::composite) return -six_decimals(s);
  return a == accuracy::full ? static_cast<float>(0 - s) : six_decimals(0 - s);
}

// For vectors of G lanes: for each G consecutive k, for each q, G cosines and G sines. With
// `twice`, both halves of a vector have the twiddles of the same G / 2 values of k. G of 0 is
// for any vectors: for each q, all cosines, then all sines.
template <accuracy a, int L, int R, int G, bool split, bool twice = false>
inline constexpr auto stage_twiddles = [] {
  constexpr int M = L / R, distinct = twice ? G / 2 : G ? G : M, copies = twice ? 2 : 1;
  static_assert(M % distinct == 0);
  table<2 * (R - 1) * M * copies> t{};
  const auto lane = [](int i) { return split ? split_lane<f32x8>[i] : i; };
  float *next = t.v;
  for (int k = 0; k < M; k += distinct)
    for (int q = 1; q < R; ++q) {
      for (int i = 0; i < distinct * copies; ++i)
        *next++ = twiddle_cos<a>(long{q} * (k + lane(i) % distinct), L);
      for (int i = 0; i < distinct * copies; ++i)
        *next++ = twiddle_sin<a>(long{q} * (k + lane(i) % distinct), L);
    }
  return t;
}();

// The twiddles of the passes that turn by tangents, exp(-j a) = c (1 + j t): for each G
// consecutive k, for each angle of the pass, G values of c and G of t. Radix 4 has the angles 2 x
// and x = 2 pi k / L, radix 8 has 4 x, 2 x, x and x + pi / 4. Where the cosine is zero, c is next
// to nothing instead, so that c t is still the sine.
template <int L, int R, int G, bool split>
inline constexpr auto stage_tangents = [] {
  constexpr int M = L / R, angles = R / 2;
  table<2 * angles * M> t{};
  float *next = t.v;
  for (int k = 0; k < M; k += G)
    for (int a = 0; a < angles; ++a) {
      const auto numerator = [=](int i) {  // of the angle as a fraction of 8 L
        const long x = 8L * (k + (split ? split_lane<f32x8>[i] : i));
        return a == 3 ? x + L : x << (R == 8 ? 2 - a : 1 - a);
      };
      const auto cosine = [=](int i) {
        const double c = cos_pi(2 * numerator(i), 8L * L);
        return c == 0 ? 0x1p-26 : c;
      };
      for (int i = 0; i < G; ++i) *next++ = static_cast<float>(cosine(i));
      for (int i = 0; i < G; ++i)
        *next++ = static_cast<float>(-sin_pi(2 * numerator(i), 8L * L) / cosine(i));
    }
  return t;
}();

// Reads the table for vectors at its place of the group that begins there.
template <class V>
struct grouped_twiddles {
  const float *group;

  MVK_INLINE cpx<V> operator()(int q) const {
    const float *p = group + 2 * lanes<V> * (q - 1);
    return {load_once<V>(p), load_once<V>(p + lanes<V>)};
  }
};

// Reads the table for any vectors, of M values of k, at k.
template <class V>
struct plain_twiddles {
  const float *at_k;
  std::size_t M;

  MVK_INLINE cpx<V> operator()(int q) const {
    const float *p = at_k + 2 * M * static_cast<std::size_t>(q - 1);
    return {load<V>(p), load<V>(p + M)};
  }
};

}  // namespace mvk
