// Radix-4 Fourier transforms of composite lengths, pass by pass and to the bit, for tests.
#ifndef MVK_TESTS_REFERENCE_FFT_COMPOSITE_H_
#define MVK_TESTS_REFERENCE_FFT_COMPOSITE_H_

#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "reference/fft_butterflies.h"
#include "reference/fft_roots.h"
#include "reference/fft_values.h"

namespace reference {

inline constexpr float kRadix3Sine = 0.8660254f;
// The cosines have six decimals and the sines have all their bits.
inline constexpr float kRadix5Cosine1 = 0.309017f;
inline constexpr float kRadix5Cosine2 = -0.809017f;
inline constexpr float kRadix5Sine1 = 0.95105654f;
inline constexpr float kRadix5Sine2 = 0.58778524f;

struct CompositePlan {
  uint32_t length;
  std::vector<uint32_t> radices;  // of the passes, the innermost first
};

inline const std::vector<CompositePlan> &CompositePlans() {
  static const std::vector<CompositePlan> plans = {
      {6, {6}},
      {12, {4, 3}},
      {15, {5, 3}},
      {20, {4, 5}},
      {24, {8, 3}},
      {30, {6, 5}},
      {36, {4, 3, 3}},
      {40, {8, 5}},
      {45, {5, 3, 3}},
      {48, {4, 3, 4}},
      {60, {4, 5, 3}},
      {72, {8, 3, 3}},
      {80, {4, 4, 5}},
      {90, {6, 3, 5}},
      {96, {8, 3, 4}},
      {120, {8, 3, 5}},
      {144, {4, 3, 3, 4}},
      {160, {8, 4, 5}},
      {180, {4, 3, 3, 5}},
      {192, {4, 4, 4, 3}},
      {240, {4, 3, 4, 5}},
      {288, {8, 3, 3, 4}},
      {320, {4, 4, 4, 5}},
      {360, {8, 3, 3, 5}},
      {384, {8, 3, 4, 4}},
      {480, {8, 3, 4, 5}},
      {576, {4, 3, 3, 4, 4}},
      {640, {8, 4, 4, 5}},
      {720, {4, 3, 3, 4, 5}},
      {768, {4, 4, 4, 4, 3}},
      {960, {4, 3, 4, 4, 5}},
  };
  return plans;
}

// ---- Butterflies behind the first pass, with their products fused in ----

inline std::array<Complex, 3> ButterflyOfThree(Complex a, Complex b, Complex c, Complex b_root,
                                               Complex c_root) {
  const auto [c2, s2] = c_root;
  const float br = std::fma(-b.im, b_root.im, b.re * b_root.re);
  const float bi = std::fma(b_root.re, b.im, b_root.im * b.re);
  const float ci = std::fma(c2, c.im, s2 * c.re);
  const float si = bi + ci;
  const float di = bi - ci;
  const float sr = std::fma(c.re, c2, std::fma(-c.im, s2, br));
  const float dr = std::fma(c.im, s2, std::fma(-c.re, c2, br));
  const float tr = std::fma(-sr, 0.5f, a.re);
  const float ti = std::fma(-si, 0.5f, a.im);
  return {
      Complex{a.re + sr, a.im + si},
      Complex{std::fma(di, kRadix3Sine, tr), std::fma(-dr, kRadix3Sine, ti)},
      Complex{std::fma(-di, kRadix3Sine, tr), std::fma(dr, kRadix3Sine, ti)},
  };
}

// Sums and differences of the operands 1 and 4 (the first) and of 2 and 3 (the second).
struct PairsOfFive {
  Complex sum1, difference1, sum2, difference2;
};

inline PairsOfFive TwiddledPairsOfFive(const std::array<Complex, 5> &b,
                                       const std::array<Complex, 5> &root) {
  const auto [w1c, w1s] = root[1];
  const auto [w2c, w2s] = root[2];
  const auto [w3c, w3s] = root[3];
  const auto [w4c, w4s] = root[4];
  const float t1 = std::fma(-b[1].im, w1s, w1c * b[1].re);
  const float t2 = std::fma(-b[2].im, w2s, w2c * b[2].re);
  const float u1 = std::fma(w1c, b[1].im, w1s * b[1].re);
  const float u2 = std::fma(w2c, b[2].im, w2s * b[2].re);
  const float u3 = std::fma(w3c, b[3].im, w3s * b[3].re);
  const float u4 = std::fma(w4c, b[4].im, w4s * b[4].re);
  return {
      .sum1 = {std::fma(w4c, b[4].re, std::fma(-b[4].im, w4s, t1)), u1 + u4},
      .difference1 = {std::fma(w4s, b[4].im, std::fma(-b[4].re, w4c, t1)), u1 - u4},
      .sum2 = {std::fma(w3c, b[3].re, std::fma(-b[3].im, w3s, t2)), u3 + u2},
      .difference2 = {std::fma(w3s, b[3].im, std::fma(-b[3].re, w3c, t2)), u2 - u3},
  };
}

// `factor` is that of a0 alone.
inline std::array<Complex, 5> ButterflyOfFive(Complex a0, const PairsOfFive &pairs, float factor) {
  const auto [sum1, difference1, sum2, difference2] = pairs;
  const auto first = [](float s1, float s2) {
    return std::fma(s2, kRadix5Cosine2, s1 * kRadix5Cosine1);
  };
  const auto second = [](float s1, float s2) {
    return std::fma(s2, kRadix5Cosine1, s1 * kRadix5Cosine2);
  };
  const auto first_sine = [](float d1, float d2) {
    return std::fma(d2, kRadix5Sine2, d1 * kRadix5Sine1);
  };
  const auto second_sine = [](float d1, float d2) {
    return std::fma(-d2, kRadix5Sine1, d1 * kRadix5Sine2);
  };
  const float b1 = first_sine(difference1.im, difference2.im);
  const float b2 = second_sine(difference1.im, difference2.im);
  const float c1 = first_sine(difference1.re, difference2.re);
  const float c2 = second_sine(difference1.re, difference2.re);
  const float pr = PlusInput(first(sum1.re, sum2.re), a0.re, factor);
  const float pi = PlusInput(first(sum1.im, sum2.im), a0.im, factor);
  const float qr = PlusInput(second(sum1.re, sum2.re), a0.re, factor);
  const float qi = PlusInput(second(sum1.im, sum2.im), a0.im, factor);
  return {
      Complex{PlusInput(sum2.re + sum1.re, a0.re, factor),
              PlusInput(sum2.im + sum1.im, a0.im, factor)},
      Complex{pr + b1, pi - c1},
      Complex{qr + b2, qi - c2},
      Complex{qr - b2, qi + c2},
      Complex{pr - b1, pi + c1},
  };
}

// ---- First passes: one transform of a few inputs, in the order of its bins ----

inline std::vector<Complex> FirstOfFour(const std::vector<Complex> &x, float factor) {
  const auto y = ButterflyOfFour({x[0], x[1], x[2], x[3]}, factor);
  std::vector<Complex> bins(4);
  for (size_t i = 0; i < 4; ++i) bins[kBinsOfFour[i]] = y[i];
  return bins;
}

inline std::vector<Complex> FirstOfEight(const std::vector<Complex> &x, Direction direction,
                                         float factor) {
  std::array<Complex, 8> a;
  for (size_t i = 0; i < 8; ++i) a[i] = x[i];
  const auto y = ButterflyOfEight(a, factor);
  std::vector<Complex> bins(8);
  for (size_t i = 0; i < 8; ++i) {
    const uint32_t bin = kBinsOfEight[i];
    bins[direction == Direction::kForward ? bin : (8 - bin) % 8] = y[i];
  }
  return bins;
}

inline std::vector<Complex> FirstOfFive(const std::vector<Complex> &x, float factor) {
  const Complex x3 = Scaled(x[3], factor), x4 = Scaled(x[4], factor);
  const PairsOfFive pairs = {
      .sum1 = SumOfInputs(x[1], x4, factor),
      .difference1 = DifferenceOfInputs(x[1], x4, factor),
      .sum2 = SumOfInputs(x[2], x3, factor),
      .difference2 = DifferenceOfInputs(x[2], x3, factor),
  };
  const auto y = ButterflyOfFive(x[0], pairs, factor);
  return {y.begin(), y.end()};
}

// One of many orders of rounding.
inline std::vector<Complex> FirstOfSix(const std::vector<Complex> &x, float factor) {
  const Complex one = {1.0f, 0.0f};
  std::array<Complex, 3> sum, difference;
  for (size_t i = 0; i < 3; ++i) {
    const Complex scaled = Scaled(x[i + 3], factor);
    sum[i] = SumOfInputs(x[i], scaled, factor);
    difference[i] = DifferenceOfInputs(x[i], scaled, factor);
  }
  const auto even = ButterflyOfThree(sum[0], sum[1], sum[2], one, one);
  const auto odd = ButterflyOfThree(difference[0], difference[1], difference[2],
                                    {0.5f, -kRadix3Sine}, {-0.5f, -kRadix3Sine});
  return {even[0], odd[0], even[1], odd[1], even[2], odd[2]};
}

// ---- Transforms ----

// The twiddles of group k in a stage of cumulative length l.
inline Complex StageRoot(uint32_t q, uint32_t k, uint32_t l) {
  static const auto tables = [] {
    std::vector<std::vector<Complex>> roots(961);
    for (const CompositePlan &plan : CompositePlans()) {
      uint32_t length = 1;
      for (uint32_t radix : plan.radices) {
        length *= radix;
        if (!roots[length].empty()) continue;
        for (uint32_t i = 0; i < length; ++i) roots[length].push_back(CoarseRoot(i, length));
      }
    }
    return roots;
  }();
  return tables[l][q * k % l];
}

namespace composite {

// The transform of the inputs at a stride, forward but for its first pass, which is that of
// `direction`.
inline ComplexArray Transform(const Complex *x, size_t stride, std::span<const uint32_t> radices,
                              Direction direction, float factor) {
  const uint32_t radix = radices.back();
  if (radices.size() == 1) {
    ComplexArray inputs;
    for (size_t m = 0; m < radix; ++m) inputs.push_back(x[m * stride]);
    if (radix == 8) {
      const ComplexArray bins = FirstOfEight(inputs, direction, factor);
      return direction == Direction::kForward ? bins : Exchanged(bins);
    }
    if (direction == Direction::kInverse) inputs = Exchanged(inputs);
    return radix == 4   ? FirstOfFour(inputs, factor)
           : radix == 5 ? FirstOfFive(inputs, factor)
                        : FirstOfSix(inputs, factor);
  }
  std::vector<ComplexArray> parts;
  for (size_t q = 0; q < radix; ++q) {
    parts.push_back(Transform(x + q * stride, radix * stride, radices.first(radices.size() - 1),
                              direction, factor));
  }
  const size_t m = parts[0].size();
  const auto l = static_cast<uint32_t>(radix * m);
  ComplexArray result(l);
  for (uint32_t k = 0; k < m; ++k) {
    const auto root = [k, l](uint32_t q) { return StageRoot(q, k, l); };
    if (radix == 3) {
      const auto y = ButterflyOfThree(parts[0][k], parts[1][k], parts[2][k], root(1), root(2));
      for (size_t p = 0; p < 3; ++p) result[k + p * m] = y[p];
    } else if (radix == 4) {
      const auto y = FusedButterflyOfFour({parts[0][k], parts[1][k], parts[2][k], parts[3][k]},
                                          {root(1), root(2), root(3)});
      for (size_t i = 0; i < 4; ++i) result[k + kBinsOfFour[i] * m] = y[i];
    } else {
      const auto pairs =
          TwiddledPairsOfFive({parts[0][k], parts[1][k], parts[2][k], parts[3][k], parts[4][k]},
                              {Complex{}, root(1), root(2), root(3), root(4)});
      const auto y = ButterflyOfFive(parts[0][k], pairs, 1.0f);
      for (size_t p = 0; p < 5; ++p) result[k + p * m] = y[p];
    }
  }
  return result;
}

}  // namespace composite

inline ComplexArray CompositeTransform(const CompositePlan &plan, const ComplexArray &x,
                                       Direction direction, Scaling scaling) {
  const ComplexArray result =
      composite::Transform(x.data(), 1, plan.radices, direction, FactorOf(scaling, plan.length));
  return direction == Direction::kForward ? result : Exchanged(result);
}

// Whether the rounding of a bin is fixed for any input. A first pass of radix 8 leaves it open in
// its bins 3 and 7, which an inverse puts at 5 and 1; a first pass of radix 6 in all bins, and
// the inverse one of radix 5 as well.
inline bool RoundingIsFixed(const CompositePlan &plan, Direction direction, uint32_t bin) {
  switch (plan.radices.front()) {
    case 4:
      return true;
    case 5:
      return direction == Direction::kForward;
    case 8:
      return bin % 4 != (direction == Direction::kForward ? 3u : 1u);
    default:
      return false;
  }
}

}  // namespace reference

#endif
