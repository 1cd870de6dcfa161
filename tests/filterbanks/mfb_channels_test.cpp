// Several channels and slots in a call, and none.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include "filterbanks/mfb_banks.h"

namespace testing_support {
namespace {

constexpr uint32_t kBands = 64;
const auto &kTable = MVK_MFB_P10KM_P4_319SC;
const auto &kTwiddle = MVK_MFB_TWID64E;

template <class Kind>
class MfbCalls : public testing::Test {};
TYPED_TEST_SUITE(MfbCalls, MfbKinds);

std::vector<MfbAnalyse> FunctionsOf(MfbAnalysisKind) {
  std::vector<MfbAnalyse> functions;
  for (const MfbAnalysisForm &form : kMfbAnalyses) functions.push_back(form.process);
  return functions;
}

std::vector<MfbSynthesise> FunctionsOf(MfbSynthesisKind) {
  std::vector<MfbSynthesise> functions;
  for (const MfbSynthesisForm &form : kMfbSyntheses) functions.push_back(form.process);
  return functions;
}

void ExpectSame(const MfbChannels &got, const MfbChannels &want, const char *what) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t c = 0; c < got.size(); ++c) {
    EXPECT_TRUE(SameBits(got[c], want[c], {what, "", c}));
  }
}

MfbChannels SlotsOf(const MfbChannels &channels, size_t slot_floats, size_t first, size_t count) {
  MfbChannels slots;
  for (const std::vector<float> &channel : channels) {
    const auto begin = channel.begin() + static_cast<ptrdiff_t>(first * slot_floats);
    slots.emplace_back(begin, begin + static_cast<ptrdiff_t>(count * slot_floats));
  }
  return slots;
}

TYPED_TEST(MfbCalls, TreatChannelsAndSlotsLikeOneAtATime) {
  constexpr size_t kSlots = 15, kInFloats = TypeParam::kInParts * kBands;
  const MfbChannels in = MfbNoiseChannels(1, 5, kSlots * kInFloats);
  for (const auto function : FunctionsOf(TypeParam())) {
    MfbBank<TypeParam> whole(5, kBands);
    const MfbChannels want = whole.Run(function, kTable, kTwiddle, in);
    for (size_t c = 0; c < in.size(); ++c) {
      MfbBank<TypeParam> alone(1, kBands);
      EXPECT_TRUE(SameBits(alone.RunOne(function, kTable, kTwiddle, in[c]), want[c],
                           {"channel", "alone", c}));
    }
    MfbBank<TypeParam> parts(5, kBands);
    MfbChannels got(5);
    for (size_t first = 0, count = 1; first < kSlots; first += count++) {
      const MfbChannels part =
          parts.Run(function, kTable, kTwiddle, SlotsOf(in, kInFloats, first, count));
      for (size_t c = 0; c < 5; ++c) got[c].insert(got[c].end(), part[c].begin(), part[c].end());
    }
    ExpectSame(got, want, "slots in parts");
  }
}

// A table need have no more than a float's alignment.
TYPED_TEST(MfbCalls, DoNotDependOnWhereTheTablesLie) {
  const std::vector<float> in = MfbNoise(1, 12 * TypeParam::kInParts * kBands);
  for (const auto function : FunctionsOf(TypeParam())) {
    MfbBank<TypeParam> bank(1, kBands);
    const std::vector<float> want = bank.RunOne(function, kTable, kTwiddle, in);
    for (const int offset : {1, 2, 3, 7}) {
      GuardedFloats table({std::begin(kTable), std::end(kTable)}, offset);
      GuardedFloats twiddle({std::begin(kTwiddle), std::end(kTwiddle)}, 8 - offset);
      MfbBank<TypeParam> other(1, kBands);
      EXPECT_TRUE(SameBits(other.RunOne(function, table.values(), twiddle.values(), in), want,
                           {"tables", "", kBands, {offset}}));
    }
  }
}

TYPED_TEST(MfbCalls, LeaveFurtherChannelsAlone) {
  for (const auto function : FunctionsOf(TypeParam())) {
    MfbBank<TypeParam> bank(3, kBands);
    std::fill(bank.History(2).begin(), bank.History(2).end(), 0.25f);
    bank.Run(function, kTable, kTwiddle, MfbNoiseChannels(1, 2, 10 * TypeParam::kInParts * kBands));
    for (const float x : bank.History(2)) ASSERT_EQ(x, 0.25f);
  }
}

