// The sums of the hybrid synthesis, to the bit.
#include <gtest/gtest.h>

#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/hybrid_banks.h"
#include "mvk_hybrid.h"

namespace testing_support {
namespace {

class HybridSums : public testing::TestWithParam<HybridMode> {};

INSTANTIATE_TEST_SUITE_P(All, HybridSums, testing::ValuesIn(reference::HybridModes()), kByName);

TEST_P(HybridSums, AddTheSubBandsInTheirOrder) {
  const HybridMode &mode = GetParam();
  for (const Material &material : kMaterials) {
    Random random(1);
    HybridSynthesis bank(mode.flags);
    for (int call = 0; call < 200; ++call) {
      const std::vector<float> in = Samples(material, random, 2 * mode.sub_bands.size());
      std::vector<float> want(6, 0.0f);
      for (size_t i = 0; i < mode.sub_bands.size(); ++i) {
        float *const sum = &want[2 * mode.sub_bands[i].band];
        sum[0] += in[2 * i];
        sum[1] += mode.sub_bands[i].is_conjugate ? -in[2 * i + 1] : in[2 * i + 1];
      }
      ASSERT_TRUE(SameSamples(bank.Run(in), want, {mode.name, "", 3, {}, material.name}));
    }
  }
}

// Of nothing but negative zeros as well.
TEST_P(HybridSums, BeginWithZero) {
  HybridSynthesis bank(GetParam().flags);
  for (const float x : bank.Run(std::vector<float>(2 * GetParam().sub_bands.size(), -0.0f))) {
    EXPECT_EQ(BitsOf(x), 0u);
  }
}

TEST_P(HybridSums, KeepNothing) {
  HybridSynthesis bank(GetParam().flags);
  const std::vector<uint8_t> before = bank.record_memory().Copy();
  const std::vector<float> in = HybridNoise(1, 80, kUniform);
  const std::vector<float> first = bank.Run(in);
  MVK_hybrid_synthesisCL_init(bank.record());
  EXPECT_TRUE(SameBits(bank.Run(in), first, {"synthesis", "again"}));
  MVK_hybrid_synthesisCL_close(bank.record());
  EXPECT_EQ(bank.record_memory().Copy(), before);
}

}  // namespace
}  // namespace testing_support
