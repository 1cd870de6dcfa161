// The butterflies of the Fourier transforms, one rounding after the other, for tests.
//
// Those of a first pass read inputs that are yet to be scaled: the first half of them goes into
// each sum fused, and the second half as products that have been rounded. A factor of 1 leaves
// plain sums.
#ifndef MVK_TESTS_REFERENCE_FFT_BUTTERFLIES_H_
#define MVK_TESTS_REFERENCE_FFT_BUTTERFLIES_H_

#include <array>
#include <cmath>

#include "reference/fft_roots.h"
#include "reference/fft_values.h"

namespace reference {

inline Complex Scaled(Complex input, float factor) {
  return {input.re * factor, input.im * factor};
}

// Of a sum or a scaled input, and an input of the first half.
inline float PlusInput(float sum, float a, float factor) { return std::fma(a, factor, sum); }
inline float MinusInput(float sum, float a, float factor) { return std::fma(-a, factor, sum); }

// Of an input of the first half and a scaled one.
inline Complex SumOfInputs(Complex a, Complex scaled, float factor) {
  return {std::fma(a.re, factor, scaled.re), std::fma(a.im, factor, scaled.im)};
}
inline Complex DifferenceOfInputs(Complex a, Complex scaled, float factor) {
  return {std::fma(a.re, factor, -scaled.re), std::fma(a.im, factor, -scaled.im)};
}

// The bins that the outputs of a butterfly of four and of eight are.
inline constexpr uint32_t kBinsOfFour[] = {0, 2, 1, 3};
inline constexpr uint32_t kBinsOfEight[] = {0, 4, 2, 6, 1, 5, 3, 7};

inline std::array<Complex, 4> ButterflyOfFour(const std::array<Complex, 4> &a, float factor) {
  const Complex a0 = a[0], a1 = a[1], a2 = Scaled(a[2], factor), a3 = Scaled(a[3], factor);
  const Complex u = SumOfInputs(a0, a2, factor);
  const Complex e = DifferenceOfInputs(a0, a2, factor);
  const Complex t = SumOfInputs(a1, a3, factor);
  return {
      Complex{u.re + t.re, u.im + t.im},
      Complex{u.re - t.re, u.im - t.im},
      Complex{PlusInput(e.re - a3.im, a1.im, factor), MinusInput(e.im, a1.re, factor) + a3.re},
      Complex{MinusInput(e.re, a1.im, factor) + a3.im, PlusInput(e.im - a3.re, a1.re, factor)},
  };
}

inline std::array<Complex, 8> ButterflyOfEight(const std::array<Complex, 8> &a, float factor) {
  const float r = 0.70710677f;
  const Complex a4 = Scaled(a[4], factor), a5 = Scaled(a[5], factor);
  const Complex a6 = Scaled(a[6], factor), a7 = Scaled(a[7], factor);
  const Complex d0 = DifferenceOfInputs(a[0], a4, factor);
  const Complex d1 = DifferenceOfInputs(a[1], a5, factor);
  const Complex s0 = SumOfInputs(a[0], a4, factor);
  const Complex s1 = SumOfInputs(a[1], a5, factor);
  const Complex s2 = SumOfInputs(a[2], a6, factor);
  const Complex s3 = SumOfInputs(a[3], a7, factor);

  const float p = (MinusInput(d1.im, a[3].re, factor) + a7.re) * r;
  const float q = PlusInput(d1.im - a7.re, a[3].re, factor) * r;
  const float u = MinusInput(d1.re, a[3].im, factor) + a7.im;
  const float w = PlusInput(d1.re - a7.im, a[3].im, factor);
  const float ar = MinusInput(d0.im, a[2].re, factor) + a6.re;
  const float br = MinusInput(d0.re, a[2].im, factor) + a6.im;
  const float cr = PlusInput(d0.re - a6.im, a[2].im, factor);
  const float dr = PlusInput(d0.im - a6.re, a[2].re, factor);
  const float g = std::fma(w, r, p);
  const float h = std::fma(u, r, q);

  const float e = s0.re + s2.re, f = s0.im + s2.im;
  const float i = s0.re - s2.re, j = s0.im - s2.im;
  const float k = s1.re + s3.re, l = s1.im + s3.im;
  return {
      Complex{e + k, f + l},
      Complex{e - k, f - l},
      Complex{(i - s3.im) + s1.im, (j - s1.re) + s3.re},
      Complex{(i - s1.im) + s3.im, (j - s3.re) + s1.re},
      Complex{cr + g, std::fma(-w, r, ar + p)},
      Complex{cr - g, std::fma(w, r, ar) - p},
      Complex{std::fma(-u, r, br + q), dr - h},
      Complex{std::fma(u, r, br) - q, dr + h},
  };
}

// The radix-4 butterfly of operands times (1, first, second, third), with the products fused into
// its sums.
inline std::array<Complex, 4> FusedButterflyOfFour(const std::array<Complex, 4> &a,
                                                   const TwiddleTriple &twiddles) {
  const auto [a0, a1, a2, a3] = a;
  const auto [c1, s1] = twiddles.first;
  const auto [c2, s2] = twiddles.second;
  const auto [c3, s3] = twiddles.third;
  const float a1r = std::fma(-a1.im, s1, a1.re * c1);
  const float a1i = std::fma(a1.im, c1, a1.re * s1);
  const float a3i = std::fma(a3.im, c3, a3.re * s3);
  const float a2i = std::fma(a2.im, c2, a2.re * s2);
  const float s = std::fma(a3.re, c3, std::fma(-a3.im, s3, a1r));
  const float d = std::fma(a3.im, s3, std::fma(-a3.re, c3, a1r));
  const float p = std::fma(-a2.im, s2, std::fma(a2.re, c2, a0.re));
  const float q = std::fma(-a2.re, c2, std::fma(a2.im, s2, a0.re));
  return {
      Complex{p + s, (a0.im + a2i) + (a1i + a3i)},
      Complex{p - s, (a0.im + a2i) - (a1i + a3i)},
      Complex{(q - a3i) + a1i, (a0.im - a2i) - d},
      Complex{(q - a1i) + a3i, (a0.im - a2i) + d},
  };
}

}  // namespace reference

#endif
