// Radix-4 kernels of composite lengths, against their passes to the bit wherever one order of
// rounding is the only one.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

#include "fft/fft_kernels.h"
#include "fft/kernel_checks.h"
#include "reference/fft_coarse_model.h"
#include "reference/fft_composite.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

using reference::CompositePlan;
using reference::CompositeTransform;
using reference::LargestError;
using reference::RoundingIsFixed;
using reference::WideArray;
using reference::Widened;

const CompositePlan &PlanOf(const Kernel &kernel) {
  for (const CompositePlan &plan : reference::CompositePlans()) {
    if (plan.length == kernel.length) return plan;
  }
  throw std::out_of_range(kernel.name);
}

const Kernel &KernelOf(uint32_t length, Direction direction = Direction::kForward,
                       Scaling scaling = Scaling::kUnscaled) {
  return *Find(CompositeKernels(), length, direction, scaling);
}

ComplexArray Want(const Kernel &kernel, const ComplexArray &x) {
  return CompositeTransform(PlanOf(kernel), x, kernel.direction, kernel.scaling);
}

WideArray CoarseResult(const Kernel &kernel, const ComplexArray &x) {
  return reference::CoarseTransform(PlanOf(kernel), Widened(x), kernel.direction, kernel.scaling);
}

// The bins whose rounding is fixed.
testing::AssertionResult FixedBinsAsInPasses(const Kernel &kernel, const ComplexArray &x,
                                             const char *material) {
  ComplexArray got = ResultOf(kernel, x), want = Want(kernel, x);
  for (uint32_t bin = 0; bin < kernel.length; ++bin) {
    if (!RoundingIsFixed(PlanOf(kernel), kernel.direction, bin)) got[bin] = want[bin] = kZero;
  }
  return SameSamples(FloatsOf(got), FloatsOf(want), CallOf(kernel, material));
}

TEST(CompositeFft, RoundsAsItsPassesDo) {
  Random random(41);
  for (const Kernel &kernel : CompositeKernels()) {
    for (int round = 0; round < 3; ++round) {
      const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
      EXPECT_TRUE(FixedBinsAsInPasses(kernel, x, kUniform.name));
    }
  }
}

TEST(CompositeFft, RoundsAnyValuesAsItsPassesDo) {
  Random random(42);
  for (const Kernel &kernel : CompositeKernels()) {
    if (kernel.scaling == Scaling::kScaled) continue;
    for (const Material &material : {kClose, kWide}) {
      const ComplexArray x = ComplexSamples(material, random, kernel.length);
      EXPECT_TRUE(FixedBinsAsInPasses(kernel, x, material.name));
    }
  }
}

// Each transform of the first pass gets one real or imaginary input, so that none of its sums
// rounds and all that is left to see is the passes behind it, in every bin. (A first pass of six
// multiplies twice, in any order, unless the input is its first or fourth.)
ComplexArray SparseSamples(const CompositePlan &plan, Random &random) {
  const uint32_t radix = plan.radices.front();
  const uint32_t stride = plan.length / radix;
  ComplexArray x(plan.length);
  for (uint32_t offset = 0; offset < stride; ++offset) {
    const uint32_t input = radix == 6 ? 3 * random.Below(2) : random.Below(radix);
    reference::Complex &value = x[offset + input * stride];
    (random.Below(2) == 0 ? value.re : value.im) = random.Unit();
  }
  return x;
}

TEST(CompositeFft, LaterPassesRoundAsTheyShouldInEveryBin) {
  Random random(43);
  for (const Kernel &kernel : CompositeKernels()) {
    if (kernel.length == 6) continue;
    for (int round = 0; round < 4; ++round) {
      const ComplexArray x = SparseSamples(PlanOf(kernel), random);
      EXPECT_TRUE(SameSamples(FloatsOf(ResultOf(kernel, x)), FloatsOf(Want(kernel, x)),
                              CallOf(kernel, "sparse")));
    }
  }
}

TEST(CompositeFft, IsTheTransformWithCoarseTwiddles) {
  ExpectAccuracy(CompositeKernels(), CoarseResult, 6e-7);
}

// Twiddles of six decimals are part of what the kernels compute: results that are nearer to the
// transform than these allow are wrong.
TEST(CompositeFft, IsAsFarOffTheTransformAsItsTwiddles) {
  Random random(44);
  for (const Kernel &kernel : CompositeKernels()) {
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const WideArray exact = ExactResult(kernel, x);
    const double error = LargestError(Widened(ResultOf(kernel, x)), exact);
    const double error_of_twiddles = LargestError(CoarseResult(kernel, x), exact);
    EXPECT_LT(error, 4e-6) << kernel.name;
    if (kernel.length == 6) continue;
    EXPECT_GT(error, 2e-7) << kernel.name;
    if (kernel.length >= 36) {
      EXPECT_GT(error, 0.7 * error_of_twiddles) << kernel.name;
    }
    if (kernel.length >= 192) {
      EXPECT_GT(error, 1e-6) << kernel.name;
    }
  }
}

