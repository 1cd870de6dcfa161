// The reference itself, held against the closed formulas and against orders of summation that it
// must not have.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "component/engine_pair.h"
#include "component/random_samples.h"
#include "reference/resampler_reference.h"

namespace testing_support {
namespace {

std::vector<float> RunReference(const EngineShape &shape, const std::vector<float> &x) {
  reference::Engine engine(shape.factor, 1, shape.up);
  return RunBlocks(engine, x, [&](auto out, auto in) { reference::Run(engine, out, in); });
}

class Reference : public testing::TestWithParam<EngineShape> {};

INSTANTIATE_TEST_SUITE_P(Filters, Reference, testing::ValuesIn(kFilters), ShapeSuffix);

// Small whole numbers keep every partial sum exact.
TEST_P(Reference, MatchesTheFormulaExactlyOnWholeNumbers) {
  Random random(1);
  std::vector<float> x(1024);
  for (float &sample : x) sample = static_cast<float>(static_cast<int>(random.Below(255)) - 127);
  const std::vector<float> y = RunReference(GetParam(), x);
  for (size_t n = 0; n < y.size(); ++n) {
    const auto exact = reference::Formula(GetParam().factor, GetParam().up, x, static_cast<int>(n));
    ASSERT_EQ(y[n], exact.value) << "frame " << n;
  }
}

TEST_P(Reference, StaysWithinTheRoundingBound) {
  Random random(2);
  std::vector<float> x(1024);
  for (float &sample : x) sample = random.Finite();
  const std::vector<float> y = RunReference(GetParam(), x);
  for (size_t n = 0; n < y.size(); ++n) {
    const auto exact = reference::Formula(GetParam().factor, GetParam().up, x, static_cast<int>(n));
    ASSERT_NEAR(y[n], exact.value,
                reference::RoundingBound(GetParam().factor, GetParam().up, exact))
        << "frame " << n;
  }
}

// One tap that is wrong by its last digit lies outside the bound somewhere.
TEST_P(Reference, TheRoundingBoundCatchesOneWrongDigitOfOneTap) {
  Random random(3);
  const std::vector<float> x = UnitNoise(random, 1024);
  const double gain = GetParam().up ? GetParam().factor : 1;
  bool caught = false;
  for (int n = 100; n < 200; ++n) {
    const auto exact = reference::Formula(GetParam().factor, GetParam().up, x, n);
    const double error = gain / 32768 * x[static_cast<size_t>(n)];
    caught |=
        std::abs(error) > 2 * reference::RoundingBound(GetParam().factor, GetParam().up, exact);
  }
  EXPECT_TRUE(caught);
}

// The order of a sum shows in its bits: on random samples each of these orders differs from the
// reference's, so that a comparison with it can't pass by chance.
TEST(ReferenceOrder, OtherOrdersGiveOtherBits) {
  Random random(4);
  constexpr size_t kSlots = 24;
  std::array<int, 5> differing{};
  for (int round = 0; round < 1000; ++round) {
    const std::vector<float> x = UnitNoise(random, kSlots);
    const auto sample = [&](int k) { return x[static_cast<size_t>(k)]; };
    reference::Lanes lanes;
    lanes.AddPhase(2, 0, sample);

    std::array<float, 4> rounded_twice{};
    float in_a_row = 0;
    for (int k = 0; k < 24; ++k) {
      const float coefficient = reference::Coefficient(2, 0, k);
      volatile float product = coefficient * sample(k);
      rounded_twice[static_cast<size_t>(k % 4)] += product;
      in_a_row = std::fma(coefficient, sample(k), in_a_row);
    }
    const auto &a = lanes.sum;
    const auto &r = rounded_twice;
    const float others[] = {(r[0] + r[1]) + (r[2] + r[3]), in_a_row, ((a[0] + a[1]) + a[2]) + a[3],
                            (a[0] + a[2]) + (a[1] + a[3]), (a[0] + a[3]) + (a[1] + a[2])};
    for (size_t k = 0; k < differing.size(); ++k) differing[k] += others[k] != lanes.Total();
  }
  for (int count : differing) EXPECT_GT(count, 100);
}

}  // namespace
}  // namespace testing_support
