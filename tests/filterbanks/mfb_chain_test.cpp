// A signal through multichannel analysis and synthesis.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/mfb_banks.h"

namespace testing_support {
namespace {

struct Chain {
  const char *name;
  MfbAnalyse analyse;
  MfbSynthesise synthesise;
  std::span<const float> prototype, twiddle;
  size_t delay;
  double gain, gain_tolerance;
  double least_error, most_error;  // squared, over the signal's energy

  friend std::ostream &operator<<(std::ostream &out, const Chain &chain) {
    return out << chain.name;
  }
};

// Sum over the symmetric prototype.
double ProductsOfNeighbours() {
  const reference::Reals p =
      reference::MfbTapsInTime(MVK_MFB_P10KM_P64ORV301, reference::MfbTime::kForwards);
  double sum = 0;
  for (size_t n = 1; n < p.size(); ++n) sum += p[n - 1] * p[n];
  return sum;
}

#define ANALYSE(name) &MVK_CLmfb_p10km_##name
#define SYNTHESISE(name) &MVK_Lmfb_p10km_synthesisCL_##name
// Reconstruction by the symmetric prototype, and by the ones of low delay.
#define SYMMETRIC 1.000005, 4e-6, 1.5e-8, 2.2e-8
#define LOW_DELAY 1, 1e-5, 0, 3e-7
const Chain kChains[] = {
    {"SymmetricO", ANALYSE(analysisL), SYNTHESISE(symmetric), MVK_MFB_P10KM_P64ORV301,
     MVK_MFB_TWID64O, 576, SYMMETRIC},
    {"SymmetricE", ANALYSE(analysisL), SYNTHESISE(symmetric), MVK_MFB_P10KM_P64ORV301,
     MVK_MFB_TWID64E, 576, SYMMETRIC},
    {"LegacyO", ANALYSE(analysisL_legacy), SYNTHESISE(legacy), MVK_MFB_P10KM_P64ORV301_LEGACY,
     MVK_MFB_TWID64O, 576, SYMMETRIC},
    {"LegacyE", ANALYSE(analysisL_legacy), SYNTHESISE(legacy), MVK_MFB_P10KM_P64ORV301_LEGACY,
     MVK_MFB_TWID64E, 576, SYMMETRIC},
    {"ExtraLatencyO", ANALYSE(analysisL_legacy), SYNTHESISE(legacy_extra_latency),
     MVK_MFB_P10KM_P64ORV301_LEGACY, MVK_MFB_TWID64O, 577, SYMMETRIC},
    // The bands are turned twice by their twiddles' angle.
    {"ExtraLatencyE", ANALYSE(analysisL_legacy), SYNTHESISE(legacy_extra_latency),
     MVK_MFB_P10KM_P64ORV301_LEGACY, MVK_MFB_TWID64E, 577, std::cos(std::numbers::pi / 128), 2e-5,
     3.8e-4, 4.0e-4},
    // The table is symmetric about a tap, its reverse one tap off.
    {"Even1O", ANALYSE(analysisL), SYNTHESISE(even_1), MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64O,
     576, ProductsOfNeighbours() / 64, 1e-5, 4.2e-5, 4.8e-5},
    {"Even0O", ANALYSE(analysisL), SYNTHESISE(even_0), MVK_MFB_P10KM_P4_319SC, MVK_MFB_TWID64O, 256,
     LOW_DELAY},
    {"Even0E", ANALYSE(analysisL), SYNTHESISE(even_0), MVK_MFB_P10KM_P4_319SC, MVK_MFB_TWID64E, 256,
     LOW_DELAY},
    {"Even0Of128Bands", ANALYSE(analysisL), SYNTHESISE(even_0), MVK_MFB_P10KM_P4_319SC_128M,
     MVK_MFB_TWID128E, 512, LOW_DELAY},
    {"Even0Of256Bands", ANALYSE(analysisL), SYNTHESISE(even_0), MVK_MFB_P10KM_P4_319SC_256M,
     MVK_MFB_TWID256E, 1024, LOW_DELAY},
};

class MfbChain : public testing::TestWithParam<Chain> {};

INSTANTIATE_TEST_SUITE_P(All, MfbChain, testing::ValuesIn(kChains), kByName);

// White noise, compared once the banks are filled.
TEST_P(MfbChain, GivesTheSignalBack) {
  const Chain &chain = GetParam();
  const auto m = static_cast<uint32_t>(chain.twiddle.size() / 2);
  MfbAnalysisBank analysis(1, m);
  MfbSynthesisBank synthesis(1, m);
  const std::vector<float> in = MfbNoise(m, 600 * size_t{m});
  const std::vector<float> out =
      synthesis.RunOne(chain.synthesise, chain.prototype, chain.twiddle,
                       analysis.RunOne(chain.analyse, chain.prototype, chain.twiddle, in));
  double energy = 0, common = 0, difference = 0;
  for (size_t i = 20 * m; i < out.size(); ++i) {
    const double x = in[i - chain.delay], y = out[i];
    energy += x * x;
    common += x * y;
    difference += (y - x) * (y - x);
  }
  EXPECT_NEAR(common / energy, chain.gain, chain.gain_tolerance);
  EXPECT_GE(difference / energy, chain.least_error);
  EXPECT_LE(difference / energy, chain.most_error);
}

}  // namespace
}  // namespace testing_support
