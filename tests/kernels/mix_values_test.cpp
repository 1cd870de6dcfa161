// Where the mixes and the arithmetic of blocks part ways: values worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <initializer_list>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

struct alignas(32) Block {
  explicit Block(float value = kNaN) { samples.fill(value); }
  const float *data() const { return samples.data(); }
  float *data() { return samples.data(); }
  std::array<float, kBlockSize> samples;
};

testing::AssertionResult Same(const Block &got, const Block &wanted) {
  return SameSamples(got.samples, wanted.samples, {"result", "of either form"});
}

// Every sample of the result has the bits of `value`.
testing::AssertionResult IsAll(const Block &got, float value) {
  return SameBits(got.samples, Block(value).samples, {"result", "of either form"});
}

Block Noise(uint64_t seed) {
  Random random(seed);
  Block noise;
  for (float &sample : noise.samples) sample = random.Unit();
  return noise;
}

// Runs both forms of a kernel of blocks on the same arguments.
#define EXPECT_ALL(value, kernel, ...)                 \
  do {                                                 \
    Block y;                                           \
    mvk_blk_##kernel##_flex(y.data(), __VA_ARGS__);    \
    EXPECT_TRUE(IsAll(y, value)) << #kernel " flex";   \
    y = Block();                                       \
    MVK_blk_##kernel##_strict(y.data(), __VA_ARGS__);  \
    EXPECT_TRUE(IsAll(y, value)) << #kernel " strict"; \
  } while (false)

const float *In(const Block &block) { return block.data(); }

TEST(MixValues, SmallWholeNumbersAddUp) {
  const Block a(2), b(3), c(5), d(7);
  alignas(32) const float g[] = {1, 10, 100, 1000};
  EXPECT_ALL(2, LmixL, g, In(a));
  EXPECT_ALL(32, LmixLL, g, In(a), In(b));
  EXPECT_ALL(532, LmixLLL, g, In(a), In(b), In(c));
  EXPECT_ALL(7532, LmixLLLL, g, In(a), In(b), In(c), In(d));
  EXPECT_ALL(8, Lmix_shlUL, g, 2, In(a));
  EXPECT_ALL(128, Lmix_shlULL, g, 2, In(a), In(b));
  EXPECT_ALL(2128, Lmix_shlULLL, g, 2, In(a), In(b), In(c));
  EXPECT_ALL(30128, Lmix_shlULLLL, g, 2, In(a), In(b), In(c), In(d));
  EXPECT_ALL(24, Lmpy_shlLLU, In(a), In(b), 2);
  EXPECT_ALL(24, Lmpy_shlLSU, In(a), In(b), 2);
  EXPECT_ALL(5, LsaddLL, In(a), In(b));
  EXPECT_ALL(-1, LsubLL, In(a), In(b));
}

TEST(MixValues, SumBeginsWithTheSecondInput) {
  // 1 is rounded to before the small product arrives, unless that is fused last.
  const Block small(0x1p-30f), one(1), minus_one(-1);
  alignas(32) const float g[] = {1, 1, 1, 1};
  EXPECT_ALL(0, LmixLLL, g, In(small), In(one), In(minus_one));
  EXPECT_ALL(0x1p-30f, LmixLLL, g, In(one), In(minus_one), In(small));
  EXPECT_ALL(0x1p-30f, LmixLLLL, g, In(one), In(minus_one), In(small), In(Block(0)));
  EXPECT_ALL(0, LmixLLLL, g, In(one), In(small), In(minus_one), In(Block(0)));
  // (1 + e)(1 - e) - 1 is -e^2 where the first product is fused, and 0 where it is the rounded one.
  const Block above(1 + 0x1p-20f);
  alignas(32) const float below[] = {1 - 0x1p-20f, -1};
  EXPECT_ALL(-0x1p-40f, LmixLL, below, In(above), In(one));
  alignas(32) const float swapped[] = {-1, 1 - 0x1p-20f};
  EXPECT_ALL(0, LmixLL, swapped, In(one), In(above));
}

TEST(MixValues, SingleGainIsShiftedAndSumsAreShifted) {
  // 2^100 * 2^60 overflows; 2^100 * 2^-80 doesn't, and 2^60 times that doesn't either.
  const Block a(0x1p-80f), zero(0);
  alignas(32) const float g[] = {0x1p+100f, 0, 0, 0};
  EXPECT_ALL(kInfinity, Lmix_shlUL, g, 60, In(a));
  EXPECT_ALL(0x1p+80f, Lmix_shlULL, g, 60, In(a), In(zero));
  EXPECT_ALL(0x1p+80f, Lmix_shlULLL, g, 60, In(a), In(zero), In(zero));
  EXPECT_ALL(0x1p+80f, Lmix_shlULLLL, g, 60, In(a), In(zero), In(zero), In(zero));
}

