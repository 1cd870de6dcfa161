// The prototypes and twiddles of the multichannel banks, entry by entry.
#include <gtest/gtest.h>

#include <cstdint>

#include "dct/table_checks.h"
#include "filterbanks/mfb_banks.h"
#include "filterbanks/qmf_banks.h"
#include "reference/fft_roots.h"

namespace testing_support {
namespace {

TEST(MfbPrototypes, HaveTheSymmetricTapsByGroupsOfFourSamples) {
  const QmfPrototype &qmf = QmfPrototypeOf("P5_p64orv301");
  const reference::Taps p = PrototypeOf(qmf.window, qmf.syn.data());
  ASSERT_EQ(sizeof MVK_MFB_P10KM_P64ORV301, 640 * sizeof(float));
  ASSERT_EQ(sizeof MVK_MFB_P10KM_P64ORV301_LEGACY, 640 * sizeof(float));
  for (size_t j = 0; j < 10; ++j) {
    for (size_t k = 0; k < 64; ++k) {
      const size_t place = 40 * (k / 4) + 4 * j + k % 4;
      EXPECT_EQ(MVK_MFB_P10KM_P64ORV301[place], p[j * 64 + k]) << j << " " << k;
      EXPECT_EQ(MVK_MFB_P10KM_P64ORV301_LEGACY[place], p[(9 - j) * 64 + k]) << j << " " << k;
    }
  }
}

TEST(MfbPrototypes, HaveTheirLargestTapsHere) {
  EXPECT_NEAR(MVK_MFB_P10KM_P64ORV301[40 * 0 + 4 * 5 + 0], 0.860848, 0.5e-6);
  EXPECT_NEAR(MVK_MFB_P10KM_P64ORV301_LEGACY[40 * 0 + 4 * 4 + 0], 0.860848, 0.5e-6);
  // 465 = 7 * 64 + 17, 930 = 7 * 128 + 34, 1860 = 7 * 256 + 68
  EXPECT_NEAR(MVK_MFB_P10KM_P4_319SC[40 * 4 + 4 * 7 + 1], 0.939412, 0.5e-6);
  EXPECT_NEAR(MVK_MFB_P10KM_P4_319SC_128M[40 * 8 + 4 * 7 + 2], 0.939452, 0.5e-6);
  EXPECT_NEAR(MVK_MFB_P10KM_P4_319SC_256M[40 * 17 + 4 * 7 + 0], 0.939460, 0.5e-6);
}

// exp(-i pi j / (2 M)), or half a step further.
TEST(MfbTwiddles, HavePairsByFours) {
  for (const MfbTwiddles &table : kMfbTwiddles) {
    ASSERT_EQ(table.values.size(), 2 * table.bands) << table.name;
    for (uint32_t j = 0; j < table.bands; ++j) {
      const auto root = reference::RootOfUnity<long double>(table.is_even ? 2 * j + 1 : 2 * j,
                                                            8 * uint64_t{table.bands});
      const auto [c1, c2] = reference::MfbPair(table.values, j);
      EXPECT_TRUE(IsNearest(c1, root.cosine)) << table.name << " " << j;
      if (root.sine == 0) {
        EXPECT_EQ(c2, 0) << table.name << " " << j;
      } else {
        EXPECT_TRUE(IsNearest(c2, -root.sine)) << table.name << " " << j;
      }
    }
  }
}

TEST(MfbTwiddles, SomeEntriesAreThese) {
  EXPECT_EQ(MVK_MFB_TWID64O[0], 1.0f);
  EXPECT_EQ(MVK_MFB_TWID64O[64], 0.70710678f);  // pair 32, of pi / 4
  EXPECT_EQ(MVK_MFB_TWID64O[68], -0.70710678f);
  EXPECT_EQ(MVK_MFB_TWID64E[0], 0.99992470f);
  EXPECT_EQ(MVK_MFB_TWID64E[4], -0.012271538f);
  EXPECT_EQ(MVK_MFB_TWID256E[4], -0.0030679568f);
}

// Four of a kind at a time are loaded from them.
TEST(MfbTables, AreAligned) {
  for (const MfbTwiddles &table : kMfbTwiddles) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(table.values.data()) % 16, 0u) << table.name;
  }
  for (const MfbPrototype &table : kMfbPrototypes) {
    EXPECT_EQ(table.values.size(), kMfbTaps * table.bands) << table.name;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(table.values.data()) % 16, 0u) << table.name;
  }
}

}  // namespace
}  // namespace testing_support
