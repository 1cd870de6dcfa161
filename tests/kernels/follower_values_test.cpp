// What the followers, the integrator and the running reciprocal are for, and values worked out by
// hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

using Samples32 = float[kBlockSize];
using Follower = float *(*)(float *, const float *, const float *, double *);

constexpr Follower kFollowers[] = {
    mvk_blk_Lattack_decay_iir1L_flex, MVK_blk_Lattack_decay_iir1L_strict,
    mvk_blk_Lattack_decay_peak_iir1L_flex, MVK_blk_Lattack_decay_peak_iir1L_strict};
constexpr Follower kFollowersWithoutFloor[] = {mvk_blk_Lattack_decay_iir1L_flex,
                                               MVK_blk_Lattack_decay_iir1L_strict};
constexpr Follower kFollowersWithFloor[] = {mvk_blk_Lattack_decay_peak_iir1L_flex,
                                            MVK_blk_Lattack_decay_peak_iir1L_strict};

// ---- Setups and companions ----

TEST(FollowerSetup, ClearsTheEnvelope) {
  for (auto setup : {MVK_blk_Lattack_decay_iir1L_setup, MVK_blk_Lattack_decay_peak_iir1L_setup}) {
    double e[] = {-1, -1, -1};
    setup(&e[1]);
    EXPECT_EQ(BitsOf(e[1]), 0u);
    EXPECT_EQ(e[0], -1);
    EXPECT_EQ(e[2], -1);
  }
}

TEST(FollowerSetup, ClearsTheIntegrator) {
  GuardedFloats s(1, 3);
  MVK_blk_LintegrateL_setup(s.data());
  EXPECT_EQ(BitsOf(*s.data()), 0u);
  EXPECT_TRUE(s.GuardsStand({"LintegrateL", "setup"}));
}

TEST(FollowerSetup, StartsTheReciprocalAtThePatternOfItsShift) {
  for (int k = -200; k <= 200; ++k) {
    GuardedFloats r(1, 5);
    MVK_blk_LnrrecipLU_setup(r.data(), static_cast<uint32_t>(k));
    EXPECT_EQ(BitsOf(*r.data()), static_cast<uint32_t>(127 - k) << 23) << k;
    EXPECT_TRUE(r.GuardsStand({"LnrrecipLU", "setup"}));
  }
}

TEST(FollowerSetup, CoefficientCompanionsReturnTheRecordAsItIs) {
  for (auto set_coef :
       {MVK_blk_Lattack_decay_iir1L_set_coef, MVK_blk_Lattack_decay_peak_iir1L_set_coef,
        MVK_blk_LintegrateL_set_coef, MVK_blk_LnrrecipLU_set_coef}) {
    Random random(1);
    GuardedFloats c(Samples(kMixed, random, 3), 0);
    EXPECT_EQ(set_coef(c.data()), c.data());
    EXPECT_TRUE(c.Untouched({"set_coef", ""}));
    EXPECT_EQ(set_coef(nullptr), nullptr);
  }
}

// ---- Envelopes ----

TEST(FollowerValues, FasterSmootherRisesAndSlowerOneFalls) {
  for (Follower follower : kFollowers) {
    // Whichever coefficient comes first. The floor is out of reach.
    for (const auto &[c0, c1] : {std::pair{0.5f, 0.125f}, std::pair{0.125f, 0.5f}}) {
      alignas(32) const float c[] = {c0, c1, 0};
      alignas(32) Samples32 x = {1, 1, 1, 0, 0}, y;
      double e = 0;
      EXPECT_EQ(follower(y, x, c, &e), y);
      EXPECT_EQ(y[0], 0.5f);
      EXPECT_EQ(y[1], 0.75f);
      EXPECT_EQ(y[2], 0.875f);
      EXPECT_EQ(y[3], 0.875f * 0.875f);
      EXPECT_EQ(y[4], 0.875f * 0.875f * 0.875f);
    }
  }
}

TEST(FollowerValues, EqualCoefficientsMakeOnePlainSmoother) {
  Random random(2);
  for (Follower follower : kFollowersWithoutFloor) {
    alignas(32) const float c[] = {0.3f, 0.3f};
    alignas(32) Samples32 x, y;
    for (float &sample : x) sample = random.Unit();
    double e = 0, smooth = 0;
    follower(y, x, c, &e);
    for (size_t i = 0; i < kBlockSize; ++i) {
      smooth = std::fma(double{x[i]}, double{0.3f}, smooth * double{1 - 0.3f});
      EXPECT_EQ(y[i], static_cast<float>(smooth)) << i;
    }
    EXPECT_EQ(e, smooth);
  }
}

TEST(FollowerValues, AttackOfOneJumpsToAnyInputAbove) {
  for (Follower follower : kFollowers) {
    alignas(32) const float c[] = {0.25f, 1, 0};
    alignas(32) Samples32 x = {0.5f, 0.75f, 0.25f, 8}, y;
    double e = 0;
    follower(y, x, c, &e);
    EXPECT_EQ(y[0], 0.5f);
    EXPECT_EQ(y[1], 0.75f);
    EXPECT_EQ(y[2], 0.625f);
    EXPECT_EQ(y[3], 8);
  }
}

TEST(FollowerValues, ComplementOfATinyCoefficientIsOne) {
  // In binary32 1 - 2^-30 is 1; in binary64 the envelope would fall.
  for (Follower follower : kFollowers) {
    alignas(32) const float c[] = {0x1p-30f, 0x1p-30f, 0};
    alignas(32) const Samples32 x = {};
    alignas(32) Samples32 y;
    double e = 1;
    follower(y, x, c, &e);
    EXPECT_EQ(e, 1);
  }
}

