// Transforms of real sequences that take their length at each call.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "fft/fft_kernels.h"
#include "mvk_fft.h"
#include "reference/fft_exact.h"
#include "reference/fft_power_of_two.h"
#include "reference/fft_real.h"

namespace testing_support {
namespace {

using reference::ExactRealForward;
using reference::LargestError;
using reference::LastTwiddles;
using reference::PowerOfTwoTransform;
using reference::Rms;
using reference::WideArray;
using reference::WideComplex;
using reference::Widened;

struct RealTransform {
  const char *name;
  void (*run)(float *src, float *dst, uint32_t n);
  Scaling scaling;
};

const RealTransform kForward[] = {
    {"rfft_nn", [](float *x, float *y, uint32_t n) { MVK_r4_rfft_nn(x, y, n); },
     Scaling::kUnscaled},
    {"rfft_nn_s", [](float *x, float *y, uint32_t n) { MVK_r4_rfft_nn_s(x, y, n); },
     Scaling::kScaled},
};

const RealTransform kInverse[] = {
    {"inv_rfft_nn", [](float *x, float *y, uint32_t n) { MVK_r4_inv_rfft_nn(x, y, n); },
     Scaling::kUnscaled},
    {"inv_rfft_half_n", [](float *x, float *y, uint32_t n) { MVK_r4_inv_rfft_half_n(x, y, n); },
     Scaling::kUnscaled},
    {"inv_rfft_nn_s", [](float *x, float *y, uint32_t n) { MVK_r4_inv_rfft_nn_s(x, y, n); },
     Scaling::kScaled},
};

std::vector<float> Result(const RealTransform &transform, std::vector<float> src) {
  std::vector<float> dst(src.size(), kNaN);
  transform.run(src.data(), dst.data(), static_cast<uint32_t>(src.size() / 2));
  return dst;
}

std::vector<float> Noise(Random &random, uint32_t n) {
  return Samples(kUniform, random, 2 * size_t{n});
}

ComplexArray ComplexKernel(const std::vector<float> &x, Direction direction, Scaling scaling) {
  return PowerOfTwoTransform(ComplexOf(x), direction, scaling,
                             x.size() == 32 ? LastTwiddles::kSixDecimals : LastTwiddles::kFull);
}

// The conversion of the kernel's result, without a rounding.
WideArray Converted(const ComplexArray &kernel_result, double factor) {
  const WideArray z = Widened(kernel_result);
  const size_t n = z.size();
  WideArray packed(n);
  packed[0] = factor * WideComplex(z[0].real() + z[0].imag(), z[0].real() - z[0].imag());
  for (size_t k = 1; k < n; ++k) {
    const auto root = reference::RootOfUnity<double>(2 * n - k, 2 * n);
    const WideComplex even = (z[k] + std::conj(z[n - k])) / 2.0;
    const WideComplex odd = (z[k] - std::conj(z[n - k])) / 2.0;
    packed[k] = factor * (even + reference::Product(WideComplex(0, -1) * odd,
                                                    WideComplex(root.cosine, root.sine)));
  }
  return packed;
}

TEST(RealFft, ConvertsTheKernelsResultInFewRoundings) {
  Random random(71);
  for (const RealTransform &transform : kForward) {
    const double factor = transform.scaling == Scaling::kScaled ? 0.5 : 1;
    for (uint32_t n = 2; n <= 4096; n *= 2) {
      const std::vector<float> x = Noise(random, n);
      const ComplexArray z = ComplexKernel(x, Direction::kForward, transform.scaling);
      const WideArray want = Converted(z, factor);
      const ComplexArray got = ComplexOf(Result(transform, x));
      for (uint32_t k = 1; k < n; ++k) {
        // A dozen roundings, none of them of more than these two values come to.
        const double size =
            factor * (std::hypot(z[k].re, z[k].im) + std::hypot(z[n - k].re, z[n - k].im));
        ASSERT_NEAR(got[k].re, want[k].real(), 8 * 0x1p-24 * size) << transform.name << " " << n;
        ASSERT_NEAR(got[k].im, want[k].imag(), 8 * 0x1p-24 * size) << transform.name << " " << n;
      }
    }
  }
}

TEST(RealFft, EndsAndMiddleAreRoundedOnce) {
  Random random(72);
  for (const RealTransform &transform : kForward) {
    for (uint32_t n = 2; n <= 4096; n *= 2) {
      const std::vector<float> x = Noise(random, n);
      const ComplexArray want = reference::ForwardConversion(
          ComplexKernel(x, Direction::kForward, transform.scaling), transform.scaling);
      const ComplexArray got = ComplexOf(Result(transform, x));
      const KernelCall call = {transform.name, "", n, {}, ""};
      EXPECT_TRUE(SameResult(got[0].re, want[0].re, call));
      EXPECT_TRUE(SameResult(got[0].im, want[0].im, call));
      EXPECT_TRUE(SameResult(got[n / 2].re, want[n / 2].re, call));
      EXPECT_TRUE(SameResult(got[n / 2].im, want[n / 2].im, call));
    }
  }
}

TEST(RealFft, IsAccurate) {
  Random random(73);
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    const std::vector<float> x = Noise(random, n);
    // The complex kernels of 16 points have twiddles of six decimals.
    const double bound = n == 16 ? 1.5e-6 : 6e-7;
    for (const RealTransform &transform : kForward) {
      const WideArray got = Widened(ComplexOf(Result(transform, x)));
      const double error = LargestError(got, ExactRealForward(x, transform.scaling));
      EXPECT_LT(error, bound) << transform.name << " of " << n;
    }
    for (const RealTransform &transform : kInverse) {
      const WideArray got = Widened(ComplexOf(Result(transform, x)));
      const WideArray want = reference::ExactRealInverse(Widened(ComplexOf(x)), transform.scaling);
      EXPECT_LT(LargestError(got, want), bound) << transform.name << " of " << n;
    }
  }
}

TEST(RealFft, SixteenUsesTheCoarseKernel) {
  Random random(74);
  const std::vector<float> x = Noise(random, 16);
  const std::vector<float> got = Result(kForward[0], x);
  const double error =
      LargestError(Widened(ComplexOf(got)), ExactRealForward(x, Scaling::kUnscaled));
  EXPECT_GT(error, 3e-7);
  const ComplexArray packed = ComplexOf(x);
  const ComplexArray coarse =
      ComplexKernel(FloatsOf(reference::InverseConversion(packed, Scaling::kScaled)),
                    Direction::kInverse, Scaling::kScaled);
  EXPECT_LT(LargestError(Widened(ComplexOf(Result(kInverse[2], x))), Widened(coarse)), 3e-7);
}

TEST(RealFft, AgreesWithTheFrontEndToWithinRounding) {
  Random random(75);
  for (uint32_t n = 2; n <= 2048; n *= 2) {
    const std::vector<float> x = Noise(random, n);
    for (const RealTransform &transform : kForward) {
      const ComplexArray got = ComplexOf(Result(transform, x));
      const ComplexArray want = reference::RealForward(x, transform.scaling);
      EXPECT_LT(LargestError(Widened(got), Widened(want)), n == 16 ? 1.5e-6 : 4e-7) << n;
      // Their steps fuse in different orders.
      if (n == 1024) {
        EXPECT_FALSE(SameSamples(FloatsOf(got), FloatsOf(want), {transform.name, "", n, {}, ""}));
      }
    }
  }
}

TEST(RealFft, InverseHasTwoNames) {
  Random random(76);
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    const std::vector<float> x = Noise(random, n);
    EXPECT_TRUE(SameSamples(Result(kInverse[1], x), Result(kInverse[0], x),
                            {"inv_rfft_half_n", "", n, {}, kUniform.name}));
  }
}

