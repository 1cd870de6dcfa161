// The sub-bands of the hybrid bank against the sums that define them.
#include <gtest/gtest.h>

#include <complex>
#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/hybrid_banks.h"
#include "mvk_hybrid.h"

namespace testing_support {
namespace {

class HybridSubBands : public testing::TestWithParam<HybridMode> {};

INSTANTIATE_TEST_SUITE_P(All, HybridSubBands, testing::ValuesIn(reference::HybridModes()), kByName);

// Call for call, what is in the sub-bands of these samples of the bands.
void ExpectSubBands(const HybridMode &mode, const std::vector<float> &in) {
  HybridAnalysis bank(mode.flags);
  const std::vector<float> got = bank.Run(in);
  const size_t count = mode.sub_bands.size();
  ASSERT_EQ(got.size(), in.size() / 6 * 2 * count);
  std::vector<WideComplex> bands[reference::kHybridBands];
  for (size_t call = 0; 6 * call < in.size(); ++call) {
    for (size_t b = 0; b < reference::kHybridBands; ++b) {
      bands[b].emplace_back(in[6 * call + 2 * b], in[6 * call + 2 * b + 1]);
    }
    for (size_t i = 0; i < count; ++i) {
      const HybridSubBand &sub_band = mode.sub_bands[i];
      const reference::HybridValue want = ExactHybrid(sub_band, bands[sub_band.band]);
      const float *const pair = &got[2 * (call * count + i)];
      ASSERT_LE(std::abs(WideComplex(pair[0], pair[1]) - want.value), want.bound)
          << "call " << call << ", sub-band " << i << ": " << pair[0] << ", " << pair[1] << " for "
          << want.value;
    }
  }
}

TEST_P(HybridSubBands, AnswerImpulsesByTheirFilters) {
  for (size_t part = 0; part < 6; ++part) {
    SCOPED_TRACE(testing::Message()
                 << (part % 2 == 0 ? "real" : "imaginary") << ", band " << part / 2);
    std::vector<float> in(6 * 16);
    in[part] = 1;
    ExpectSubBands(GetParam(), in);
  }
}

TEST_P(HybridSubBands, SumUpTheirSamples) {
  for (const Material &material : {kUniform, kClose}) {
    ExpectSubBands(GetParam(), HybridNoise(1, 200, material));
  }
}

TEST_P(HybridSubBands, AddUpToTheirBandsSixSamplesLater) {
  const std::vector<float> in = HybridNoise(2, 100, kUniform);
  HybridAnalysis analysis(GetParam().flags);
  HybridSynthesis synthesis(GetParam().flags);
  EXPECT_EQ(MVK_hybrid_analysisCL_get_delay(), 6u);
  EXPECT_EQ(MVK_hybrid_synthesisCL_get_delay(), 6u);
  const std::vector<float> out = synthesis.Run(analysis.Run(in));
  for (size_t i = 0; i < out.size(); ++i) {
    // Eight values at most, each off by twelve roundings of what its taps sum up.
    ASSERT_NEAR(out[i], i < 36 ? 0 : in[i - 36], 1e-5) << i;
  }
}

TEST(HybridSubBand, HasItsMiddleTapSixSamplesLater) {
  std::vector<float> in(6 * 9);
  in[0] = 1;
  HybridAnalysis bank(MVK_HYBRID_MODE_1);
  const std::vector<float> got = bank.Run(in);
  const auto at = [&](size_t age) { return std::complex<float>(got[32 * age], got[32 * age + 1]); };
  EXPECT_EQ(at(6), std::complex<float>(0.125f));
  EXPECT_NEAR(std::abs(at(5)), 0.1179371, 1e-7);
  EXPECT_NEAR(std::arg(at(5)), -std::numbers::pi / 8, 1e-6);
  EXPECT_NEAR(std::abs(at(7)), 0.1179371, 1e-7);
  EXPECT_NEAR(std::arg(at(7)), std::numbers::pi / 8, 1e-6);
}

}  // namespace
}  // namespace testing_support
