// What single samples become.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

template <typename To, typename From>
To Converted(int32_t from_type, From value, int32_t to_type) {
  To result{};
  void *from = &value;
  void *to = &result;
  const orvane_stream_desc source{1, 1, from_type, &from};
  const orvane_stream_desc destination{1, 1, to_type, &to};
  orvane_stream_convert(&source, &destination, 0, 0, 1, 0);
  return result;
}

struct FloatToInteger {
  float x;
  int32_t in_16_bits;
  int32_t in_32_bits;
};

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

const FloatToInteger kFloatToInteger[] = {
    {0.0f, 0, 0},
    {-0.0f, 0, 0},
    {1.0f, 32767, kMax},
    {-1.0f, -32768, kMin},
    {2.0f, 32767, kMax},
    {-2.0f, -32768, kMin},
    {kInfinity, 32767, kMax},
    {-kInfinity, -32768, kMin},
    {kNaN, 0, 0},
    {-kNaN, 0, 0},
    {0.5f, 16384, 1 << 30},
    {-0.5f, -16384, -(1 << 30)},
    // Ties go to the even neighbour.
    {0x1p-16f, 0, 1 << 15},
    {0x3p-16f, 2, 3 << 15},
    {0x5p-16f, 2, 5 << 15},
    {-0x1p-16f, 0, -(1 << 15)},
    {-0x3p-16f, -2, -(3 << 15)},
    {0x1p-32f, 0, 0},
    {0x3p-32f, 0, 2},
    {0x5p-32f, 0, 2},
    {-0x3p-32f, 0, -2},
    // The last floats on either side of full scale.
    {0x1.fffffep-1f, 32767, 2147483520},
    {-0x1.fffffep-1f, -32768, -2147483520},
    {0x1.000002p+0f, 32767, kMax},
    {-0x1.000002p+0f, -32768, kMin},
    // Round to 32767 and to 32768, which doesn't fit.
    {32767.25f / 32768, 32767, 2147434496},
    {32767.5f / 32768, 32767, 2147450880},
    {-32768.5f / 32768, -32768, kMin},
    // Magnitudes that leave 32 and 64 bits once scaled.
    {0x1p+16f, 32767, kMax},
    {-0x1p+16f, -32768, kMin},
    {0x1p+48f, 32767, kMax},
    {-0x1p+48f, -32768, kMin},
    {0x1.fffffep+127f, 32767, kMax},
    {-0x1.fffffep+127f, -32768, kMin},
    {0x1p-149f, 0, 0},
    {-0x1p-126f, 0, 0},
};

TEST(ConvertValues, FloatToIntegerRoundsAndSaturates) {
  for (const auto &[x, in_16_bits, in_32_bits] : kFloatToInteger) {
    SCOPED_TRACE(std::to_string(x) + ", bits " + std::to_string(std::bit_cast<uint32_t>(x)));
    EXPECT_EQ(Converted<int16_t>(DT_LONG, x, DT_INT16), in_16_bits);
    EXPECT_EQ(Converted<int32_t>(DT_LONG, x, DT_INT32), in_32_bits);
    EXPECT_EQ(Converted<int64_t>(DT_LONG, x, DT_INT32_IN_64), in_32_bits);
  }
}

TEST(ConvertValues, Int16BecomesItsExactFraction) {
  EXPECT_EQ(Converted<float>(DT_INT16, int16_t{-32768}, DT_LONG), -1.0f);
  EXPECT_EQ(Converted<float>(DT_INT16, int16_t{32767}, DT_LONG), 0.999969482421875f);
  EXPECT_EQ(Converted<float>(DT_INT16, int16_t{1}, DT_LONG), 3.0517578125e-05f);
  EXPECT_EQ(std::bit_cast<uint32_t>(Converted<float>(DT_INT16, int16_t{0}, DT_LONG)), 0u);
  for (int k = -32768; k <= 32767; k += 7) {
    const float x = Converted<float>(DT_INT16, static_cast<int16_t>(k), DT_LONG);
    ASSERT_EQ(x * 32768.0f, static_cast<float>(k));
    ASSERT_EQ(Converted<int16_t>(DT_LONG, x, DT_INT16), k);
  }
}

