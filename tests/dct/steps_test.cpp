// What the cosine transforms do around a Fourier transform of half their length.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dct/cosine_transforms.h"
#include "dct/transform_probe.h"
#include "reference/dct_steps.h"

namespace testing_support {
namespace {

using reference::Bounded;
using reference::BoundedArray;
using reference::Scaling;

// Multiples of four with remainders of every kind in steps of four and eight.
std::vector<uint32_t> Lengths() {
  std::vector<uint32_t> lengths = {2};
  for (uint32_t n = 4; n <= 148; n += 4) lengths.push_back(n);
  lengths.insert(lengths.end(), {288, 360, 720, 1024, 2044, 2048});
  return lengths;
}

testing::AssertionResult Within(std::span<const float> got, const BoundedArray &want,
                                const KernelCall &call) {
  if (got.size() != want.size()) return testing::AssertionFailure() << got.size() << " values";
  for (size_t i = 0; i < want.size(); ++i) {
    const Bounded &bound = want[i];
    if (!(std::fabs(got[i] - bound.value) <= 1.0001 * bound.error + 0x1p-140)) {
      return testing::AssertionFailure() << call << ", index " << i << ": " << got[i] << " for "
                                         << bound.value << ", off by more than " << bound.error;
    }
  }
  return testing::AssertionSuccess();
}

KernelCall CallOf(const CosineTransform &transform, size_t n, std::array<int, 4> offsets = {}) {
  return {transform.name, "", n, offsets, ""};
}

TEST(DctSteps, TransformHalfTheLengthFromTheResultToTheInput) {
  Random random(1);
  for (const CosineTransform &transform : kCosineTransforms) {
    for (const uint32_t n : Lengths()) {
      std::vector<float> in = Samples(kUniform, random, n), out(n);
      const TransformProbe probe(Samples(kUniform, random, n));
      transform.run(probe.pair(), SinesFor(n).data(), out.data(), in.data(), n);
      ASSERT_EQ(probe.calls().size(), 1u) << transform.name << " " << n;
      const TransformProbe::Call &call = probe.calls().front();
      EXPECT_EQ(call.scaled, transform.scaling == Scaling::kScaled) << transform.name << " " << n;
      EXPECT_EQ(call.dst, in.data()) << transform.name << " " << n;
      EXPECT_EQ(call.src, out.data()) << transform.name << " " << n;
      EXPECT_EQ(call.n, n / 2) << transform.name;
    }
  }
}

TEST(DctSteps, TypeTwoFoldsEvenSamplesUpAndOddOnesDown) {
  Random random(2);
  for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
    for (const uint32_t n : Lengths()) {
      if (n == 2) continue;
      const std::vector<float> x = Samples(kMixed, random, n);
      const TransformProbe probe(std::vector<float>(n, 0.0f));
      ResultOf(transform, probe.pair(), SinesFor(n).data(), x);
      ASSERT_EQ(probe.calls().size(), 1u) << transform.name << " " << n;
      EXPECT_TRUE(
          SameSamples(probe.calls().front().input, reference::FoldedDct2(x), CallOf(transform, n)));
    }
  }
}

TEST(DctSteps, TypeTwoSplitsAndRotatesInFewRoundings) {
  Random random(3);
  for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
    for (const uint32_t n : Lengths()) {
      for (const Material &material : {kUniform, kClose}) {
        const std::vector<float> z = Samples(material, random, n), t = SinesFor(n);
        const TransformProbe probe(z);
        EXPECT_TRUE(Within(ResultOf(transform, probe.pair(), t.data(), std::vector<float>(n, 0.0f)),
                           reference::FinishedDct2(z, t, transform.scaling), CallOf(transform, n)));
      }
    }
  }
}

