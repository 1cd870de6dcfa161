// The delay lines of the multichannel syntheses to the bit, and what comes into them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "dct/pair_kinds.h"
#include "filterbanks/mfb_banks.h"
#include "reference/mfb_steps.h"

namespace testing_support {
namespace {

using reference::MfbEither;
using reference::MfbSynthesisWindow;

class MfbSynthesisSteps : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, MfbSynthesisSteps, testing::ValuesIn(kMoreMfbBands),
                         testing::PrintToStringParamName());

// Real parts, then imaginary ones.
std::pair<std::vector<float>, std::vector<float>> Parts(std::span<const float> pairs) {
  std::pair<std::vector<float>, std::vector<float>> parts;
  for (size_t i = 0; i < pairs.size(); i += 2) {
    parts.first.push_back(pairs[i]);
    parts.second.push_back(pairs[i + 1]);
  }
  return parts;
}

void ExpectDelayLine(const MfbSynthesisForm &form, uint32_t m, const Material &material,
                     bool has_pair) {
  Random random(m);
  const std::vector<float> table = Samples(material, random, kMfbTaps * m);
  MfbSynthesisBank bank(1, m);
  if (!has_pair) bank.record()->pair = nullptr;
  mvk_fft_kernel *const kernel = has_pair ? FastestPair(m)->unscaled : MVK_r4_cplx_fwd_unscaled(m);
  MfbSynthesisWindow window(form.rule, table, m);
  for (int slot = 0; slot < 14; ++slot) {
    const std::vector<float> y = Samples(material, random, 2 * m);
    const auto [a, b] = Parts(MfbTransformed(kernel, MfbPacked(y, form.rule.pack)));
    ASSERT_TRUE(SameSamples(bank.RunOne(form.process, table, reference::MfbUnitPairs(m), y),
                            window.Slot(b, a), {form.name, "", m, {}, material.name}))
        << "slot " << slot;
  }
}

TEST_P(MfbSynthesisSteps, AddTheTermsOneByOneThroughNineStages) {
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    for (const Material &material : {kUniform, kClose}) {
      ExpectDelayLine(form, GetParam(), material, true);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(MfbSynthesisSteps, LookUpAKernelWithoutPair) {
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    ExpectDelayLine(form, GetParam(), kUniform, false);
    if (HasFatalFailure()) return;
  }
}

// Taps of a half let both streams of a slot through, one after the other.
TEST_P(MfbSynthesisSteps, TurnTheBinsByOneRoundedProductAndOneFusedStep) {
  const uint32_t m = GetParam();
  const std::vector<float> twiddle = MfbNoise(1, 2 * m), y = MfbNoise(2, 2 * m);
  const std::vector<float> halves(kMfbTaps * m, 0.5f);
  std::vector<float> slots = y;
  slots.resize(2 * y.size());
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    const auto [a, b] =
        Parts(MfbTransformed(FastestPair(m)->unscaled, MfbPacked(y, form.rule.pack)));
    MfbSynthesisBank bank(1, m);
    const std::vector<float> got = bank.RunOne(form.process, halves, twiddle, slots);
    for (size_t k = 0; k < m; ++k) {
      const auto [c1, c2] = reference::MfbPair(twiddle, k);
      const MfbEither u(a[k], c2, b[k], c1), v(a[k], c1, -b[k], c2);
      for (size_t term = 0; term < 2; ++term) {
        const char sign = form.rule.terms[4 * term], stream = form.rule.terms[4 * term + 2];
        const float x = got[term * m + (form.rule.reversed_output ? m - 1 - k : k)];
        ASSERT_TRUE((stream == 'U' ? u : v).Has(sign == '-' ? -x : x))
            << form.name << ", bin " << k << ", term " << term;
      }
    }
  }
}

TEST_P(MfbSynthesisSteps, AreSilentTenSlotsLater) {
  const uint32_t m = GetParam();
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    MfbSynthesisBank bank(1, m);
    std::vector<float> slots = MfbNoise(1, 2 * 3 * m);
    slots.resize(2 * 13 * m);
    const std::vector<float> y =
        bank.RunOne(form.process, MfbNoise(2, kMfbTaps * m), MfbNoise(3, 2 * m), slots);
    const auto silence = y.begin() + 12 * m;
    EXPECT_TRUE(std::all_of(silence, y.end(), [](float x) { return x == 0; })) << form.name;
    EXPECT_TRUE(std::any_of(silence - m, silence, [](float x) { return x != 0; })) << form.name;
  }
}

}  // namespace
}  // namespace testing_support