TEST(RealFft, InverseRestoresTheSequence) {
  Random random(77);
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    const std::vector<float> x = Noise(random, n);
    const double bound = n == 16 ? 3e-6 : 1.2e-6;
    const WideArray want = Widened(ComplexOf(x));
    EXPECT_LT(LargestError(Widened(ComplexOf(Result(kInverse[2], Result(kForward[0], x)))), want),
              bound)
        << n;
    EXPECT_LT(LargestError(Widened(ComplexOf(Result(kInverse[0], Result(kForward[1], x)))), want),
              bound)
        << n;
  }
}

TEST(RealFft, FourSamplesAreExact) {
  EXPECT_EQ(Result(kForward[0], {1, 2, 4, 8}), (std::vector<float>{15, -5, -3, 6}));
  EXPECT_EQ(Result(kForward[1], {1, 2, 4, 8}), (std::vector<float>{3.75f, -1.25f, -0.75f, 1.5f}));
  EXPECT_EQ(Result(kInverse[0], {15, -5, -3, 6}), (std::vector<float>{4, 8, 16, 32}));
  EXPECT_EQ(Result(kInverse[2], {15, -5, -3, 6}), (std::vector<float>{1, 2, 4, 8}));
}

TEST(RealFft, ConstantIsOneEnd) {
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    for (const RealTransform &transform : kForward) {
      const float want = transform.scaling == Scaling::kScaled ? 1.0f : 2 * static_cast<float>(n);
      const std::vector<float> y = Result(transform, std::vector<float>(2 * size_t{n}, 1.0f));
      EXPECT_EQ(y[0], want) << n;
      for (size_t i = 1; i < y.size(); ++i) ASSERT_EQ(y[i], 0) << n << " at " << i;
    }
  }
}