TYPED_TEST(MfbCalls, OfNoSlotsDoNothing) {
  for (const auto function : FunctionsOf(TypeParam())) {
    MfbBank<TypeParam> bank(2, kBands);
    bank.Run(function, kTable, kTwiddle, MfbNoiseChannels(1, 2, 4 * TypeParam::kInParts * kBands));
    const std::vector<uint8_t> before = bank.memory().Copy();
    function(bank.record(), kTable, kTwiddle, bank.scratch().data(), 2, 0, kBands, nullptr,
             nullptr);
    EXPECT_EQ(bank.memory().Copy(), before);
  }
}

TEST(MfbAnalysisCalls, OfNoChannelsCountTheSlots) {
  float *const *const no_out[5] = {};
  const float *const *const no_in[5] = {};
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    MfbAnalysisBank bank(2, kBands);
    bank.Run(form.process, kTable, kTwiddle, MfbNoiseChannels(1, 2, 3 * kBands));
    mvk_mfb_p10km_analysisL_state *const record = bank.record();
    EXPECT_EQ(record->position, 3u);
    const std::vector<uint8_t> before = bank.memory().Copy();
    form.process(record, kTable, kTwiddle, bank.scratch().data(), 0, 5, kBands, no_out, no_in);
    EXPECT_EQ(record->position, 8u);
    record->position = 3;
    EXPECT_EQ(bank.memory().Copy(), before) << form.name;
  }
  MfbAnalysisBank bank(2, kBands);
  const auto function = &MVK_CLmfb_p10km_analysisL_legacy_twiddle;
  const std::vector<float> post = MfbNoise(1, kBands);
  function(bank.record(), kTable, kTwiddle, post.data(), bank.scratch().data(), 2, 0, kBands,
           nullptr, nullptr);
  EXPECT_EQ(bank.record()->position, 0u);
  function(bank.record(), kTable, kTwiddle, post.data(), bank.scratch().data(), 0, 5, kBands,
           no_out, no_in);
  EXPECT_EQ(bank.record()->position, 5u);
}

TEST(MfbSynthesisCalls, OfNoChannelsDoNothing) {
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    MfbSynthesisBank bank(2, kBands);
    bank.Run(form.process, kTable, kTwiddle, MfbNoiseChannels(1, 2, 4 * 2 * kBands));
    const std::vector<uint8_t> before = bank.memory().Copy();
    form.process(bank.record(), kTable, kTwiddle, bank.scratch().data(), 0, 5, kBands, nullptr,
                 nullptr);
    EXPECT_EQ(bank.memory().Copy(), before) << form.name;
  }
}

// The others go on, and the one begins anew where the ring happens to be.
TEST(MfbResetChannel, SilencesOneChannel) {
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const size_t slots : {1, 4, 9, 13}) {
      for (uint32_t channel = 0; channel < 3; ++channel) {
        const MfbChannels before = MfbNoiseChannels(1, 3, slots * kBands);
        const MfbChannels after = MfbNoiseChannels(2, 3, 12 * kBands);
        MfbAnalysisBank reset(3, kBands), kept(3, kBands), fresh(3, kBands);
        reset.Run(form.process, kTable, kTwiddle, before);
        kept.Run(form.process, kTable, kTwiddle, before);
        MVK_mfb_p10km_analysisL_reset_channel(reset.record(), kBands, channel);
        EXPECT_EQ(reset.record()->position, slots);
        for (uint32_t c = 0; c < 3; ++c) {
          const std::vector<float> silence(9 * kBands, 0.0f);
          EXPECT_TRUE(SameBits(reset.History(c),
                               c == channel ? std::span<const float>(silence) : kept.History(c),
                               {form.name, "reset", c}));
        }
        MfbChannels want = kept.Run(form.process, kTable, kTwiddle, after);
        want[channel] = fresh.Run(form.process, kTable, kTwiddle, after)[channel];
        const MfbChannels got = reset.Run(form.process, kTable, kTwiddle, after);
        for (size_t c = 0; c < 3; ++c) {
          // Zeros have either sign in the first slot.
          for (size_t i = 0; i < got[c].size(); ++i) ASSERT_EQ(got[c][i], want[c][i]) << c;
        }
      }
    }
  }
}

// Of a bank with more bands a share is cleared.
TEST(MfbResetChannel, ClearsNineFloatsForEachBand) {
  MfbAnalysisBank bank(2, kBands);
  for (const size_t c : {0, 1}) {
    std::fill(bank.History(c).begin(), bank.History(c).end(), 0.25f);
  }
  MVK_mfb_p10km_analysisL_reset_channel(bank.record(), 8, 1);
  for (const float x : bank.History(0)) ASSERT_EQ(x, 0.25f);
  for (size_t i = 0; i < 9 * kBands; ++i) {
    ASSERT_EQ(BitsOf(bank.History(1)[i]), BitsOf(i < 9 * 8 ? 0.0f : 0.25f)) << i;
  }
}

}  // namespace
}  // namespace testing_support
