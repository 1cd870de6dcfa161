// Radix-8 kernels: as accurate as their full twiddles allow, in no fixed order of rounding.
#include <gtest/gtest.h>

#include <cmath>

#include "fft/fft_kernels.h"
#include "fft/kernel_checks.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

using reference::LargestError;
using reference::Widened;

// Of the largest error over the rms of the result.
constexpr double kAccuracy = 6e-7;

TEST(Radix8Fft, IsAccurate) { ExpectAccuracy(Radix8Kernels(), ExactResult, kAccuracy); }

TEST(Radix8Fft, TurnsAConstantIntoOneBin) {
  for (const Kernel &kernel : Radix8Kernels()) {
    const uint32_t n = kernel.length;
    const double sum = kernel.scaling == Scaling::kScaled ? 1 : n;
    const ComplexArray y = ResultOf(kernel, ComplexArray(n, {1.0f, 0.0f}));
    EXPECT_NEAR(y[0].re, sum, kAccuracy * sum) << kernel.name;
    EXPECT_NEAR(y[0].im, 0, kAccuracy * sum) << kernel.name;
    for (uint32_t k = 1; k < n; ++k) {
      ASSERT_NEAR(std::hypot(y[k].re, y[k].im), 0, kAccuracy * sum) << kernel.name << " " << k;
    }
  }
}

TEST(Radix8Fft, TurnsImpulsesIntoRotations) {
  ExpectImpulses(Radix8Kernels(), [](uint32_t) { return kAccuracy; });
}

TEST(Radix8Fft, KeepsAnImpulseAtNoughtWhole) { ExpectWholeImpulseAtNought(Radix8Kernels()); }

TEST(Radix8Fft, ForwardUndoesTheInverse) {
  Random random(51);
  for (const Kernel &inverse : Radix8Kernels()) {
    if (inverse.direction != Direction::kInverse) continue;
    const Scaling other =
        inverse.scaling == Scaling::kScaled ? Scaling::kUnscaled : Scaling::kScaled;
    const Kernel &forward = *Find(Radix8Kernels(), inverse.length, Direction::kForward, other);
    const ComplexArray x = ComplexSamples(kUniform, random, inverse.length);
    const ComplexArray back = ResultOf(forward, ResultOf(inverse, x));
    EXPECT_LT(LargestError(Widened(back), Widened(x)), 2 * kAccuracy) << inverse.name;
  }
}

TEST(Radix8Fft, InverseIsNearlyTheForwardOfExchangedParts) {
  Random random(52);
  for (const Kernel &inverse : Radix8Kernels()) {
    if (inverse.direction != Direction::kInverse) continue;
    const Kernel &forward =
        *Find(Radix8Kernels(), inverse.length, Direction::kForward, inverse.scaling);
    const ComplexArray x = ComplexSamples(kUniform, random, inverse.length);
    const ComplexArray want = reference::Exchanged(ResultOf(forward, reference::Exchanged(x)));
    EXPECT_LT(LargestError(Widened(ResultOf(inverse, x)), Widened(want)), 2 * kAccuracy)
        << inverse.name;
  }
}

// The two families round in ways of their own.
TEST(Radix8Fft, AgreesWithRadix4AtPowersOfTwo) {
  Random random(53);
  for (const Kernel &kernel : Radix8Kernels()) {
    const Kernel *radix4 =
        Find(PowerOfTwoKernels(), kernel.length, kernel.direction, kernel.scaling);
    if (radix4 == nullptr) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const ComplexArray got = ResultOf(kernel, x), want = ResultOf(*radix4, x);
    EXPECT_LT(LargestError(Widened(got), Widened(want)), 2 * kAccuracy) << kernel.name;
    EXPECT_FALSE(SameSamples(FloatsOf(got), FloatsOf(want), CallOf(kernel, kUniform.name)))
        << kernel.name;
  }
}

TEST(Radix8Fft, WritesNothingElse) { ExpectNothingOutsideIsTouched(Radix8Kernels()); }

TEST(Radix8Fft, IgnoresTheLengthArgument) { ExpectLengthArgumentIsIgnored(Radix8Kernels()); }

TEST(Radix8Fft, DoesNotRunInPlace) { ExpectInPlaceWhereAllowed(Radix8Kernels()); }

}  // namespace
}  // namespace testing_support
