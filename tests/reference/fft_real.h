// Fourier transforms of real sequences over complex ones of half the length, for tests.
#ifndef MVK_TESTS_REFERENCE_FFT_REAL_H_
#define MVK_TESTS_REFERENCE_FFT_REAL_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "reference/fft_exact.h"
#include "reference/fft_power_of_two.h"
#include "reference/fft_roots.h"
#include "reference/fft_values.h"

namespace reference {

// Sine and cosine of pi k / n, rounded once.
inline Complex SineAndCosine(size_t k, size_t n) {
  const Root<double> root = RootOfUnity<double>(k, 2 * n);
  return {static_cast<float>(root.sine), static_cast<float>(root.cosine)};
}

// From the transform of the pairs of a real sequence to its packed half spectrum.
inline ComplexArray ForwardConversion(ComplexArray z, Scaling scaling) {
  const size_t n = z.size();
  const bool scaled = scaling == Scaling::kScaled;
  const float h = scaled ? 0.25f : 0.5f;
  const auto [a, b] = z[0];
  z[0] = scaled ? Complex{std::fma(a, 0.5f, b * 0.5f), std::fma(a, 0.5f, -(b * 0.5f))}
                : Complex{a + b, a - b};
  Complex &middle = z[n / 2];
  middle = scaled ? Complex{middle.re * 0.5f, middle.im * -0.5f} : Complex{middle.re, -middle.im};
  for (size_t k = 1; k < n / 2; ++k) {
    const size_t m = n - k;
    const auto [s, c] = SineAndCosine(k, n);
    const auto [zkr, zki] = z[k];
    const auto [zmr, zmi] = z[m];
    const float hi = zmi * h, hr = zmr * h;
    const float odd_re = std::fma(zki, h, hi);
    const float odd_im = std::fma(-zkr, h, hr);
    const float even_re = std::fma(zkr, h, hr);
    const float p = std::fma(s, odd_im, c * odd_re);
    const float q = std::fma(c, odd_im, -(s * odd_re));
    const float even_im = std::fma(zki, h, -hi);
    const float mirrored = std::fma(-zki, h, hi);
    z[k] = {even_re + p, even_im + q};
    z[m] = {even_re - p, mirrored + q};
  }
  return z;
}

// The other way round.
inline ComplexArray InverseConversion(ComplexArray x, Scaling scaling) {
  const size_t n = x.size();
  const bool scaled = scaling == Scaling::kScaled;
  const auto [a, b] = x[0];
  const float t = b * 0.5f;
  x[0] = scaled ? Complex{std::fma(a, 0.5f, t), std::fma(a, 0.5f, -t)} : Complex{a + b, a - b};
  Complex &middle = x[n / 2];
  middle =
      scaled ? Complex{middle.re, -middle.im} : Complex{middle.re + middle.re, middle.im * -2.0f};
  for (size_t k = 1; k < n / 2; ++k) {
    const size_t m = n - k;
    const auto [s, c] = SineAndCosine(k, n);
    const auto [pkr, pki] = x[k];
    const auto [pmr, pmi] = x[m];
    float odd_re, odd_im, even_re, even_im, mirrored;
    if (scaled) {
      const float hi = pmi * 0.5f, hr = pmr * 0.5f;
      odd_im = std::fma(pkr, 0.5f, -hr);
      odd_re = std::fma(pki, 0.5f, hi);
      even_re = std::fma(pkr, 0.5f, hr);
      even_im = std::fma(pki, 0.5f, -hi);
      mirrored = std::fma(-pki, 0.5f, hi);
    } else {
      odd_im = pkr - pmr;
      odd_re = pki + pmi;
      even_re = pkr + pmr;
      even_im = pki - pmi;
      mirrored = pmi - pki;
    }
    const float p = std::fma(c, odd_re, s * odd_im);
    const float q = std::fma(c, odd_im, -(s * odd_re));
    x[k] = {even_re - p, even_im + q};
    x[m] = {even_re + p, mirrored + q};
  }
  return x;
}

inline ComplexArray RealForward(const std::vector<float> &x, Scaling scaling) {
  return ForwardConversion(PowerOfTwoTransform(ComplexOf(x), Direction::kForward, scaling),
                           scaling);
}

inline std::vector<float> RealInverse(const ComplexArray &packed, Scaling scaling) {
  return FloatsOf(
      PowerOfTwoTransform(InverseConversion(packed, scaling), Direction::kInverse, scaling));
}

// The packed half spectrum as it is defined; scaled, over the length of the sequence.
inline WideArray ExactRealForward(std::span<const float> x, Scaling scaling) {
  const WideArray spectrum =
      ExactTransform(WideArray(x.begin(), x.end()), Direction::kForward, scaling);
  const size_t n = x.size() / 2;
  WideArray packed(spectrum.begin(), spectrum.begin() + static_cast<ptrdiff_t>(n));
  packed[0] = {spectrum[0].real(), spectrum[n].real()};
  return packed;
}

// The real sequence of a packed half spectrum, in pairs; unscaled, times its length.
inline WideArray ExactRealInverse(const WideArray &packed, Scaling scaling) {
  const size_t n = packed.size();
  WideArray spectrum(2 * n);
  spectrum[0] = packed[0].real();
  spectrum[n] = packed[0].imag();
  for (size_t k = 1; k < n; ++k) {
    spectrum[k] = packed[k];
    spectrum[2 * n - k] = std::conj(packed[k]);
  }
  const WideArray sequence = ExactTransform(spectrum, Direction::kInverse, scaling);
  WideArray pairs;
  for (size_t i = 0; i < n; ++i) {
    pairs.emplace_back(sequence[2 * i].real(), sequence[2 * i + 1].real());
  }
  return pairs;
}

}  // namespace reference

#endif
