// The windows, the time constants and the other constants.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <set>

#include "kernels/kernel_samples.h"
#include "limiter/limiter_tables.h"
#include "orvane_ht_ztlim.h"
#include "reference/limiter_reference.h"

namespace testing_support {
namespace {

using reference::kLimiterLengths;
using reference::kLimiterRates;
using reference::kLimiterTimes;
using reference::LimiterTimes;

TEST(LimiterWindow, IsASineSquaredInFifteenBits) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    ASSERT_EQ(tables.window.size(), n);
    for (uint32_t i = 0; i < n; ++i) {
      EXPECT_EQ(BitsOf(tables.window[i]), BitsOf(reference::LimiterWindow(n, i)))
          << n << ", entry " << i;
    }
  }
}

TEST(LimiterWindow, MirroredEntriesAddUpToOne) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    for (uint32_t i = 0; i < n; ++i) {
      const bool limited = n == 256 && (i == 0 || i == n - 1);
      EXPECT_EQ(tables.window[i] + tables.window[n - 1 - i], limited ? 1 - 0x1p-15f : 1.0f)
          << n << ", entry " << i;
    }
  }
}

TEST(LimiterWindow, LongestEndsBelowOneAndBeginsAtNothing) {
  EXPECT_EQ(orvane_ht_a_ztlim_win_256[255], 0.999969482421875f);
  EXPECT_EQ(BitsOf(orvane_ht_a_ztlim_win_256[0]), 0u);
}

// The limit of 1 - 2^-15 is met nowhere else.
TEST(LimiterWindow, RisesAndStaysBelowOne) {
  for (const ExportedTables &tables : kExportedTables) {
    for (size_t i = 1; i < tables.window.size(); ++i) {
      EXPECT_GE(tables.window[i], tables.window[i - 1]) << tables.length.sub_block << ", " << i;
      EXPECT_LE(tables.window[i], 1 - 0x1p-15f) << tables.length.sub_block << ", " << i;
    }
  }
}

void ExpectTimes(const orvane_ht_ztlim_coefs &got, const LimiterTimes &row) {
  const float wanted[] = {reference::Fifteenths(row.slow_keep),
                          reference::Fifteenths(row.slow_follow),
                          reference::Fifteenths(row.recover_keep),
                          reference::Fifteenths(row.recover_step),
                          reference::Fifteenths(row.release),
                          reference::Fifteenths(row.release_half),
                          0,
                          0};
  static_assert(sizeof wanted == sizeof got);
  float fields[std::size(wanted)];
  std::memcpy(fields, &got, sizeof fields);
  EXPECT_TRUE(SameBits(fields, wanted, {"coefs", "row"}));
}

TEST(LimiterTimes, AreThoseOfTheRateOfUpdates) {
  for (const ExportedTables &tables : kExportedTables) {
    ASSERT_EQ(tables.coefs.size(), std::size(kLimiterRates));
    for (size_t i = 0; i < std::size(kLimiterRates); ++i) {
      SCOPED_TRACE(testing::Message() << tables.length.sub_block << " at " << kLimiterRates[i]);
      const LimiterTimes *row = reference::TimesOf(tables.length.sub_block, kLimiterRates[i]);
      ASSERT_EQ(tables.coefs[i] == nullptr, row == nullptr);
      if (row == nullptr) continue;
      ASSERT_NE(row, std::end(kLimiterTimes));
      ExpectTimes(*tables.coefs[i], *row);
    }
  }
}

TEST(LimiterTimes, AreNullForTheRatesThatALongSubBlockDoesNotServe) {
  constexpr size_t kServed[] = {9, 9, 9, 6, 3};
  for (size_t l = 0; l < std::size(kServed); ++l) {
    for (size_t i = 0; i < 9; ++i) {
      EXPECT_EQ(kExportedTables[l].coefs[i] != nullptr, i < kServed[l])
          << kExportedTables[l].length.sub_block << " at " << kLimiterRates[i];
    }
  }
}

// A second, at rate i.
double Updates(const ExportedTables &tables, size_t i) {
  return static_cast<double>(kLimiterRates[i]) / tables.length.sub_block;
}