TEST(CompositeFft, InverseIsTheForwardOfExchangedPartsBehindAFirstPassOfFour) {
  Random random(45);
  for (const Kernel &kernel : CompositeKernels()) {
    if (kernel.direction != Direction::kInverse) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const Kernel &forward = KernelOf(kernel.length, Direction::kForward, kernel.scaling);
    const ComplexArray got = ResultOf(kernel, x);
    const ComplexArray want = reference::Exchanged(ResultOf(forward, reference::Exchanged(x)));
    EXPECT_LT(LargestError(Widened(got), Widened(want)), 6e-7) << kernel.name;
    if (PlanOf(kernel).radices.front() == 4) {
      EXPECT_TRUE(SameSamples(FloatsOf(got), FloatsOf(want), CallOf(kernel, kUniform.name)));
    }
  }
}

TEST(CompositeFft, MultipliesByTheTwiddlesOfBinNoughtToo) {
  // The second operand of a radix-3 butterfly: infinity times 0 spoils its other part.
  ComplexArray x(12);
  x[1].re = kInfinity;
  EXPECT_TRUE(std::isnan(ResultOf(KernelOf(12), x)[0].im));
  // -0 less 1 times -0 is +0. Without the product, or with +0, it stays -0.
  x.assign(12, {-0.0f, 1.0f});
  const ComplexArray y = ResultOf(KernelOf(12), x);
  EXPECT_EQ(y[0].im, 12);
  EXPECT_EQ(BitsOf(y[0].re), BitsOf(0.0f));
}

TEST(CompositeFft, TurnsAConstantIntoNearlyOneBin) {
  for (const Kernel &kernel : CompositeKernels()) {
    const uint32_t n = kernel.length;
    const float factor = reference::FactorOf(kernel.scaling, n);
    const ComplexArray y = ResultOf(kernel, ComplexArray(n, {1.0f, 0.0f}));
    EXPECT_NEAR(y[0].re, factor * static_cast<float>(n), 1e-6 * factor * n) << kernel.name;
    EXPECT_NEAR(y[0].im, 0, 1e-6 * factor * n) << kernel.name;
    for (uint32_t k = 1; k < n; ++k) {
      ASSERT_NEAR(std::hypot(y[k].re, y[k].im), 0, 3e-6 * factor * n) << kernel.name << " " << k;
    }
  }
}

TEST(CompositeFft, TurnsImpulsesIntoRotations) {
  // Each pass behind the first may add the error of a twiddle, half a millionth in either part.
  ExpectImpulses(CompositeKernels(), [](uint32_t length) {
    return 6e-7 + 0.71e-6 * static_cast<double>(PlanOf(KernelOf(length)).radices.size() - 1);
  });
}

TEST(CompositeFft, KeepsAnImpulseAtNoughtWhole) { ExpectWholeImpulseAtNought(CompositeKernels()); }

TEST(CompositeFft, WritesNothingElse) { ExpectNothingOutsideIsTouched(CompositeKernels()); }

TEST(CompositeFft, IgnoresTheLengthArgument) { ExpectLengthArgumentIsIgnored(CompositeKernels()); }

TEST(CompositeFft, RunsInPlaceAtSixAlone) { ExpectInPlaceWhereAllowed(CompositeKernels()); }

TEST(CompositeFft, EntryPointsAreTheKernels) {
  Random random(46);
  for (const EntryPoint &entry : CompositeEntryPoints()) {
    const Kernel &kernel = KernelOf(entry.length, entry.direction, entry.scaling);
    const ComplexArray x = ComplexSamples(kUniform, random, entry.length);
    const KernelCall call = CallOf(entry, kUniform.name);
    const std::vector<float> want = FloatsOf(ResultOf(kernel, x));
    GuardedFloats dst(want.size(), 1), src(FloatsOf(x), 3), scratch(want.size(), 2);
    entry.run(dst.data(), src.data(), scratch.data());
    EXPECT_TRUE(SameSamples(dst.values(), want, call));
    EXPECT_TRUE(dst.GuardsStand(call)) << "result";
    EXPECT_TRUE(src.GuardsStand(call)) << "source";
    EXPECT_TRUE(scratch.Untouched(call)) << "scratch";
    EXPECT_EQ(bool{src.Untouched(call)}, LeavesItsSource(kernel)) << call;
    src.Refill();
    entry.run(dst.data(), src.data(), nullptr);
    EXPECT_TRUE(SameSamples(dst.values(), want, call)) << "without scratch";
  }
}

}  // namespace
}  // namespace testing_support
