// Multichannel banks in guarded memory, and what they are run with.
#ifndef MVK_TESTS_FILTERBANKS_MFB_BANKS_H_
#define MVK_TESTS_FILTERBANKS_MFB_BANKS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kernels/guarded_bytes.h"
#include "kernels/kernel_samples.h"
#include "mvk_fft.h"
#include "mvk_mfb.h"
#include "reference/mfb_exact.h"
#include "reference/mfb_steps.h"

namespace testing_support {

using reference::kMfbTaps;
using reference::MfbPath;

// All multiples of 4 that have a transform will do: of both families, powers of two and others.
inline constexpr uint32_t kMoreMfbBands[] = {4, 8, 12, 20, 48, 64, 128, 256, 320};

// Of the transform, over the rms of its result.
inline constexpr double kMfbModulation = 1e-6;

// ---- Tables ----

struct MfbTwiddles {
  const char *name;
  uint32_t bands;
  bool is_even;
  std::span<const float> values;
};

inline const MfbTwiddles kMfbTwiddles[] = {
    {"64O", 64, false, MVK_MFB_TWID64O},
    {"64E", 64, true, MVK_MFB_TWID64E},
    {"128E", 128, true, MVK_MFB_TWID128E},
    {"256E", 256, true, MVK_MFB_TWID256E},
};

struct MfbPrototype {
  const char *name;
  uint32_t bands;
  std::span<const float> values;
};

inline const MfbPrototype kMfbPrototypes[] = {
    {"P64ORV301", 64, MVK_MFB_P10KM_P64ORV301},
    {"P64ORV301_LEGACY", 64, MVK_MFB_P10KM_P64ORV301_LEGACY},
    {"P4_319SC", 64, MVK_MFB_P10KM_P4_319SC},
    {"P4_319SC_128M", 128, MVK_MFB_P10KM_P4_319SC_128M},
    {"P4_319SC_256M", 256, MVK_MFB_P10KM_P4_319SC_256M},
};

inline std::vector<float> MfbNoise(uint64_t seed, size_t count) {
  Random random(seed);
  return Samples(kUniform, random, count);
}

// Tables of so many bands: one of no symmetry at all and those of the library.
struct MfbTable {
  std::string name;
  std::vector<float> values;
};

inline std::vector<MfbTable> MfbTables(uint32_t bands) {
  std::vector<MfbTable> tables = {{"any", MfbNoise(bands, kMfbTaps * bands)}};
  for (const MfbPrototype &prototype : kMfbPrototypes) {
    if (prototype.bands != bands) continue;
    tables.push_back({prototype.name, {prototype.values.begin(), prototype.values.end()}});
  }
  return tables;
}

// ---- Functions ----

using MfbAnalyse = decltype(&MVK_CLmfb_p10km_analysisL);
using MfbSynthesise = decltype(&MVK_Lmfb_p10km_synthesisCL_symmetric);

struct MfbAnalysisForm {
  const char *name;
  MfbAnalyse process;
  MfbPath path;
};

inline constexpr MfbAnalysisForm kMfbAnalyses[] = {
    {"analysis", &MVK_CLmfb_p10km_analysisL, MfbPath::kNew},
    {"analysis_legacy", &MVK_CLmfb_p10km_analysisL_legacy, MfbPath::kLegacy},
};

struct MfbSynthesisForm {
  const char *name;
  MfbSynthesise process;
  reference::MfbSynthesisRule rule;
  reference::MfbAnswer answer;
};

#define MFB_FORM(name) #name, &MVK_Lmfb_p10km_synthesisCL_##name
inline constexpr MfbSynthesisForm kMfbSyntheses[] = {
    {MFB_FORM(symmetric), reference::kMfbSymmetric, {2, reference::MfbTime::kForwards, 0, {0, 1}}},
    {MFB_FORM(legacy),
     reference::kMfbLegacy,
     {2, reference::MfbTime::kSamplesBackwards, 1, {1, -1}}},
    {MFB_FORM(legacy_extra_latency),
     reference::kMfbExtraLatency,
     {2, reference::MfbTime::kBlocksBackwards, 0, {1, 1}}},
    {MFB_FORM(even_0), reference::kMfbEven[0], {2, reference::MfbTime::kBackwards, 0, {1, 1}}},
    {MFB_FORM(even_1), reference::kMfbEven[1], {2, reference::MfbTime::kBackwards, 0, {0, 1}}},
    {MFB_FORM(even_2), reference::kMfbEven[2], {-2, reference::MfbTime::kBackwards, 0, {1, 1}}},
    {MFB_FORM(even_3), reference::kMfbEven[3], {-2, reference::MfbTime::kBackwards, 0, {0, 1}}},
};
#undef MFB_FORM

// ---- Memory ----

// For each channel, its slots one behind the other.
using MfbChannels = std::vector<std::vector<float>>;

inline MfbChannels MfbNoiseChannels(uint64_t seed, size_t channels, size_t count) {
  MfbChannels signals;
  for (size_t c = 0; c < channels; ++c) signals.push_back(MfbNoise(1000 * seed + c, count));
  return signals;
}

// Buffers for each slot of each channel, all at addresses of their own, and pointers to them.
class MfbBuffers {
 public:
  MfbBuffers(const MfbChannels &channels, size_t slots, size_t slot_floats) {
    for (size_t s = 0; s < slots; ++s) {
      std::vector<float *> &row = rows_.emplace_back();
      for (size_t c = 0; c < channels.size(); ++c) {
        const auto first = channels[c].begin() + static_cast<ptrdiff_t>(s * slot_floats);
        const int offset = static_cast<int>((3 * s + 5 * c + 1) % 8);
        buffers_.emplace_back(
            std::vector<float>(first, first + static_cast<ptrdiff_t>(slot_floats)), offset);
        row.push_back(buffers_.back().data());
      }
    }
    for (std::vector<float *> &row : rows_) {
      pointers_.push_back(row.data());
      constant_.emplace_back(row.begin(), row.end());
    }
    for (auto &row : constant_) constant_pointers_.push_back(row.data());
  }

