// Kernels of complex vectors, one element at a time, for tests.
#ifndef MVK_TESTS_REFERENCE_COMPLEX_REFERENCE_H_
#define MVK_TESTS_REFERENCE_COMPLEX_REFERENCE_H_

#include <cmath>
#include <cstdint>

#include "reference/kernel_arithmetic.h"

namespace reference {

struct Complex {
  float re;
  float im;
};

inline Complex Add(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }

inline Complex Sub(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }

inline Complex Times(Complex x, float s) { return {x.re * s, x.im * s}; }

// The product of the imaginary parts is rounded.
inline Complex Product(Complex a, Complex b) {
  return {Fnms(a.re, b.re, a.im * b.im), std::fma(a.re, b.im, a.im * b.re)};
}

// The product of the real parts is rounded.
inline Complex ProductStrict(Complex a, Complex b) {
  return {Fms(a.im, b.im, a.re * b.re), std::fma(a.re, b.im, a.im * b.re)};
}

inline Complex Accumulated(Complex y, Complex a, Complex b) {
  const float re = Fms(a.im, b.im, std::fma(a.re, b.re, y.re));
  const float im = std::fma(a.im, b.re, a.re * b.im) + y.im;
  return {re, im};
}

inline Complex AccumulatedTimes(Complex y, Complex x, float s) {
  return {std::fma(x.re, s, y.re), std::fma(x.im, s, y.im)};
}

inline Complex MixOfTwo(Complex a, Complex b, float s, float t) {
  return {std::fma(a.re, s, t * b.re), std::fma(a.im, s, t * b.im)};
}

inline double OneOverSquaredMagnitude(Complex x) {
  const float squared = std::fma(x.re, x.re, x.im * x.im);
  return 1.0 / static_cast<double>(squared);
}

inline float Narrowed(float p, double inverse) {
  return static_cast<float>(static_cast<double>(p) * inverse);
}

inline Complex Quotient(Complex a, Complex b) {
  const double inverse = OneOverSquaredMagnitude(b);
  const float p = std::fma(a.re, b.re, a.im * b.im);
  const float q = Fnms(a.im, b.re, a.re * b.im);
  return {Narrowed(p, inverse), Narrowed(q, inverse)};
}

// f / x
inline Complex Reciprocal(Complex x, float f) {
  const double inverse = OneOverSquaredMagnitude(x);
  const float p = f * x.re;
  const float q = -(x.im * f);
  return {Narrowed(p, inverse), Narrowed(q, inverse)};
}

inline float SquaredMagnitude(Complex x, float f) {
  const float u = f * x.re;
  const float v = f * x.im;
  return std::fma(u, u, v * v);
}

inline Complex ConjugateProduct(Complex a, Complex b, float f) {
  const Complex p = Times(a, f);
  const Complex q = Times(b, f);
  return {std::fma(q.re, p.re, q.im * p.im), Fnms(q.re, p.im, q.im * p.re)};
}

// Floats from one plane to the next.
inline uint32_t PlaneStride(uint32_t n) { return 2 * ((n + 3) / 4 * 4); }

// One component of a mix: p is that of plane 0, and the others follow at the stride.
inline float MixOfFourPlanes(const float *p, uint32_t stride, const float *g) {
  float mix = p[stride] * g[1];
  mix = std::fma(p[0], g[0], mix);
  mix = std::fma(p[2 * stride], g[2], mix);
  return std::fma(p[3 * stride], g[3], mix);
}

inline float MixOfSixPlanes(const float *p, uint32_t stride, const float *g) {
  float mix = MixOfFourPlanes(p, stride, g);
  mix = std::fma(p[4 * stride], g[4], mix);
  return std::fma(p[5 * stride], g[5], mix);
}

// The first four planes join only after the two behind them have met.
inline float MixOfSevenPlanes(const float *p, uint32_t stride, const float *g) {
  const float w = MixOfFourPlanes(p, stride, g);
  float t = std::fma(g[4], p[4 * stride], g[5] * p[5 * stride]);
  t = t + w;
  return std::fma(g[6], p[6 * stride], t);
}

}  // namespace reference

#endif
