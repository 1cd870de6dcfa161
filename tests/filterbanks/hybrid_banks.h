// Hybrid banks in guarded memory, and what they are run with.
#ifndef MVK_TESTS_FILTERBANKS_HYBRID_BANKS_H_
#define MVK_TESTS_FILTERBANKS_HYBRID_BANKS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kernels/guarded_bytes.h"
#include "kernels/kernel_samples.h"
#include "mvk_hybrid.h"
#include "reference/hybrid_exact.h"

namespace testing_support {

using reference::HybridMode;
using reference::HybridSubBand;
using reference::WideComplex;

inline constexpr size_t kHybridHistory = 78;  // floats

// Bytes that the banks ask for.
inline constexpr size_t kHybridState = 343, kHybridAnalysisRecord = 39, kHybridSynthesisRecord = 15;

// In memory of exactly so many bytes, a number of them behind multiples of 64.
class HybridAnalysis {
 public:
  explicit HybridAnalysis(uint32_t flags, size_t misalignment = 0)
      : state_(kHybridState, misalignment),
        record_memory_(kHybridAnalysisRecord, misalignment),
        record_(MVK_hybrid_analysisCL_open(flags, state_.data(), nullptr, record_memory_.data())) {}

  mvk_hybrid_analysisCL_state *record() { return record_; }
  GuardedBytes &state_memory() { return state_; }
  GuardedBytes &record_memory() { return record_memory_; }
  std::span<float> History() { return {record_->history, kHybridHistory}; }

  // Pairs of the three bands, call after call.
  std::vector<float> Run(std::span<const float> in) {
    const size_t count = record_->mode == 1 ? 16 : 10;
    std::vector<float> sub_bands;
    for (size_t i = 0; i < in.size(); i += 6) {
      GuardedFloats from(std::vector<float>(&in[i], &in[i] + 6), static_cast<int>(i / 6 % 8));
      GuardedFloats to(2 * count, static_cast<int>(i / 2 % 8));
      MVK_CLhybrid_analysisCL(record_, to.data(), from.data());
      EXPECT_TRUE(from.Untouched({"in", ""}));
      EXPECT_TRUE(to.GuardsStand({"out", ""}));
      sub_bands.insert(sub_bands.end(), to.values().begin(), to.values().end());
    }
    EXPECT_TRUE(state_.GuardsStand());
    EXPECT_TRUE(record_memory_.GuardsStand());
    return sub_bands;
  }

 private:
  GuardedBytes state_, record_memory_;
  mvk_hybrid_analysisCL_state *record_;
};

class HybridSynthesis {
 public:
  explicit HybridSynthesis(uint32_t flags, size_t misalignment = 0)
      : record_memory_(kHybridSynthesisRecord, misalignment),
        record_(MVK_hybrid_synthesisCL_open(flags, nullptr, nullptr, record_memory_.data())) {}

  mvk_hybrid_synthesisCL_state *record() { return record_; }
  GuardedBytes &record_memory() { return record_memory_; }

  std::vector<float> Run(std::span<const float> sub_bands) {
    const size_t count = record_->mode == 1 ? 16 : 10;
    std::vector<float> bands;
    for (size_t i = 0; i < sub_bands.size(); i += 2 * count) {
      GuardedFloats from(std::vector<float>(&sub_bands[i], &sub_bands[i] + 2 * count),
                         static_cast<int>(i / count % 8));
      GuardedFloats to(6, static_cast<int>((i / count + 3) % 8));
      MVK_CLhybrid_synthesisCL(record_, to.data(), from.data());
      EXPECT_TRUE(from.Untouched({"in", ""}));
      EXPECT_TRUE(to.GuardsStand({"out", ""}));
      bands.insert(bands.end(), to.values().begin(), to.values().end());
    }
    EXPECT_TRUE(record_memory_.GuardsStand());
    return bands;
  }

 private:
  GuardedBytes record_memory_;
  mvk_hybrid_synthesisCL_state *record_;
};

inline std::vector<float> HybridNoise(uint64_t seed, size_t calls, const Material &material) {
  Random random(seed);
  return Samples(material, random, 6 * calls);
}

}  // namespace testing_support

#endif
