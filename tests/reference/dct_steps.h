// Cosine transforms step by step around a complex transform of half the length, with what the
// roundings of each step may come to at most, for tests.
#ifndef MVK_TESTS_REFERENCE_DCT_STEPS_H_
#define MVK_TESTS_REFERENCE_DCT_STEPS_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "reference/fft_values.h"

namespace reference {

// A value and how far off a result of single precision may be.
struct Bounded {
  double value = 0;
  double error = 0;
};

using BoundedArray = std::vector<Bounded>;

struct BoundedComplex {
  Bounded re, im;
};

namespace bounded {

inline constexpr double kUnit = 0x1p-24;  // of one rounding

inline Bounded Sum(Bounded a, Bounded b) {
  const double value = a.value + b.value;
  return {value, a.error + b.error + kUnit * std::fabs(value)};
}

inline Bounded Negative(Bounded a) { return {-a.value, a.error}; }

inline Bounded Half(Bounded a) { return {a.value / 2, a.error / 2}; }

// c x + s y: a product that is rounded, either of the two, and one that is fused with the sum.
inline Bounded Rotation(double c, Bounded x, double s, Bounded y) {
  const double cx = c * x.value, sy = s * y.value;
  return {cx + sy, std::fabs(c) * x.error + std::fabs(s) * y.error +
                       kUnit * (std::max(std::fabs(cx), std::fabs(sy)) + std::fabs(cx + sy))};
}

// Bins k and H - k before and after a spectrum of two interleaved halves is taken apart, or put
// together when `merge`.
inline void Unweave(std::vector<BoundedComplex> &z, std::span<const float> t, bool merge) {
  const size_t n = 2 * z.size();
  for (size_t k = 1; k < n / 4; ++k) {
    const double s = t[4 * k], c = t[n - 4 * k];
    BoundedComplex &a = z[k], &b = z[z.size() - k];
    const Bounded sum = Half(Sum(a.re, b.re)), difference = Half(Sum(a.im, Negative(b.im)));
    const Bounded p = Half(Sum(b.re, Negative(a.re))), q = Half(Sum(a.im, b.im));
    const Bounded u = Rotation(s, q, -c, p), v = Rotation(c, q, s, p);
    const BoundedComplex plus = {Sum(sum, v), Sum(u, Negative(difference))};
    const BoundedComplex minus = {Sum(sum, Negative(v)), Sum(u, difference)};
    a = merge ? minus : plus;
    b = merge ? plus : minus;
  }
}

}  // namespace bounded

// ---- Type II ----

// Even samples ascending and odd ones descending, in pairs.
inline std::vector<float> FoldedDct2(std::span<const float> x) {
  const size_t h = x.size() / 2;
  std::vector<float> z(x.size());
  for (size_t i = 0; i < x.size() / 4; ++i) {
    z[2 * i] = x[4 * i];
    z[2 * i + 1] = x[4 * i + 2];
    z[2 * (h - 1 - i)] = x[4 * i + 3];
    z[2 * (h - 1 - i) + 1] = x[4 * i + 1];
  }
  return z;
}

// From the complex transform's result to the cosine transform's.
inline BoundedArray FinishedDct2(std::span<const float> transformed, std::span<const float> t,
                                 Scaling scaling) {
  const size_t n = transformed.size(), h = n / 2;
  const double factor = scaling == Scaling::kScaled ? 0.5 : 1;
  std::vector<BoundedComplex> z(h);
  for (size_t k = 0; k < h; ++k) z[k] = {{transformed[2 * k]}, {transformed[2 * k + 1]}};
  bounded::Unweave(z, t, false);
  BoundedArray out(n);
  out[0] = bounded::Sum(z[0].re, z[0].im);
  out[h] = bounded::Rotation(t[h], bounded::Sum(z[0].re, bounded::Negative(z[0].im)), 0, {});
  for (size_t k = 1; k < h; ++k) {
    const double s = t[k], c = t[n - k];
    out[k] = bounded::Rotation(c, z[k].re, -s, z[k].im);
    out[n - k] = bounded::Rotation(s, z[k].re, c, z[k].im);
  }
  for (Bounded &value : out) value = {factor * value.value, factor * value.error};
  return out;
}

// The two bins that are rounded in one way only, 0 and N / 2.
struct Dct2Ends {
  float first, middle;
};

inline Dct2Ends EndsOfDct2(float re, float im, float t, Scaling scaling) {
  const float factor = scaling == Scaling::kScaled ? 0.5f : 1.0f;
  const float a = factor * re, b = factor * im;
  return {a + b, (a - b) * t};
}

// ---- Type III ----

// What the complex transform is given.
inline BoundedArray PreparedDct3(std::span<const float> x, std::span<const float> t) {
  const size_t n = x.size(), h = n / 2;
  std::vector<BoundedComplex> w(h);
  const Bounded g = bounded::Half(bounded::Rotation(t[h], {x[h]}, 0, {}));
  const Bounded x0 = bounded::Half({x[0]});
  w[0] = {bounded::Sum(g, x0), bounded::Sum(x0, bounded::Negative(g))};
  for (size_t k = 1; k < h; ++k) {
    const double s = t[k], c = t[n - k];
    w[k] = {bounded::Half(bounded::Rotation(c, {x[k]}, s, {x[n - k]})),
            bounded::Half(bounded::Rotation(c, {x[n - k]}, -s, {x[k]}))};
  }
  bounded::Unweave(w, t, true);
  BoundedArray prepared;
  for (const BoundedComplex &value : w) {
    prepared.push_back(value.re);
    prepared.push_back(value.im);
  }
  return prepared;
}

// Its first value, which is rounded in one way only.
inline Complex FirstOfPreparedDct3(float x0, float middle, float t) {
  const float g = 0.5f * (middle * t);
  return {g + 0.5f * x0, 0.5f * x0 - g};
}

inline std::vector<float> UnfoldedDct3(std::span<const float> y) {
  const size_t h = y.size() / 2;
  std::vector<float> out(y.size());
  for (size_t i = 0; i < y.size() / 4; ++i) {
    out[4 * i] = y[2 * i];
    out[4 * i + 2] = y[2 * i + 1];
    out[4 * i + 1] = y[2 * (h - 1 - i) + 1];
    out[4 * i + 3] = y[2 * (h - 1 - i)];
  }
  return out;
}

}  // namespace reference

#endif
