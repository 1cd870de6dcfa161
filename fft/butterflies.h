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

#include "fft/complex.h"

namespace mvk {

inline constexpr float sqrt_half = 0x1.6a09e6p-1f;     // 0.70710677
inline constexpr float sin_third = 0x1.bb67aep-1f;     // sin(2 pi / 3)
inline constexpr float cos_fifth = 0.309017f;          // cos(2 pi / 5), to six decimals
inline constexpr float cos_2_fifths = -0.809017f;      // cos(4 pi / 5), to six decimals
inline constexpr float sin_fifth = 0x1.e6f0e2p-1f;     // sin(2 pi / 5)
inline constexpr float sin_2_fifths = 0x1.2cf230p-1f;  // sin(4 pi / 5)

// ---- Of plain operands --------------------------------------------------------

template <class A, class V>
inline void radix2(const cpx<A> (&a)[1], const cpx<V> (&b)[1], cpx<V> (&y)[2]) {
  y[0] = a[0] + b[0];
  y[1] = a[0] - b[0];
}

template <class A, class V>
inline void radix4(const cpx<A> (&a)[2], const cpx<V> (&b)[2], cpx<V> (&y)[4]) {
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
inline void four_points(const cpx<A> (&a)[2], const cpx<V> (&b)[2], cpx<V> (&y)[4]) {
  const auto [a0, a1] = a;
  const auto [a2, a3] = b;
  const cpx<V> u = a0 + a2, e = a0 - a2, t = a3 + a1;
  y[0] = t + u;
  y[1] = {(e.re + a1.im) - a3.im, (e.im + a3.re) - a1.re};
  y[2] = u - t;
  y[3] = {(e.re + a3.im) - a1.im, (e.im + a1.re) - a3.re};
}

template <class A, class V>
inline void radix8(const cpx<A> (&a)[4], const cpx<V> (&b)[4], cpx<V> (&y)[8]) {
  const auto [a0, a1, a2, a3] = a;
  const auto [a4, a5, a6, a7] = b;
  const V r = sqrt_half;
  const cpx<V> d0 = a0 - a4, d1 = a1 - a5;
  const cpx<V> s0 = a0 + a4, s1 = a1 + a5, s2 = a2 + a6, s3 = a3 + a7;

  const V P = ((d1.im - a3.re) + a7.re) * r, Q = ((d1.im - a7.re) + a3.re) * r;
  const V U = (d1.re - a3.im) + a7.im, W = (d1.re - a7.im) + a3.im;
  const V A_ = (d0.im - a2.re) + a6.re, B = (d0.re - a2.im) + a6.im;
  const V C = (d0.re - a6.im) + a2.im, D = (d0.im - a6.re) + a2.re;
  const V G = fma(W, r, P), H = fma(U, r, Q);
  const cpx<V> E = s0 + s2, I = s0 - s2, K = s1 + s3;

  y[0] = E + K;
  y[1] = {C + G, fms(W, r, A_ + P)};
  y[2] = {(I.re - s3.im) + s1.im, (I.im - s1.re) + s3.re};
  y[3] = {fms(U, r, B + Q), D - H};
  y[4] = E - K;
  y[5] = {C - G, fma(W, r, A_) - P};
  y[6] = {(I.re - s1.im) + s3.im, (I.im - s3.re) + s1.re};
  y[7] = {fma(U, r, B) - Q, D + H};
}

// Of a, b, c, given S = b + c and D = b - c.
template <class A, class V>
inline void radix3(cpx<A> a, cpx<V> S, cpx<V> D, cpx<V> &y0, cpx<V> &y1, cpx<V> &y2) {
  const V h = 0.5f, s = sin_third;
  y0 = a + S;
  const cpx<V> t = {fms(S.re, h, a.re), fms(S.im, h, a.im)};
  y1 = {fma(D.im, s, t.re), fms(D.re, s, t.im)};
  y2 = {fms(D.im, s, t.re), fma(D.re, s, t.im)};
}

// Of a0 to a4, given S1 = a1 + a4, D1 = a1 - a4, S2 = a2 + a3 and D2 = a2 - a3.
template <class A, class V>
inline void radix5(cpx<A> a0, cpx<V> S1, cpx<V> D1, cpx<V> S2, cpx<V> D2, cpx<V> (&y)[5]) {
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
inline void radix5(const cpx<A> (&a)[3], const cpx<V> (&b)[2], cpx<V> (&y)[5]) {
  radix5(a[0], a[1] + b[1], a[1] - b[1], a[2] + b[0], a[2] - b[0], y);
}

// Radix 2 on the points three apart, then radix 3: the odd bins' is of d0, d2 and -d1, where
// the turns by a sixth come to signs.
template <class A, class V>
inline void radix6(const cpx<A> (&a)[3], const cpx<V> (&b)[3], cpx<V> (&y)[6]) {
  const cpx<V> s0 = a[0] + b[0], s1 = a[1] + b[1], s2 = a[2] + b[2];
  const cpx<V> d0 = a[0] - b[0], d1 = a[1] - b[1], d2 = a[2] - b[2];
  radix3(s0, s1 + s2, s1 - s2, y[0], y[2], y[4]);
  radix3(d0, d2 - d1, d2 + d1, y[3], y[1], y[5]);
}

// ---- Of operands that are turned by twiddles w[q] ------------------------------

// b * w. The real part's second product is fused, and in the imaginary part b.im's.
template <class V>
inline cpx<V> turned(cpx<V> b, cpx<V> w) {
  return {fms(b.im, w.im, b.re * w.re), fma(b.im, w.re, b.re * w.im)};
}
// The same; in the imaginary part b.re's is fused.
template <class V>
inline cpx<V> turned_middle(cpx<V> b, cpx<V> w) {
  return {fms(b.im, w.im, b.re * w.re), fma(b.re, w.im, b.im * w.re)};
}
template <class V>
inline V turned_im(cpx<V> b, cpx<V> w) {
  return fma(b.im, w.re, b.re * w.im);
}

// Radix 4, its products fused into the sums of the real parts.
struct radix4_turned {
  static constexpr int radix = 4;

  template <class V, class Twiddles>
  static void apply(const cpx<V> (&a)[4], const Twiddles &w, cpx<V> (&y)[4]) {
    const cpx<V> w1 = w(1), w2 = w(2), w3 = w(3);
    const cpx<V> A1 = turned(a[1], w1);
    const V A3i = turned_im(a[3], w3), A2i = turned_im(a[2], w2);
    const V S = fma(a[3].re, w3.re, fms(a[3].im, w3.im, A1.re));
    const V D = fma(a[3].im, w3.im, fms(a[3].re, w3.re, A1.re));
    const V P = fms(a[2].im, w2.im, fma(a[2].re, w2.re, a[0].re));
    const V Q = fms(a[2].re, w2.re, fma(a[2].im, w2.im, a[0].re));
    const V s = a[0].im + A2i, d = a[0].im - A2i, t = A1.im + A3i;
    y[0] = {P + S, s + t};
    y[1] = {(Q - A3i) + A1.im, d - D};
    y[2] = {P - S, s - t};
    y[3] = {(Q - A1.im) + A3i, d + D};
  }
};

struct radix3_turned {
  static constexpr int radix = 3;

  template <class V, class Twiddles>
  static void apply(const cpx<V> (&a)[3], const Twiddles &w, cpx<V> (&y)[3]) {
    const cpx<V> w2 = w(2), c = a[2];
    const cpx<V> B = turned(a[1], w(1));
    const V Ci = turned_im(c, w2);
    const cpx<V> S = {fma(c.re, w2.re, fms(c.im, w2.im, B.re)), B.im + Ci};
    const cpx<V> D = {fma(c.im, w2.im, fms(c.re, w2.re, B.re)), B.im - Ci};
    radix3(a[0], S, D, y[0], y[1], y[2]);
  }
};

struct radix5_turned {
  static constexpr int radix = 5;

  template <class V, class Twiddles>
  static void apply(const cpx<V> (&a)[5], const Twiddles &w, cpx<V> (&y)[5]) {
    // Sum and difference of b and c, turned.
    const auto pair = [](cpx<V> b, cpx<V> wb, cpx<V> c, cpx<V> wc, cpx<V> &S, cpx<V> &D) {
      const cpx<V> t = turned(b, wb);
      const V u = turned_im(c, wc);
      S = {fma(wc.re, c.re, fms(c.im, wc.im, t.re)), t.im + u};
      D = {fma(wc.im, c.im, fms(c.re, wc.re, t.re)), t.im - u};
    };
    cpx<V> S1, D1, S2, D2;
    pair(a[1], w(1), a[4], w(4), S1, D1);
    pair(a[2], w(2), a[3], w(3), S2, D2);
    radix5(a[0], S1, D1, S2, D2, y);
  }
};

struct radix6_turned {
  static constexpr int radix = 6;

  template <class V, class Twiddles>
  static void apply(const cpx<V> (&a)[6], const Twiddles &w, cpx<V> (&y)[6]) {
    radix6({a[0], turned(a[1], w(1)), turned(a[2], w(2))},
           {turned(a[3], w(3)), turned(a[4], w(4)), turned(a[5], w(5))}, y);
  }
};

struct radix8_turned {
  static constexpr int radix = 8;

  template <class V, class Twiddles>
  static void apply(const cpx<V> (&a)[8], const Twiddles &w, cpx<V> (&y)[8]) {
    radix8({a[0], turned(a[1], w(1)), turned(a[2], w(2)), turned(a[3], w(3))},
           {turned(a[4], w(4)), turned(a[5], w(5)), turned(a[6], w(6)), turned(a[7], w(7))}, y);
  }
};

}  // namespace mvk
