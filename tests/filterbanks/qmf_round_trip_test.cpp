// A signal through analysis and synthesis.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "filterbanks/qmf_banks.h"

namespace testing_support {
namespace {

// Energy of what a family adds to a signal, over the signal's. Its shorter forms differ by a few
// hundredths.
struct Goal {
  std::string family;
  double least, most;
};

const Goal kGoals[] = {{"P4", 0.9 * 4.5e-8, 1.1 * 4.5e-8},
                       {"P5", 0.9 * 1.2e-6, 1.1 * 1.2e-6},
                       {"P5_p64orv301", 1.8e-8, 2.4e-8}};

const Goal &GoalOf(const QmfPrototype &prototype) {
  const std::string name = prototype.name;
  for (const Goal &goal : kGoals) {
    if (name == goal.family || name == goal.family + "_" + std::to_string(prototype.window.bands)) {
      return goal;
    }
  }
  std::abort();
}

struct Outcome {
  double gain;
  double error;
};

// Of white noise, once the banks are filled.
Outcome Compare(const std::vector<float> &in, const std::vector<float> &out, size_t delay) {
  double energy = 0, common = 0, difference = 0;
  for (size_t i = delay; i < out.size(); ++i) {
    const double x = in[i - delay], y = out[i];
    energy += x * x;
    common += x * y;
    difference += (y - x) * (y - x);
  }
  return {common / energy, difference / energy};
}

Outcome RoundTrip(const QmfPrototype &prototype, bool is_complex, uint32_t mode = 0) {
  const auto [order, bands] = prototype.window;
  QmfBank<LongAnalysis> analysis({bands, order, prototype.ana.data(), 1, mode});
  QmfBank<LongSynthesis> synthesis({bands, order, prototype.syn.data(), 1, mode});
  const std::vector<float> in = QmfNoise(bands, 38400);
  const std::vector<float> out =
      is_complex ? synthesis.Complex(analysis.Complex(in)) : synthesis.Real(analysis.Real(in));
  const uint32_t delay = MVK_qmf_analysisL_get_delay(analysis.record()) +
                         MVK_qmf_synthesisL_get_delay(synthesis.record());
  EXPECT_EQ(delay, 2 * order * bands - bands + 1) << prototype.name;
  return Compare(in, out, delay);
}

void ExpectMet(const Outcome &outcome, const QmfPrototype &prototype) {
  const Goal &goal = GoalOf(prototype);
  EXPECT_GT(outcome.error, goal.least);
  EXPECT_LT(outcome.error, goal.most);
  EXPECT_NEAR(outcome.gain, 1, prototype.window.bands == 64 ? 4e-5 : 6e-5);
}

TEST(QmfRoundTrip, GivesTheSignalBack) {
  for (const QmfPrototype &prototype : kQmfPrototypes) {
    SCOPED_TRACE(prototype.name);
    if (prototype.window.bands != 48) ExpectMet(RoundTrip(prototype, false), prototype);
    for (const QmfMode &mode : ModesOf(prototype.window.bands)) {
      SCOPED_TRACE(testing::Message() << "complex, mode " << mode.value);
      ExpectMet(RoundTrip(prototype, true, mode.value), prototype);
    }
  }
}

}  // namespace
}  // namespace testing_support
