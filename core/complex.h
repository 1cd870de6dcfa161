// Complex numbers, one or one in every lane.
#pragma once

#include "core/simd.h"

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

template <class V>
MVK_INLINE cpx<V> operator*(cpx<V> a, cpx<V> b) {
  return {fms(a.im, b.im, a.re * b.re), fma(a.im, b.re, a.re * b.im)};
}

// As many pairs of memory as V has lanes, real part first.
template <class V>
MVK_INLINE cpx<V> load_complex(const float *p) {
  const halves<V> z = load_split_pairs<V>(p);
  return {natural_order(z.lo), natural_order(z.hi)};
}
template <class V>
MVK_INLINE void store_complex(float *p, cpx<V> z) {
  store_interleaved(p, z.re, z.im);
}

// Lanes in reverse order.
template <class V>
MVK_INLINE cpx<V> reversed(cpx<V> z) {
  return {reverse(z.re), reverse(z.im)};
}

// Lane 0 at the pair p, lane 1 before it, and so on.
template <class V>
MVK_INLINE cpx<V> load_complex_descending(const float *p) {
  const halves<V> z = load_pairs_descending<V>(p);
  return {z.lo, z.hi};
}
template <class V>
MVK_INLINE void store_complex_descending(float *p, cpx<V> z) {
  store_pairs_descending(p, z.re, z.im);
}

}  // namespace mvk