struct IntegerToFloat {
  int32_t k;
  float x;
};

const IntegerToFloat kIntegerToFloat[] = {
    {0, 0.0f},
    {1, 4.656612873077393e-10f},
    {-1, -4.656612873077393e-10f},
    {kMin, -1.0f},
    {kMax, 1.0f},
    {1 << 30, 0.5f},
    {(1 << 24) - 1, 0x1.fffffep-8f},
    // Half way between two floats: to the one with an even last digit.
    {(1 << 24) + 1, 0x1p-7f},
    {(1 << 24) + 3, 0x1.000004p-7f},
    {-(1 << 24) - 3, -0x1.000004p-7f},
    {0x7FFFFFBF, 0x1.fffffep-1f},
    {0x7FFFFFC0, 1.0f},
    {2147483520, 0x1.fffffep-1f},
};

TEST(ConvertValues, Int32RoundsToTheNearestFloat) {
  for (const auto &[k, x] : kIntegerToFloat) {
    SCOPED_TRACE(k);
    EXPECT_TRUE(SameFloat(Converted<float>(DT_INT32, k, DT_LONG), x));
  }
}

TEST(ConvertValues, Int32In64IgnoresTheUpperHalf) {
  for (const auto &[k, x] : kIntegerToFloat) {
    const uint64_t low = static_cast<uint32_t>(k);
    for (uint64_t high : {0x0ull, 0xFFFFFFFFull, 0x12345678ull, 0x80000000ull}) {
      SCOPED_TRACE(std::to_string(k) + " under " + std::to_string(high));
      EXPECT_TRUE(SameFloat(Converted<float>(DT_INT32_IN_64, high << 32 | low, DT_LONG), x));
    }
  }
  EXPECT_EQ(Converted<float>(DT_INT32_IN_64, 0xFFFFFFFF80000000ull, DT_LONG), -1.0f);
  EXPECT_EQ(Converted<float>(DT_INT32_IN_64, 0x0000000080000000ull, DT_LONG), -1.0f);
}

TEST(ConvertValues, Int32In64IsStoredSignExtended) {
  EXPECT_EQ(Converted<uint64_t>(DT_LONG, -1.0f, DT_INT32_IN_64), 0xFFFFFFFF80000000ull);
  EXPECT_EQ(Converted<uint64_t>(DT_LONG, -0x1p-31f, DT_INT32_IN_64), 0xFFFFFFFFFFFFFFFFull);
  EXPECT_EQ(Converted<uint64_t>(DT_LONG, 1.0f, DT_INT32_IN_64), 0x000000007FFFFFFFull);
}

TEST(ConvertValues, FloatsOfAHostKeepEveryBit) {
  for (uint32_t bits : {0x00000000u, 0x80000000u, 0x00000001u, 0x807FFFFFu, 0x7F800000u,
                        0xFF800000u, 0x7FC00000u, 0xFFC12345u, 0x7F800001u, 0xFFBFFFFFu}) {
    SCOPED_TRACE(bits);
    EXPECT_EQ(Converted<uint32_t>(DT_LONG, bits, DT_FLOAT32), bits);
    EXPECT_EQ(Converted<uint32_t>(DT_FLOAT32, bits, DT_LONG), bits);
    EXPECT_EQ(Converted<uint32_t>(DT_LONG, bits, DT_LONG), bits);
  }
}

TEST(ConvertValues, DoubleNarrowsToTheNearestFloat) {
  const struct {
    double wide;
    float narrow;
  } cases[] = {
      {1.0, 1.0f},
      {-0.0, -0.0f},
      {0.1, 0x1.99999ap-4f},
      {1.0 + 0x1p-24, 1.0f},
      {1.0 + 0x3p-24, 0x1.000004p+0f},
      {1.0 + 0x1p-24 + 0x1p-52, 0x1.000002p+0f},
      {0x1p-150, 0.0f},
      {0x1.8p-150, 0x1p-149f},
      {-0x1p-200, -0.0f},
      {0x1.fffffefp+127, 0x1.fffffep+127f},
      {0x1.ffffffp+127, kInfinity},
      {-1e300, -kInfinity},
      {std::numeric_limits<double>::infinity(), kInfinity},
      {std::numeric_limits<double>::quiet_NaN(), kNaN},
  };
  for (const auto &[wide, narrow] : cases) {
    SCOPED_TRACE(wide);
    EXPECT_TRUE(SameFloat(Converted<float>(DT_FLOAT64, wide, DT_LONG), narrow));
  }
}

