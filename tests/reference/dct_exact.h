// Cosine transforms as they are defined, in wide arithmetic, for tests.
#ifndef MVK_TESTS_REFERENCE_DCT_EXACT_H_
#define MVK_TESTS_REFERENCE_DCT_EXACT_H_

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "reference/fft_roots.h"

namespace reference {

// The widest type that the processor has of its own.
#if LDBL_MANT_DIG <= 64
using Wide = long double;
#else
using Wide = double;
#endif

using WideReals = std::vector<Wide>;

// cos(2 pi k / n), k = 0 to n - 1
template <typename Real>
std::vector<Real> Cosines(size_t n) {
  std::vector<Real> cosines;
  cosines.reserve(n);
  for (size_t k = 0; k < n; ++k) cosines.push_back(RootOfUnity<Real>(k, n).cosine);
  return cosines;
}

// sum over m of x[m] cos(pi (2 m + 1) k / (2 N)), k = 0 to N - 1
template <typename Real>
std::vector<Real> ExactDct2(std::span<const float> x) {
  const size_t n = x.size();
  const std::vector<Real> cosines = Cosines<Real>(4 * n);
  std::vector<Real> result(n);
  for (size_t k = 0; k < n; ++k) {
    for (size_t m = 0; m < n; ++m) result[k] += x[m] * cosines[(2 * m + 1) * k % (4 * n)];
  }
  return result;
}

// 1 / N times the sum over k of x[k] cos(pi (2 m + 1) k / (2 N)), m = 0 to N - 1, where x[0] counts
// like every other.
template <typename Real>
std::vector<Real> ExactDct3(std::span<const float> x) {
  const size_t n = x.size();
  const std::vector<Real> cosines = Cosines<Real>(4 * n);
  std::vector<Real> result(n);
  for (size_t m = 0; m < n; ++m) {
    for (size_t k = 0; k < n; ++k) result[m] += x[k] * cosines[(2 * m + 1) * k % (4 * n)];
    result[m] /= static_cast<Real>(n);
  }
  return result;
}

inline double RmsOf(std::span<const Wide> values) {
  Wide sum = 0;
  for (const Wide value : values) sum += value * value;
  return static_cast<double>(std::sqrt(sum / static_cast<Wide>(values.size())));
}

// How far a result is off, over the rms of what it should be: at most, and as an rms. A NaN in the
// result is a NaN.
struct Error {
  double largest = 0;
  double rms = 0;
};

inline Error ErrorOf(std::span<const float> got, std::span<const Wide> want) {
  WideReals errors(want.size());
  Wide largest = 0;
  for (size_t i = 0; i < want.size(); ++i) {
    errors[i] = std::fabs(got[i] - want[i]);
    if (!(errors[i] <= largest)) largest = errors[i];
    if (std::isnan(largest)) break;
  }
  const double size = RmsOf(want);
  return {static_cast<double>(largest) / size, RmsOf(errors) / size};
}

}  // namespace reference

#endif
