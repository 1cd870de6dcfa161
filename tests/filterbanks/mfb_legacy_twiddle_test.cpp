// The legacy analysis whose bins are turned by a table of the caller's.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "dct/pair_kinds.h"
#include "filterbanks/mfb_banks.h"
#include "reference/mfb_steps.h"

namespace testing_support {
namespace {

class MfbLegacyTwiddle : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, MfbLegacyTwiddle, testing::ValuesIn(kMoreMfbBands),
                         testing::PrintToStringParamName());

constexpr auto kLegacyTwiddle = &MVK_CLmfb_p10km_analysisL_legacy_twiddle;

// One of two products is rounded, either of them.
TEST_P(MfbLegacyTwiddle, TurnsTheBinsByFourEntriesAStep) {
  const uint32_t m = GetParam();
  const std::vector<float> table = MfbNoise(1, kMfbTaps * m), post = MfbNoise(2, m);
  const MfbChannels x = MfbNoiseChannels(3, 2, 20 * m);
  MfbAnalysisBank bank(2, m);
  const MfbChannels got =
      bank.Run(kLegacyTwiddle, table, reference::MfbUnitPairs(m), x, post.data());
  EXPECT_EQ(bank.record()->position, 20u);
  for (size_t c = 0; c < x.size(); ++c) {
    reference::MfbAnalysisWindow window(table, m, MfbPath::kLegacy);
    for (size_t s = 0; s < 20; ++s) {
      const auto u = MfbUnturned(window.Slot(&x[c][s * m]), MfbPath::kLegacy);
      const auto f = MfbTransformed(FastestPair(m)->scaled, u);
      const auto want = reference::MfbPostTwiddled(f, post);
      ASSERT_EQ(want.size(), 2 * m);
      for (size_t i = 0; i < want.size(); ++i) {
        ASSERT_TRUE(want[i].Has(got[c][2 * s * m + i]))
            << "channel " << c << ", slot " << s << ", band " << i / 2 << ": "
            << got[c][2 * s * m + i] << " for " << want[i].candidates[0];
      }
    }
  }
}

// One table gives the lower half of the legacy bands and another the upper one.
TEST(MfbLegacyTwiddleOfOnes, GivesTheLegacyAnalysis) {
  constexpr uint32_t kBands = 64;
  const std::vector<float> x = MfbNoise(1, 12 * kBands);
  const auto &table = MVK_MFB_P10KM_P64ORV301_LEGACY;
  const auto &twiddle = MVK_MFB_TWID64E;
  MfbAnalysisBank legacy(1, kBands);
  const std::vector<float> want =
      legacy.RunOne(&MVK_CLmfb_p10km_analysisL_legacy, table, twiddle, x);
  std::vector<float> lower, upper;
  for (size_t i = 0; i < kBands / 4; ++i) {
    lower.insert(lower.end(), {-1, 0, -1, 0});
    upper.insert(upper.end(), {0, 1, 0, 1});
  }
  for (const bool is_upper : {false, true}) {
    MfbAnalysisBank bank(1, kBands);
    const std::vector<float> got =
        bank.RunOne(kLegacyTwiddle, table, twiddle, x, is_upper ? upper.data() : lower.data());
    for (size_t i = 0; i < got.size(); ++i) {
      if ((i % (2 * kBands) >= kBands) != is_upper) continue;
      ASSERT_EQ(got[i], want[i]) << i;
    }
  }
}

}  // namespace
}  // namespace testing_support
