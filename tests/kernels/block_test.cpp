// Kernels of one block and a scalar.
#include <gtest/gtest.h>

#include "kernels/kernel_samples.h"
#include "kernels/vector_rows.h"
#include "mvk_kernels.h"
#include "reference/block_reference.h"

namespace testing_support {
namespace {

using Call = const VectorCall &;

template <typename PerSample>
void Each(Call c, const float *x, PerSample per_sample) {
  for (size_t i = 0; i < kBlockSize; ++i) c.y[i] = per_sample(x[i]);
}

const VectorKernel kBlockKernels[] = {
    {
        .name = "BLmaxBLL",
        .flex = [](Call c) { return mvk_BLmaxBLL_flex(c.y, c.a, c.s); },
        .strict = [](Call c) { return MVK_BLmaxBLL_strict(c.y, c.a, c.s); },
        .oracle = [](Call c) { Each(c, c.a, [&](float x) { return reference::Maxnum(x, c.s); }); },
        .strict_oracle =
            [](Call c) { Each(c, c.a, [&](float x) { return reference::Max(x, c.s); }); },
        .a = Reals,
        .block = true,
        .over_a = true,
    },
    {
        .name = "BLmaxBLL_inplace",
        .flex = [](Call c) { return mvk_BLmaxBLL_inplace_flex(c.y, c.s); },
        .strict = [](Call c) { return MVK_BLmaxBLL_inplace_strict(c.y, c.s); },
        .oracle = [](Call c) { Each(c, c.y, [&](float x) { return reference::Maxnum(x, c.s); }); },
        .strict_oracle =
            [](Call c) { Each(c, c.y, [&](float x) { return reference::Max(x, c.s); }); },
        .block = true,
    },
    {
        .name = "BLmpyBLS_inplace",
        .flex = [](Call c) { return mvk_BLmpyBLS_inplace_flex(c.y, c.s); },
        .strict = [](Call c) { return MVK_BLmpyBLS_inplace_strict(c.y, c.s); },
        .oracle = [](Call c) { Each(c, c.y, [&](float x) { return x * c.s; }); },
        .block = true,
    },
    {
        .name = "BLmpy_scaleBLSU",
        .flex = [](Call c) { return mvk_BLmpy_scaleBLSU_flex(c.y, c.a, c.s, c.unsigned_k()); },
        .strict = [](Call c) { return MVK_BLmpy_scaleBLSU_strict(c.y, c.a, c.s, c.unsigned_k()); },
        .oracle =
            [](Call c) {
              Each(c, c.a, [&](float x) { return reference::Scaled(x, c.s, c.unsigned_k()); });
            },
        .a = Reals,
        .block = true,
        .over_a = true,
    },
    {
        .name = "BLmpy_scaleBLSU_inplace",
        .flex = [](Call c) { return mvk_BLmpy_scaleBLSU_inplace_flex(c.y, c.s, c.unsigned_k()); },
        .strict =
            [](Call c) { return MVK_BLmpy_scaleBLSU_inplace_strict(c.y, c.s, c.unsigned_k()); },
        .oracle =
            [](Call c) {
              Each(c, c.y, [&](float x) { return reference::Scaled(x, c.s, c.unsigned_k()); });
            },
        .block = true,
    },
    {
        .name = "BLmpy_scale_xBLSU",
        .flex = [](Call c) { return mvk_BLmpy_scale_xBLSU_flex(c.y, c.a, c.s, c.unsigned_k()); },
        .strict =
            [](Call c) { return MVK_BLmpy_scale_xBLSU_strict(c.y, c.a, c.s, c.unsigned_k()); },
        .oracle =
            [](Call c) {
              Each(c, c.a, [&](float x) { return reference::ScaledWide(x, c.s, c.unsigned_k()); });
            },
        .a = Reals,
        .block = true,
        .over_a = true,
    },
    {
        .name = "BLsaddBLL",
        .flex = [](Call c) { return mvk_BLsaddBLL_flex(c.y, c.a, c.s); },
        .strict = [](Call c) { return MVK_BLsaddBLL_strict(c.y, c.a, c.s); },
        .oracle = [](Call c) { Each(c, c.a, [&](float x) { return x + c.s; }); },
        .a = Reals,
        .block = true,
        .over_a = true,
    },
};

TEST(BlockKernels, TakeBuffersAtAnyAlignment) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectAnyCountAtAnyAlignment(kernel);
}

TEST(BlockKernels, RoundAsDefinedInBothForms) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectAnySamples(kernel);
}

TEST(BlockKernels, MayBeWrittenOverTheirInput) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectResultsOverInputs(kernel);
}

TEST(BlockKernels, KeepSpecialValuesToTheirPlace) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectSpecialValuesAtEachPlace(kernel);
}

TEST(BlockKernels, TakeSpecialScalars) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectSpecialScalars(kernel);
}

TEST(BlockKernels, BuildShiftsWithoutACheck) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectAnyShift(kernel);
}

TEST(BlockKernels, TouchNothingBesideTheBlock) {
  for (const VectorKernel &kernel : kBlockKernels) ExpectNothingTouchedOutside(kernel);
}

