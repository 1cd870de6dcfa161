// Kernels of counted real vectors.
#include <gtest/gtest.h>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"
#include "kernels/vector_rows.h"
#include "mvk_kernels.h"
#include "reference/vector_reference.h"

namespace testing_support {
namespace {

using Call = const VectorCall &;
using reference::ClampedPowerOfTwo;
using reference::Mask;

template <typename PerElement>
void Each(Call c, const float *x, PerElement per_element) {
  for (uint32_t i = 0; i < c.n; ++i) c.y[i] = per_element(x[i]);
}

const VectorKernel kVectorKernels[] = {
    {
        .name = "vec_LshlLIU",
        .flex = [](Call c) { return mvk_vec_LshlLIU_flex(c.y, c.a, c.k, c.n); },
        .strict = [](Call c) { return MVK_vec_LshlLIU_strict(c.y, c.a, c.k, c.n); },
        .oracle = [](Call c) { Each(c, c.a, [&](float x) { return x * ClampedPowerOfTwo(c.k); }); },
        .a = Reals,
        .over_a = true,
    },
    {
        .name = "vec_LshlLIU_inplace",
        .flex = [](Call c) { return mvk_vec_LshlLIU_inplace_flex(c.y, c.k, c.n); },
        .strict = [](Call c) { return MVK_vec_LshlLIU_inplace_strict(c.y, c.k, c.n); },
        .oracle = [](Call c) { Each(c, c.y, [&](float x) { return x * ClampedPowerOfTwo(c.k); }); },
    },
    {
        .name = "vec_SshlSIU_inplace",
        .flex = [](Call c) { return mvk_vec_SshlSIU_inplace_flex(c.y, c.k, c.n); },
        .strict = [](Call c) { return MVK_vec_SshlSIU_inplace_strict(c.y, c.k, c.n); },
        .oracle = [](Call c) { Each(c, c.y, [&](float x) { return x * ClampedPowerOfTwo(c.k); }); },
    },
    {
        .name = "vec_LmpyLSU",
        .flex = [](Call c) { return mvk_vec_LmpyLSU_flex(c.y, c.a, c.s, c.n); },
        .strict = [](Call c) { return MVK_vec_LmpyLSU_strict(c.y, c.a, c.s, c.n); },
        .oracle = [](Call c) { Each(c, c.a, [&](float x) { return x * c.s; }); },
        .a = Reals,
        .over_a = true,
    },
    {
        .name = "vec_LmpyLSU_inplace",
        .flex = [](Call c) { return mvk_vec_LmpyLSU_inplace_flex(c.y, c.s, c.n); },
        .strict = [](Call c) { return MVK_vec_LmpyLSU_inplace_strict(c.y, c.s, c.n); },
        .oracle = [](Call c) { Each(c, c.y, [&](float x) { return x * c.s; }); },
    },
    {
        .name = "vec_LmaskLSU",
        .flex = [](Call c) { return mvk_vec_LmaskLSU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_vec_LmaskLSU_strict(c.y, c.a, c.b, c.n); },
        .oracle = [](Call c) { reference::MaskOneByOne(Mask::kForwards, c.y, c.a, c.b, c.n); },
        .a = Reals,
        .b = Reals,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "vec_Lmask_rev_coefLSU",
        .flex = [](Call c) { return mvk_vec_Lmask_rev_coefLSU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_vec_Lmask_rev_coefLSU_strict(c.y, c.a, c.b, c.n); },
        .oracle = [](Call c) { reference::MaskOneByOne(Mask::kBackwards, c.y, c.a, c.b, c.n); },
        .a = Reals,
        .b = Reals,
        .over_a = true,
    },
    {
        .name = "vec_LsetLU",
        .flex = [](Call c) { return mvk_vec_LsetLU_flex(c.y, c.s, c.n); },
        .strict = [](Call c) { return MVK_vec_LsetLU_strict(c.y, c.s, c.n); },
        .oracle = [](Call c) { Each(c, c.y, [&](float) { return c.s; }); },
        .copies = true,
    },
};

TEST(VectorKernels, TakeAnyCountAtAnyAlignment) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectAnyCountAtAnyAlignment(kernel);
}

TEST(VectorKernels, RoundAsDefinedInBothForms) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectAnySamples(kernel);
}

