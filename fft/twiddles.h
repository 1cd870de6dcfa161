// The twiddles of a pass: W^(q k) for q from 1 to R - 1 and k below M = L / R, with
// W = exp(-2 pi j / L), in the order in which the pass reads them.
#pragma once

#include <cstddef>

#include "core/tables.h"
#include "fft/complex.h"

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
template <accuracy a, int L, int R, int G, bool twice = false>
inline constexpr auto stage_twiddles = [] {
  constexpr int M = L / R, distinct = twice ? G / 2 : G ? G : M, copies = twice ? 2 : 1;
  static_assert(M % distinct == 0);
  table<2 * (R - 1) * M * copies> t{};
  float *next = t.v;
  for (int k = 0; k < M; k += distinct)
    for (int q = 1; q < R; ++q) {
      for (int i = 0; i < distinct * copies; ++i)
        *next++ = twiddle_cos<a>(long{q} * (k + i % distinct), L);
      for (int i = 0; i < distinct * copies; ++i)
        *next++ = twiddle_sin<a>(long{q} * (k + i % distinct), L);
    }
  return t;
}();

// Reads the table for vectors at its place of the group that begins there.
template <class V>
struct grouped_twiddles {
  const float *group;

  cpx<V> operator()(int q) const {
    const float *p = group + 2 * lanes<V> * (q - 1);
    return {load<V>(p), load<V>(p + lanes<V>)};
  }
};

// Reads the table for any vectors, of M values of k, at k.
template <class V>
struct plain_twiddles {
  const float *at_k;
  std::size_t M;

  cpx<V> operator()(int q) const {
    const float *p = at_k + 2 * M * static_cast<std::size_t>(q - 1);
    return {load<V>(p), load<V>(p + M)};
  }
};

}  // namespace mvk
