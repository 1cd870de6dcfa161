// Fourier transforms as they are defined, in wide arithmetic, and how far a result is off, for
// tests.
#ifndef MVK_TESTS_REFERENCE_FFT_EXACT_H_
#define MVK_TESTS_REFERENCE_FFT_EXACT_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference/fft_roots.h"
#include "reference/fft_values.h"

namespace reference {

using WideComplex = std::complex<double>;
using WideArray = std::vector<WideComplex>;

inline WideArray Widened(const ComplexArray &values) {
  WideArray wide;
  wide.reserve(values.size());
  for (const Complex &value : values) wide.emplace_back(value.re, value.im);
  return wide;
}

// Without the care for infinities that the operator takes.
template <typename Real>
std::complex<Real> Product(std::complex<Real> a, std::complex<Real> b) {
  return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// exp(-+2 pi j k / n), k = 0 to n - 1
template <typename Real>
std::vector<std::complex<Real>> Roots(size_t n, Direction direction) {
  std::vector<std::complex<Real>> roots;
  roots.reserve(n);
  for (size_t k = 0; k < n; ++k) {
    const Root<Real> root = RootOfUnity<Real>(k, n);
    roots.emplace_back(root.cosine, direction == Direction::kForward ? -root.sine : root.sine);
  }
  return roots;
}

// Sum by sum.
template <typename Real>
std::vector<std::complex<Real>> DirectTransform(const std::vector<std::complex<Real>> &x,
                                                Direction direction) {
  const size_t n = x.size();
  const auto roots = Roots<Real>(n, direction);
  std::vector<std::complex<Real>> result(n);
  for (size_t k = 0; k < n; ++k) {
    for (size_t i = 0; i < n; ++i) result[k] += Product(x[i], roots[i * k % n]);
  }
  return result;
}

namespace exact {

// Of `count` inputs at a stride, where roots are those of the whole transform.
inline WideArray Transform(const WideComplex *x, size_t count, size_t stride,
                           const WideArray &roots) {
  if (count == 1) return {*x};
  size_t radix = 2;
  while (count % radix != 0) ++radix;
  const size_t length = count / radix;
  WideArray result(count);
  for (size_t q = 0; q < radix; ++q) {
    const WideArray part = Transform(x + q * stride, length, radix * stride, roots);
    for (size_t k = 0; k < count; ++k) {
      result[k] += Product(part[k % length], roots[q * k * stride % roots.size()]);
    }
  }
  return result;
}

}  // namespace exact

// The transform to within some 1e-15 of its rms.
inline WideArray ExactTransform(const WideArray &x, Direction direction, Scaling scaling) {
  const size_t n = x.size();
  WideArray result = exact::Transform(x.data(), n, 1, Roots<double>(n, direction));
  if (scaling == Scaling::kScaled) {
    for (WideComplex &value : result) value /= static_cast<double>(n);
  }
  return result;
}

inline double Rms(const WideArray &values) {
  double sum = 0;
  for (const WideComplex &value : values) sum += std::norm(value);
  return std::sqrt(sum / static_cast<double>(values.size()));
}

// The largest distance between two results, over the rms of the second; a NaN in one of them is
// a NaN.
inline double LargestError(const WideArray &got, const WideArray &want) {
  double largest = 0;
  for (size_t i = 0; i < want.size(); ++i) {
    const double error = std::abs(got[i] - want[i]);
    if (std::isnan(error)) return error;
    largest = std::max(largest, error);
  }
  return largest / Rms(want);
}

// The rms of the distances, over that of the second result.
inline double RmsError(const WideArray &got, const WideArray &want) {
  WideArray errors(want.size());
  for (size_t i = 0; i < want.size(); ++i) errors[i] = got[i] - want[i];
  return Rms(errors) / Rms(want);
}

}  // namespace reference

#endif
