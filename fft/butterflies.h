// Transforms of 2 to 8 points, forward, with bins in their order: the butterflies that all
// passes are made of. The order written is the order of rounding.
//
// Those of a first pass take their inputs in two halves, a (the first, of type A) and b:
// a scaled transform's are read as a of `unscaled` and b of finished products, so that the
// scaling costs one product for every other input.
//
// Literature: P. Duhamel and M. Vetterli, "Fast Fourier transforms: a tutorial review and a
// state of the art", Signal Processing 19(4), 1990.
#pragma once

#include "core/complex.h"

namespace mvk {

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

inline constexpr float sqrt_half = 0x1.6a09e6p-1f;     // 0.70710677
inline constexpr float sin_third = 0x1.bb67aep-1f;     // sin(2 pi / 3)
inline constexpr float cos_fifth = 0.309017f;          // cos(2 pi / 5), to six decimals
inline constexpr float cos_2_fifths = -0.809017f;      // cos(4 pi / 5), to six decimals
inline constexpr float sin_fifth = 0x1.e6f0e2p-1f;     // sin(2 pi / 5)
inline constexpr float sin_2_fifths = 0x1.2cf230p-1f;  // sin(4 pi / 5)

// ---- Of plain operands --------------------------------------------------------

// butterfly(a, b, y) is of radix 2, 4, 5, 6 or 8, as many as y has.

template <class A, class V>
MVK_INLINE void butterfly(const cpx<A> (&a)[1], const cpx<V> (&b)[1], cpx<V> (&y)[2]) {
  y[0] = a[0] + b[0];
  y[1] = a[0] - b[0];
}

template <class A, class V>
MVK_INLINE void butterfly(const cpx<A> (&a)[2], const cpx<V> (&b)[2], cpx<V> (&y)[4]) {
  const auto [a0, a1] = a;
  const auto [a2, a3] = b;
  const cpx<V> u = a0 + a2, e = a0 - a2, t = a1 + a3;
  y[0] = u + t;
  y[1] = {(e.re - a3.im) + a1.im, (e.im - a1.re) + a3.re};
  y[2] = u - t;
  y[3] = {(e.re - a1.im) + a3.im, (e.im - a3.re) + a1.re};
}

// The transform of four points alone, which adds in an order of its own.
template <class A, class V>
MVK_INLINE void four_points(const cpx<A> (&a)[2], const cpx<V> (&b)[2], cpx<V> (&y)[4]) {
  const auto [a0, a1] = a;
  const auto [a2, a3] = b;
  const cpx<V> u = a0 + a2, e = a0 - a2, t = a3 + a1;
  y[0] = t + u;
  y[1] = {(e.re + a1.im) - a3.im, (e.im + a3.re) - a1.re};
  y[2] = u - t;
  y[3] = {(e.re + a3.im) - a1.im, (e.im + a1.re) - a3.re};
}

template <class A, class V>
MVK_INLINE void butterfly(const cpx<A> (&a)[4], const cpx<V> (&b)[4], cpx<V> (&y)[8]) {
  const auto [a0, a1, a2, a3] = a;
  const auto [a4, a5, a6, a7] = b;
  const V r = sqrt_half;
  const cpx<V> d0 = a0 - a4, d1 = a1 - a5;
  const cpx<V> s0 = a0 + a4, s1 = a1 + a5, s2 = a2 + a6, s3 = a3 + a7;

  const V P = ((d1.im - a3.re) + a7.re) * r, Q = ((d1.im - a7.re) + a3.re) * r;
  const V U = (d1.re - a3.im) + a7.im, W = (d1.re - a7.im) + a3.im;
  const V F = (d0.im - a2.re) + a6.re, B = (d0.re - a2.im) + a6.im;
  const V C = (d0.re - a6.im) + a2.im, D = (d0.im - a6.re) + a2.re;
  const V G = fma(W, r, P), H = fma(U, r, Q);
  const cpx<V> E = s0 + s2, I = s0 - s2, K = s1 + s3;

  y[0] = E + K;
  y[1] = {C + G, fms(W, r, F + P)};
  y[2] = {(I.re - s3.im) + s1.im, (I.im - s1.re) + s3.re};
  y[3] = {fms(U, r, B + Q), D - H};
  y[4] = E - K;
  y[5] = {C - G, fma(W, r, F) - P};
  y[6] = {(I.re - s1.im) + s3.im, (I.im - s3.re) + s1.re};
  y[7] = {fma(U, r, B) - Q, D + H};
}

// Of a, b, c, given S = b + c and D = b - c.
template <class A, class V>
MVK_INLINE void radix3(cpx<A> a, cpx<V> S, cpx<V> D, cpx<V> &y0, cpx<V> &y1, cpx<V> &y2) {
  const V h = 0.5f, s = sin_third;
  y0 = a + S;
  const cpx<V> t = {fms(S.re, h, a.re), fms(S.im, h, a.im)};
  y1 = {fma(D.im, s, t.re), fms(D.re, s, t.im)};
  y2 = {fms(D.im, s, t.re), fma(D.re, s, t.im)};
}

// Of a0 to a4, given S1 = a1 + a4, D1 = a1 - a4, S2 = a2 + a3 and D2 = a2 - a3.
template <class A, class V>
MVK_INLINE void radix5(cpx<A> a0, cpx<V> S1, cpx<V> D1, cpx<V> S2, cpx<V> D2, cpx<V> (&y)[5]) {
  const V c1 = cos_fifth, c2 = cos_2_fifths, s1 = sin_fifth, s2 = sin_2_fifths;
  const cpx<V> A1 = {fma(S2.re, c2, S1.re * c1), fma(S2.im, c2, S1.im * c1)};
  const cpx<V> A2 = {fma(S2.re, c1, S1.re * c2), fma(S2.im, c1, S1.im * c2)};
  const V B1 = fma(D2.im, s2, D1.im * s1), B2 = fms(D2.im, s1, D1.im * s2);
  const V C1 = fma(D2.re, s2, D1.re * s1), C2 = fms(D2.re, s1, D1.re * s2);
  const cpx<V> p = a0 + A1, q = a0 + A2;
  y[0] = (S2 + S1) + a0;
  y[1] = {p.re + B1, p.im - C1};
  y[2] = {q.re + B2, q.im - C2};
  y[3] = {q.re - B2, q.im + C2};
  y[4] = {p.re - B1, p.im + C1};
}

template <class A, class V>
MVK_INLINE void butterfly(const cpx<A> (&a)[3], const cpx<V> (&b)[2], cpx<V> (&y)[5]) {
  radix5(a[0], a[1] + b[1], a[1] - b[1], a[2] + b[0], a[2] - b[0], y);
}

// Radix 2 on the points three apart, then radix 3: the odd bins' is of d0, d2 and -d1, where
// the turns by a sixth come to signs.
template <class A, class V>
MVK_INLINE void butterfly(const cpx<A> (&a)[3], const cpx<V> (&b)[3], cpx<V> (&y)[6]) {
  const cpx<V> s0 = a[0] + b[0], s1 = a[1] + b[1], s2 = a[2] + b[2];
  const cpx<V> d0 = a[0] - b[0], d1 = a[1] - b[1], d2 = a[2] - b[2];
  radix3(s0, s1 + s2, s1 - s2, y[0], y[2], y[4]);
  radix3(d0, d2 - d1, d2 + d1, y[3], y[1], y[5]);
}

// ---- Of operands that are turned by twiddles w[q] ------------------------------

// b * w. The real part's second product is fused, and in the imaginary part b.im's.
template <class V>
MVK_INLINE cpx<V> turned(cpx<V> b, cpx<V> w) {
  return {fms(b.im, w.im, b.re * w.re), fma(b.im, w.re, b.re * w.im)};
}
// The same; in the imaginary part b.re's is fused.
template <class V>
MVK_INLINE cpx<V> turned_middle(cpx<V> b, cpx<V> w) {
  return {fms(b.im, w.im, b.re * w.re), fma(b.re, w.im, b.im * w.re)};
}
template <class V>
MVK_INLINE V turned_im(cpx<V> b, cpx<V> w) {
  return fma(b.im, w.re, b.re * w.im);
}

// The butterflies of later passes. a(q) reads operand q and w(q) its twiddle, each once and
// just before its use, and y[p] is what goes to bin p: more than that, sixteen registers
// wouldn't hold.

// Radix 4, its products fused into the sums of the real parts.
struct radix4_turned {
  static constexpr int radix = 4, twiddles = 3;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[4]) {
    const cpx<V> a1 = a(1), w1 = w(1);
    const cpx<V> A1 = turned(a1, w1);
    const cpx<V> a3 = a(3), w3 = w(3);
    const V A3i = turned_im(a3, w3);
    const V S = fma(a3.re, w3.re, fms(a3.im, w3.im, A1.re));
    const V D = fma(a3.im, w3.im, fms(a3.re, w3.re, A1.re));
    const cpx<V> a0 = a(0), a2 = a(2), w2 = w(2);
    const V A2i = turned_im(a2, w2);
    const V P = fms(a2.im, w2.im, fma(a2.re, w2.re, a0.re));
    const V Q = fms(a2.re, w2.re, fma(a2.im, w2.im, a0.re));
    const V s = a0.im + A2i, d = a0.im - A2i, t = A1.im + A3i;
    y[0] = {P + S, s + t};
    y[1] = {(Q - A3i) + A1.im, d - D};
    y[2] = {P - S, s - t};
    y[3] = {(Q - A1.im) + A3i, d + D};
  }
};