TEST(FollowerValues, EnvelopeKeepsItsDigitsBetweenBlocks) {
  for (Follower follower : kFollowers) {
    alignas(32) const float c[] = {0, 0, 0};
    alignas(32) const Samples32 x = {};
    alignas(32) Samples32 y;
    double e = 1 + 0x1p-40;
    for (int block = 0; block < 5; ++block) follower(y, x, c, &e);
    EXPECT_EQ(e, 1 + 0x1p-40);
    EXPECT_EQ(y[31], 1);
  }
}

TEST(FollowerValues, FloorHoldsTheEnvelopeUp) {
  for (Follower follower : kFollowersWithFloor) {
    alignas(32) const float c[] = {0.5f, 0.5f, 0.75f};
    alignas(32) Samples32 x = {1, 0.5f, 0, -1}, y;
    double e = 0;
    follower(y, x, c, &e);
    EXPECT_EQ(y[0], 0.75f);
    EXPECT_EQ(y[1], 0.625f);
    EXPECT_EQ(y[2], 0.3125f);
    EXPECT_EQ(y[3], -0.34375f);
  }
}

TEST(FollowerValues, FloorIsAWideProduct) {
  // The square of 1 + 2^-20 needs more digits than a float has.
  for (Follower follower : kFollowersWithFloor) {
    alignas(32) const float c[] = {0, 0, 1 + 0x1p-20f};
    alignas(32) Samples32 x, y;
    std::fill_n(x, kBlockSize, 1 + 0x1p-20f);
    double e = 0;
    follower(y, x, c, &e);
    EXPECT_EQ(e, 1 + 0x1p-19 + 0x1p-40);
  }
}

// ---- Integrator ----

TEST(FollowerValues, IntegratorStaysWithinItsLimitsTheUpperOneFirst) {
  for (auto integrate : {mvk_blk_LintegrateL_flex, MVK_blk_LintegrateL_strict}) {
    alignas(32) const float limits[] = {2, -1};
    alignas(32) Samples32 x = {1, 1, 1, -0.5f, -1, -1, -1, 0.25f}, y;
    float s = 0;
    EXPECT_EQ(integrate(y, x, limits, &s), y);
    const float wanted[] = {1, 2, 2, 1.5f, 0.5f, -0.5f, -1, -0.75f};
    EXPECT_TRUE(std::equal(std::begin(wanted), std::end(wanted), y));
    EXPECT_EQ(s, -0.75f);
  }
}

TEST(FollowerValues, IntegratorTakesTheLowerLimitForANan) {
  for (auto integrate : {mvk_blk_LintegrateL_flex, MVK_blk_LintegrateL_strict}) {
    alignas(32) const float limits[] = {2, -1};
    alignas(32) Samples32 x = {1, kNaN, 0.5f}, y;
    float s = 0;
    integrate(y, x, limits, &s);
    EXPECT_EQ(y[0], 1);
    EXPECT_EQ(y[1], -1);
    EXPECT_EQ(y[2], -0.5f);
  }
}

// ---- Running reciprocal ----

TEST(FollowerValues, ReciprocalComesToRestAtTheScaledInverse) {
  for (auto reciprocal : {mvk_blk_LnrrecipLU_flex, MVK_blk_LnrrecipLU_strict}) {
    for (uint32_t k : {0u, 1u, 5u, static_cast<uint32_t>(-3)}) {
      for (float value : {1.0f, 3.0f, 0.1f, 0x1p-9f, 100.0f, 1e6f}) {
        SCOPED_TRACE(testing::Message() << "k = " << static_cast<int32_t>(k) << ", x = " << value);
        alignas(32) Samples32 x, y;
        std::fill_n(x, kBlockSize, value);
        float r;
        MVK_blk_LnrrecipLU_setup(&r, k);
        for (int block = 0; block < 2; ++block) EXPECT_EQ(reciprocal(y, x, k, &r), y);
        const double inverse = std::ldexp(1.0, -static_cast<int32_t>(k)) / double{value};
        EXPECT_NEAR(y[31] / inverse, 1, 0x1p-22);
        EXPECT_EQ(BitsOf(r), BitsOf(y[31]));
      }
    }
  }
}

TEST(FollowerValues, ReciprocalOfNothingDoublesUntilItOverflows) {
  for (auto reciprocal : {mvk_blk_LnrrecipLU_flex, MVK_blk_LnrrecipLU_strict}) {
    alignas(32) const Samples32 x = {};
    alignas(32) Samples32 y;
    float r = 1;
    for (int block = 0; block < 4; ++block) {
      reciprocal(y, x, 3, &r);
      for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(y[i], std::ldexp(1.0f, 32 * block + i + 1)) << block << ", " << i;
      }
    }
    EXPECT_EQ(r, kInfinity);
    // Infinity times zero is a NaN, which loses against the limit.
    reciprocal(y, x, 3, &r);
    EXPECT_EQ(y[31], kInfinity);
  }
}

TEST(FollowerValues, ReciprocalHalvesAtMost) {
  // A jump of the input holds r's factor at 2 * 0.25.
  for (auto reciprocal : {mvk_blk_LnrrecipLU_flex, MVK_blk_LnrrecipLU_strict}) {
    alignas(32) Samples32 x, y;
    std::fill_n(x, kBlockSize, 0x1p+100f);
    float r = 1;
    reciprocal(y, x, 0, &r);
    for (int i = 0; i < 32; ++i) EXPECT_EQ(y[i], std::ldexp(1.0f, -i - 1)) << i;
  }
}

}  // namespace
}  // namespace testing_support
