// The rules of constant tables, against the C library in long double.
#include "core/tables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// sin(pi p / q) for 0 <= p <= 2 q, reduced to an eighth of a turn so that the C
// library sees small angles only.
long double reference_sin(long p, long q) {
  constexpr long double pi = 3.14159265358979323846264338327950288L;
  if (p > q) return -reference_sin(p - q, q);
  if (2 * p > q) return reference_sin(q - p, q);
  if (4 * p > q)
    return cosl(pi * static_cast<long double>(q - 2 * p) / static_cast<long double>(2 * q));
  return sinl(pi * static_cast<long double>(p) / static_cast<long double>(q));
}

long double reference_cos(long p, long q) {
  return 2 * p <= 3 * q ? reference_sin(2 * p + q, 2 * q) : reference_sin(2 * p - 3 * q, 2 * q);
}

TEST(SinPi, NarrowsToTheCorrectlyRoundedFloat) {
  for (const long q : {1L,   2L,   3L,   4L,   5L,   7L,   8L,   12L,   48L,   64L,   80L,   96L,
                       127L, 180L, 256L, 320L, 480L, 512L, 960L, 1024L, 1920L, 2048L, 3840L, 4096L})
    for (long p = 0; p < 2 * q; ++p) {
      ASSERT_EQ(static_cast<float>(mvk::sin_pi(p, q)), static_cast<float>(reference_sin(p, q)))
          << p << " / " << q;
      ASSERT_EQ(static_cast<float>(mvk::cos_pi(p, q)), static_cast<float>(reference_cos(p, q)))
          << p << " / " << q;
    }
}

TEST(SinPi, IsWithinTwoUnitsOfADouble) {
  for (long q = 1; q < 200; ++q)
    for (long p = 1; p < q; ++p) {
      const long double exact = reference_sin(p, q);
      ASSERT_LE(std::fabs(static_cast<double>(mvk::sin_pi(p, q) - exact)), exact * 0x1p-51L)
          << p << " / " << q;
    }
}

TEST(SinPi, IsExactAtMultiplesOfAQuarterTurn) {
  for (const long q : {1L, 3L, 4096L}) {
    for (const long turns : {-2L, -1L, 0L, 1L, 5L}) {
      const long p = 2 * q * turns;
      EXPECT_EQ(mvk::sin_pi(p, q), 0.0);
      EXPECT_EQ(mvk::cos_pi(p, q), 1.0);
      EXPECT_EQ(mvk::sin_pi(2 * p + q, 2 * q), 1.0);
      EXPECT_EQ(mvk::cos_pi(2 * p + q, 2 * q), 0.0);
      EXPECT_EQ(mvk::sin_pi(p + q, q), 0.0);
      EXPECT_EQ(mvk::cos_pi(p + q, q), -1.0);
      EXPECT_EQ(mvk::sin_pi(2 * p + 3 * q, 2 * q), -1.0);
      EXPECT_EQ(mvk::cos_pi(2 * p + 3 * q, 2 * q), 0.0);
    }
  }
}

TEST(SinPi, HasPositiveZeros) {
  for (long p = -8; p <= 8; ++p) {
    EXPECT_FALSE(std::signbit(mvk::sin_pi(p, 1))) << p;
    EXPECT_FALSE(std::signbit(mvk::cos_pi(2 * p + 1, 2))) << p;
  }
}

TEST(SinPi, IsOddAndPeriodic) {
  for (long p = 1; p < 37; ++p) {
    EXPECT_EQ(mvk::sin_pi(-p, 37), -mvk::sin_pi(p, 37));
    EXPECT_EQ(mvk::sin_pi(p + 74, 37), mvk::sin_pi(p, 37));
    EXPECT_EQ(mvk::cos_pi(-p, 37), mvk::cos_pi(p, 37));
    EXPECT_EQ(mvk::cos_pi(p - 74, 37), mvk::cos_pi(p, 37));
  }
}

TEST(Exp2Negative, IsWithinTwoUnitsOfADouble) {
  for (int i = 0; i <= 1000; ++i) {
    const double x = i / 1000.0;
    const long double exact = exp2l(-static_cast<long double>(x));
    ASSERT_LE(std::fabs(static_cast<double>(mvk::exp2_negative(x) - exact)), exact * 0x1p-51L) << x;
  }
}

TEST(SixDecimals, RoundsToTheNearestMillionth) {
  EXPECT_EQ(mvk::six_decimals(0.70710678118654752), 0.707107f);
  EXPECT_EQ(mvk::six_decimals(-0.70710678118654752), -0.707107f);
  EXPECT_EQ(mvk::six_decimals(0.9999996), 1.0f);
  EXPECT_EQ(mvk::six_decimals(0.0000004), 0.0f);
  EXPECT_EQ(mvk::six_decimals(0.3826834323650898), 0.382683f);
}

TEST(Q15, CountsInUnitsOfTheSixteenBitFraction) {
  EXPECT_EQ(mvk::q15(1), 0x1p-15f);
  EXPECT_EQ(mvk::q15(-32768), -1.0f);
  EXPECT_EQ(mvk::to_q15(0.5), 0.5f);
  EXPECT_EQ(mvk::to_q15(1.0 / 3), 10923.0f / 32768);
  EXPECT_EQ(mvk::to_q15(-1.0 / 3), -10923.0f / 32768);
}

TEST(MakeTable, EvaluatesTheRuleAtEachIndexOfAnAlignedTable) {
  static constexpr mvk::table<5> squares =
      mvk::make_table<5>([](int i) { return static_cast<float>(i * i); });
  for (int i = 0; i < 5; ++i) EXPECT_EQ(squares[i], static_cast<float>(i * i));
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&squares) % 32, 0u);
}

}  // namespace