struct radix3_turned {
  static constexpr int radix = 3, twiddles = 2;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[3]) {
    const cpx<V> B = turned(a(1), w(1)), c = a(2), w2 = w(2);
    const V Ci = turned_im(c, w2);
    const cpx<V> S = {fma(c.re, w2.re, fms(c.im, w2.im, B.re)), B.im + Ci};
    const cpx<V> D = {fma(c.im, w2.im, fms(c.re, w2.re, B.re)), B.im - Ci};
    radix3(a(0), S, D, y[0], y[1], y[2]);
  }
};

struct radix5_turned {
  static constexpr int radix = 5, twiddles = 4;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[5]) {
    // Sum and difference of operands p and q, turned.
    const auto pair = [&](int p, int q, cpx<V> &S, cpx<V> &D) MVK_INLINED_LAMBDA {
      const cpx<V> t = turned(a(p), w(p)), c = a(q), wc = w(q);
      const V u = turned_im(c, wc);
      S = {fma(wc.re, c.re, fms(c.im, wc.im, t.re)), t.im + u};
      D = {fma(wc.im, c.im, fms(c.re, wc.re, t.re)), t.im - u};
    };
    cpx<V> S1, D1, S2, D2;
    pair(1, 4, S1, D1);
    pair(2, 3, S2, D2);
    radix5(a(0), S1, D1, S2, D2, y);
  }
};

