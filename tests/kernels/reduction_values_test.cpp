// What reductions give for vectors that are worked out by hand.
#include <gtest/gtest.h>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

using Peak = float (*)(const float *, uint32_t);
using Headroom = uint32_t (*)(const float *, uint32_t);

constexpr Peak kPeaks[] = {mvk_vec_Labs_maxLU_flex, MVK_vec_Labs_maxLU_strict,
                           mvk_vec_Sabs_maxSU_flex, MVK_vec_Sabs_maxSU_strict};
constexpr Headroom kHeadrooms[] = {mvk_vec_UnormLU_flex, MVK_vec_UnormLU_strict,
                                   mvk_vec_UnormSU_flex, MVK_vec_UnormSU_strict};

// n samples of which one has another value.
GuardedFloats OneAmong(uint32_t n, float usual, uint32_t place, float value, int offset = 0) {
  std::vector<float> samples(n, usual);
  samples[place] = value;
  return {samples, offset};
}

TEST(Peak, IsTheLargestMagnitudeOfEitherSign) {
  for (Peak peak : kPeaks) {
    for (uint32_t place = 0; place < 12; ++place) {
      EXPECT_EQ(peak(OneAmong(12, 0.5f, place, -0.75f).data(), 12), 0.75f) << place;
      EXPECT_EQ(peak(OneAmong(12, -0.5f, place, 0.75f).data(), 12), 0.75f) << place;
      EXPECT_EQ(peak(OneAmong(12, 0.5f, place, -kInfinity).data(), 12), kInfinity) << place;
    }
  }
}

TEST(Peak, OfNegativeZerosIsPositive) {
  for (Peak peak : kPeaks) {
    GuardedFloats zeros(std::vector<float>(8, -0.0f), 0);
    EXPECT_EQ(BitsOf(peak(zeros.data(), 8)), BitsOf(0.0f));
    EXPECT_EQ(BitsOf(peak(OneAmong(8, -0.0f, 5, 0.0f).data(), 8)), BitsOf(0.0f));
  }
}

TEST(Peak, OfNothingIsTheMagnitudeOfTheFirstElement) {
  GuardedFloats x({-3, 9, -9, 9}, 0);
  EXPECT_EQ(mvk_vec_Labs_maxLU_flex(x.data(), 0), 3);
  EXPECT_EQ(mvk_vec_Sabs_maxSU_flex(x.data(), 0), 3);
  EXPECT_EQ(MVK_vec_Sabs_maxSU_strict(x.data(), 0), 3);
}

TEST(Peak, StrictReadsWholeGroupsAndAtLeastOne) {
  GuardedFloats x({1, 2, 3, -4, 5, 6, 7, -8}, 0);
  for (uint32_t n = 0; n <= 4; ++n) EXPECT_EQ(MVK_vec_Labs_maxLU_strict(x.data(), n), 4) << n;
  for (uint32_t n = 5; n <= 8; ++n) EXPECT_EQ(MVK_vec_Labs_maxLU_strict(x.data(), n), 8) << n;
}

TEST(Peak, SkipsWhatIsNotANumberExceptInTheStrictFormOverSamples) {
  for (uint32_t place = 0; place < 16; ++place) {
    GuardedFloats x = OneAmong(16, -0.25f, place, kNaN);
    EXPECT_EQ(mvk_vec_Labs_maxLU_flex(x.data(), 16), 0.25f) << place;
    EXPECT_EQ(mvk_vec_Sabs_maxSU_flex(x.data(), 16), 0.25f) << place;
    EXPECT_EQ(MVK_vec_Sabs_maxSU_strict(x.data(), 16), 0.25f) << place;
    EXPECT_TRUE(std::isnan(MVK_vec_Labs_maxLU_strict(x.data(), 16))) << place;
  }
}

TEST(Peak, IsNotANumberIfNoneIs) {
  for (Peak peak : kPeaks) {
    for (uint32_t n : {4u, 8u, 20u}) {
      GuardedFloats x(std::vector<float>(n, kNaN), 0);
      EXPECT_TRUE(std::isnan(peak(x.data(), n))) << n;
    }
  }
}

struct PeakAndHeadroom {
  float peak;
  uint32_t shifts;
};

constexpr PeakAndHeadroom kPeakAndHeadroom[] = {
    {0.0f, 60},          {-0.0f, 60},
    {0x1p-149f, 60},     {0x0.fffffep-126f, 60},
    {0x1p-126f, 60},     {0x1.fffffep-62f, 60},
    {0x1p-61f, 60},      {0x1.fffffep-61f, 60},
    {0x1p-60f, 59},      {0x1p-59f, 58},
    {0.125f, 2},         {0.25f, 1},
    {0x1.fffffep-2f, 1}, {0.5f, 0},
    {-0.5f, 0},          {0x1.fffffep-1f, 0},
    {1.0f, 0},           {kLargest, 0},
    {kInfinity, 0},      {kNaN, 0},
};