// A block of one value.
GuardedFloats Block(float x) { return {std::vector<float>(kBlockSize, x), 0}; }

void ExpectEverySample(GuardedFloats &block, float expected) {
  const KernelCall call = {.kernel = "expected by hand", .form = ""};
  EXPECT_TRUE(SameSamples(block.values(), std::vector<float>(kBlockSize, expected), call));
}

TEST(BlockMaximum, FormsDifferWhereASampleIsNotANumber) {
  GuardedFloats x = Block(kNaN), y = Block(0);
  mvk_BLmaxBLL_flex(y.data(), x.data(), -2.5f);
  ExpectEverySample(y, -2.5f);
  MVK_BLmaxBLL_strict(y.data(), x.data(), -2.5f);
  ExpectEverySample(y, kNaN);
  GuardedFloats in_place = Block(kNaN);
  MVK_BLmaxBLL_inplace_strict(in_place.data(), -2.5f);
  ExpectEverySample(in_place, kNaN);
  mvk_BLmaxBLL_inplace_flex(in_place.data(), -2.5f);
  ExpectEverySample(in_place, -2.5f);
}

TEST(BlockMaximum, FormsDifferWhereTheScalarIsNotANumber) {
  GuardedFloats x = Block(-3), y = Block(0);
  mvk_BLmaxBLL_flex(y.data(), x.data(), kNaN);
  ExpectEverySample(y, -3);
  MVK_BLmaxBLL_strict(y.data(), x.data(), kNaN);
  ExpectEverySample(y, kNaN);
}

TEST(BlockMaximum, PositiveZeroIsTheGreater) {
  for (auto max : {mvk_BLmaxBLL_flex, MVK_BLmaxBLL_strict}) {
    GuardedFloats plus = Block(0.0f), minus = Block(-0.0f), y = Block(1);
    max(y.data(), plus.data(), -0.0f);
    ExpectEverySample(y, 0.0f);
    max(y.data(), minus.data(), 0.0f);
    ExpectEverySample(y, 0.0f);
    max(y.data(), minus.data(), -0.0f);
    ExpectEverySample(y, -0.0f);
  }
}

TEST(BlockScale, WithoutAShiftIsTheProductWithTheScalar) {
  Random random(1);
  for (int round = 0; round < 100; ++round) {
    const float s = AnyBinade(random);
    GuardedFloats x(Samples(kWide, random, kBlockSize), 0), product(x.given(), 0);
    GuardedFloats y = Block(0), wide = Block(0);
    mvk_BLmpyBLS_inplace_flex(product.data(), s);
    mvk_BLmpy_scaleBLSU_flex(y.data(), x.data(), s, 0);
    mvk_BLmpy_scale_xBLSU_flex(wide.data(), x.data(), s, 0);
    const KernelCall call = {.kernel = "a scale by 2^0", .form = "flex"};
    ASSERT_TRUE(SameSamples(y.values(), product.values(), call));
    ASSERT_TRUE(SameSamples(wide.values(), product.values(), call));
  }
}

TEST(BlockScale, ShiftJoinsTheGainAndNotTheSample) {
  // The gain overflows although the result would not.
  GuardedFloats x = Block(0x1p-100f), y = Block(0);
  mvk_BLmpy_scaleBLSU_flex(y.data(), x.data(), 0x1p+100f, 100);
  ExpectEverySample(y, kInfinity);
  mvk_BLmpy_scale_xBLSU_flex(y.data(), x.data(), 0x1p+100f, 100);
  ExpectEverySample(y, kInfinity);
}

struct WrappedShift {
  int32_t k;
  float factor;
};

// What the pattern turns into at and beyond its ends.
const WrappedShift kWrappedShifts[] = {
    {-126, 0x1p-126f}, {-127, 0.0f},     {-128, -kInfinity}, {-129, -0x1p+127f}, {-130, -0x1p+126f},
    {127, 0x1p+127f},  {128, kInfinity}, {129, -0.0f},       {130, -0x1p-126f},
};

TEST(BlockScale, ShiftsBeyondTheExponentWrap) {
  for (const WrappedShift &shift : kWrappedShifts) {
    SCOPED_TRACE(shift.k);
    for (auto scale : {mvk_BLmpy_scaleBLSU_flex, MVK_BLmpy_scaleBLSU_strict,
                       mvk_BLmpy_scale_xBLSU_flex, MVK_BLmpy_scale_xBLSU_strict}) {
      GuardedFloats x = Block(1), y = Block(0);
      scale(y.data(), x.data(), 1.0f, static_cast<uint32_t>(shift.k));
      ExpectEverySample(y, shift.factor);
    }
  }
}

TEST(BlockAddition, DoesNotSaturate) {
  for (auto add : {mvk_BLsaddBLL_flex, MVK_BLsaddBLL_strict}) {
    GuardedFloats x = Block(1), y = Block(0);
    add(y.data(), x.data(), 2.5f);
    ExpectEverySample(y, 3.5f);
    GuardedFloats largest = Block(kLargest);
    add(y.data(), largest.data(), kLargest);
    ExpectEverySample(y, kInfinity);
  }
}

}  // namespace
}  // namespace testing_support