struct radix6_turned {
  static constexpr int radix = 6, twiddles = 5;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[6]) {
    const auto b = [&](int q) MVK_INLINED_LAMBDA { return turned(a(q), w(q)); };
    butterfly({a(0), b(1), b(2)}, {b(3), b(4), b(5)}, y);
  }
};

// The same transforms with the twiddle products finished first, in the fewest operations that
// don't fuse: for a processor whose fused ones would need copies, where rounding is free.
template <class V>
MVK_INLINE void sum_and_difference(cpx<V> a, cpx<V> b, cpx<V> &sum, cpx<V> &difference) {
  sum = a + b;
  difference = a - b;
}
// With -j b for b.
template <class V>
MVK_INLINE void sum_and_difference_j(cpx<V> a, cpx<V> b, cpx<V> &sum, cpx<V> &difference) {
  sum = {a.re + b.im, a.im - b.re};
  difference = {a.re - b.im, a.im + b.re};
}
template <class V>
MVK_INLINE void four_plain(cpx<V> a0, cpx<V> a1, cpx<V> a2, cpx<V> a3, cpx<V> (&y)[4]) {
  cpx<V> s, d, t, e;
  sum_and_difference(a0, a2, s, d);
  sum_and_difference(a1, a3, t, e);
  sum_and_difference(s, t, y[0], y[2]);
  sum_and_difference_j(d, e, y[1], y[3]);
}

struct radix4_plain {
  static constexpr int radix = 4, twiddles = 3;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[4]) {
    const auto b = [&](int q) MVK_INLINED_LAMBDA { return turned(a(q), w(q)); };
    four_plain(a(0), b(1), b(2), b(3), y);
  }
};

