// What the filters do to a signal.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "component/engine_pair.h"
#include "component/random_samples.h"
#include "reference/prototype_taps.h"
#include "reference/resampler_reference.h"

namespace testing_support {
namespace {

class ResamplerSignal : public testing::TestWithParam<EngineShape> {
 protected:
  static constexpr size_t kFrames = 1024;

  unsigned factor() const { return GetParam().factor; }
  bool up() const { return GetParam().up; }
  std::vector<float> Run(const std::vector<float> &x) const { return RunStream(factor(), up(), x); }
  reference::FormulaResult Formula(const std::vector<float> &x, size_t n) const {
    return reference::Formula(factor(), up(), x, static_cast<int>(n));
  }
};

INSTANTIATE_TEST_SUITE_P(Filters, ResamplerSignal, testing::ValuesIn(kFilters), ShapeSuffix);

// Every tap is a whole number over 2^15, so that small whole samples make each partial sum exact:
// the stream must equal the formula without any tolerance, over the seams of blocks too.
TEST_P(ResamplerSignal, EqualsTheFormulaOnWholeNumbers) {
  Random random(21);
  std::vector<float> x(kFrames);
  for (float &sample : x) sample = static_cast<float>(static_cast<int>(random.Below(255)) - 127);
  const std::vector<float> y = Run(x);
  for (size_t n = 0; n < y.size(); ++n) ASSERT_EQ(y[n], Formula(x, n).value) << "frame " << n;
}

TEST_P(ResamplerSignal, StaysWithinRoundingOfTheFormula) {
  Random random(22);
  for (int material = 0; material < 2; ++material) {
    std::vector<float> x(kFrames);
    for (float &sample : x) sample = material == 0 ? random.Unit() : random.Finite();
    const std::vector<float> y = Run(x);
    for (size_t n = 0; n < y.size(); ++n) {
      const auto exact = Formula(x, n);
      ASSERT_NEAR(y[n], exact.value, reference::RoundingBound(factor(), up(), exact))
          << "frame " << n;
    }
  }
}

// An impulse at every place of a block runs through the whole prototype.
TEST_P(ResamplerSignal, AnImpulseGivesThePrototype) {
  for (size_t at = 0; at < 256; ++at) {
    std::vector<float> x(512);
    x[at] = 1.0f;
    const std::vector<float> y = Run(x);
    for (size_t n = 0; n < y.size(); ++n) {
      ASSERT_EQ(y[n], Formula(x, n).value) << "impulse at " << at << ", frame " << n;
    }
  }
}

size_t Peak(const std::vector<float> &y) {
  return static_cast<size_t>(std::max_element(y.begin(), y.end()) - y.begin());
}

struct PeakOfAnImpulse {
  EngineShape shape;
  size_t at;
  size_t peak;
  float value;
};

TEST(ResamplerFigures, ImpulsesPeakAfterTheLatency) {
  const PeakOfAnImpulse cases[] = {
      {{2, true}, 7, 41, 0.926025390625f},
      {{4, true}, 7, 83, 0.91796875f},
      {{2, false}, 200, 113, 0.4630126953125f},
      {{4, false}, 400, 113, 0.2294921875f},
  };
  for (const auto &[shape, at, peak, value] : cases) {
    SCOPED_TRACE(Name(shape));
    std::vector<float> x(512);
    x[at] = 1.0f;
    const std::vector<float> y = RunStream(shape.factor, shape.up, x);
    EXPECT_EQ(Peak(y), peak);
    EXPECT_EQ(y[Peak(y)], value);
    const size_t centre = shape.factor == 2 ? 27 : 55;
    EXPECT_EQ(peak, shape.up ? shape.factor * at + centre : at / shape.factor + 13);
  }
}

TEST(ResamplerFigures, AConstantKeepsItsLevelButForTheGainOfEachPhase) {
  const struct {
    EngineShape shape;
    std::vector<float> levels;  // of the output frames in turn
  } cases[] = {
      {{2, true}, {0.99169921875f, 0.9918212890625f}},
      {{4, true}, {0.9869384765625f, 0.98681640625f, 0.9869384765625f, 0.9873046875f}},
      {{2, false}, {0.99176025390625f}},
      {{4, false}, {0.98699951171875f}},
  };
  for (const auto &[shape, levels] : cases) {
    SCOPED_TRACE(Name(shape));
    const std::vector<float> y = RunStream(shape.factor, shape.up, std::vector<float>(1024, 1.0f));
    for (size_t n = 96; n < y.size(); ++n) ASSERT_EQ(y[n], levels[n % levels.size()]) << n;
  }
}

TEST_P(ResamplerSignal, SilenceStaysSilenceWithoutASign) {
  for (float silence : {0.0f, -0.0f}) {
    for (float y : Run(std::vector<float>(kFrames, silence))) {
      ASSERT_TRUE(SameFloat(y, 0.0f)) << "from " << silence;
    }
  }
}

// The samples that one output sees: slot k of phase p is window sample k, and slots beyond the taps
// of a phase count as zeros, up to the 24th of phase 0 and the 20th of the others.
TEST_P(ResamplerSignal, AnInfinityMakesNaNWhereItMeetsATapOfZero) {
  const int f = static_cast<int>(factor());
  for (const float infinity : {kInfinity, -kInfinity}) {
    for (int at : {0, 31, 125, 259}) {
      std::vector<float> x(kFrames);
      x[static_cast<size_t>(at)] = infinity;
      const std::vector<float> y = Run(x);
      for (int n = 0; n < static_cast<int>(y.size()); ++n) {
        const int phase = up() ? f - 1 - n % f : at % f;
        const int slot = up() ? at + reference::kHistory - n / f : at / f + reference::kHistory - n;
        float wanted = 0.0f;
        if (slot >= 0 && slot < (phase == 0 ? 24 : 20)) {
          wanted = infinity * static_cast<float>(reference::Tap(factor(), f * slot + phase));
        }
        ASSERT_TRUE(SameFloat(y[static_cast<size_t>(n)], wanted))
            << infinity << " at " << at << ", frame " << n;
      }
    }
  }
}

TEST_P(ResamplerSignal, DenormalsAreKept) {
  Random random(23);
  std::vector<float> x(kFrames);
  for (float &sample : x) sample = random.Unit() * 0x1p-126f;
  const std::vector<float> y = Run(x);
  double largest = 0;
  for (size_t n = 0; n < y.size(); ++n) {
    const auto exact = Formula(x, n);
    largest = std::max<double>(largest, std::abs(y[n]));
    // Each of the fused steps rounds to a multiple of 2^-149.
    ASSERT_NEAR(y[n], exact.value, 100 * 0x1p-149) << "frame " << n;
  }
  EXPECT_GT(largest, 0x1p-128);
  EXPECT_LT(largest, 0x1p-124);
}

}  // namespace
}  // namespace testing_support
