// Mid and side, and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/mix_reference.h"

namespace testing_support {
namespace {

struct Shuffle {
  const char *name;
  const char *form;
  float *(*kernel)(float *p, float *q);
  float (*p)(float p, float q);
  float (*q)(float p, float q);
  int offsets;  // of each buffer, from 0
};

float Sum(float p, float q) { return p + q; }
float Difference(float p, float q) { return p - q; }

constexpr Shuffle kShuffles[] = {
    {"LLshuffleLL_inplace", "flex", mvk_blk_LLshuffleLL_inplace_flex, reference::MidOf,
     reference::SideOf, 8},
    {"LLshuffleLL_inplace", "strict", MVK_blk_LLshuffleLL_inplace_strict, reference::MidOf,
     reference::SideOf, 1},
    {"LLdeshuffleLL_inplace", "flex", mvk_blk_LLdeshuffleLL_inplace_flex, Sum, Difference, 8},
    {"LLdeshuffleLL_inplace", "strict", MVK_blk_LLdeshuffleLL_inplace_strict, Sum, Difference, 1},
};

void ExpectDefinition(const Shuffle &row, const std::vector<float> &p, const std::vector<float> &q,
                      int p_offset, int q_offset, const char *material) {
  const KernelCall call{row.name, row.form, kBlockSize, {p_offset, q_offset}, material};
  GuardedFloats first(p, p_offset), second(q, q_offset);
  EXPECT_EQ(row.kernel(first.data(), second.data()), first.data()) << call;
  std::vector<float> wanted_p, wanted_q;
  for (size_t i = 0; i < kBlockSize; ++i) {
    wanted_p.push_back(row.p(p[i], q[i]));
    wanted_q.push_back(row.q(p[i], q[i]));
  }
  EXPECT_TRUE(SameSamples(first.values(), wanted_p, call)) << "first result";
  EXPECT_TRUE(SameSamples(second.values(), wanted_q, call)) << "second result";
  EXPECT_TRUE(first.GuardsStand(call));
  EXPECT_TRUE(second.GuardsStand(call));
}

TEST(BlockShuffle, IsItsDefinitionAtAnyAlignment) {
  for (const Shuffle &row : kShuffles) {
    Random random(1);
    for (const Material &material : kMaterials) {
      for (int p_offset = 0; p_offset < row.offsets; ++p_offset) {
        for (int q_offset = 0; q_offset < row.offsets; ++q_offset) {
          const std::vector<float> p = Samples(material, random, kBlockSize);
          const std::vector<float> q = Samples(material, random, kBlockSize);
          ExpectDefinition(row, p, q, p_offset, q_offset, material.name);
        }
      }
    }
  }
}

TEST(BlockShuffle, TakesSpecialValuesInAnyPlace) {
  Random random(2);
  const std::vector<float> p = Samples(kUniform, random, kBlockSize);
  const std::vector<float> q = Samples(kUniform, random, kBlockSize);
  for (const Shuffle &row : kShuffles) {
    for (float special : kKernelSpecials) {
      for (size_t i = 0; i < kBlockSize; ++i) {
        std::vector<float> changed = p;
        changed[i] = special;
        ExpectDefinition(row, changed, q, 0, 0, "special");
        ExpectDefinition(row, q, changed, 0, 0, "special");
      }
    }
  }
}

TEST(BlockShuffle, HalvesWithoutLosingTheSmallestFloat) {
  // p is fused over half of q, so only q's half is rounded: 2^-149 / 2 goes to 0, three of them
  // to 2^-148.
  alignas(32) float p[kBlockSize], q[kBlockSize];
  std::fill_n(p, kBlockSize, 0x1p-149f);
  std::fill_n(q, kBlockSize, 0x3p-149f);
  mvk_blk_LLshuffleLL_inplace_flex(p, q);
  EXPECT_EQ(p[0], 0x2p-149f);   // 0.5 + 2, to even
  EXPECT_EQ(q[0], -0x2p-149f);  // 0.5 - 2, to even
}

TEST(BlockShuffle, IsUndoneByItsInverse) {
  Random random(3);
  alignas(32) float p[kBlockSize], q[kBlockSize];
  std::vector<float> left, right;
  for (size_t i = 0; i < kBlockSize; ++i) {
    // Of few enough digits that no step rounds.
    left.push_back(std::ldexp(static_cast<float>(random.Below(1u << 20)), -20));
    right.push_back(-std::ldexp(static_cast<float>(random.Below(1u << 20)), -20));
    p[i] = left[i];
    q[i] = right[i];
  }
  MVK_blk_LLshuffleLL_inplace_strict(p, q);
  for (size_t i = 0; i < kBlockSize; ++i) {
    EXPECT_EQ(p[i], (left[i] + right[i]) / 2);
    EXPECT_EQ(q[i], (left[i] - right[i]) / 2);
  }
  MVK_blk_LLdeshuffleLL_inplace_strict(p, q);
  EXPECT_TRUE(SameBits(p, left, {"LLdeshuffleLL_inplace", "strict"}));
  EXPECT_TRUE(SameBits(q, right, {"LLdeshuffleLL_inplace", "strict"}));
}

}  // namespace
}  // namespace testing_support
