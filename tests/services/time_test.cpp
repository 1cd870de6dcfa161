// The start-up call and the arithmetic on times.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kernels/kernel_samples.h"
#include "mvk_services.h"

namespace testing_support {
namespace {

static_assert(std::is_same_v<decltype(MVK_dsplib_init), int()>);
static_assert(std::is_same_v<decltype(MVK_time_init), void()>);
static_assert(std::is_same_v<decltype(MVK_time_end), void()>);
static_assert(std::is_same_v<decltype(MVK_time_reset), void(uint64_t *)>);
static_assert(std::is_same_v<decltype(MVK_time_add), uint64_t(uint64_t, uint64_t)>);
static_assert(std::is_same_v<decltype(MVK_time_sub), uint64_t(uint64_t, uint64_t)>);
static_assert(std::is_same_v<decltype(MVK_time_div), double(uint64_t, unsigned)>);
static_assert(std::is_same_v<decltype(MVK_time_lt), int(uint64_t, uint64_t)>);

constexpr uint64_t kMost = ~uint64_t{0};

TEST(Start, AlwaysSucceeds) {
  EXPECT_EQ(MVK_dsplib_init(), 0);
  EXPECT_EQ(MVK_dsplib_init(), 0);
}

TEST(Time, StartAndEndDoNothing) {
  MVK_time_end();
  MVK_time_init();
  MVK_time_init();
  MVK_time_end();
}

TEST(Time, ResetTouchesItsValueOnly) {
  uint64_t times[] = {kMost, kMost, kMost};
  MVK_time_reset(&times[1]);
  EXPECT_EQ(times[0], kMost);
  EXPECT_EQ(times[1], 0u);
  EXPECT_EQ(times[2], kMost);
}

TEST(Time, SumsAndDifferencesWrap) {
  EXPECT_EQ(MVK_time_add(1, 2), 3u);
  EXPECT_EQ(MVK_time_add(0xffffffff, 1), 0x100000000u);
  EXPECT_EQ(MVK_time_add(kMost, 1), 0u);
  EXPECT_EQ(MVK_time_add(kMost, kMost), kMost - 1);
  EXPECT_EQ(MVK_time_sub(3, 2), 1u);
  EXPECT_EQ(MVK_time_sub(0x100000000, 1), 0xffffffffu);
  EXPECT_EQ(MVK_time_sub(1, 2), 0xFFFFFFFFFFFFFFFFu);
  EXPECT_EQ(MVK_time_sub(0, kMost), 1u);
  Random random(1);
  for (int i = 0; i < 1000; ++i) {
    const uint64_t a = random.Bits(), b = random.Bits();
    ASSERT_EQ(MVK_time_add(a, b), a + b);
    ASSERT_EQ(MVK_time_sub(a, b), a - b);
  }
}

TEST(Time, QuotientIsThatOfTheConvertedCounts) {
  EXPECT_EQ(MVK_time_div(3, 2), 1.5);
  EXPECT_EQ(MVK_time_div(0, 5), 0.0);
  EXPECT_EQ(MVK_time_div(1, 3), 1.0 / 3.0);
  EXPECT_EQ(MVK_time_div(kMost, 0xffffffff), 0x1p64 / 4294967295.0);
  // The count is rounded to the nearest double before the division, ties to even.
  EXPECT_EQ(MVK_time_div((uint64_t{1} << 53) + 1, 1), 0x1p53);
  EXPECT_EQ(MVK_time_div((uint64_t{1} << 53) + 3, 1), 0x1p53 + 4);
  EXPECT_EQ(MVK_time_div(kMost, 1), 0x1p64);
  EXPECT_EQ(MVK_time_div(kMost - 1023, 1), 0x1p64);
  EXPECT_EQ(MVK_time_div(kMost - 1024, 1), 0x1p64 - 2048);
  Random random(2);
  for (int i = 0; i < 1000; ++i) {
    const uint64_t t = random.Bits() >> random.Below(64);
    const uint32_t n = random.Bits32() >> random.Below(31) | 1;
    ASSERT_EQ(MVK_time_div(t, n), static_cast<double>(t) / static_cast<double>(n))
        << t << ", " << n;
  }
}

TEST(Time, QuotientByZeroIsInfiniteOrNoNumber) {
  EXPECT_EQ(MVK_time_div(1, 0), std::numeric_limits<double>::infinity());
  EXPECT_EQ(MVK_time_div(kMost, 0), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(MVK_time_div(0, 0)));
}

TEST(Time, IsComparedWithoutASign) {
  // From the least to the greatest, so that their places are compared alike.
  constexpr uint64_t kTimes[] = {0,           1,         0x7fffffff,    0x80000000, 0xffffffff,
                                 0x100000000, kMost / 2, kMost / 2 + 1, kMost};
  for (const uint64_t &a : kTimes) {
    for (const uint64_t &b : kTimes) {
      EXPECT_EQ(MVK_time_lt(a, b), &a < &b ? 1 : 0) << a << " < " << b;
    }
  }
  EXPECT_EQ(MVK_time_lt(MVK_time_sub(1, 2), 0), 0);
}

}  // namespace
}  // namespace testing_support