TEST(DctSteps, TypeTwoRoundsItsEndAndMiddleInOneWay) {
  Random random(4);
  for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
    for (const uint32_t n : Lengths()) {
      const std::vector<float> z = Samples(kMixed, random, n), t = SinesFor(n);
      const TransformProbe probe(z);
      const std::vector<float> got =
          ResultOf(transform, probe.pair(), t.data(), std::vector<float>(n, 0.0f));
      const reference::Dct2Ends want =
          reference::EndsOfDct2(z[0], z[1], t[n / 2], transform.scaling);
      EXPECT_TRUE(SameResult(got[0], want.first, CallOf(transform, n)));
      EXPECT_TRUE(SameResult(got[n / 2], want.middle, CallOf(transform, n)));
    }
  }
}

TEST(DctSteps, TypeThreeRotatesAndMergesInFewRoundings) {
  Random random(5);
  for (const uint32_t n : Lengths()) {
    for (const Material &material : {kUniform, kClose}) {
      const std::vector<float> x = Samples(material, random, n), t = SinesFor(n);
      const TransformProbe probe(std::vector<float>(n, 0.0f));
      ResultOf(kDct3Scaled, probe.pair(), t.data(), x);
      ASSERT_EQ(probe.calls().size(), 1u) << n;
      EXPECT_TRUE(Within(probe.calls().front().input, reference::PreparedDct3(x, t),
                         CallOf(kDct3Scaled, n)));
    }
  }
}

TEST(DctSteps, TypeThreeRoundsItsFirstValueInOneWay) {
  Random random(6);
  for (const uint32_t n : Lengths()) {
    const std::vector<float> x = Samples(kMixed, random, n), t = SinesFor(n);
    const TransformProbe probe(std::vector<float>(n, 0.0f));
    ResultOf(kDct3Scaled, probe.pair(), t.data(), x);
    const reference::Complex want = reference::FirstOfPreparedDct3(x[0], x[n / 2], t[n / 2]);
    ASSERT_EQ(probe.calls().size(), 1u) << n;
    const std::vector<float> &got = probe.calls().front().input;
    EXPECT_TRUE(SameResult(got[0], want.re, CallOf(kDct3Scaled, n)));
    EXPECT_TRUE(SameResult(got[1], want.im, CallOf(kDct3Scaled, n)));
  }
}

TEST(DctSteps, TypeThreeUnfoldsTheOtherWayRound) {
  Random random(7);
  for (const uint32_t n : Lengths()) {
    if (n == 2) continue;
    const std::vector<float> y = Samples(kMixed, random, n);
    const TransformProbe probe(y);
    EXPECT_TRUE(SameSamples(
        ResultOf(kDct3Scaled, probe.pair(), SinesFor(n).data(), std::vector<float>(n, 0.0f)),
        reference::UnfoldedDct3(y), CallOf(kDct3Scaled, n)));
  }
}

// The twiddles are the caller's, and there is no table behind his.
TEST(DctSteps, TakeTheTwiddlesThatTheyAreGiven) {
  Random random(8);
  for (const uint32_t n : Lengths()) {
    const std::vector<float> t = Samples(kUniform, random, n), x = Samples(kUniform, random, n);
    const TransformProbe probe(x);
    for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
      EXPECT_TRUE(Within(ResultOf(transform, probe.pair(), t.data(), x),
                         reference::FinishedDct2(x, t, transform.scaling), CallOf(transform, n)));
    }
    const TransformProbe last(x);
    ResultOf(kDct3Scaled, last.pair(), t.data(), x);
    ASSERT_EQ(last.calls().size(), 1u) << n;
    EXPECT_TRUE(
        Within(last.calls().front().input, reference::PreparedDct3(x, t), CallOf(kDct3Scaled, n)));
  }
}

// ---- Without a Fourier transform ----

