// Radix-4 kernels of powers of two, against their passes to the bit.
#include <gtest/gtest.h>

#include <vector>

#include "fft/fft_kernels.h"
#include "fft/kernel_checks.h"
#include "reference/fft_exact.h"
#include "reference/fft_power_of_two.h"

namespace testing_support {
namespace {

using reference::LargestError;
using reference::LastTwiddles;
using reference::PowerOfTwoTransform;
using reference::Widened;

// The kernels of 16 points have twiddles of six decimals.
ComplexArray Want(const Kernel &kernel, const ComplexArray &x) {
  return PowerOfTwoTransform(
      x, kernel.direction, kernel.scaling,
      kernel.length == 16 ? LastTwiddles::kSixDecimals : LastTwiddles::kFull);
}

testing::AssertionResult AsInPasses(const Kernel &kernel, const ComplexArray &x,
                                    const char *material) {
  return SameSamples(FloatsOf(ResultOf(kernel, x)), FloatsOf(Want(kernel, x)),
                     CallOf(kernel, material));
}

const Kernel &KernelOf(uint32_t length, Direction direction = Direction::kForward,
                       Scaling scaling = Scaling::kUnscaled) {
  return *Find(PowerOfTwoKernels(), length, direction, scaling);
}

TEST(PowerOfTwoFft, RoundsAsItsPassesDo) {
  Random random(21);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    for (const Material &material : {kUniform, kClose, kSignedZeros}) {
      const ComplexArray x = ComplexSamples(material, random, kernel.length);
      EXPECT_TRUE(AsInPasses(kernel, x, material.name));
    }
  }
}

// The sine of a twiddle of 1 is +0, also where twiddles have six decimals: -0 stays -0.
TEST(PowerOfTwoFft, KeepsSignsOfZerosThroughTwiddlesOfOne) {
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    const ComplexArray x(kernel.length, {-0.0f, 1.0f});
    EXPECT_TRUE(AsInPasses(kernel, x, "zeros and ones"));
    if (kernel.direction == Direction::kForward) {
      EXPECT_EQ(BitsOf(ResultOf(kernel, x)[0].re), BitsOf(-0.0f)) << kernel.name;
    }
  }
}

// Scaled kernels underflow on these at places where two orders of the same sum differ.
TEST(PowerOfTwoFft, RoundsAnyValuesAsItsPassesDo) {
  Random random(22);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    if (kernel.scaling == Scaling::kScaled) continue;
    for (const Material &material : {kWide, kFew, kMixed}) {
      const ComplexArray x = ComplexSamples(material, random, kernel.length);
      EXPECT_TRUE(AsInPasses(kernel, x, material.name));
    }
  }
}

// One infinity among small numbers shows which values are multiplied by 1 and 0 and which are
// left alone.
TEST(PowerOfTwoFft, KeepsInfinitiesOutOfPartsThatTheyDontBelongTo) {
  Random random(23);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    const uint32_t n = kernel.length;
    for (const uint32_t place : {0u, n / 2, n / 4, n / 8, n / 16, n / 32, n / 64, n - 1}) {
      ComplexArray x = ComplexSamples(kUniform, random, n);
      (place % 3 == 0 ? x[place].im : x[place].re) = random.Below(2) == 0 ? kInfinity : -kInfinity;
      EXPECT_TRUE(AsInPasses(kernel, x, "one infinity")) << "at " << place;
    }
  }
}

TEST(PowerOfTwoFft, LeavesBlockNoughtOfAMiddlePassUnmultiplied) {
  // The second operand of block 0 in the middle pass; a product with 1 and 0 would spoil the
  // other part.
  ComplexArray x(64);
  x[4].re = kInfinity;
  const ComplexArray y = ResultOf(KernelOf(64), x);
  EXPECT_EQ(y[0].re, kInfinity);
  EXPECT_EQ(y[0].im, 0);
  EXPECT_EQ(y[32].re, kInfinity);
}

TEST(PowerOfTwoFft, ScaledResultIsTheUnscaledOverTheLength) {
  Random random(24);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    if (kernel.scaling != Scaling::kScaled) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    std::vector<float> unscaled = FloatsOf(ResultOf(KernelOf(kernel.length, kernel.direction), x));
    for (float &value : unscaled) value /= static_cast<float>(kernel.length);
    EXPECT_TRUE(
        SameSamples(FloatsOf(ResultOf(kernel, x)), unscaled, CallOf(kernel, kUniform.name)));
  }
}

