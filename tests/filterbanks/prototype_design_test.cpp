// What the prototypes of 64 bands are designed for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "filterbanks/by_name.h"
#include "filterbanks/qmf_banks.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

struct Goal {
  const char *name;
  double middle, beside_middle;  // 0 where that isn't fixed
  double side_lobe;              // dB

  friend std::ostream &operator<<(std::ostream &out, const Goal &goal) { return out << goal.name; }
};

constexpr Goal kGoals[] = {{"P4", 0.866940, 0.867240, -70.5},
                           {"P5", 0.853739, 0, -80.2},
                           {"P5_p64orv301", 0.860848, 0, -73.4}};
constexpr double kHalfOfTheLastDigit = 0.5e-6;
constexpr uint32_t kBands = 64;

class PrototypeDesign : public testing::TestWithParam<Goal> {
 protected:
  PrototypeDesign()
      : window_(QmfPrototypeOf(GetParam().name).window),
        p_(PrototypeOf(window_, QmfPrototypeOf(GetParam().name).syn.data())) {}

  size_t Middle() const { return p_.size() / 2; }

  // Amplitudes at the frequencies pi k / kGrid: the taps are symmetric about the middle.
  std::vector<double> Response() const {
    const auto roots = reference::Roots<double>(2 * kGrid, reference::Direction::kForward);
    std::vector<double> response;
    for (size_t k = 0; k <= kGrid; ++k) {
      double sum = p_[Middle()];
      for (size_t i = 1; i <= Middle(); ++i) {
        sum += 2 * p_[Middle() + i] * roots[i * k % (2 * kGrid)].real();
      }
      response.push_back(std::fabs(sum));
    }
    return response;
  }

  static constexpr size_t kGrid = 128 * kBands;  // some 25 points a lobe

  QmfWindow window_;
  reference::Taps p_;
};

double Decibels(double ratio) { return 20 * std::log10(ratio); }

INSTANTIATE_TEST_SUITE_P(All, PrototypeDesign, testing::ValuesIn(kGoals), kByName);

TEST_P(PrototypeDesign, HasItsValuesInTheMiddle) {
  EXPECT_NEAR(p_[Middle()], GetParam().middle, kHalfOfTheLastDigit);
  if (GetParam().beside_middle != 0) {
    EXPECT_NEAR(p_[Middle() + 1], GetParam().beside_middle, kHalfOfTheLastDigit);
  }
}

TEST_P(PrototypeDesign, HasTheEnergyOfItsBands) {
  double energy = 0;
  for (const double tap : p_) energy += tap * tap;
  EXPECT_NEAR(energy / kBands, 1, 2e-5);
}

TEST_P(PrototypeDesign, IsHalfAsStrongWhereBandsMeet) {
  const std::vector<double> response = Response();
  // -3 dB to the digit.
  EXPECT_NEAR(Decibels(response[kGrid / (2 * kBands)] / response[0]), Decibels(std::sqrt(0.5)),
              0.05);
}

TEST_P(PrototypeDesign, HasSideLobesNoHigherThanThis) {
  const std::vector<double> response = Response();
  const double peak =
      *std::max_element(response.begin() + 3 * kGrid / (2 * kBands), response.end());
  EXPECT_NEAR(Decibels(peak / response[0]), GetParam().side_lobe, 0.35);
}

TEST(ShortPrototypeEnergy, IsThatOfTheirBands) {
  for (const QmfPrototype &prototype : kQmfPrototypes) {
    if (prototype.window.bands == kBands) continue;
    double energy = 0;
    for (const double tap : PrototypeOf(prototype.window, prototype.syn.data())) {
      energy += tap * tap;
    }
    EXPECT_NEAR(energy / prototype.window.bands, 1, 6e-5) << prototype.name;
  }
}

}  // namespace
}  // namespace testing_support