TEST(DctSteps, TwoSamplesNeedNoTransform) {
  const float *t = mvk_dct_twiddle_table16_L2;
  Random random(9);
  for (int round = 0; round < 100; ++round) {
    const std::vector<float> x = Samples(round % 2 == 0 ? kUniform : kMixed, random, 2);
    const KernelCall call = {"two samples", "", 2, {}, ""};
    const std::vector<float> scaled = {0.5f * x[0] + 0.5f * x[1],
                                       (0.5f * x[0] - 0.5f * x[1]) * t[1]};
    const std::vector<float> unscaled = {x[0] + x[1], (x[0] - x[1]) * t[1]};
    const reference::Complex third = reference::FirstOfPreparedDct3(x[0], x[1], t[1]);
    EXPECT_TRUE(SameSamples(ResultOf(kDct2Scaled, nullptr, t, x), scaled, call));
    EXPECT_TRUE(SameSamples(ResultOf(kDct2Unscaled, nullptr, t, x), unscaled, call));
    EXPECT_TRUE(
        SameSamples(ResultOf(kDct3Scaled, nullptr, t, x), std::vector{third.re, third.im}, call));
  }
}

TEST(DctSteps, WithoutATransformTypeTwoGoesOnWithItsInput) {
  Random random(10);
  for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
    for (const uint32_t n : kLengthsWithoutTransform) {
      const std::vector<float> x = Samples(kUniform, random, n), t = SinesFor(n);
      EXPECT_TRUE(Within(ResultOf(transform, nullptr, t.data(), x),
                         reference::FinishedDct2(x, t, transform.scaling), CallOf(transform, n)));
      std::vector<float> data = x;
      transform.run_in_place(nullptr, t.data(), data.data(), n);
      EXPECT_TRUE(
          Within(data, reference::FinishedDct2(x, t, transform.scaling), CallOf(transform, n)))
          << "in place";
    }
  }
}

TEST(DctSteps, WithoutATransformTypeThreeUnfoldsItsInput) {
  Random random(11);
  for (const uint32_t n : kLengthsWithoutTransform) {
    const std::vector<float> x = Samples(kMixed, random, n), t = SinesFor(n);
    const std::vector<float> want = reference::UnfoldedDct3(x);
    EXPECT_TRUE(
        SameSamples(ResultOf(kDct3Scaled, nullptr, t.data(), x), want, CallOf(kDct3Scaled, n)));
    std::vector<float> data = x;
    _mvk_ldct3_scaled_iplu(nullptr, t.data(), data.data(), n);
    EXPECT_TRUE(SameSamples(data, want, CallOf(kDct3Scaled, n))) << "in place";
  }
}

// ---- In place ----

TEST(DctSteps, InPlaceTransformsAnAlignedCopy) {
  Random random(12);
  for (const CosineTransform &transform : kCosineTransforms) {
    for (const uint32_t n : Lengths()) {
      const std::vector<float> x = Samples(kUniform, random, n), t = SinesFor(n);
      const TransformProbe probe(Samples(kUniform, random, n));
      const std::vector<float> want = ResultOf(transform, probe.pair(), t.data(), x);
      GuardedFloats data(x, 1);
      transform.run_in_place(probe.pair(), t.data(), data.data(), n);
      ASSERT_EQ(probe.calls().size(), 2u) << transform.name << " " << n;
      const TransformProbe::Call &apart = probe.calls()[0], &call = probe.calls()[1];
      EXPECT_EQ(call.src, data.data()) << transform.name << " " << n;
      EXPECT_EQ(reinterpret_cast<uintptr_t>(call.dst) % 32, 0u) << transform.name << " " << n;
      EXPECT_EQ(call.scaled, apart.scaled) << transform.name << " " << n;
      EXPECT_EQ(call.n, n / 2) << transform.name;
      if (n > 2) {
        EXPECT_TRUE(SameSamples(call.input, apart.input, CallOf(transform, n))) << "given";
      }
      EXPECT_TRUE(SameSamples(data.values(), want, CallOf(transform, n)));
      EXPECT_TRUE(data.GuardsStand(CallOf(transform, n)));
    }
  }
}

}  // namespace
}  // namespace testing_support
