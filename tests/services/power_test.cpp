// The power of one half, for every argument.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "dct/table_checks.h"
#include "mvk_services.h"

namespace testing_support {
namespace {

static_assert(std::is_same_v<decltype(MVK_Lpow05I16), float(uint16_t)>);

// The nearest floats to 2^(-i/steps).
template <size_t kEntries>
std::array<float, kEntries> Powers(int steps) {
  std::array<float, kEntries> powers;
  for (size_t i = 0; i < kEntries; ++i) {
    const long double power = std::exp2(-static_cast<long double>(i) / steps);
    powers[i] = static_cast<float>(power);
    EXPECT_TRUE(IsNearest(powers[i], power));
  }
  return powers;
}

TEST(PowerOfOneHalf, IsAProductOfFourRoundedPowers) {
  const auto fine = Powers<8>(32768);
  const auto low = Powers<16>(4096), middle = Powers<16>(256), high = Powers<16>(16);
  for (unsigned v = 0; v < 65536; ++v) {
    const float front = low[v >> 3 & 15] * middle[v >> 7 & 15];
    const float back = high[v >> 11 & 15] * fine[v & 7];
    const float got = MVK_Lpow05I16(static_cast<uint16_t>(v));
    ASSERT_EQ(BitsOf(got), BitsOf(front * back)) << v;
  }
}

// Four entries and three products are each off by half a unit of the last place at most.
TEST(PowerOfOneHalf, IsNearThePower) {
  for (unsigned v = 0; v < 32768; ++v) {
    const double power = std::exp2(-static_cast<double>(v) / 32768);
    ASSERT_NEAR(MVK_Lpow05I16(static_cast<uint16_t>(v)), power, power * 7.001 * 0x1p-24) << v;
  }
}

TEST(PowerOfOneHalf, FallsFromOneAndStaysAboveOneHalf) {
  float before = 2;
  for (unsigned v = 0; v < 32768; ++v) {
    const float power = MVK_Lpow05I16(static_cast<uint16_t>(v));
    ASSERT_LT(power, before) << v;
    ASSERT_GT(power, 0.5f) << v;
    before = power;
  }
}

TEST(PowerOfOneHalf, IgnoresTheHighestBit) {
  for (unsigned v = 0; v < 32768; ++v) {
    ASSERT_EQ(BitsOf(MVK_Lpow05I16(static_cast<uint16_t>(v + 32768))),
              BitsOf(MVK_Lpow05I16(static_cast<uint16_t>(v))))
        << v;
  }
}

TEST(PowerOfOneHalf, Figures) {
  EXPECT_EQ(MVK_Lpow05I16(0), 1.0f);
  EXPECT_EQ(MVK_Lpow05I16(16384), 0.70710677f);
  EXPECT_NEAR(MVK_Lpow05I16(32767), 0.5000106, 5e-8);
  EXPECT_EQ(MVK_Lpow05I16(32768), 1.0f);
}

}  // namespace
}  // namespace testing_support
