// Complex values between two passes.
//
// Element e of a work area, in groups of G: G real parts, then G imaginary parts. A group of
// vector size is loaded and stored without a shuffle; groups of 1 are pairs, the order of a
// transform's input and output. A vector of consecutive elements may be written over the
// elements that it was computed from, as long as both are in one group or in pairs.
#pragma once

#include <cstddef>

#include "core/complex.h"
#include "core/loop.h"

namespace mvk {

// j times the conjugate. An inverse transform is the forward one between two of these.
template <class V>
MVK_INLINE cpx<V> exchanged(cpx<V> z) {
  return {z.im, z.re};
}
template <bool inverse, class V>
MVK_INLINE cpx<V> exchanged_if(cpx<V> z) {
  return inverse ? exchanged(z) : z;
}

template <int G>
constexpr std::size_t offset_of(std::size_t e) {
  return 2 * (e & ~std::size_t{G - 1}) + (e & std::size_t{G - 1});
}

// Elements e to e + lanes - 1, which are in one group unless in pairs.
template <class V, int G>
MVK_INLINE cpx<V> load_elements(const float *work, std::size_t e) {
  if constexpr (G == 1) {
    return load_complex<V>(work + 2 * e);
  } else {
    const float *p = work + (G == lanes<V> ? 2 * e : offset_of<G>(e));
    return {load_once<V>(p), load_once<V>(p + G)};
  }
}
template <int G, class V>
MVK_INLINE void store_elements(float *work, std::size_t e, cpx<V> z) {
  if constexpr (G == 1) {
    store_complex(work + 2 * e, z);
  } else {
    float *p = work + (G == lanes<V> ? 2 * e : offset_of<G>(e));
    store(p, z.re);
    store(p + G, z.im);
  }
}

// Pairs from lanes in split order.
template <class V>
MVK_INLINE void store_split(float *work, std::size_t e, cpx<V> z) {
  const halves<V> pairs = join_pairs(z.re, z.im);
  store(work + 2 * e, pairs.lo);
  store(work + 2 * e + lanes<V>, pairs.hi);
}

}  // namespace mvk
