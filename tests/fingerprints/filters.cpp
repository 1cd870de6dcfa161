// Kernels over blocks with a memory: filters, followers and crossfades.
#include <deque>

#include "fingerprints/entries.h"
#include "fingerprints/kernel_calls.h"

namespace testing_support {
namespace {

// The last of these has infinities and NaNs, which spoil the state.
constexpr Material kFilterMaterials[] = {kUniform, kFinite, kFew, kMixed};
// Results of 64 samples are the longest; a state has fewer.
constexpr size_t kFloats = 72;

constexpr uint32_t kTaps[] = {3, 4, 5, 6, 7, 8, 9, 16, 16, 16, 15, 15};
constexpr uint32_t kSmallShifts[] = {1, 1, 2, 3, 3, 2, 2};

const CallPlan kFilters = {.materials = kFilterMaterials,
                           .last = kSmallShifts,
                           .floats = kFloats,
                           .signals = 1,
                           .has_state = true};
const CallPlan kInPlace = {.materials = kFilterMaterials,
                           .last = kSmallShifts,
                           .floats = kFloats,
                           .signals = 0,
                           .has_state = true};
const CallPlan kAnyTaps = {.materials = kFilterMaterials,
                           .last = kTaps,
                           .floats = kFloats,
                           .signals = 1,
                           .has_state = true};
const CallPlan kFollowers = {.materials = kFilterMaterials,
                             .last = kSmallShifts,
                             .floats = kFloats,
                             .signals = 1,
                             .coefficients = kPositive,
                             .has_state = true};
// Reciprocals of what is above zero.
constexpr Material kPositives[] = {kPositive};
const CallPlan kReciprocals = {
    .materials = kPositives, .last = kSmallShifts, .floats = kFloats, .has_state = true};
// Over states that hold something.
const CallPlan kSetups = {.materials = kFilterMaterials, .last = kTaps, .floats = kFloats};

#define FILTER(name) MVK_TWIN_ENTRIES(blk_##name, kFilters)
#define IN_PLACE(name) MVK_TWIN_ENTRIES(blk_##name, kInPlace)
#define SETUP(name) MVK_KERNEL_ENTRY(MVK_blk_##name##_setup, kSetups, false)

// Companions return their argument, and leave what it points to alone.
#define SET_COEF(name)                                             \
  MVK_ENTRY(MVK_blk_##name##_set_coef, [](Digest &digest) {        \
    std::vector<float> record = Corpus(kUniform).Copy(16);         \
    void *const result = MVK_blk_##name##_set_coef(record.data()); \
    digest.Integer(result == record.data());                       \
    digest.Numbers(record);                                        \
  });

void AddCrossfade(Digest &digest, decltype(&mvk_blk_Lcrossfade_gainLS_flex) kernel, int offset) {
  constexpr uint32_t kLength = 4 * kBlockSize;
  for (const Material &material : kValues) {
    Corpus corpus(material);
    GuardedFloats table(corpus.Copy(kLength), offset);
    mvk_blk_crossfade_state state = {0, kLength};
    for (int block = 0; block < 6; ++block) {
      GuardedFloats y(kBlockSize, 3 * offset), x(corpus.Copy(kBlockSize), 5 * offset);
      const float s = corpus.Next(), t = corpus.Next();
      digest.Integer(kernel(y.data(), &state, x.data(), table.data(), s, t) == y.data());
      digest.Numbers(y.values());
      digest.Integer(state.position);
      digest.Integer(state.length);
    }
  }
}

// More channels than lanes, each in a buffer and a state of its own.
void AddChannels(Digest &digest, decltype(&MVK_blk_Liir2ssv3aLU_inplace) kernel, int offset) {
  Corpus coefficients(kGentle);
  for (const Material &material : kSignals) {
    Corpus corpus(material);
    for (const uint32_t channels : {0u, 1u, 3u, 4u, 5u, 8u, 9u, 17u}) {
      std::vector<std::vector<float>> states(channels, coefficients.Copy(2));
      for (int block = 0; block < 3; ++block) {
        std::deque<GuardedFloats> samples;
        std::vector<float *> buffers, records;
        for (uint32_t c = 0; c < channels; ++c) {
          samples.emplace_back(corpus.Copy(kBlockSize), offset * static_cast<int>(c % 8));
          buffers.push_back(samples.back().data());
          records.push_back(states[c].data());
        }
        const std::vector<float> c = coefficients.Copy(5);
        digest.Integer(kernel(buffers.data(), c.data(), records.data(), channels) ==
                       buffers.data());
        for (const GuardedFloats &channel : samples) digest.Numbers(channel.values());
      }
      for (const std::vector<float> &state : states) digest.Numbers(state);
    }
  }
}

}  // namespace

