// Composite Fourier transforms in double, with the coarse constants of the kernels in single
// precision: what these would come to if they didn't round. For tests.
#ifndef MVK_TESTS_REFERENCE_FFT_COARSE_MODEL_H_
#define MVK_TESTS_REFERENCE_FFT_COARSE_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "reference/fft_composite.h"
#include "reference/fft_exact.h"
#include "reference/fft_values.h"

namespace reference {
namespace coarse_model {

// exp(-2 pi j i / radix) of the constants that the butterfly has.
inline WideComplex ButterflyRoot(uint32_t i, uint32_t radix) {
  const double c1 = kRadix5Cosine1, c2 = kRadix5Cosine2, s1 = kRadix5Sine1, s2 = kRadix5Sine2;
  const double r3 = kRadix3Sine, r = 0.70710677f;
  const WideComplex of_three[] = {{1, 0}, {-0.5, -r3}, {-0.5, r3}};
  const WideComplex of_four[] = {{1, 0}, {0, -1}, {-1, 0}, {0, 1}};
  const WideComplex of_five[] = {{1, 0}, {c1, -s1}, {c2, -s2}, {c2, s2}, {c1, s1}};
  const WideComplex of_six[] = {{1, 0}, {0.5, -r3}, {-0.5, -r3}, {-1, 0}, {-0.5, r3}, {0.5, r3}};
  const WideComplex of_eight[] = {{1, 0},  {r, -r}, {0, -1}, {-r, -r},
                                  {-1, 0}, {-r, r}, {0, 1},  {r, r}};
  switch (radix) {
    case 3:
      return of_three[i % 3];
    case 4:
      return of_four[i % 4];
    case 5:
      return of_five[i % 5];
    case 6:
      return of_six[i % 6];
    default:
      return of_eight[i % 8];
  }
}

inline WideArray Transform(const WideComplex *x, size_t stride, std::span<const uint32_t> radices) {
  if (radices.empty()) return {*x};
  const uint32_t radix = radices.back();
  size_t m = 1;
  for (uint32_t inner : radices.first(radices.size() - 1)) m *= inner;
  const auto l = static_cast<uint32_t>(radix * m);
  WideArray result(l);
  for (uint32_t q = 0; q < radix; ++q) {
    const WideArray part =
        Transform(x + q * stride, radix * stride, radices.first(radices.size() - 1));
    for (uint32_t k = 0; k < m; ++k) {
      const Complex twiddle = m == 1 ? Complex{1.0f, 0.0f} : StageRoot(q, k, l);
      const WideComplex turned = Product(part[k], {twiddle.re, twiddle.im});
      for (uint32_t p = 0; p < radix; ++p) {
        result[k + p * m] += Product(turned, ButterflyRoot(p * q, radix));
      }
    }
  }
  return result;
}

}  // namespace coarse_model

inline WideArray CoarseTransform(const CompositePlan &plan, WideArray x, Direction direction,
                                 Scaling scaling) {
  const bool inverse = direction == Direction::kInverse;
  const double factor = FactorOf(scaling, plan.length);
  for (WideComplex &value : x) value = factor * (inverse ? std::conj(value) : value);
  WideArray result = coarse_model::Transform(x.data(), 1, plan.radices);
  if (inverse) {
    for (WideComplex &value : result) value = std::conj(value);
  }
  return result;
}

}  // namespace reference

#endif
