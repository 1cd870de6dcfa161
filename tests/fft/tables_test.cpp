// The exported tables, each entry against its rule in wide arithmetic.
#include <gtest/gtest.h>

#include "fft/fft_kernels.h"
#include "mvk_fft.h"
#include "reference/fft_roots.h"

namespace testing_support {
namespace {

using reference::BlockRoot;
using reference::SineOfTurn;

testing::AssertionResult IsNearest(float got, long double value) {
  const auto want = static_cast<float>(value);
  if (BitsOf(got) == BitsOf(want)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << got << " for " << want;
}

TEST(FftTables, TwiddlesAreInBitReversedOrder) {
  static_assert(sizeof mvk_fft_twiddle == 6 * 1024 * sizeof(float));
  for (uint32_t i = 0; i < 1024; ++i) {
    for (uint32_t power = 1; power <= 3; ++power) {
      const auto root = BlockRoot<long double>(i, power);
      EXPECT_TRUE(IsNearest(mvk_fft_twiddle[2 * power - 2][i], root.cosine))
          << "cosine " << power << " at " << i;
      EXPECT_TRUE(IsNearest(mvk_fft_twiddle[2 * power - 1][i], root.sine))
          << "sine " << power << " at " << i;
    }
  }
}

TEST(FftTables, FirstTwiddlesAreThese) {
  constexpr float kFirst[6][3] = {
      {1, 0.70710677f, 0.9238795f},                          // cosines and sines of the first power
      {0, -0.70710677f, -0.38268343f}, {1, 0, 0.70710677f},  // of the second
      {0, -1, -0.70710677f},           {1, -0.70710677f, 0.38268343f},  // of the third
      {0, -0.70710677f, -0.9238795f},
  };
  for (int array = 0; array < 6; ++array) {
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(BitsOf(mvk_fft_twiddle[array][i]), BitsOf(kFirst[array][i])) << array << " " << i;
    }
  }
}

TEST(FftTables, SinesOfTheFrontEndAreRoundedOnce) {
  static_assert(sizeof mvk_fft_real_sine == 6144 * sizeof(float));
  for (uint32_t i = 0; i < 6144; ++i) {
    EXPECT_TRUE(IsNearest(mvk_fft_real_sine[i], SineOfTurn<long double>(i, 8192))) << i;
  }
}

TEST(FftTables, SinesOfNoughtAndOfPiAreZeros) {
  EXPECT_EQ(BitsOf(mvk_fft_real_sine[0]), BitsOf(0.0f));
  EXPECT_EQ(BitsOf(mvk_fft_real_sine[4096]), BitsOf(0.0f));
  EXPECT_EQ(mvk_fft_real_sine[2048], 1);
}

TEST(FftTables, QuarterWavesAreRoundedOnce) {
  const struct {
    uint32_t length;
    const float *sines;
    size_t size;
  } kTables[] = {
#define TABLE(length) {length, mvk_rfft_sine_##length, sizeof mvk_rfft_sine_##length}
      TABLE(8),   TABLE(16),   TABLE(32),   TABLE(64),   TABLE(128),  TABLE(256),
      TABLE(512), TABLE(1024), TABLE(2048), TABLE(4096), TABLE(8192),
#undef TABLE
  };
  for (const auto &[length, sines, size] : kTables) {
    ASSERT_EQ(size, (length / 4 - 1) * sizeof(float)) << length;
    for (uint32_t k = 1; k < length / 4; ++k) {
      EXPECT_TRUE(IsNearest(sines[k - 1], SineOfTurn<long double>(k, length)))
          << length << " at " << k;
    }
  }
  EXPECT_EQ(mvk_rfft_sine_8[0], 0.70710677f);
}

}  // namespace
}  // namespace testing_support