TEST(MixValues, ShiftByNothingIsThePlainMix) {
  const Block a = Noise(1), b = Noise(2);
  alignas(32) const float g[] = {0.3f, -0.7f};
  Block plain, shifted;
  mvk_blk_LmixL_flex(plain.data(), g, In(a));
  mvk_blk_Lmix_shlUL_flex(shifted.data(), g, 0, In(a));
  EXPECT_TRUE(Same(shifted, plain));
  MVK_blk_LmixLL_strict(plain.data(), g, In(a), In(b));
  MVK_blk_Lmix_shlULL_strict(shifted.data(), g, 0, In(a), In(b));
  EXPECT_TRUE(Same(shifted, plain));
}

TEST(MixValues, ShiftsBeyondTheExponentWrapIntoWrongValues) {
  const Block one(1);
  alignas(32) const float g[] = {1};
  const auto shift = [](int k) { return static_cast<uint32_t>(k); };
  EXPECT_ALL(0, Lmix_shlUL, g, shift(-127), In(one));
  EXPECT_ALL(kInfinity, Lmix_shlUL, g, shift(128), In(one));
  EXPECT_ALL(-0x1p-126f, Lmix_shlUL, g, shift(130), In(one));
  EXPECT_ALL(-0x1p+126f, Lmix_shlUL, g, shift(-130), In(one));
}

TEST(MixValues, WideProductPassesRangesThatTheNarrowOneDoesNot) {
  const Block large(0x1p+100f), small(0x1p-100f);
  const auto down = static_cast<uint32_t>(-100);
  EXPECT_ALL(0x1p+100f, Lmpy_shlLLU, In(large), In(large), down);
  EXPECT_ALL(kInfinity, Lmpy_shlLSU, In(large), In(large), down);
  EXPECT_ALL(0x1p-100f, Lmpy_shlLLU, In(small), In(small), 100);
  EXPECT_ALL(0, Lmpy_shlLSU, In(small), In(small), 100);
}

TEST(MixValues, CountedMixOfFourIsTheFixedOne) {
  const Block a = Noise(1), b = Noise(2), c = Noise(3), d = Noise(4);
  alignas(32) const float g[] = {0.3f, -0.7f, 0.9f, 0.1f};
  Block fixed, counted;
  mvk_blk_LmixLLLL_flex(fixed.data(), g, In(a), In(b), In(c), In(d));
  MVK_blk_LmixnL(counted.data(), g, 4, In(a), In(b), In(c), In(d));
  EXPECT_TRUE(Same(counted, fixed));
  MVK_blk_LmixnL_strict(counted.data(), g, 4, In(a), In(b), In(c), In(d));
  EXPECT_TRUE(Same(counted, fixed));
}

TEST(MixValues, SumJoinsAGroupAfterItsFirstTwoProducts) {
  // 1 + 2^-30 is rounded to 1 before the sum so far, -1, takes it away.
  const Block minus_one(-1), one(1), small(0x1p-30f), zero(0);
  alignas(32) const float g[] = {1, 1, 1, 1, 1};
  Block y;
  MVK_blk_LmixnL(y.data(), g, 5, In(minus_one), In(one), In(small), In(zero), In(zero));
  EXPECT_TRUE(IsAll(y, 0));
  MVK_blk_LmixnL(y.data(), g, 5, In(minus_one), In(one), In(zero), In(small), In(zero));
  EXPECT_TRUE(IsAll(y, 0x1p-30f));
  // Without groups the sum has gone to 0 before the small product arrives.
  MVK_blk_Lmix_shlUnL(y.data(), g, 0, 5, In(minus_one), In(one), In(small), In(zero), In(zero));
  EXPECT_TRUE(IsAll(y, 0x1p-30f));
}

