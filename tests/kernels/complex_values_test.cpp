// What kernels of complex vectors give for numbers that are worked out by hand.
#include <gtest/gtest.h>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

// Four times the same number, aligned.
GuardedFloats Four(float re, float im) { return {{re, im, re, im, re, im, re, im}, 0}; }

struct Pair {
  float re;
  float im;
};

using OfTwo = float *(*)(float *, const float *, const float *, uint32_t);

void ExpectOfTwo(OfTwo kernel, Pair a, Pair b, Pair expected) {
  GuardedFloats as = Four(a.re, a.im), bs = Four(b.re, b.im), y = Four(0, 0);
  kernel(y.data(), as.data(), bs.data(), 4);
  const GuardedFloats want = Four(expected.re, expected.im);
  EXPECT_TRUE(SameSamples(y.values(), want.values(), {"a complex kernel", "", 4}));
}

TEST(ComplexProduct, FormsRoundDifferentPartialProducts) {
  // The square of 1 + 2^-12 is inexact: what is rounded of it remains.
  const Pair x = {1.0f + 0x1p-12f, 1.0f + 0x1p-12f};
  ExpectOfTwo(mvk_CLmpyCLCSU_flex, x, x, {0x1p-24f, 2.0f + 0x1p-10f});
  ExpectOfTwo(MVK_CLmpyCLCSU_strict, x, x, {-0x1p-24f, 2.0f + 0x1p-10f});
}

TEST(ComplexProduct, IsThatOfMathematics) {
  for (OfTwo product : {mvk_CLmpyCLCSU_flex, MVK_CLmpyCLCSU_strict}) {
    ExpectOfTwo(product, {2, 3}, {5, 7}, {-11, 29});
    ExpectOfTwo(product, {0, 1}, {0, 1}, {-1, 0});
  }
}

TEST(ComplexQuotient, IsThatOfMathematics) {
  for (OfTwo quotient : {mvk_CLdivCLCLU_flex, MVK_CLdivCLCLU_strict}) {
    ExpectOfTwo(quotient, {-11, 29}, {5, 7}, {2, 3});
    ExpectOfTwo(quotient, {1, 0}, {0, 2}, {0, -0.5f});
  }
}

TEST(ComplexQuotient, ByZeroIsNotGuarded) {
  for (OfTwo quotient : {mvk_CLdivCLCLU_flex, MVK_CLdivCLCLU_strict}) {
    ExpectOfTwo(quotient, {1, 1}, {0, 0}, {kNaN, kNaN});
    ExpectOfTwo(quotient, {0, 0}, {0, 0}, {kNaN, kNaN});
    // The squares of the divisor underflow, its products with the dividend do not.
    ExpectOfTwo(quotient, {1, 0}, {0x1p-100f, 0}, {kInfinity, kNaN});
  }
}

TEST(ComplexQuotient, ScalesInBinary64) {
  // 1 / 2^-140 leaves binary32, the quotient doesn't.
  for (OfTwo quotient : {mvk_CLdivCLCLU_flex, MVK_CLdivCLCLU_strict}) {
    ExpectOfTwo(quotient, {0x1p-70f, 0}, {0x1p-70f, 0}, {1, 0});
  }
}

TEST(ComplexQuotient, MultipliesByTheInverse) {
  // 147 / 196 is three quarters, a tie between two denormals. 1 / 196 is less than it
  // should be, so that the product with it falls short of the tie.
  for (OfTwo quotient : {mvk_CLdivCLCLU_flex, MVK_CLdivCLCLU_strict}) {
    ExpectOfTwo(quotient, {0x15p-149f, 0}, {14, 0}, {0x1p-149f, 0});
    ExpectOfTwo(quotient, {0, 0x15p-149f}, {14, 0}, {0, 0x1p-149f});
  }
}

TEST(ComplexReciprocal, OfOneHasANegativeZero) {
  for (auto reciprocal : {mvk_CLrecipCLUU_flex, MVK_CLrecipCLUU_strict}) {
    GuardedFloats x = Four(1, 0), y = Four(5, 5);
    reciprocal(y.data(), x.data(), 0, 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(1, -0.0f).values(), {"CLrecipCLUU", "", 4}));
    reciprocal(y.data(), x.data(), 3, 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(0.125f, -0.0f).values(), {"CLrecipCLUU", "", 4}));
  }
  for (auto reciprocal : {mvk_CLmpy_recipCLLIU_flex, MVK_CLmpy_recipCLLIU_strict}) {
    GuardedFloats x = Four(0, 2), y = Four(5, 5);
    reciprocal(y.data(), x.data(), 3.0f, 2, 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(0, -6).values(), {"CLmpy_recipCLLIU", "", 4}));
  }
}

