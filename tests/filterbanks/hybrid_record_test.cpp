// The memory of hybrid banks, what opening makes of it, and what is done with the history.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "filterbanks/hybrid_banks.h"
#include "mvk_fft.h"
#include "mvk_hybrid.h"
#include "mvk_kernels.h"
#include "reference/reduction_reference.h"
#include "reference/vector_reference.h"

namespace testing_support {
namespace {

constexpr uint32_t kAccepted[] = {0, 1, 4, 5, 8, 9, 12, 13, 0xfffffffdu};
constexpr uint32_t kRefused[] = {2, 3, 6, 7, 10, 11, 0xffffffffu};

TEST(HybridQuery, HasTheseFigures) {
  for (const uint32_t flags : {0u, 1u, 2u, 3u, 4u, 5u, 0xffffffffu}) {
    uint32_t state = 1, scratch = 2, record = 3;
    EXPECT_EQ(MVK_hybrid_analysisCL_query_mem(flags, &state, &scratch, &record), 39u);
    EXPECT_EQ(state, 343u);
    EXPECT_EQ(scratch, 0u);
    EXPECT_EQ(record, 39u);
    state = scratch = record = 1;
    EXPECT_EQ(MVK_hybrid_synthesisCL_query_mem(flags, &state, &scratch, &record), 15u);
    EXPECT_EQ(state, 0u);
    EXPECT_EQ(scratch, 0u);
    EXPECT_EQ(record, 15u);
  }
}

const mvk_fft_pair *InversePair(uint32_t n) {
  const mvk_fft_pair *pair = MVK_r8_cplx_inv_pair(n);
  return pair != nullptr ? pair : MVK_r4_cplx_inv_pair(n);
}

TEST(HybridOpen, MakesASilentBankAnywhere) {
  for (const uint32_t flags : kAccepted) {
    for (size_t misalignment = 0; misalignment < 64; ++misalignment) {
      SCOPED_TRACE(testing::Message() << "flags " << flags << ", " << misalignment);
      HybridAnalysis bank(flags, misalignment);
      auto *const record = bank.record();
      ASSERT_EQ(reinterpret_cast<uint8_t *>(record),
                bank.record_memory().data() + (64 - misalignment) % 8);
      EXPECT_EQ(record->mode, flags & 3);
      EXPECT_EQ(record->reorder, flags & 4);
      EXPECT_EQ(reinterpret_cast<uint8_t *>(record->history),
                bank.state_memory().data() + (64 - misalignment) % 32);
      EXPECT_NE(record->pair4, nullptr);
      EXPECT_EQ(record->pair4, InversePair(4));
      EXPECT_NE(record->pair8, nullptr);
      EXPECT_EQ(record->pair8, InversePair(8));
      for (const float x : bank.History()) ASSERT_EQ(BitsOf(x), 0u);
      bank.Run(HybridNoise(1, 2, kUniform));  // checks the guards

      HybridSynthesis synthesis(flags, misalignment);
      ASSERT_EQ(reinterpret_cast<uint8_t *>(synthesis.record()),
                synthesis.record_memory().data() + (64 - misalignment) % 8);
      EXPECT_EQ(synthesis.record()->mode, flags & 3);
      EXPECT_EQ(synthesis.record()->reorder, flags & 4);
      EXPECT_TRUE(synthesis.record_memory().GuardsStand());
    }
  }
}

TEST(HybridOpen, RefusesAFlag) {
  for (const uint32_t flags : kRefused) {
    EXPECT_EQ(HybridAnalysis(flags).record(), nullptr) << flags;
    EXPECT_EQ(HybridSynthesis(flags).record(), nullptr) << flags;
    EXPECT_EQ(MVK_hybrid_analysisCL_open(flags, nullptr, nullptr, nullptr), nullptr) << flags;
    EXPECT_EQ(MVK_hybrid_synthesisCL_open(flags, nullptr, nullptr, nullptr), nullptr) << flags;
  }
}

// The flags that mean nothing change nothing.
TEST(HybridOpen, IgnoresFurtherFlags) {
  const std::vector<float> in = HybridNoise(1, 20, kUniform);
  for (const uint32_t flags : {0u, 1u, 4u, 5u}) {
    HybridAnalysis plain(flags), more(flags | 0xfffffff8u);
    EXPECT_TRUE(SameBits(more.Run(in), plain.Run(in), {"flags", "", flags}));
  }
}

// ---- History ----

// The last 13 of each band, the newest last.
std::vector<float> HistoryOf(const std::vector<float> &in, size_t calls) {
  std::vector<float> history;
  for (size_t b = 0; b < 3; ++b) {
    for (size_t age = 13; age-- > 0;) {
      for (size_t part = 0; part < 2; ++part) {
        history.push_back(age < calls ? in[6 * (calls - 1 - age) + 2 * b + part] : 0.0f);
      }
    }
  }
  return history;
}

TEST(HybridHistory, HasTheLastSamplesOfEachBandTheNewestLast) {
  for (const uint32_t flags : {0u, 1u, 4u, 5u}) {
    const std::vector<float> in = HybridNoise(1, 20, kUniform);
    HybridAnalysis bank(flags);
    for (size_t calls = 1; calls <= 20; ++calls) {
      bank.Run(std::span(in).subspan(6 * (calls - 1), 6));
      ASSERT_TRUE(SameBits(bank.History(), HistoryOf(in, calls), {"history", "", calls}));
    }
    const std::vector<uint8_t> before = bank.state_memory().Copy();
    MVK_hybrid_analysisCL_close(bank.record());
    EXPECT_EQ(bank.state_memory().Copy(), before);
  }
}

TEST(HybridHistory, IsSilencedByInit) {
  const std::vector<float> in = HybridNoise(1, 20, kUniform);
  for (const uint32_t flags : {0u, 1u, 4u, 5u}) {
    HybridAnalysis bank(flags), fresh(flags);
    bank.Run(in);
    MVK_hybrid_analysisCL_init(bank.record());
    EXPECT_TRUE(bank.state_memory().GuardsStand());
    for (const float x : bank.History()) ASSERT_EQ(BitsOf(x), 0u);
    EXPECT_TRUE(SameBits(bank.Run(in), fresh.Run(in), {"after init", "", flags}));
  }
}

TEST(HybridHistory, HasAHeadroom) {
  HybridAnalysis bank(MVK_HYBRID_MODE_1);
  auto *const record = bank.record();
  EXPECT_EQ(MVK_hybrid_analysisCL_get_scale(record), 60u);
  for (const size_t place : {0u, 1u, 25u, 26u, 76u, 77u}) {
    for (const float x : {0.25f, -0.5f, 0.4999f, 1.0f, -3.0f, 0x1p-59f, 0x1p-149f, kInfinity}) {
      std::fill(bank.History().begin(), bank.History().end(), 0.0f);
      bank.History()[place] = x;
      const uint32_t want = reference::HeadroomUnder(std::fabs(x));
      EXPECT_EQ(MVK_hybrid_analysisCL_get_scale(record), want) << place << ", " << x;
      // NaNs don't count.
      bank.History()[(place + 7) % kHybridHistory] = kNaN;
      EXPECT_EQ(MVK_hybrid_analysisCL_get_scale(record), want) << place << ", " << x;
      EXPECT_EQ(mvk_vec_UnormLU_flex(record->history, kHybridHistory), want);
    }
  }
}

TEST(HybridHistory, IsShifted) {
  for (const int32_t shift : {0, 1, -1, 7, -20, 60, 61, 1000, -59, -60, -61, -1000}) {
    for (const Material &material : {kUniform, kMixed}) {
      HybridAnalysis bank(MVK_HYBRID_MODE_1);
      Random random(1);
      std::vector<float> want = Samples(material, random, kHybridHistory);
      std::copy(want.begin(), want.end(), bank.History().begin());
      MVK_hybrid_analysisCL_shl(bank.record(), shift);
      if (shift != 0) {
        for (float &x : want) x *= reference::ClampedPowerOfTwo(shift);
      }
      EXPECT_TRUE(
          SameSamples(bank.History(), want, {"shl", "", kHybridHistory, {shift}, material.name}));
      EXPECT_TRUE(bank.state_memory().GuardsStand());
    }
  }
}

}  // namespace
}  // namespace testing_support