void ListFilters(Entries &entries) {
  FILTER(Lfir2L)
  FILTER(Lfir3L)
  FILTER(Liir1L)
  FILTER(Liir1_shlLU)
  FILTER(Liir1_shl_addLL)
  FILTER(Liir1xL)
  FILTER(Liir2df1L)
  FILTER(Liir2ssv1L)
  FILTER(Liir2ssv1efL)
  FILTER(Liir2ssv2L)
  FILTER(Liir2ssv2_shlLU)
  FILTER(Liir2ssv1_dsmpL)
  FILTER(Liir2ssv1_usmpL)
  FILTER(LintegrateL)
  IN_PLACE(Liir2ssv2L_inplace)
  IN_PLACE(Liir2ssv3L_inplace)
  MVK_TWIN_ENTRIES(blk_LfirUL, kAnyTaps)
  MVK_TWIN_ENTRIES(blk_Lattack_decay_iir1L, kFollowers)
  MVK_TWIN_ENTRIES(blk_Lattack_decay_peak_iir1L, kFollowers)
  MVK_TWIN_ENTRIES(blk_LnrrecipLU, kReciprocals)
  MVK_ENTRY(mvk_blk_Lcrossfade_gainLS_flex,
            [](Digest &digest) { AddCrossfade(digest, &mvk_blk_Lcrossfade_gainLS_flex, 1); });
  MVK_ENTRY(MVK_blk_Lcrossfade_gainLS_strict,
            [](Digest &digest) { AddCrossfade(digest, &MVK_blk_Lcrossfade_gainLS_strict, 0); });
  MVK_ENTRY(MVK_blk_Lcrossfade_gainLS_setup, [](Digest &digest) {
    mvk_blk_crossfade_state state = {77, 88};
    MVK_blk_Lcrossfade_gainLS_setup(&state, nullptr, 256);
    digest.Integer(state.position);
    digest.Integer(state.length);
  });
  MVK_ENTRY(MVK_blk_Liir2ssv3aLU_inplace,
            [](Digest &digest) { AddChannels(digest, &MVK_blk_Liir2ssv3aLU_inplace, 1); });
  MVK_ENTRY(MVK_blk_Liir2ssv3aLU_inplace_strict,
            [](Digest &digest) { AddChannels(digest, &MVK_blk_Liir2ssv3aLU_inplace_strict, 0); });
  SETUP(Lfir2L)
  SETUP(Lfir3L)
  SETUP(LfirUL)
  SETUP(Liir1L)
  SETUP(Liir1xL)
  SETUP(Liir2df1L)
  SETUP(Liir2ssL)
  SETUP(Liir2ssefL)
  SETUP(LintegrateL)
  SETUP(LnrrecipLU)
  SETUP(Lattack_decay_iir1L)
  SETUP(Lattack_decay_peak_iir1L)
  SET_COEF(Lfir2L)
  SET_COEF(Lfir3L)
  SET_COEF(LfirUL)
  SET_COEF(Liir1L)
  SET_COEF(Liir1xL)
  SET_COEF(Liir2df1L)
  SET_COEF(Liir2ssL)
  SET_COEF(Liir2ssefL)
  SET_COEF(LintegrateL)
  SET_COEF(LnrrecipLU)
  SET_COEF(Lattack_decay_iir1L)
  SET_COEF(Lattack_decay_peak_iir1L)
  SET_COEF(Lcrossfade_gainLS)
}

}  // namespace testing_support