// Bit for bit at even powers, and by other roundings where the first pass is one of eight.
TEST(PowerOfTwoFft, InverseIsTheForwardOfExchangedParts) {
  Random random(25);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    if (kernel.direction != Direction::kInverse) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const Kernel &forward = KernelOf(kernel.length, Direction::kForward, kernel.scaling);
    const ComplexArray got = ResultOf(kernel, x);
    const ComplexArray want = reference::Exchanged(ResultOf(forward, reference::Exchanged(x)));
    const testing::AssertionResult same =
        SameSamples(FloatsOf(got), FloatsOf(want), CallOf(kernel, kUniform.name));
    if (reference::Log2(kernel.length) % 2 == 0 || kernel.length == 2) {
      EXPECT_TRUE(same);
    } else {
      EXPECT_LT(LargestError(Widened(got), Widened(want)), 6e-7) << kernel.name;
      if (kernel.length >= 128) {
        EXPECT_FALSE(same) << kernel.name;
      }
    }
  }
}

TEST(PowerOfTwoFft, IsAccurate) {
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    ExpectAccuracy({&kernel, 1}, ExactResult, kernel.length == 16 ? 1.5e-6 : 6e-7);
  }
}

TEST(PowerOfTwoFft, KernelOfSixteenIsCoarse) {
  Random random(26);
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    if (kernel.length != 16) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const double error = LargestError(Widened(ResultOf(kernel, x)), ExactResult(kernel, x));
    const ComplexArray fine = PowerOfTwoTransform(x, kernel.direction, kernel.scaling);
    const double error_of_fine = LargestError(Widened(fine), ExactResult(kernel, x));
    EXPECT_GT(error, 4e-7) << kernel.name;
    EXPECT_GT(error, 3 * error_of_fine) << kernel.name;
  }
}

TEST(PowerOfTwoFft, TurnsAConstantIntoOneBin) {
  for (const Kernel &kernel : PowerOfTwoKernels()) {
    const uint32_t n = kernel.length;
    const ComplexArray y = ResultOf(kernel, ComplexArray(n, {1.0f, 0.0f}));
    EXPECT_EQ(y[0].re, kernel.scaling == Scaling::kScaled ? 1 : n) << kernel.name;
    EXPECT_EQ(y[0].im, 0) << kernel.name;
    for (uint32_t k = 1; k < n; ++k) {
      ASSERT_EQ(y[k].re, 0) << kernel.name << " bin " << k;
      ASSERT_EQ(y[k].im, 0) << kernel.name << " bin " << k;
    }
  }
}

TEST(PowerOfTwoFft, TurnsImpulsesIntoRotations) {
  ExpectImpulses(PowerOfTwoKernels(), [](uint32_t length) { return length == 16 ? 1.2e-6 : 6e-7; });
}

TEST(PowerOfTwoFft, TurnsAnImpulseIntoRootsToTwoUnitsInTheLastPlace) {
  ComplexArray x(64);
  x[1].re = 1;
  const ComplexArray y = ResultOf(KernelOf(64), x);
  for (uint32_t k = 0; k < 64; ++k) {
    const auto root = reference::RootOfUnity<double>(64 - k, 64);
    EXPECT_NEAR(y[k].re, root.cosine, 2 * 0x1p-24) << k;
    EXPECT_NEAR(y[k].im, root.sine, 2 * 0x1p-24) << k;
  }
}

TEST(PowerOfTwoFft, SumsTwoValues) {
  const ComplexArray x = {{3, 5}, {0.25f, -2}};
  EXPECT_EQ(FloatsOf(ResultOf(KernelOf(2), x)), (std::vector<float>{3.25f, 3, 2.75f, 7}));
  EXPECT_EQ(FloatsOf(ResultOf(KernelOf(2, Direction::kInverse, Scaling::kScaled), x)),
            (std::vector<float>{1.625f, 1.5f, 1.375f, 3.5f}));
}

// The product of the second input rounds, and that of the first goes in whole.
TEST(PowerOfTwoFft, ScalesTwoValuesAsItReadsThem) {
  const float least = 0x1p-149f;
  const Kernel &kernel = KernelOf(2, Direction::kForward, Scaling::kScaled);
  const ComplexArray x = {{3 * least, least}, {3 * least, 5 * least}};
  // 3/2 becomes 2 and 5/2 becomes 2, and so do the ties after them: 3/2 + 2, 1/2 + 2,
  // 3/2 - 2 and 1/2 - 2.
  const ComplexArray want = {{4 * least, 2 * least}, {-0.0f, -2 * least}};
  EXPECT_TRUE(
      SameSamples(FloatsOf(ResultOf(kernel, x)), FloatsOf(want), CallOf(kernel, "denormals")));
}

TEST(PowerOfTwoFft, WritesNothingElse) { ExpectNothingOutsideIsTouched(PowerOfTwoKernels()); }

TEST(PowerOfTwoFft, IgnoresTheLengthArgument) {
  ExpectLengthArgumentIsIgnored(PowerOfTwoKernels());
}

TEST(PowerOfTwoFft, RunsInPlaceUpToSixteen) { ExpectInPlaceWhereAllowed(PowerOfTwoKernels()); }

}  // namespace
}  // namespace testing_support