TEST(Headroom, CountsTheShiftsUpToOneHalf) {
  for (const PeakAndHeadroom &row : kPeakAndHeadroom) {
    for (Headroom headroom : kHeadrooms) {
      GuardedFloats x(std::vector<float>(8, row.peak), 0);
      EXPECT_EQ(headroom(x.data(), 8), row.shifts) << row.peak;
      EXPECT_EQ(headroom(x.data(), 7), row.shifts) << row.peak;
    }
  }
}

TEST(Headroom, WithANanDependsOnAlignmentAndCount) {
  for (Headroom headroom : {mvk_vec_UnormLU_flex, MVK_vec_UnormLU_strict}) {
    EXPECT_EQ(headroom(OneAmong(16, 0.125f, 6, kNaN, 0).data(), 16), 0u);
    for (uint32_t n : {13u, 14u, 15u}) {
      EXPECT_EQ(headroom(OneAmong(16, 0.125f, 6, kNaN, 0).data(), n), 2u) << n;
    }
    for (int offset = 1; offset < 8; ++offset) {
      EXPECT_EQ(headroom(OneAmong(16, 0.125f, 6, kNaN, offset).data(), 16), 2u) << offset;
    }
    EXPECT_EQ(headroom(OneAmong(16, 0.125f, 6, kNaN, 8).data(), 16), 0u);
  }
  for (Headroom headroom : {mvk_vec_UnormSU_flex, MVK_vec_UnormSU_strict}) {
    EXPECT_EQ(headroom(OneAmong(16, 0.125f, 6, kNaN, 0).data(), 16), 2u);
  }
}

TEST(Headroom, OfNothingIsThatOfTheFirstGroupIfAlignedAndElseOfTheFirstElement) {
  const std::vector<float> samples = {0.125f, 0.125f, 0.125f, 0.5f};
  for (Headroom headroom : {mvk_vec_UnormLU_flex, MVK_vec_UnormLU_strict}) {
    EXPECT_EQ(headroom(GuardedFloats(samples, 0).data(), 0), 0u);
    EXPECT_EQ(headroom(GuardedFloats(samples, 4).data(), 0), 2u);
  }
}

TEST(DotProduct, IsThatOfMathematics) {
  std::vector<float> a(67), b(67);
  for (uint32_t n = 0; n <= 64; ++n) {
    // Small integers: no sum rounds.
    int64_t expected = 0;
    for (uint32_t i = 0; i < 67; ++i) {
      const int p = static_cast<int>(i * 7 % 11) - 5, q = static_cast<int>(i * 5 % 13) - 6;
      a[i] = static_cast<float>(i < n ? p : 0);
      b[i] = static_cast<float>(q);
      if (i < n) expected += p * q;
    }
    const auto exact = static_cast<double>(expected);
    GuardedFloats as(a, 0), bs(b, 0);
    EXPECT_EQ(static_cast<double>(mvk_vec_LdotLLU_flex(as.data(), bs.data(), n)), exact) << n;
    EXPECT_EQ(static_cast<double>(MVK_vec_LdotLLU_strict(as.data(), bs.data(), n)), exact) << n;
    EXPECT_EQ(mvk_vec_NdotLLU_flex(as.data(), bs.data(), n), exact) << n;
    EXPECT_EQ(MVK_vec_NdotLLU_strict(as.data(), bs.data(), n), exact) << n;
  }
}

TEST(DotProduct, OfNothingIsZeroUnlessWide) {
  GuardedFloats a({3, 5, 7, 9}, 0), b({2, 2, 2, 2}, 0);
  EXPECT_EQ(BitsOf(mvk_vec_LdotLLU_flex(a.data(), b.data(), 0)), BitsOf(0.0f));
  EXPECT_EQ(BitsOf(MVK_vec_LdotLLU_strict(a.data(), b.data(), 0)), BitsOf(0.0f));
  EXPECT_EQ(mvk_vec_NdotLLU_flex(a.data(), b.data(), 0), 6);
  EXPECT_EQ(MVK_vec_NdotLLU_strict(a.data(), b.data(), 0), 6);
}

TEST(DotProduct, OfOneElementIsARoundedProductOfEitherZero) {
  // A product that isn't added to anything keeps the sign of its zero.
  GuardedFloats a({-1, 0, 0, 0}, 0), b({0, 0, 0, 0}, 0);
  EXPECT_EQ(BitsOf(mvk_vec_LdotLLU_flex(a.data(), b.data(), 1)), BitsOf(-0.0f));
  EXPECT_EQ(BitsOf(mvk_vec_NdotLLU_flex(a.data(), b.data(), 1)), BitsOf(-0.0));
}