TEST(LimiterTimes, OfTheSameRateOfUpdatesAreOneRecord) {
  std::map<double, const orvane_ht_ztlim_coefs *> by_updates;
  std::set<const orvane_ht_ztlim_coefs *> records;
  for (const ExportedTables &tables : kExportedTables) {
    for (size_t i = 0; i < std::size(kLimiterRates); ++i) {
      if (tables.coefs[i] == nullptr) continue;
      const double updates = Updates(tables, i);
      const auto known = by_updates.emplace(updates, tables.coefs[i]).first;
      EXPECT_EQ(tables.coefs[i], known->second) << updates << " updates a second";
      records.insert(tables.coefs[i]);
    }
  }
  EXPECT_EQ(by_updates.size(), std::size(kLimiterTimes));
  EXPECT_EQ(records.size(), std::size(kLimiterTimes));
}

// What is left of a value after one update, in units of 2^-15.
long AfterOneUpdate(double half_life, double updates) {
  return std::lround(std::exp2(-1 / (half_life * updates)) * 0x1p15);
}

long Units(float x) { return std::lround(x * 0x1p15f); }

struct HalfLives {
  long slow_keep, recover_keep, release, release_half;
};

HalfLives FromHalfLives(double updates) {
  return {AfterOneUpdate(0.040, updates), AfterOneUpdate(0.160, updates),
          AfterOneUpdate(0.005, updates), AfterOneUpdate(0.010, updates)};
}

constexpr double kTunedUpdates = 2756.25;

TEST(LimiterTimes, HalveIn40And160And5And10Milliseconds) {
  for (const ExportedTables &tables : kExportedTables) {
    for (size_t i = 0; i < tables.length.rates; ++i) {
      const double updates = Updates(tables, i);
      SCOPED_TRACE(testing::Message() << updates << " updates a second");
      const orvane_ht_ztlim_coefs &got = *tables.coefs[i];
      EXPECT_EQ(got.slow_follow, 1 - got.slow_keep);
      EXPECT_EQ(got.recover_step, 1 - got.recover_keep);
      if (updates == kTunedUpdates) continue;
      const HalfLives wanted = FromHalfLives(updates);
      EXPECT_EQ(Units(got.slow_keep), wanted.slow_keep);
      EXPECT_EQ(Units(got.recover_keep), wanted.recover_keep);
      EXPECT_EQ(Units(got.release), wanted.release);
      EXPECT_EQ(Units(got.release_half), wanted.release_half);
    }
  }
}

TEST(LimiterTimes, OneRowIsTunedByHand) {
  const HalfLives rule = FromHalfLives(kTunedUpdates);
  for (const orvane_ht_ztlim_coefs *got :
       {orvane_ht_ap_ztlim_coefs_32[3], orvane_ht_ap_ztlim_coefs_64[1]}) {
    EXPECT_EQ(Units(got->slow_keep), rule.slow_keep - 1);
    EXPECT_EQ(Units(got->recover_keep), rule.recover_keep - 1);
    EXPECT_EQ(Units(got->release), rule.release - 2);
    EXPECT_EQ(Units(got->release_half), rule.release_half - 1);
  }
}

TEST(LimiterVersion, IsOneEightTwo) {
  const orvane_ht_ztlim_version *version = orvane_ht_ztlim_get_version();
  ASSERT_NE(version, nullptr);
  static_assert(sizeof *version == 24);
  const uint32_t wanted[6] = {1, 8, 2};
  EXPECT_EQ(std::memcmp(version, wanted, sizeof wanted), 0);
  EXPECT_EQ(orvane_ht_ztlim_get_version(), version);
}

TEST(LimiterScale, IsOneOver256) {
  EXPECT_EQ(BitsOf(orvane_ht_ZTLIM_ONE_OVER_256_S), BitsOf(0.00390625f));
  EXPECT_EQ(BitsOf(orvane_ht_ZTLIM_ONE_OVER_256_L), BitsOf(0.00390625f));
}

}  // namespace
}  // namespace testing_support