TEST(ConvertValues, FloatWidensExactly) {
  for (float x : kSpecials) {
    SCOPED_TRACE(x);
    const double wide = Converted<double>(DT_LONG, x, DT_FLOAT64);
    EXPECT_EQ(std::isnan(wide), std::isnan(x));
    if (std::isnan(x)) continue;
    EXPECT_EQ(wide, static_cast<double>(x));
    EXPECT_EQ(std::signbit(wide), std::signbit(x));
  }
}

// ---- Rounding modes ----

class RoundingMode {
 public:
  explicit RoundingMode(int mode) { std::fesetround(mode); }
  ~RoundingMode() { std::fesetround(before_); }
  RoundingMode(const RoundingMode &) = delete;
  RoundingMode &operator=(const RoundingMode &) = delete;

 private:
  int before_ = std::fegetround();
};

struct Rounded {
  int mode;
  int of_0_25, of_0_5, of_1_5, of_2_75, of_minus_0_25, of_minus_1_5;
};

TEST(ConvertValues, IntegersGoByTheRoundingModeInForce) {
  constexpr Rounded kRounded[] = {
      {FE_TONEAREST, 0, 0, 2, 3, 0, -2},
      {FE_DOWNWARD, 0, 0, 1, 2, -1, -2},
      {FE_UPWARD, 1, 1, 2, 3, 0, -1},
      {FE_TOWARDZERO, 0, 0, 1, 2, 0, -1},
  };
  constexpr float kValues[] = {0.25f, 0.5f, 1.5f, 2.75f, -0.25f, -1.5f};
  for (const Rounded &row : kRounded) {
    const int wanted[] = {row.of_0_25, row.of_0_5,        row.of_1_5,
                          row.of_2_75, row.of_minus_0_25, row.of_minus_1_5};
    // Enough samples that a loop over whole vectors and the rest of it are both met.
    for (int32_t datatype : {DT_INT16, DT_INT32, DT_INT32_IN_64}) {
      const float scale = datatype == DT_INT16 ? 0x1p-15f : 0x1p-31f;
      StreamMemory from(DT_LONG, 1, Layout::kPlanar, 39 * 4);
      StreamMemory to(datatype, 1, Layout::kPlanar, 39 * 8);
      for (uint64_t i = 0; i < 39; ++i) reference::Store(from.At(0, i), kValues[i % 6] * scale);
      const auto source = from.Describe();
      const auto destination = to.Describe();
      {
        RoundingMode mode(row.mode);
        orvane_stream_convert(&source, &destination, 0, 0, 39, 0);
      }
      for (uint64_t i = 0; i < 39; ++i) {
        const int got = datatype == DT_INT16 ? reference::Load<int16_t>(to.At(0, i))
                                             : reference::Load<int32_t>(to.At(0, i));
        EXPECT_EQ(got, wanted[i % 6])
            << "mode " << row.mode << ", datatype " << datatype << ", frame " << i;
      }
    }
  }
}

TEST(ConvertValues, RandomFloatsGoByTheRoundingModeInForce) {
  Random random(11);
  for (int mode : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
    for (int32_t datatype : {DT_INT16, DT_INT32, DT_INT32_IN_64}) {
      StreamMemory from(DT_LONG, 1, Layout::kPlanar, 1000 * 4);
      StreamMemory to(datatype, 1, Layout::kPlanar, 1000 * 8);
      FillStream(from, 1000, random, [&] { return random.Mixed(); });
      StreamMemory wanted = to;
      {
        RoundingMode in_force(mode);
        const auto source = from.Describe();
        const auto destination = to.Describe();
        orvane_stream_convert(&source, &destination, 0, 0, 1000, 0);
        reference::Convert(source, wanted.Describe(), 0, 0, 1000);
      }
      EXPECT_TRUE(SameBytes(to, wanted)) << "mode " << mode << ", datatype " << datatype;
    }
  }
}

}  // namespace
}  // namespace testing_support