TEST(DotProduct, FormsAddUpInDifferentOrders) {
  // Half a unit in the last place of 1, twice: in lanes of their own they reach 1 as
  // a whole unit; in the lane of the 1 they are lost one by one.
  const float half = 0x1p-24f;
  GuardedFloats ones(std::vector<float>(8, 1.0f), 0);
  GuardedFloats apart({1, 0, half, half, 0, 0, 0, 0}, 0);
  EXPECT_EQ(MVK_vec_LdotLLU_strict(apart.data(), ones.data(), 4), 1.0f + 2 * half);
  EXPECT_EQ(mvk_vec_LdotLLU_flex(apart.data(), ones.data(), 4), 1.0f);
}

TEST(DotProduct, WideKeepsWhatBinary32Loses) {
  GuardedFloats a({1, 0x1p-40f, -1, 0}, 0), ones({1, 1, 1, 1}, 0);
  EXPECT_EQ(mvk_vec_NdotLLU_flex(a.data(), ones.data(), 3), 0x1p-40);
  GuardedFloats largest(std::vector<float>(8, kLargest), 0);
  const double square = static_cast<double>(kLargest) * static_cast<double>(kLargest);
  EXPECT_EQ(mvk_vec_NdotLLU_flex(largest.data(), largest.data(), 8), 8 * square);
}

TEST(SumOfSquares, IsThatOfMathematics) {
  GuardedFloats x({1, -2, 3, -4, 5, -6, 7, -8}, 0);
  EXPECT_EQ(mvk_vec_Lsum_sqrLUU_flex(x.data(), 0, 7), 140);
  EXPECT_EQ(mvk_vec_Lsum_sqrLUU_flex(x.data(), 2, 7), 35);
  EXPECT_EQ(MVK_vec_Lsum_sqrLUU_strict(x.data(), 1, 8), 102);
  EXPECT_EQ(mvk_vec_Lmean_sqrLU_flex(x.data(), 2), 2.5f);
  EXPECT_EQ(mvk_vec_Lmean_sqrLU_flex(x.data(), 8), 25.5f);
  EXPECT_EQ(MVK_vec_Lmean_sqrLU_strict(x.data(), 8), 25.5f);
}

TEST(SumOfSquares, StrictReadsWholeGroupsButDividesByTheCount) {
  GuardedFloats x({1, 2, 3, 4, 5, 6, 7, 8}, 0);
  EXPECT_EQ(MVK_vec_Lsum_sqrLUU_strict(x.data(), 0, 1), 30);
  EXPECT_EQ(MVK_vec_Lsum_sqrLUU_strict(x.data(), 0, 5), 204);
  EXPECT_EQ(MVK_vec_Lmean_sqrLU_strict(x.data(), 2), 15);
}

TEST(SumOfSquares, OfNothingIsZeroButTheStrictMeanIsNotANumber) {
  GuardedFloats x({kInfinity, kInfinity, kInfinity, kInfinity}, 0);
  EXPECT_EQ(BitsOf(mvk_vec_Lmean_sqrLU_flex(x.data(), 0)), BitsOf(0.0f));
  EXPECT_TRUE(std::isnan(MVK_vec_Lmean_sqrLU_strict(x.data(), 0)));
  for (uint32_t k : {0u, 5u, 126u}) {
    EXPECT_EQ(BitsOf(mvk_vec_Lsum_sqrLUU_flex(x.data(), k, 0)), BitsOf(0.0f));
    EXPECT_EQ(BitsOf(MVK_vec_Lsum_sqrLUU_strict(x.data(), k, 0)), BitsOf(0.0f));
  }
}

TEST(SumOfSquares, FormsAgreeOnWholeGroups) {
  Random random(1);
  for (uint32_t n = 0; n <= 64; n += 4) {
    GuardedFloats x(Samples(kWide, random, n), 0);
    const KernelCall call = {"vec_Lsum_sqrLUU", "both", n};
    EXPECT_TRUE(SameResult(mvk_vec_Lsum_sqrLUU_flex(x.data(), 4, n),
                           MVK_vec_Lsum_sqrLUU_strict(x.data(), 4, n), call));
    if (n == 0) continue;
    EXPECT_TRUE(SameResult(mvk_vec_Lmean_sqrLU_flex(x.data(), n),
                           MVK_vec_Lmean_sqrLU_strict(x.data(), n), call));
  }
}

}  // namespace
}  // namespace testing_support
