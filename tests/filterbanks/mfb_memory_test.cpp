// What multichannel banks ask for, and what they make of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "dct/pair_kinds.h"
#include "filterbanks/mfb_banks.h"

namespace testing_support {
namespace {

template <class Kind>
class MfbMemory : public testing::Test {};
TYPED_TEST_SUITE(MfbMemory, MfbKinds);

TYPED_TEST(MfbMemory, IsCountedByChannelsAndBands) {
  for (const uint32_t channels : {0u, 1u, 2u, 7u, 64u}) {
    for (const uint32_t bands : {0u, 4u, 64u, 128u, 256u}) {
      for (const uint32_t ignored : {0u, 1u, 0xffffffffu}) {
        EXPECT_EQ(TypeParam::kQuery(channels, ignored, bands),
                  (39 + 36 * bands) * channels + TypeParam::kFixedBytes);
        EXPECT_EQ(TypeParam::kScratch(channels, ignored, bands), 16 * bands + 31);
        EXPECT_EQ(TypeParam::kScratch(ignored, channels, bands), 16 * bands + 31);
      }
    }
  }
}

TEST(MfbMemorySizes, AreThese) {
  EXPECT_EQ(MVK_mfb_p10km_analysisL_query_mem(2, 0, 64), 4772u);
  EXPECT_EQ(MVK_mfb_p10km_synthesisCL_query_mem(2, 0, 64), 4764u);
  EXPECT_EQ(MVK_mfb_p10km_analysisL_query_scratch(2, 0, 256), 4127u);
}

uint32_t PositionOf(const mvk_mfb_p10km_analysisL_state &record) { return record.position; }
uint32_t PositionOf(const mvk_mfb_p10km_synthesisCL_state &) { return 0; }

TYPED_TEST(MfbMemory, MayLieAnywhere) {
  for (const uint32_t channels : {0u, 1u, 3u}) {
    for (size_t misalignment = 0; misalignment < 64; ++misalignment) {
      SCOPED_TRACE(testing::Message() << channels << " channels, " << misalignment);
      MfbBank<TypeParam> bank(channels, 64, misalignment);
      const auto *const record = bank.record();
      const auto *const bytes = reinterpret_cast<const uint8_t *>(record);
      EXPECT_EQ(bytes, bank.memory().data() + (64 - misalignment) % 32);
      EXPECT_EQ(record->pair, MVK_r8_cplx_fwd_pair(64));
      EXPECT_EQ(PositionOf(*record), 0u);
      const auto *last_end = reinterpret_cast<const float *>(record + 1);
      for (size_t c = 0; c < channels; ++c) {
        const std::span<float> history = bank.History(c);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(history.data()) % 32, 0u);
        EXPECT_LE(reinterpret_cast<uint8_t *>(history.data() + history.size()),
                  bank.memory().end());
        EXPECT_GE(history.data(), last_end);
        last_end = history.data() + history.size();
        for (const float x : history) ASSERT_EQ(BitsOf(x), 0u);
      }
      EXPECT_TRUE(bank.memory().GuardsStand());
      if (channels == 0) continue;
      // Runs check the guards.
      const MfbChannels in = MfbNoiseChannels(1, channels, 11 * 64 * TypeParam::kInParts);
      const MfbChannels got =
          bank.Run(TypeParam::kProcess, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64O, in);
      MfbBank<TypeParam> other(channels, 64);
      const MfbChannels want =
          other.Run(TypeParam::kProcess, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64O, in);
      for (size_t c = 0; c < channels; ++c) {
        EXPECT_TRUE(SameBits(got[c], want[c], {"bank", "", 64}));
      }
    }
  }
}

TYPED_TEST(MfbMemory, HoldsTheTransformOfItsBands) {
  for (const uint32_t bands : kMoreMfbBands) {
    MfbBank<TypeParam> bank(1, bands);
    EXPECT_NE(bank.record()->pair, nullptr) << bands;
    EXPECT_EQ(bank.record()->pair, FastestPair(bands)) << bands;
  }
  EXPECT_EQ(MfbBank<TypeParam>(1, 56).record()->pair, nullptr);
}

TYPED_TEST(MfbMemory, StaysAsItIsAtTheClose) {
  MfbBank<TypeParam> bank(2, 64);
  bank.Run(TypeParam::kProcess, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64O,
           MfbNoiseChannels(1, 2, 3 * 64 * TypeParam::kInParts));
  const std::vector<uint8_t> before = bank.memory().Copy();
  TypeParam::kClose(bank.record());
  EXPECT_EQ(bank.memory().Copy(), before);
}

TEST(MfbFilterState, IsNeitherLoadedNorUnloaded) {
  MfbAnalysisBank bank(1, 64);
  bank.RunOne(&MVK_CLmfb_p10km_analysisL, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64O,
              MfbNoise(1, 5 * 64));
  const std::vector<uint8_t> before = bank.memory().Copy();
  GuardedFloats state(MfbNoise(2, 9 * 64), 0);
  MVK_load_mfb_p10km_analysisL_filter_state(bank.record(), state.data());
  MVK_unload_mfb_p10km_analysisL_filter_state(bank.record(), state.data());
  EXPECT_EQ(bank.memory().Copy(), before);
  EXPECT_TRUE(state.Untouched({"filter state", ""}));
  MVK_load_mfb_p10km_analysisL_filter_state(nullptr, nullptr);
  MVK_unload_mfb_p10km_analysisL_filter_state(nullptr, nullptr);
}

}  // namespace
}  // namespace testing_support
