// The cosine transforms against their definitions, for every length and every kind of Fourier
// transform under them.
#include <gtest/gtest.h>

#include <vector>

#include "dct/cosine_bounds.h"
#include "dct/cosine_transforms.h"
#include "dct/pair_kinds.h"
#include "dct/twiddle_tables.h"

namespace testing_support {
namespace {

using reference::Error;
using reference::ErrorOf;
using reference::Scaling;

class CosineLengths : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, CosineLengths, testing::ValuesIn(kCosineLengths),
                         testing::PrintToStringParamName());

TEST_P(CosineLengths, AreAccurateOnAnyFourierTransform) {
  const uint32_t n = GetParam();
  Random random(n);
  const std::vector<float> x = Samples(kUniform, random, n);
  ASSERT_NE(SineTable(n), nullptr);
  for (const CosineTransform &transform : kCosineTransforms) {
    const reference::WideReals want = ExactResult(transform, x);
    for (const PairKind &kind : PairKinds(n / 2)) {
      const Error error = ErrorOf(ResultOf(transform, kind.pair, SineTable(n), x), want);
      const Error bound = BoundOf(kind.has_coarse_twiddles);
      EXPECT_LT(error.largest, bound.largest) << transform.name << " " << n << " " << kind.name;
      EXPECT_LT(error.rms, bound.rms) << transform.name << " " << n << " " << kind.name;
    }
  }
}

TEST_P(CosineLengths, WithoutAPairRunOnRadix4) {
  const uint32_t n = GetParam();
  Random random(n + 1);
  const std::vector<float> x = Samples(kUniform, random, n);
  for (const CosineTransform &transform : kCosineTransforms) {
    const mvk_fft_pair *pair = MVK_r4_cplx_fwd_pair(n / 2);
    ASSERT_EQ(pair != nullptr, n > 2);
    if (pair == nullptr) continue;
    EXPECT_TRUE(SameSamples(ResultOf(transform, nullptr, SineTable(n), x),
                            ResultOf(transform, pair, SineTable(n), x),
                            {transform.name, "", n, {}, "no pair"}));
  }
}

TEST_P(CosineLengths, TurnAConstantIntoOneBin) {
  const uint32_t n = GetParam();
  for (const CosineTransform &transform : {kDct2Scaled, kDct2Unscaled}) {
    const float sum = transform.scaling == Scaling::kScaled ? 1.0f : static_cast<float>(n);
    const std::vector<float> y =
        ResultOf(transform, nullptr, SineTable(n), std::vector<float>(n, 1.0f));
    const double bound = BoundWithoutPair(n) * sum;
    EXPECT_NEAR(y[0], sum, bound) << transform.name << " " << n;
    for (uint32_t k = 1; k < n; ++k) {
      EXPECT_NEAR(y[k], 0, bound) << transform.name << " " << n << " at " << k;
    }
  }
}

TEST_P(CosineLengths, TypeThreeGivesItsFirstInputFullWeight) {
  const uint32_t n = GetParam();
  std::vector<float> x(n, 0.0f);
  x[0] = 1;
  const float want = 1.0f / static_cast<float>(n);
  for (const float value : ResultOf(kDct3Scaled, nullptr, SineTable(n), x)) {
    EXPECT_NEAR(value, want, BoundWithoutPair(n) * want) << n;
  }
}

TEST_P(CosineLengths, TypeThreeOfTypeTwoIsHalfTheInputAndItsMean) {
  const uint32_t n = GetParam();
  Random random(n + 2);
  const std::vector<float> x = Samples(kUniform, random, n);
  reference::Wide sum = 0;
  for (const float value : x) sum += value;
  reference::WideReals want;
  for (const float value : x) want.push_back(value / 2 + sum / (2 * n));
  const std::vector<float> y = ResultOf(kDct2Unscaled, nullptr, SineTable(n), x);
  const std::vector<float> got = ResultOf(kDct3Scaled, nullptr, SineTable(n), y);
  EXPECT_LT(ErrorOf(got, want).largest, 2 * BoundWithoutPair(n)) << n;
}

TEST_P(CosineLengths, TurnImpulsesIntoCosines) {
  const uint32_t n = GetParam();
  if (n > 128) return;
  for (const CosineTransform &transform : kCosineTransforms) {
    for (uint32_t place = 0; place < n; ++place) {
      std::vector<float> x(n, 0.0f);
      x[place] = 1;
      ASSERT_LT(
          ErrorOf(ResultOf(transform, nullptr, SineTable(n), x), ExactResult(transform, x)).largest,
          BoundWithoutPair(n))
          << transform.name << " " << n << " at " << place;
    }
  }
}

TEST(Dct, RunsOnATableOfTheCallers) {
  Random random(21);
  for (const uint32_t n : kLengthsWithoutTable) {
    EXPECT_EQ(SineTable(n), nullptr);
    const std::vector<float> x = Samples(kUniform, random, n);
    for (const CosineTransform &transform : kCosineTransforms) {
      const std::vector<float> got = ResultOf(transform, nullptr, SinesFor(n).data(), x);
      EXPECT_LT(ErrorOf(got, ExactResult(transform, x)).largest, BoundWithoutPair(n))
          << transform.name << " " << n;
    }
  }
}

}  // namespace
}  // namespace testing_support