  float *const *const *pointers() { return pointers_.data(); }
  const float *const *const *constants() { return constant_pointers_.data(); }

  MfbChannels Values() const {
    MfbChannels channels(rows_.empty() ? 0 : rows_[0].size());
    for (size_t i = 0; i < buffers_.size(); ++i) {
      std::vector<float> &channel = channels[i % channels.size()];
      channel.insert(channel.end(), buffers_[i].values().begin(), buffers_[i].values().end());
    }
    return channels;
  }
  void ExpectGuardsStand() const {
    for (const GuardedFloats &buffer : buffers_) EXPECT_TRUE(buffer.GuardsStand({"slots", ""}));
  }
  void ExpectUntouched() const {
    for (const GuardedFloats &buffer : buffers_) EXPECT_TRUE(buffer.Untouched({"slots", ""}));
  }

 private:
  std::deque<GuardedFloats> buffers_;
  std::deque<std::vector<float *>> rows_;
  std::deque<std::vector<const float *>> constant_;
  std::vector<float *const *> pointers_;
  std::vector<const float *const *> constant_pointers_;
};

struct MfbAnalysisKind {
  using State = mvk_mfb_p10km_analysisL_state;
  static constexpr auto kQuery = &MVK_mfb_p10km_analysisL_query_mem;
  static constexpr auto kScratch = &MVK_mfb_p10km_analysisL_query_scratch;
  static constexpr auto kInit = &MVK_CLmfb_p10km_analysisL_init;
  static constexpr auto kClose = &MVK_CLmfb_p10km_analysisL_close;
  static constexpr auto kProcess = &MVK_CLmfb_p10km_analysisL;
  static constexpr size_t kInParts = 1, kOutParts = 2, kFixedBytes = 86;
};

struct MfbSynthesisKind {
  using State = mvk_mfb_p10km_synthesisCL_state;
  static constexpr auto kQuery = &MVK_mfb_p10km_synthesisCL_query_mem;
  static constexpr auto kScratch = &MVK_mfb_p10km_synthesisCL_query_scratch;
  static constexpr auto kInit = &MVK_Lmfb_p10km_synthesisCL_init;
  static constexpr auto kClose = &MVK_Lmfb_p10km_synthesisCL_close;
  static constexpr auto kProcess = &MVK_Lmfb_p10km_synthesisCL_symmetric;
  static constexpr size_t kInParts = 2, kOutParts = 1, kFixedBytes = 78;
};

// A bank in memory of exactly the bytes that it asks for, a number of them behind multiples of 64.
template <class Kind>
class MfbBank {
 public:
  MfbBank(uint32_t channels, uint32_t bands, size_t misalignment = 0)
      : bands_(bands),
        memory_(Kind::kQuery(channels, 0, bands), misalignment),
        scratch_(Kind::kScratch(channels, 0, bands), misalignment),
        record_(Kind::kInit(channels, 0, bands, memory_.data())) {}

  typename Kind::State *record() { return record_; }
  GuardedBytes &memory() { return memory_; }
  GuardedBytes &scratch() { return scratch_; }
  std::span<float> History(size_t channel) {
    return {record_->channel_history[channel], 9 * size_t{bands_}};
  }

  // The first channels, as many as `in` has. Further tables stand behind those of all functions.
  template <class Process, class... Tables>
  MfbChannels Run(Process process, std::span<const float> prototype, std::span<const float> twiddle,
                  const MfbChannels &in, Tables... tables) {
    const size_t in_slot = Kind::kInParts * bands_, out_slot = Kind::kOutParts * bands_;
    const size_t slots = in[0].size() / in_slot;
    MfbBuffers from(in, slots, in_slot);
    MfbBuffers to(MfbChannels(in.size(), std::vector<float>(slots * out_slot, kNaN)), slots,
                  out_slot);
    process(record_, prototype.data(), twiddle.data(), tables..., scratch_.data(),
            static_cast<uint32_t>(in.size()), static_cast<uint32_t>(slots), bands_, to.pointers(),
            from.constants());
    from.ExpectUntouched();
    to.ExpectGuardsStand();
    EXPECT_TRUE(memory_.GuardsStand());
    EXPECT_TRUE(scratch_.GuardsStand());
    return to.Values();
  }

  // The first channel.
  template <class Process, class... Tables>
  std::vector<float> RunOne(Process process, std::span<const float> prototype,
                            std::span<const float> twiddle, const std::vector<float> &in,
                            Tables... tables) {
    return Run(process, prototype, twiddle, MfbChannels{in}, tables...)[0];
  }

 private:
  uint32_t bands_;
  GuardedBytes memory_, scratch_;
  typename Kind::State *record_;
};

using MfbKinds = testing::Types<MfbAnalysisKind, MfbSynthesisKind>;
using MfbAnalysisBank = MfbBank<MfbAnalysisKind>;
using MfbSynthesisBank = MfbBank<MfbSynthesisKind>;

// A transform of a copy.
inline std::vector<float> MfbTransformed(mvk_fft_kernel *kernel, std::vector<float> src) {
  std::vector<float> dst(src.size());
  kernel(dst.data(), src.data(), static_cast<uint32_t>(src.size() / 2));
  return dst;
}

}  // namespace testing_support

#endif