struct radix8_plain {
  static constexpr int radix = 8, twiddles = 7;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[8]) {
    const auto b = [&](int q) MVK_INLINED_LAMBDA { return turned(a(q), w(q)); };
    const V r = sqrt_half;
    cpx<V> e[4], o[4];
    four_plain(b(1), b(3), b(5), b(7), o);
    four_plain(a(0), b(2), b(4), b(6), e);
    sum_and_difference(e[0], o[0], y[0], y[4]);
    sum_and_difference_j(e[2], o[2], y[2], y[6]);
    const cpx<V> t = {(o[1].re + o[1].im) * r, (o[1].im - o[1].re) * r};
    sum_and_difference(e[1], t, y[1], y[5]);
    const cpx<V> u = {(o[3].re + o[3].im) * r, (o[3].im - o[3].re) * r};
    sum_and_difference_j(e[3], u, y[3], y[7]);
  }
};

// ---- By tangents --------------------------------------------------------------

// The radix-2 butterfly a +- w b with w = c (1 + j t), of six fused operations: the product with
// 1 + j t first, c with the sums. w is {c, t}.
//
// Literature: E. Linzer and E. Feig, "Implementation of efficient FFT algorithms on fused
// multiply-add architectures", IEEE Trans. Signal Processing 41(1), 1993.
template <class V>
MVK_INLINE void radix2_by_tangent(cpx<V> a, cpx<V> b, cpx<V> w, cpx<V> &sum, cpx<V> &difference) {
  const V re = fms(w.im, b.im, b.re), im = fma(w.im, b.re, b.im);
  sum.re = fma(w.re, re, a.re), sum.im = fma(w.re, im, a.im);
  difference.re = fms(w.re, re, a.re), difference.im = fms(w.re, im, a.im);
}
// The same with -j w for w.
template <class V>
MVK_INLINE void radix2_by_tangent_j(cpx<V> a, cpx<V> b, cpx<V> w, cpx<V> &sum, cpx<V> &difference) {
  const V re = fms(w.im, b.im, b.re), im = fma(w.im, b.re, b.im);
  sum.re = fma(w.re, im, a.re), sum.im = fms(w.re, re, a.im);
  difference.re = fms(w.re, im, a.re), difference.im = fma(w.re, re, a.im);
}

// Of operands p, p + stride and so on, four in all, by w(i) and w(i + 1).
template <class V, class Operands>
MVK_INLINE void radix4_by_tangents(const Operands &a, int p, int stride, cpx<V> w2, cpx<V> w1,
                                   cpx<V> (&y)[4]) {
  cpx<V> e0, e1, o0, o1;
  radix2_by_tangent(a(p), a(p + 2 * stride), w2, e0, e1);
  radix2_by_tangent(a(p + stride), a(p + 3 * stride), w2, o0, o1);
  radix2_by_tangent(e0, o0, w1, y[0], y[2]);
  radix2_by_tangent_j(e1, o1, w1, y[1], y[3]);
}

struct radix4_tangent {
  static constexpr int radix = 4, twiddles = 2;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[4]) {
    radix4_by_tangents(a, 0, 1, w(1), w(2), y);
  }
};

struct radix8_tangent {
  static constexpr int radix = 8, twiddles = 4;

  template <class V, class Operands, class Twiddles>
  MVK_INLINE static void apply(const Operands &a, const Twiddles &w, cpx<V> (&y)[8]) {
    const cpx<V> w4 = w(1), w2 = w(2);
    cpx<V> e[4], o[4];
    radix4_by_tangents(a, 0, 2, w4, w2, e);
    radix4_by_tangents(a, 1, 2, w4, w2, o);
    const cpx<V> w1 = w(3);
    radix2_by_tangent(e[0], o[0], w1, y[0], y[4]);
    radix2_by_tangent_j(e[2], o[2], w1, y[2], y[6]);
    const cpx<V> w1_8 = w(4);
    radix2_by_tangent(e[1], o[1], w1_8, y[1], y[5]);
    radix2_by_tangent_j(e[3], o[3], w1_8, y[3], y[7]);
  }
};

}  // namespace mvk