TEST(MixValues, AdjacentBlocksNestFromTheirOwnSecond) {
  alignas(32) std::array<float, 5 * kBlockSize> blocks{};
  const auto fill = [&](std::initializer_list<float> values) {
    size_t i = 0;
    for (float value : values) {
      std::fill_n(blocks.begin() + static_cast<ptrdiff_t>(i), kBlockSize, value);
      i += kBlockSize;
    }
  };
  alignas(32) const float g[] = {1, 1, 1, 1, 1};
  Block y;
  const auto both_are = [&](uint32_t n, float value) {
    MVK_blk_Lmix_shlaL(y.data(), g, n, blocks.data(), 0);
    EXPECT_TRUE(IsAll(y, value)) << n;
    MVK_blk_Lmix_shlaL_strict(y.data(), g, n, blocks.data(), 0);
    EXPECT_TRUE(IsAll(y, value)) << n;
  };
  // The first of three comes last, where the plain mix begins with it.
  fill({0x1p-30f, 1, -1});
  both_are(3, 0x1p-30f);
  Block plain;
  mvk_blk_LmixLLL_flex(plain.data(), g, blocks.data(), blocks.data() + 32, blocks.data() + 64);
  EXPECT_TRUE(IsAll(plain, 0));
  fill({1, 0x1p-30f, 0, -1});
  both_are(4, 0);
  fill({0, 1, -1, 0x1p-30f});
  both_are(4, 0x1p-30f);
  // Five are one block and a group, which is summed up before it joins.
  fill({-1, 1, 0x1p-30f, 0, 0});
  both_are(5, 0);
  fill({0x1p-30f, 1, 0, -1, 0});
  both_are(5, 0x1p-30f);
  fill({1, 0x1p-30f, 0, 0, -1});
  both_are(5, 0);
}

TEST(MixValues, ClipTakesTheLowerLimitFirst) {
  alignas(32) const float limits[] = {-0.5f, 0.25f};
  EXPECT_ALL(-0.5f, LclipL, limits, In(Block(-0.75f)));
  EXPECT_ALL(0.25f, LclipL, limits, In(Block(kInfinity)));
  EXPECT_ALL(-0.0f, LclipL, limits, In(Block(-0.0f)));
  EXPECT_ALL(-0.5f, LclipL, limits, In(Block(kNaN)));
  alignas(32) const float crossed[] = {1, -1};
  EXPECT_ALL(-1, LclipL, crossed, In(Block(0)));
  alignas(32) const float zeros[] = {0.0f, -0.0f};
  EXPECT_ALL(-0.0f, LclipL, zeros, In(Block(0.0f)));
}

TEST(MixValues, ComparisonChoosesTheSecondUnlessGreater) {
  alignas(32) const float choice[] = {7, 9};
  EXPECT_ALL(7, LcmpLL, choice, In(Block(2)), In(Block(1)));
  EXPECT_ALL(9, LcmpLL, choice, In(Block(1)), In(Block(2)));
  EXPECT_ALL(9, LcmpLL, choice, In(Block(1)), In(Block(1)));
  EXPECT_ALL(9, LcmpLL, choice, In(Block(0.0f)), In(Block(-0.0f)));
  EXPECT_ALL(9, LcmpLL, choice, In(Block(kNaN)), In(Block(1)));
  EXPECT_ALL(9, LcmpLL, choice, In(Block(1)), In(Block(kNaN)));
}

TEST(MixValues, AbsoluteValueClearsTheSignOfANanToo) {
  EXPECT_ALL(std::bit_cast<float>(0x7fc12345u), LabsL,
             In(Block(std::bit_cast<float>(0xffc12345u))));
  EXPECT_ALL(0.0f, LabsL, In(Block(-0.0f)));
  EXPECT_ALL(0x1p-149f, LabsL, In(Block(-0x1p-149f)));
}

TEST(MixValues, ConstantKeepsTheBitsOfANan) {
  EXPECT_ALL(std::bit_cast<float>(0xffc12345u), Lconst, std::bit_cast<float>(0xffc12345u));
}

TEST(MixValues, ExtremesPreferNumbersAndOrderZeros) {
  const Block one(1), nan(kNaN), plus(0.0f), minus(-0.0f);
  EXPECT_ALL(1, LmaxLL, In(one), In(nan));
  EXPECT_ALL(1, LmaxLL, In(nan), In(one));
  EXPECT_ALL(1, LminLL, In(one), In(nan));
  EXPECT_ALL(1, LminLL, In(nan), In(one));
  EXPECT_ALL(0.0f, LmaxLL, In(minus), In(plus));
  EXPECT_ALL(0.0f, LmaxLL, In(plus), In(minus));
  EXPECT_ALL(-0.0f, LminLL, In(minus), In(plus));
  EXPECT_ALL(-0.0f, LminLL, In(plus), In(minus));
  EXPECT_ALL(1, LmaxLLL, In(nan), In(nan), In(one));
  EXPECT_ALL(1, LmaxLLL, In(one), In(nan), In(nan));
  EXPECT_ALL(1, LminLLL, In(nan), In(one), In(nan));
  EXPECT_ALL(0.0f, LmaxLLL, In(minus), In(plus), In(minus));
  EXPECT_ALL(-0.0f, LminLLL, In(plus), In(plus), In(minus));
}

}  // namespace
}  // namespace testing_support
