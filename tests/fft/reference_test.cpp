// The references themselves: against the sums that define the transform, and the constants
// against their bits.
#include <gtest/gtest.h>

#include <bit>
#include <complex>
#include <numeric>

#include "fft/fft_kernels.h"
#include "reference/fft_coarse_model.h"
#include "reference/fft_composite.h"
#include "reference/fft_exact.h"
#include "reference/fft_power_of_two.h"

namespace testing_support {
namespace {

using reference::CompositePlan;
using reference::CompositePlans;
using reference::ExactTransform;
using reference::kDirections;
using reference::kScalings;
using reference::LargestError;
using reference::LastTwiddles;
using reference::WideArray;
using reference::Widened;

TEST(FftReference, FastTransformIsTheSumsOfTheDefinition) {
  Random random(1);
  for (const uint32_t n : {2u, 3u, 5u, 6u, 8u, 15u, 16u, 45u, 64u, 90u}) {
    const ComplexArray x = ComplexSamples(kUniform, random, n);
    const std::vector<std::complex<long double>> wide = [&x] {
      std::vector<std::complex<long double>> values;
      for (const auto &value : x) values.emplace_back(value.re, value.im);
      return values;
    }();
    for (const Direction direction : kDirections) {
      WideArray sums;
      for (const auto &sum : reference::DirectTransform(wide, direction)) {
        sums.emplace_back(static_cast<double>(sum.real()), static_cast<double>(sum.imag()));
      }
      const WideArray fast = ExactTransform(Widened(x), direction, Scaling::kUnscaled);
      EXPECT_LT(LargestError(fast, sums), 4e-15) << n;
      for (auto &sum : sums) sum /= n;
      const WideArray scaled = ExactTransform(Widened(x), direction, Scaling::kScaled);
      EXPECT_LT(LargestError(scaled, sums), 4e-15) << n;
    }
  }
}

TEST(FftReference, TransformOfARotationIsOneBin) {
  constexpr uint32_t kLength = 12, kBin = 5;
  WideArray x;
  for (uint32_t i = 0; i < kLength; ++i) {
    const auto root = reference::RootOfUnity<double>(uint64_t{kBin} * i, kLength);
    x.emplace_back(root.cosine, root.sine);
  }
  const WideArray forward = ExactTransform(x, Direction::kForward, Scaling::kScaled);
  const WideArray inverse = ExactTransform(x, Direction::kInverse, Scaling::kScaled);
  for (uint32_t k = 0; k < kLength; ++k) {
    EXPECT_NEAR(std::abs(forward[k] - (k == kBin ? 1.0 : 0.0)), 0, 1e-15) << k;
    EXPECT_NEAR(std::abs(inverse[k] - (k == kLength - kBin ? 1.0 : 0.0)), 0, 1e-15) << k;
  }
}

TEST(FftReference, PassesOfPowersOfTwoAreTheTransform) {
  Random random(2);
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    for (const Direction direction : kDirections) {
      for (const Scaling scaling : kScalings) {
        const ComplexArray x = ComplexSamples(kUniform, random, n);
        const ComplexArray result = reference::PowerOfTwoTransform(x, direction, scaling);
        EXPECT_LT(LargestError(Widened(result), ExactTransform(Widened(x), direction, scaling)),
                  6e-7)
            << n;
      }
    }
  }
}

TEST(FftReference, PassesOfCompositesAreTheTransformWithCoarseTwiddles) {
  Random random(3);
  for (const CompositePlan &plan : CompositePlans()) {
    EXPECT_EQ(std::accumulate(plan.radices.begin(), plan.radices.end(), 1u, std::multiplies<>()),
              plan.length);
    for (const Direction direction : kDirections) {
      for (const Scaling scaling : kScalings) {
        const ComplexArray x = ComplexSamples(kUniform, random, plan.length);
        const WideArray model = reference::CoarseTransform(plan, Widened(x), direction, scaling);
        const WideArray exact = ExactTransform(Widened(x), direction, scaling);
        const ComplexArray result = reference::CompositeTransform(plan, x, direction, scaling);
        EXPECT_LT(LargestError(Widened(result), model), 6e-7) << plan.length;
        EXPECT_LT(LargestError(model, exact), 4e-6) << plan.length;
        if (plan.length != 6) {
          EXPECT_GT(LargestError(model, exact), 1e-7) << plan.length;
        }
      }
    }
  }
}

TEST(FftReference, ConstantsHaveTheirBits) {
  EXPECT_EQ(BitsOf(0.70710677f), 0x3f3504f3u);
  EXPECT_EQ(BitsOf(reference::kRadix3Sine), 0x3f5db3d7u);
  EXPECT_EQ(BitsOf(reference::kRadix5Cosine1), 0x3e9e377au);
  EXPECT_EQ(BitsOf(reference::kRadix5Cosine2), 0xbf4f1bbdu);
  EXPECT_EQ(BitsOf(reference::kRadix5Sine1), 0x3f737871u);
  EXPECT_EQ(BitsOf(reference::kRadix5Sine2), 0x3f167918u);
  const reference::TwiddleTriple coarse = reference::CoarseBlockTwiddles(2);
  EXPECT_EQ(BitsOf(coarse.first.re), 0x3f6c8366u);
  EXPECT_EQ(BitsOf(coarse.first.im), 0xbec3ef07u);
  EXPECT_EQ(BitsOf(coarse.second.re), 0x3f3504f7u);
  EXPECT_EQ(BitsOf(coarse.third.re), 0x3ec3ef07u);
  EXPECT_EQ(BitsOf(reference::CoarseRoot(0, 12).im), BitsOf(-0.0f));
  EXPECT_EQ(reference::CoarseRoot(1, 12).re, 0.866025f);
  EXPECT_EQ(reference::CoarseRoot(1, 24).re, 0.965926f);
  EXPECT_EQ(reference::CoarseRoot(1, 24).im, -0.258819f);
  EXPECT_EQ(reference::CoarseRoot(1, 20).re, 0.951057f);
  EXPECT_EQ(reference::CoarseRoot(1, 20).im, -0.309017f);
  EXPECT_EQ(reference::CoarseRoot(2, 20).re, 0.809017f);
}

TEST(FftReference, FactorsAreTheNearestOfSinglePrecision) {
  constexpr struct {
    uint32_t n;
    float factor;
  } kFactors[] = {
      {6, 0.16666667f},     {12, 0.083333336f},    {15, 0.06666667f},      {24, 0.041666668f},
      {36, 0.027777778f},   {45, 0.022222223f},    {60, 0.016666668f},     {72, 0.013888889f},
      {192, 0.0052083335f}, {768, 0.0013020834f},  {16, 0.0625f},          {64, 0.015625f},
      {256, 0.00390625f},   {1024, 0.0009765625f}, {4096, 0.00024414062f},
  };
  for (const auto &[n, factor] : kFactors) {
    EXPECT_EQ(reference::FactorOf(Scaling::kScaled, n), factor) << n;
  }
}

}  // namespace
}  // namespace testing_support
