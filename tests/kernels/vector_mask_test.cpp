// Masks whose result lies over an input.
#include <gtest/gtest.h>

#include <cstdlib>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/vector_reference.h"

namespace testing_support {
namespace {

using reference::Mask;
using MaskKernel = float *(*)(float *, const float *, const float *, uint32_t);

struct MaskForms {
  const char *name;
  Mask mask;
  MaskKernel flex;
  MaskKernel strict;
};

constexpr MaskForms kMasks[] = {
    {"vec_LmaskLSU", Mask::kForwards, mvk_vec_LmaskLSU_flex, MVK_vec_LmaskLSU_strict},
    {"vec_Lmask_rev_coefLSU", Mask::kBackwards, mvk_vec_Lmask_rev_coefLSU_flex,
     MVK_vec_Lmask_rev_coefLSU_strict},
};

// Floats in which the inputs and the result lie, far enough inside of it.
constexpr size_t kArena = 192;
constexpr ptrdiff_t kResult = 64;

// Four lanes of the one and of the other share memory.
bool IsWithinSixteenBytes(ptrdiff_t distance) { return std::abs(distance) < 4; }

// The result begins `from_x` floats behind x and `from_m` behind m.
void ExpectOverlap(const MaskForms &row, MaskKernel kernel, const char *form, ptrdiff_t from_x,
                   ptrdiff_t from_m, uint32_t n) {
  Random random(static_cast<uint64_t>(n) + 1);
  GuardedFloats arena(Samples(kUniform, random, kArena), 0);
  std::vector<float> want = arena.given();
  float *const y = want.data() + kResult;
  const bool near = IsWithinSixteenBytes(from_x) || IsWithinSixteenBytes(from_m);
  (near ? reference::MaskOneByOne : reference::MaskInFours)(row.mask, y, y - from_x, y - from_m, n);
  float *const result = arena.data() + kResult;
  const KernelCall call = {.kernel = row.name,
                           .form = form,
                           .count = n,
                           .offsets = {static_cast<int>(from_x), static_cast<int>(from_m)},
                           .material = "behind x and m"};
  ASSERT_EQ(kernel(result, result - from_x, result - from_m, n), result) << call;
  ASSERT_TRUE(SameSamples(arena.values(), want, call));
  ASSERT_TRUE(arena.GuardsStand(call));
}

void ExpectOverlapsAtEveryDistance(const MaskForms &row, uint32_t n) {
  for (ptrdiff_t from_x = -20; from_x <= 20; ++from_x) {
    for (ptrdiff_t from_m = -20; from_m <= 20; ++from_m) {
      ASSERT_NO_FATAL_FAILURE(ExpectOverlap(row, row.flex, "flex", from_x, from_m, n));
      if (from_x % 8 == 0 && from_m % 8 == 0 && n % 4 == 0) {
        ASSERT_NO_FATAL_FAILURE(ExpectOverlap(row, row.strict, "strict", from_x, from_m, n));
      }
    }
  }
}

constexpr uint32_t kCounts[] = {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 16, 18, 23, 24, 31, 32, 45};

TEST(VectorMask, ForwardsOverAnInputAtEveryDistance) {
  for (uint32_t n : kCounts) ExpectOverlapsAtEveryDistance(kMasks[0], n);
}

TEST(VectorMask, BackwardsOverAnInputAtEveryDistance) {
  for (uint32_t n : kCounts) ExpectOverlapsAtEveryDistance(kMasks[1], n);
}

// Further away the distance is judged by where the buffers begin, not by whether they
// share memory.
TEST(VectorMask, OverAnInputFarAhead) {
  for (const MaskForms &row : kMasks) {
    for (ptrdiff_t distance = 21; distance <= 60; ++distance) {
      for (ptrdiff_t other : {-60, 0, 60}) {
        ExpectOverlap(row, row.flex, "flex", distance, other, 64);
        ExpectOverlap(row, row.flex, "flex", other, distance, 64);
        ExpectOverlap(row, row.flex, "flex", -distance, other, 64);
        ExpectOverlap(row, row.flex, "flex", other, -distance, 64);
      }
    }
  }
}

// One by one, the last elements see what the first have become; it is worked out by hand.
TEST(VectorMask, BackwardsOverTheMaskSeesItsOwnResults) {
  GuardedFloats x({2, 3, 5, 7}, 0), m({11, 13, 17, 19}, 0);
  mvk_vec_Lmask_rev_coefLSU_flex(m.data(), x.data(), m.data(), 4);
  const std::vector<float> want = {2 * 19, 3 * 17, 5 * (3 * 17), 7 * (2 * 19)};
  EXPECT_TRUE(SameSamples(m.values(), want, {"vec_Lmask_rev_coefLSU", "flex", 4}));
}

TEST(VectorMask, BackwardsTakesTheMaskFromItsEnd) {
  for (MaskKernel kernel : {mvk_vec_Lmask_rev_coefLSU_flex, MVK_vec_Lmask_rev_coefLSU_strict}) {
    GuardedFloats x({2, 3, 5, 7}, 0), m({11, 13, 17, 19}, 0), y(4, 0);
    kernel(y.data(), x.data(), m.data(), 4);
    EXPECT_TRUE(SameSamples(y.values(), std::vector<float>{2 * 19, 3 * 17, 5 * 13, 7 * 11},
                            {"vec_Lmask_rev_coefLSU", "", 4}));
  }
}

TEST(VectorMask, BackwardsTakesTheMaskFromItsEndAtOddCounts) {
  GuardedFloats x({2, 3, 5, 7, 11}, 0), m({13, 17, 19, 23, 29}, 0), y(5, 0);
  mvk_vec_Lmask_rev_coefLSU_flex(y.data(), x.data(), m.data(), 1);
  EXPECT_EQ(y.data()[0], 2 * 13);
  mvk_vec_Lmask_rev_coefLSU_flex(y.data(), x.data(), m.data(), 5);
  const std::vector<float> want = {2 * 29, 3 * 23, 5 * 19, 7 * 17, 11 * 13};
  EXPECT_TRUE(SameSamples(y.values(), want, {"vec_Lmask_rev_coefLSU", "flex", 5}));
}

}  // namespace
}  // namespace testing_support
