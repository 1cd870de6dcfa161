// Radix-4 Fourier transforms of 2 to 4096 points, pass by pass and to the bit, for tests.
#ifndef MVK_TESTS_REFERENCE_FFT_POWER_OF_TWO_H_
#define MVK_TESTS_REFERENCE_FFT_POWER_OF_TWO_H_

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "reference/fft_butterflies.h"
#include "reference/fft_roots.h"
#include "reference/fft_values.h"

namespace reference {

enum class LastTwiddles { kFull, kSixDecimals };

inline const TwiddleTriple &TwiddlesOfBlock(uint32_t b) {
  static const std::vector<TwiddleTriple> table = [] {
    std::vector<TwiddleTriple> triples;
    for (uint32_t i = 0; i < 1024; ++i) triples.push_back(BlockTwiddles(i));
    return triples;
  }();
  return table.at(b);
}

// The order of roundings of the middle passes: the imaginary part takes the sine's product last.
inline Complex MiddleProduct(Complex a, Complex twiddle) {
  return {std::fma(-a.im, twiddle.im, a.re * twiddle.re),
          std::fma(a.re, twiddle.im, a.im * twiddle.re)};
}

inline ComplexArray TransformOfTwo(const ComplexArray &x, float factor) {
  const Complex scaled = Scaled(x[1], factor);
  return {SumOfInputs(x[0], scaled, factor), DifferenceOfInputs(x[0], scaled, factor)};
}

inline ComplexArray TransformOfFour(const ComplexArray &a, float factor) {
  const Complex a0 = a[0], a1 = a[1], a2 = Scaled(a[2], factor), a3 = Scaled(a[3], factor);
  const Complex sum = SumOfInputs(a0, a2, factor);
  const Complex odd = SumOfInputs(a1, a3, factor);
  const Complex e = DifferenceOfInputs(a0, a2, factor);
  return {
      {odd.re + sum.re, odd.im + sum.im},
      {PlusInput(e.re, a1.im, factor) - a3.im, MinusInput(e.im + a3.re, a1.re, factor)},
      {sum.re - odd.re, sum.im - odd.im},
      {MinusInput(e.re + a3.im, a1.im, factor), PlusInput(e.im, a1.re, factor) - a3.re},
  };
}

inline ComplexArray FirstPassOfFour(const ComplexArray &x, float factor) {
  const size_t quarter = x.size() / 4;
  ComplexArray work(x.size());
  for (size_t n = 0; n < quarter; ++n) {
    const auto y =
        ButterflyOfFour({x[n], x[n + quarter], x[n + 2 * quarter], x[n + 3 * quarter]}, factor);
    for (size_t i = 0; i < 4; ++i) work[i * quarter + n] = y[i];
  }
  return work;
}

// The inverse runs the same butterfly and puts each bin where the forward transform puts its
// mirror image.
inline ComplexArray FirstPassOfEight(const ComplexArray &x, Direction direction, float factor) {
  constexpr size_t kInOrder[] = {0, 1, 2, 3, 4, 5, 6, 7};
  constexpr size_t kMirrored[] = {0, 1, 3, 2, 7, 6, 5, 4};
  const size_t *order = direction == Direction::kForward ? kInOrder : kMirrored;
  const size_t eighth = x.size() / 8;
  ComplexArray work(x.size());
  for (size_t n = 0; n < eighth; ++n) {
    std::array<Complex, 8> a;
    for (size_t i = 0; i < 8; ++i) a[i] = x[n + i * eighth];
    const auto y = ButterflyOfEight(a, factor);
    for (size_t i = 0; i < 8; ++i) work[i * eighth + n] = y[order[i]];
  }
  return work;
}

// Block 0 isn't multiplied.
inline void MiddlePass(ComplexArray &work, size_t stride) {
  for (size_t b = 0; b < work.size() / (4 * stride); ++b) {
    const TwiddleTriple &twiddles = TwiddlesOfBlock(static_cast<uint32_t>(b));
    for (size_t t = 0; t < stride; ++t) {
      Complex *a = &work[4 * stride * b + t];
      std::array<Complex, 4> operands = {a[0], a[stride], a[2 * stride], a[3 * stride]};
      if (b != 0) {
        operands[1] = MiddleProduct(operands[1], twiddles.first);
        operands[2] = MiddleProduct(operands[2], twiddles.second);
        operands[3] = MiddleProduct(operands[3], twiddles.third);
      }
      const auto y = ButterflyOfFour(operands, 1.0f);
      for (size_t i = 0; i < 4; ++i) a[i * stride] = y[i];
    }
  }
}

inline ComplexArray LastPass(const ComplexArray &work, LastTwiddles twiddles) {
  const auto n = static_cast<uint32_t>(work.size());
  ComplexArray result(n);
  for (uint32_t b = 0; b < n / 4; ++b) {
    const auto y = FusedButterflyOfFour(
        {work[4 * b], work[4 * b + 1], work[4 * b + 2], work[4 * b + 3]},
        twiddles == LastTwiddles::kFull ? TwiddlesOfBlock(b) : CoarseBlockTwiddles(b));
    for (uint32_t i = 0; i < 4; ++i) result[Reversed(4 * b + i, Log2(n))] = y[i];
  }
  return result;
}

inline ComplexArray InBitReversedOrder(const ComplexArray &work) {
  const auto n = static_cast<uint32_t>(work.size());
  ComplexArray result(n);
  for (uint32_t i = 0; i < n; ++i) result[Reversed(i, Log2(n))] = work[i];
  return result;
}

// All passes behind the first.
inline ComplexArray LaterPasses(ComplexArray work, size_t first_radix, LastTwiddles twiddles) {
  if (work.size() == 8) return InBitReversedOrder(work);
  for (size_t stride = work.size() / first_radix / 4; stride >= 4; stride /= 4) {
    MiddlePass(work, stride);
  }
  return LastPass(work, twiddles);
}

inline ComplexArray PowerOfTwoTransform(const ComplexArray &x, Direction direction, Scaling scaling,
                                        LastTwiddles twiddles = LastTwiddles::kFull) {
  const auto n = static_cast<uint32_t>(x.size());
  const float factor = FactorOf(scaling, n);
  const bool inverse = direction == Direction::kInverse;
  if (Log2(n) % 2 != 0 && n > 2) {
    const ComplexArray work = FirstPassOfEight(x, direction, factor);
    return inverse ? Exchanged(LaterPasses(Exchanged(work), 8, twiddles))
                   : LaterPasses(work, 8, twiddles);
  }
  if (inverse) {
    return Exchanged(PowerOfTwoTransform(Exchanged(x), Direction::kForward, scaling, twiddles));
  }
  if (n == 2) return TransformOfTwo(x, factor);
  if (n == 4) return TransformOfFour(x, factor);
  return LaterPasses(FirstPassOfFour(x, factor), 4, twiddles);
}

}  // namespace reference

#endif