TEST(ComplexAccumulation, ReadsEachElementBeforeItIsWritten) {
  for (OfTwo accumulate : {mvk_CLmacCLCLU_flex, MVK_CLmacCLCLU_strict}) {
    GuardedFloats y = Four(2, 3);
    accumulate(y.data(), y.data(), y.data(), 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(-3, 15).values(), {"CLmacCLCLU", "", 4}));
  }
}

TEST(ComplexAccumulation, CompletesTheImaginaryProductBeforeItIsAdded) {
  // Each of the two products is lost beside 1, but not their sum.
  for (OfTwo accumulate : {mvk_CLmacCLCLU_flex, MVK_CLmacCLCLU_strict}) {
    GuardedFloats y = Four(0, 1), a = Four(0x1p-12f, 0x1p-12f);
    accumulate(y.data(), a.data(), a.data(), 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(0, 1.0f + 0x1p-23f).values(), {"CLmacCLCLU", "", 4}));
  }
}

TEST(ComplexShift, ByNothingCopiesEveryBit) {
  for (auto shift :
       {mvk_CLshlCLUU_flex, MVK_CLshlCLUU_strict, mvk_CLshrCLUU_flex, MVK_CLshrCLUU_strict}) {
    GuardedFloats x = Four(std::bit_cast<float>(0xffd00dadu), -0x1p-149f), y = Four(0, 0);
    shift(y.data(), x.data(), 0, 4);
    EXPECT_TRUE(SameBits(y.values(), x.values(), {"a complex shift", "", 4}));
  }
}

TEST(ComplexShift, GoesEitherWay) {
  GuardedFloats x = Four(3, -5), y = Four(0, 0);
  mvk_CLshlCLUU_flex(y.data(), x.data(), 4, 4);
  EXPECT_TRUE(SameSamples(y.values(), Four(48, -80).values(), {"CLshlCLUU", "flex", 4}));
  mvk_CLshrCLUU_flex(y.data(), x.data(), 2, 4);
  EXPECT_TRUE(SameSamples(y.values(), Four(0.75f, -1.25f).values(), {"CLshrCLUU", "flex", 4}));
}

TEST(ComplexScale, WithoutAShiftIsTheProductWithTheScalar) {
  Random random(1);
  for (int round = 0; round < 100; ++round) {
    GuardedFloats x(Samples(kWide, random, 8), 0), y = Four(0, 0), product = Four(0, 0);
    const float s = AnyBinade(random);
    mvk_CLmpy_shlCLSIU_flex(y.data(), x.data(), s, 0, 4);
    mvk_CLmpyCLSU_flex(product.data(), x.data(), s, 4);
    EXPECT_TRUE(SameSamples(y.values(), product.values(), {"CLmpy_shlCLSIU", "flex", 4}));
  }
}

TEST(ComplexSquaredMagnitude, IsScaledBeforeItIsSquared) {
  for (auto squared : {mvk_VLsquaredmagCLIU_flex, MVK_VLsquaredmagCLIU_strict}) {
    float y[4] = {};
    GuardedFloats x = Four(3, 4), large = Four(0x1p+100f, 0);
    squared(y, x.data(), 0, 4);
    EXPECT_EQ(y[3], 25);
    squared(y, x.data(), -1, 4);
    EXPECT_EQ(y[3], 6.25f);
    squared(y, large.data(), -90, 4);
    EXPECT_EQ(y[3], 0x1p+20f);
  }
}

TEST(ComplexConjugateProduct, OfANumberWithItselfIsReal) {
  for (auto product : {mvk_cvec_Lmpy_conjLLIU_flex, MVK_cvec_Lmpy_conjLLIU_strict}) {
    GuardedFloats a = Four(3, 4), b = Four(5, 7), y = Four(0, 0);
    product(y.data(), a.data(), a.data(), 1, 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(100, 0).values(), {"cvec_Lmpy_conjLLIU", "", 4}));
    product(y.data(), a.data(), b.data(), 0, 4);
    EXPECT_TRUE(SameSamples(y.values(), Four(43, -1).values(), {"cvec_Lmpy_conjLLIU", "", 4}));
  }
}

TEST(ComplexObjects, AreZero) {
  EXPECT_EQ(mvk_clclmix5cl10csu_c, 0u);
  EXPECT_EQ(mvk_clclmix5cl10csu_order_coef_c, 0u);
  EXPECT_EQ(mvk_unused_debug, 0u);
}

}  // namespace
}  // namespace testing_support