TEST(RealFft, ImpulsesAreRotations) {
  for (const uint32_t n : {2u, 4u, 8u, 16u, 32u, 64u, 128u}) {
    for (size_t place = 0; place < 2 * size_t{n}; ++place) {
      std::vector<float> x(2 * size_t{n}, 0.0f);
      x[place] = 1;
      const WideArray got = Widened(ComplexOf(Result(kForward[0], x)));
      const WideArray want = ExactRealForward(x, Scaling::kUnscaled);
      ASSERT_LT(LargestError(got, want), n == 16 ? 1.2e-6 : 6e-7) << n << " at " << place;
    }
  }
}

TEST(RealFft, WritesNothingOutside) {
  Random random(78);
  const auto expect = [&random](const RealTransform &transform, uint32_t n, bool source_survives) {
    const std::vector<float> x = Noise(random, n);
    const std::vector<float> want = Result(transform, x);
    for (const auto &[from, to] : {std::pair{0, 0}, {1, 0}, {0, 1}, {3, 2}, {2, 5}}) {
      const KernelCall call = {transform.name, "", n, {from, to}, kUniform.name};
      GuardedFloats src(x, from), dst(x.size(), to);
      transform.run(src.data(), dst.data(), n);
      EXPECT_TRUE(SameSamples(dst.values(), want, call));
      EXPECT_TRUE(dst.GuardsStand(call)) << "result";
      EXPECT_TRUE(src.GuardsStand(call)) << "source";
      EXPECT_EQ(bool{src.Untouched(call)}, source_survives) << call;
    }
  };
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    for (const RealTransform &transform : kForward) expect(transform, n, n <= 16);
    for (const RealTransform &transform : kInverse) expect(transform, n, false);
  }
}

// ---- Of a sequence in two pieces, the later one first ----

std::vector<float> Split(const std::vector<float> &sequence, bool scaled) {
  const auto n = static_cast<uint32_t>(sequence.size() / 2);
  const auto middle = sequence.begin() + n;
  GuardedFloats a({middle, sequence.end()}, 1), b({sequence.begin(), middle}, 2);
  GuardedFloats dst(sequence.size(), 3);
  if (scaled) {
    MVK_r4_rsplit_fft_nn_s(a.data(), b.data(), dst.data(), n);
  } else {
    MVK_r4_rsplit_fft_nn(a.data(), b.data(), dst.data(), n);
  }
  const KernelCall call = {scaled ? "rsplit_fft_nn_s" : "rsplit_fft_nn", "", n, {1, 2, 3}, ""};
  EXPECT_TRUE(a.Untouched(call)) << "later piece";
  EXPECT_TRUE(b.Untouched(call)) << "earlier piece";
  EXPECT_TRUE(dst.GuardsStand(call)) << "result";
  return {dst.values().begin(), dst.values().end()};
}

TEST(RealFft, TakesASequenceInTwoPieces) {
  Random random(79);
  for (const uint32_t n : {2u, 4u, 8u, 16u}) {
    const std::vector<float> x = Noise(random, n);
    std::vector<float> want = Result(kForward[0], x);
    for (float &value : want) value /= static_cast<float>(n);
    EXPECT_TRUE(SameSamples(Split(x, false), want, {"rsplit_fft_nn", "", n, {}, kUniform.name}));
    EXPECT_TRUE(SameSamples(Split(x, true), Result(kForward[1], x),
                            {"rsplit_fft_nn_s", "", n, {}, kUniform.name}));
    std::vector<float> half = Split(x, false);
    for (float &value : half) value /= 2;
    EXPECT_TRUE(SameSamples(Split(x, true), half, {"rsplit_fft_nn_s", "", n, {}, "halves"}));
  }
}

TEST(RealFft, TwoPiecesOfMoreThanSixteenAreNoSpectrum) {
  Random random(80);
  for (uint32_t n = 32; n <= 4096; n *= 2) {
    const std::vector<float> x = Noise(random, n);
    for (const bool scaled : {false, true}) {
      WideArray want = ExactRealForward(x, Scaling::kScaled);
      if (!scaled) {
        for (WideComplex &value : want) value *= 2.0;
      }
      EXPECT_GT(LargestError(Widened(ComplexOf(Split(x, scaled))), want), 0.01) << n;
    }
  }
}

// A length without a kernel: the inverse ends with the conversion of its input.
TEST(RealFft, InverseOfNoLengthLeavesTheResultAlone) {
  for (const RealTransform &transform : kInverse) {
    GuardedFloats src({3.0f, 5.0f}, 0), dst({kNaN, kNaN}, 0);
    transform.run(src.data(), dst.data(), 1);
    EXPECT_TRUE(dst.Untouched({transform.name, "", 1, {}, ""}));
    EXPECT_TRUE(src.GuardsStand({transform.name, "", 1, {}, ""}));
  }
}

}  // namespace
}  // namespace testing_support
