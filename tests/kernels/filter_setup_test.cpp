// What stands around the filters of blocks: setups, coefficient companions and the state's layout.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

static_assert(offsetof(mvk_blk_iir1x_state, s0) == 0);
static_assert(offsetof(mvk_blk_iir1x_state, w) == 8);
static_assert(sizeof(mvk_blk_iir1x_state) == 16);

struct SetupRow {
  const char *name;
  void (*setup)(float *s);
  size_t numbers;  // of the state
};

constexpr SetupRow kSetups[] = {
    {"Lfir2L", MVK_blk_Lfir2L_setup, 1},     {"Lfir3L", MVK_blk_Lfir3L_setup, 2},
    {"Liir1L", MVK_blk_Liir1L_setup, 2},     {"Liir2df1L", MVK_blk_Liir2df1L_setup, 4},
    {"Liir2ssL", MVK_blk_Liir2ssL_setup, 2}, {"Liir2ssefL", MVK_blk_Liir2ssefL_setup, 2},
};

TEST(FilterSetup, ClearsTheStateAndNothingElse) {
  for (const SetupRow &row : kSetups) {
    for (int offset = 0; offset < 8; ++offset) {
      const KernelCall call{row.name, "setup", row.numbers, {offset}};
      GuardedFloats s(row.numbers, offset);
      row.setup(s.data());
      EXPECT_TRUE(SameBits(s.values(), std::vector<float>(row.numbers, 0.0f), call));
      EXPECT_TRUE(s.GuardsStand(call));
    }
  }
}

TEST(FilterSetup, ClearsBothPartsOfTheWideState) {
  mvk_blk_iir1x_state states[3];
  for (auto &state : states) state = {kNaN, -1.25};
  MVK_blk_Liir1xL_setup(&states[1]);
  EXPECT_EQ(BitsOf(states[1].s0), 0u);
  EXPECT_EQ(BitsOf(states[1].w), 0u);
  for (int i : {0, 2}) {
    EXPECT_TRUE(std::isnan(states[i].s0));
    EXPECT_EQ(states[i].w, -1.25);
  }
}

TEST(FilterSetup, ClearsOneLessThanTheTaps) {
  for (uint32_t taps = 1; taps <= 70; ++taps) {
    const KernelCall call{"LfirUL", "setup", taps};
    GuardedFloats s(taps - 1, static_cast<int>(taps % 8));
    MVK_blk_LfirUL_setup(s.data(), taps);
    EXPECT_TRUE(SameBits(s.values(), std::vector<float>(taps - 1, 0.0f), call));
    EXPECT_TRUE(s.GuardsStand(call));
  }
}

TEST(FilterSetup, OfOneTapReadsNoState) { MVK_blk_LfirUL_setup(nullptr, 1); }

struct Companion {
  const char *name;
  void *(*set_coef)(void *);
};

constexpr Companion kCompanions[] = {
    {"Lfir2L", MVK_blk_Lfir2L_set_coef},     {"Lfir3L", MVK_blk_Lfir3L_set_coef},
    {"LfirUL", MVK_blk_LfirUL_set_coef},     {"Liir1L", MVK_blk_Liir1L_set_coef},
    {"Liir1xL", MVK_blk_Liir1xL_set_coef},   {"Liir2df1L", MVK_blk_Liir2df1L_set_coef},
    {"Liir2ssL", MVK_blk_Liir2ssL_set_coef}, {"Liir2ssefL", MVK_blk_Liir2ssefL_set_coef},
};

TEST(FilterSetup, CoefficientCompanionsReturnTheRecordAsItIs) {
  Random random(1);
  for (const Companion &row : kCompanions) {
    const KernelCall call{row.name, "set_coef", 5};
    GuardedFloats c(Samples(kMixed, random, 5), 0);
    EXPECT_EQ(row.set_coef(c.data()), c.data()) << row.name;
    EXPECT_TRUE(c.Untouched(call));
    EXPECT_EQ(row.set_coef(nullptr), nullptr) << row.name;
  }
}

}  // namespace
}  // namespace testing_support