TEST(VectorKernels, MayBeWrittenOverTheirInputs) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectResultsOverInputs(kernel);
}

TEST(VectorKernels, KeepSpecialValuesToTheirPlace) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectSpecialValuesAtEachPlace(kernel);
}

TEST(VectorKernels, TakeSpecialScalars) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectSpecialScalars(kernel);
}

TEST(VectorKernels, ClampShifts) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectAnyShift(kernel);
}

TEST(VectorKernels, TouchNothingOutside) {
  for (const VectorKernel &kernel : kVectorKernels) ExpectNothingTouchedOutside(kernel);
}

using Shift = float *(*)(float *, const float *, int32_t, uint32_t);
using ShiftInPlace = float *(*)(float *, int32_t, uint32_t);

constexpr Shift kShifts[] = {mvk_vec_LshlLIU_flex, MVK_vec_LshlLIU_strict};
constexpr ShiftInPlace kShiftsInPlace[] = {
    mvk_vec_LshlLIU_inplace_flex, MVK_vec_LshlLIU_inplace_strict, mvk_vec_SshlSIU_inplace_flex,
    MVK_vec_SshlSIU_inplace_strict};

struct ShiftOfOne {
  int32_t k;
  float expected;
};

constexpr ShiftOfOne kShiftsOfOne[] = {
    {0, 1.0f},
    {1, 2.0f},
    {-1, 0.5f},
    {59, 0x1p+59f},
    {60, 0x1p+60f},
    {61, 0x1p+60f},
    {200, 0x1p+60f},
    {-59, 0x1p-59f},
    {-60, 0x1p-60f},
    {-61, 0x1p-60f},
    {-200, 0x1p-60f},
    {60, 1152921504606846976.0f},
    {std::numeric_limits<int32_t>::max(), 0x1p+60f},
    {std::numeric_limits<int32_t>::min(), 0x1p-60f},
};

TEST(VectorShift, StopsAtSixtyEitherWay) {
  for (const ShiftOfOne &row : kShiftsOfOne) {
    SCOPED_TRACE(row.k);
    const KernelCall call = {.kernel = "a shift", .form = "", .count = 4};
    const std::vector<float> expected(4, row.expected);
    for (Shift shift : kShifts) {
      GuardedFloats x(std::vector<float>(4, 1.0f), 0), y(4, 0);
      shift(y.data(), x.data(), row.k, 4);
      EXPECT_TRUE(SameBits(y.values(), expected, call));
    }
    for (ShiftInPlace shift : kShiftsInPlace) {
      GuardedFloats y(std::vector<float>(4, 1.0f), 0);
      shift(y.data(), row.k, 4);
      EXPECT_TRUE(SameBits(y.values(), expected, call));
    }
  }
}

TEST(VectorShift, ByNothingInPlaceStoresNothing) {
  Random random(1);
  const std::vector<float> samples = Samples(kMixed, random, 64);
  EdgePages pages(samples.size());
  float *y = pages.Place(samples, Edge::kBefore);
  pages.ForbidStores();
  for (ShiftInPlace shift : kShiftsInPlace) EXPECT_EQ(shift(y, 0, 64), y);
}

TEST(VectorShift, OfNothingStoresNothing) {
  EdgePages pages(1);
  float *y = pages.Place({}, Edge::kBehind);
  for (ShiftInPlace shift : kShiftsInPlace) EXPECT_EQ(shift(y, 5, 0), y);
}

TEST(VectorSet, WritesEveryBitOfANan) {
  const float v = std::bit_cast<float>(0xffc54321u);
  for (auto set : {mvk_vec_LsetLU_flex, MVK_vec_LsetLU_strict}) {
    GuardedFloats y(12, 0);
    set(y.data(), v, 12);
    EXPECT_TRUE(SameBits(y.values(), std::vector<float>(12, v), {"vec_LsetLU", "", 12}));
  }
}

}  // namespace
}  // namespace testing_support
