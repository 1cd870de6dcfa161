// The windows of multichannel analysis banks to the bit, seen through twiddles that turn nothing.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "dct/pair_kinds.h"
#include "filterbanks/mfb_banks.h"
#include "reference/mfb_steps.h"

namespace testing_support {
namespace {

using reference::MfbAnalysisWindow;

class MfbAnalysisSteps : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, MfbAnalysisSteps, testing::ValuesIn(kMoreMfbBands),
                         testing::PrintToStringParamName());

// Runs a bank that counts from `position` on, slot by slot, against the window's sums. In the first
// slot some of them are zeros, whose signs are left open.
void ExpectSums(const MfbAnalysisForm &form, uint32_t m, const Material &material,
                uint32_t position, int slots) {
  Random random(m + position);
  const std::vector<float> table = Samples(material, random, kMfbTaps * m);
  const std::vector<float> twiddle = reference::MfbUnitPairs(m);
  MfbAnalysisBank bank(1, m);
  EXPECT_EQ(bank.record()->position, 0u);
  bank.record()->position = position;
  MfbAnalysisWindow window(table, m, form.path, position);
  for (int slot = 0; slot < slots; ++slot) {
    const std::vector<float> x = Samples(material, random, m);
    const std::vector<float> got = bank.RunOne(form.process, table, twiddle, x);
    EXPECT_EQ(bank.record()->position, ++position);
    const auto sums = window.Slot(x.data());
    const auto f = MfbTransformed(FastestPair(m)->scaled, MfbUnturned(sums, form.path));
    if (slot == 0) continue;
    ASSERT_TRUE(SameSamples(got, MfbUnpacked(f, form.path), {form.name, "", m, {}, material.name}))
        << "slot " << slot;
  }
}

TEST_P(MfbAnalysisSteps, AddTheProductsInOneOrder) {
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const Material &material : {kUniform, kClose}) {
      ExpectSums(form, GetParam(), material, 0, 21);
      if (HasFatalFailure()) return;
    }
  }
}

// The count of slots is taken modulo 9 as it is, and starts again from 0 behind 2^32 - 1.
TEST_P(MfbAnalysisSteps, GoOnWhereTheCountOfSlotsWrapsAround) {
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const uint32_t position : {1u, 8u, 9u, 0x7ffffffcu, 0xffffffffu - 11, 0xffffffffu}) {
      SCOPED_TRACE(testing::Message() << form.name << " from slot " << position);
      ExpectSums(form, GetParam(), kUniform, position, 24);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(MfbAnalysisWithoutPair, LooksUpAKernel) {
  for (const uint32_t m : kMoreMfbBands) {
    if (m > 256) continue;
    for (const MfbAnalysisForm &form : kMfbAnalyses) {
      const std::vector<float> table = MfbNoise(m, kMfbTaps * m);
      MfbAnalysisBank bank(1, m);
      bank.record()->pair = nullptr;
      MfbAnalysisWindow window(table, m, form.path);
      for (int slot = 0; slot < 3; ++slot) {
        const std::vector<float> x = MfbNoise(slot, m);
        const std::vector<float> got =
            bank.RunOne(form.process, table, reference::MfbUnitPairs(m), x);
        const auto u = MfbUnturned(window.Slot(x.data()), form.path);
        const auto f = MfbTransformed(MVK_r4_cplx_fwd_scaled(m), u);
        if (slot == 0) continue;
        EXPECT_TRUE(SameSamples(got, MfbUnpacked(f, form.path), {form.name, "no pair", m}));
      }
      EXPECT_EQ(bank.record()->pair, nullptr);
    }
  }
}

// What the transform would have written is taken from the second half of the scratch.
TEST(MfbAnalysisWithoutTransform, UnpacksWhatWasThere) {
  constexpr uint32_t kBands = 56;
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const size_t misalignment : {0, 4, 20}) {
      MfbAnalysisBank bank(1, kBands, misalignment);
      EXPECT_EQ(bank.record()->pair, nullptr);
      auto *const scratch =
          reinterpret_cast<float *>(bank.scratch().data() + (32 - misalignment) % 32);
      const std::vector<float> stale = MfbNoise(1, 2 * kBands);
      std::copy(stale.begin(), stale.end(), scratch + 2 * kBands);
      const std::vector<float> got =
          bank.RunOne(form.process, MfbNoise(2, kMfbTaps * kBands), reference::MfbUnitPairs(kBands),
                      MfbNoise(3, kBands));
      EXPECT_TRUE(SameBits(got, MfbUnpacked(stale, form.path), {form.name, "stale"}));
    }
  }
}

}  // namespace
}  // namespace testing_support
