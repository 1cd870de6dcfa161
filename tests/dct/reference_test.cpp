// The references of the cosine transforms: against sums worked out by hand, and against each other.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "kernels/kernel_samples.h"
#include "reference/dct_exact.h"
#include "reference/dct_rotations.h"
#include "reference/dct_steps.h"
#include "reference/fft_exact.h"
#include "reference/modulation_steps.h"

namespace testing_support {
namespace {

using reference::Scaling;

constexpr double kCosine8 = 0.92387953251128675613;  // of pi / 8
constexpr double kSine8 = 0.38268343236508977173;

TEST(DctReference, DefinitionsOfFourSamplesAreThese) {
  const std::vector<float> x = {1, 2, 4, 8};
  const double half = std::numbers::sqrt2 / 2;
  const double two[] = {15, kCosine8 * (1 - 8) + kSine8 * (2 - 4), half * (1 - 2 - 4 + 8),
                        kSine8 * (1 - 8) - kCosine8 * (2 - 4)};
  const double three[] = {
      1 + 2 * kCosine8 + 4 * half + 8 * kSine8, 1 + 2 * kSine8 - 4 * half - 8 * kCosine8,
      1 - 2 * kSine8 - 4 * half + 8 * kCosine8, 1 - 2 * kCosine8 + 4 * half - 8 * kSine8};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(static_cast<double>(reference::ExactDct2<reference::Wide>(x)[i]), two[i], 1e-14);
    EXPECT_NEAR(static_cast<double>(reference::ExactDct3<reference::Wide>(x)[i]), three[i] / 4,
                1e-14);
  }
}

TEST(DctReference, WideArithmeticIsWideEnough) {
  Random random(51);
  for (const size_t n : {15u, 60u, 128u}) {
    const std::vector<float> x = Samples(kUniform, random, n);
    const auto narrow = reference::ExactDct2<double>(x), narrow3 = reference::ExactDct3<double>(x);
    const auto wide = reference::ExactDct2<long double>(x);
    const auto wide3 = reference::ExactDct3<long double>(x);
    for (size_t k = 0; k < n; ++k) {
      EXPECT_NEAR(narrow[k], static_cast<double>(wide[k]), 1e-12);
      EXPECT_NEAR(narrow3[k], static_cast<double>(wide3[k]), 1e-13);
    }
  }
}

std::vector<float> Transformed(std::span<const float> z, Scaling scaling) {
  const auto wide = reference::ExactTransform(reference::Widened(reference::ComplexOf(z)),
                                              reference::Direction::kForward, scaling);
  std::vector<float> floats;
  for (const auto &value : wide) {
    floats.push_back(static_cast<float>(value.real()));
    floats.push_back(static_cast<float>(value.imag()));
  }
  return floats;
}

std::vector<float> Values(const reference::BoundedArray &values) {
  std::vector<float> floats;
  for (const reference::Bounded &value : values) floats.push_back(static_cast<float>(value.value));
  return floats;
}

TEST(DctReference, StepsAreTheDefinitions) {
  Random random(52);
  for (size_t n = 4; n <= 96; n += 4) {
    const std::vector<float> x = Samples(kUniform, random, n);
    std::vector<float> t;
    for (size_t k = 0; k < n; ++k) {
      t.push_back(static_cast<float>(reference::SineOfTurn<double>(k, 4 * n)));
    }
    const std::vector<float> folded = reference::FoldedDct2(x);
    for (const Scaling scaling : reference::kScalings) {
      reference::WideReals want = reference::ExactDct2<reference::Wide>(x);
      if (scaling == Scaling::kScaled) {
        for (reference::Wide &value : want) value /= static_cast<reference::Wide>(n);
      }
      const auto got = Values(reference::FinishedDct2(Transformed(folded, scaling), t, scaling));
      EXPECT_LT(reference::ErrorOf(got, want).largest, 6e-7) << n;
    }
    const std::vector<float> prepared = Values(reference::PreparedDct3(x, t));
    const auto got = reference::UnfoldedDct3(Transformed(prepared, Scaling::kScaled));
    EXPECT_LT(reference::ErrorOf(got, reference::ExactDct3<reference::Wide>(x)).largest, 6e-7) << n;
  }
}

TEST(DctReference, RotationsOfOnePairAreThese) {
  const std::vector<float> in = {2, 3, 0, 0, 0, 0, 0, 0}, c(4, 0.5f), s(4, 4.0f);
  const auto post = reference::PostRotated(in, c, s, 2);
  EXPECT_EQ(post[0][0], 2 * (8 + 1.5f));
  EXPECT_EQ(post[7][0], 2 * (1 - 12.0f));
  const auto first = reference::PostRotated(std::vector<float>{2, 3}, std::vector<float>{0.5f},
                                            std::vector<float>{4.0f}, 2);
  EXPECT_EQ(first[0][0], 4);
  EXPECT_EQ(first[1][0], -6);
  const auto pre = reference::PreRotated(std::vector<float>{2, 0, 0, 5}, std::vector<float>{1, 0},
                                         std::vector<float>{3, 0});
  EXPECT_EQ(pre[0][0], 3 * 2 + 1 * 5);
  EXPECT_EQ(pre[1][0], 3 * 5 - 1 * 2);
}

TEST(DctReference, BandsAreFoldedBlocksInATypeThree) {
  Random random(53);
  for (size_t bands = 4; bands <= 32; bands += 4) {
    const std::vector<float> src = Samples(kUniform, random, 2 * bands);
    const auto want = reference::ExactRealBands(src);
    const auto got = reference::ExactDct3<reference::Wide>(reference::FoldedForBands(src));
    const auto back = reference::ExactRealSamples(std::span(src).first(bands));
    const auto y = reference::ExactDct2<reference::Wide>(std::span(src).first(bands));
    const auto unfolded = reference::UnfoldedFromBands(std::vector<float>(y.begin(), y.end()));
    for (size_t i = 0; i < bands; ++i) {
      EXPECT_NEAR(static_cast<double>(got[i]), static_cast<double>(want[i]), 1e-7);
    }
    EXPECT_LT(reference::ErrorOf(unfolded, back).largest, 1e-6);
  }
}

TEST(DctReference, BinsAndBandsAreEachOthersInverse) {
  Random random(54);
  const std::vector<float> x = Samples(kUniform, random, 48);
  const reference::ComplexArray values = reference::ComplexOf(x);
  EXPECT_EQ(reference::FloatsOf(reference::BinsOfBands(reference::BandsOfBins(values))), x);
}

}  // namespace
}  // namespace testing_support
