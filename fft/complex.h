// Complex numbers, one or one in every lane.
#pragma once

#include "core/simd.h"

// What is part of a pass is inlined there, whole: passed in memory, its vectors would be lost.
#define MVK_INLINE [[gnu::always_inline]] inline
#define MVK_INLINED_LAMBDA __attribute__((always_inline))

namespace mvk {

template <class V>
struct cpx {
  V re, im;
};
template <class V>
cpx(V, V) -> cpx<V>;

template <class A, class B>
MVK_INLINE auto operator+(cpx<A> a, cpx<B> b) {
  return cpx{a.re + b.re, a.im + b.im};
}
template <class A, class B>
MVK_INLINE auto operator-(cpx<A> a, cpx<B> b) {
  return cpx{a.re - b.re, a.im - b.im};
}

// j times the conjugate. An inverse transform is the forward one between two of these.
template <class V>
MVK_INLINE cpx<V> exchanged(cpx<V> z) {
  return {z.im, z.re};
}
template <bool inverse, class V>
MVK_INLINE cpx<V> exchanged_if(cpx<V> z) {
  return inverse ? exchanged(z) : z;
}

// An input x that is yet to be scaled by s: where it joins a sum the product is fused.
template <class V>
struct unscaled {
  V x, s;
};
template <class V>
MVK_INLINE V operator+(unscaled<V> a, V b) {
  return fma(a.x, a.s, b);
}
template <class V>
MVK_INLINE V operator+(V a, unscaled<V> b) {
  return fma(b.x, b.s, a);
}
template <class V>
MVK_INLINE V operator-(unscaled<V> a, V b) {
  return fnms(a.x, a.s, b);
}
template <class V>
MVK_INLINE V operator-(V a, unscaled<V> b) {
  return fms(b.x, b.s, a);
}

}  // namespace mvk
