// The output of the multichannel syntheses against the sums that define it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/mfb_banks.h"
#include "reference/mfb_exact.h"

namespace testing_support {
namespace {

using reference::ExactMfbSynthesis;
using reference::WideComplex;

class MfbSynthesis : public testing::TestWithParam<MfbTwiddles> {};

INSTANTIATE_TEST_SUITE_P(All, MfbSynthesis, testing::ValuesIn(kMfbTwiddles), kByName);

// All bands with the first table, and some with the others.
TEST_P(MfbSynthesis, AnswersABandByThePrototypeOnItsCarrier) {
  const auto &[name, m, is_even, twiddle] = GetParam();
  const std::complex<float> band(0.75f, -0.5f);
  constexpr size_t kSlots = 11;
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    for (const MfbTable &table : MfbTables(m)) {
      const ExactMfbSynthesis exact(table.values, form.answer, is_even);
      MfbSynthesisBank bank(1, m);
      for (size_t k = 0; k < m; k += table.name == "any" ? 1 : m / 8 - 1) {
        std::vector<float> slots(2 * kSlots * m);
        slots[2 * k] = band.real();
        slots[2 * k + 1] = band.imag();
        const std::vector<float> y = bank.RunOne(form.process, table.values, twiddle, slots);
        for (size_t n = 0; n < y.size(); ++n) {
          ASSERT_LE(std::fabs(y[n] - exact.Response(k, WideComplex(band), n)),
                    exact.ResponseBound(WideComplex(band), n, kMfbModulation))
              << form.name << ", " << table.name << ", band " << k << ", sample " << n;
        }
      }
    }
  }
}

TEST_P(MfbSynthesis, SumsUpItsSlots) {
  const auto &[name, m, is_even, twiddle] = GetParam();
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    for (const MfbTable &table : MfbTables(m)) {
      const ExactMfbSynthesis exact(table.values, form.answer, is_even);
      const MfbChannels slots = MfbNoiseChannels(m, 2, 2 * 14 * m);
      MfbSynthesisBank bank(2, m);
      const MfbChannels y = bank.Run(form.process, table.values, twiddle, slots);
      for (size_t c = 0; c < slots.size(); ++c) {
        const reference::QmfOutput want = exact.Of(slots[c], kMfbModulation);
        for (size_t n = 0; n < y[c].size(); ++n) {
          ASSERT_LE(std::fabs(y[c][n] - want.samples[n]), want.bounds[n])
              << form.name << ", " << table.name << ", channel " << c << ", sample " << n;
        }
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
