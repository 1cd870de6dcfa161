// The bands of multichannel analysis banks against the sums that define them.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/mfb_banks.h"
#include "reference/mfb_exact.h"

namespace testing_support {
namespace {

using reference::ExactMfbAnalysis;
using reference::QmfSlot;
using reference::WideComplex;

class MfbAnalysis : public testing::TestWithParam<MfbTwiddles> {};

INSTANTIATE_TEST_SUITE_P(All, MfbAnalysis, testing::ValuesIn(kMfbTwiddles), kByName);

void ExpectSlot(const float *got, const QmfSlot &want) {
  for (size_t k = 0; k < want.bands.size(); ++k) {
    ASSERT_LE(std::abs(WideComplex(got[2 * k], got[2 * k + 1]) - want.bands[k]), want.bound)
        << "band " << k;
  }
}

TEST_P(MfbAnalysis, AnswersImpulsesByThePrototypeOnItsCarriers) {
  constexpr float kImpulse = 0.75f;
  const auto &[name, m, is_even, twiddle] = GetParam();
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const MfbTable &table : MfbTables(m)) {
      const ExactMfbAnalysis exact(table.values, form.path, is_even);
      for (const size_t place : {0u, 1u, 2u, 3u, m / 2, m - 2, m - 1, m, 2 * m + 1}) {
        SCOPED_TRACE(testing::Message()
                     << form.name << ", " << table.name << ", impulse at " << place);
        std::vector<float> x(14 * size_t{m});
        x[place] = kImpulse;
        MfbAnalysisBank bank(1, m);
        const std::vector<float> y = bank.RunOne(form.process, table.values, twiddle, x);
        for (size_t s = 0; s < 14; ++s) {
          SCOPED_TRACE(testing::Message() << "slot " << s);
          const size_t newest = (s + 1) * m - 1;
          QmfSlot want{reference::WideArray(m), 0};
          for (size_t k = 0; k < m && newest >= place; ++k) {
            want.bands[k] = double{kImpulse} * exact.Response(k, newest - place);
          }
          want.bound = (kMfbModulation + 4 * reference::kRounding) * reference::Rms(want.bands);
          ExpectSlot(&y[2 * s * m], want);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST_P(MfbAnalysis, SumsUpItsInput) {
  const auto &[name, m, is_even, twiddle] = GetParam();
  constexpr size_t kSlots = 22;  // twice around the ring and more
  for (const MfbAnalysisForm &form : kMfbAnalyses) {
    for (const MfbTable &table : MfbTables(m)) {
      const ExactMfbAnalysis exact(table.values, form.path, is_even);
      const MfbChannels x = MfbNoiseChannels(m, 2, kSlots * m);
      MfbAnalysisBank bank(2, m);
      const MfbChannels y = bank.Run(form.process, table.values, twiddle, x);
      for (size_t c = 0; c < x.size(); ++c) {
        for (size_t s = 0; s < kSlots; ++s) {
          SCOPED_TRACE(testing::Message()
                       << form.name << ", " << table.name << ", channel " << c << ", slot " << s);
          ExpectSlot(&y[c][2 * s * m], exact.Slot(x[c], s, kMfbModulation));
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

// The symmetric prototype of 640 taps is highest at tap 320.
TEST(MfbAnalysisOf64Bands, IsLoudestHalfTheWindowBehindAnImpulse) {
  constexpr size_t kLoudest[] = {319, 320};
  for (size_t i = 0; i < 2; ++i) {
    const MfbAnalysisForm &form = kMfbAnalyses[i];
    const auto &table = kMfbPrototypes[i].values;
    std::vector<float> loudness;  // of a band, by the distance of the impulse
    for (size_t d = 300; d < 340; ++d) {
      std::vector<float> x(640);
      x[639 - d] = 1;
      MfbAnalysisBank bank(1, 64);
      const std::vector<float> y = bank.RunOne(form.process, table, MVK_MFB_TWID64E, x);
      loudness.push_back(std::abs(std::complex<float>(y[9 * 128 + 34], y[9 * 128 + 35])));
    }
    const auto loudest = std::max_element(loudness.begin(), loudness.end());
    EXPECT_EQ(300 + static_cast<size_t>(loudest - loudness.begin()), kLoudest[i]) << form.name;
    EXPECT_NEAR(*loudest, 0.860848 / 128, 1e-8) << form.name;
  }
}

}  // namespace
}  // namespace testing_support
