// What the prototypes of low delay are designed for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "filterbanks/mfb_banks.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

struct Design {
  MfbPrototype prototype;
  size_t peak_place;
  double peak;
};

const Design kDesigns[] = {{kMfbPrototypes[2], 465, 0.939412},
                           {kMfbPrototypes[3], 930, 0.939452},
                           {kMfbPrototypes[4], 1860, 0.939460}};

class MfbLowDelay : public testing::TestWithParam<Design> {
 protected:
  MfbLowDelay()
      : bands_(GetParam().prototype.bands),
        taps_(
            reference::MfbTapsInTime(GetParam().prototype.values, reference::MfbTime::kForwards)) {}

  double Energy() const {
    double energy = 0;
    for (const double tap : taps_) energy += tap * tap;
    return energy;
  }

  uint32_t bands_;
  reference::Reals taps_;  // in time
};

INSTANTIATE_TEST_SUITE_P(All, MfbLowDelay, testing::ValuesIn(kDesigns), [](const auto &tested) {
  return std::string(tested.param.prototype.name);
});

TEST_P(MfbLowDelay, HasItsLargestTapInTheLastThird) {
  const auto largest = std::max_element(
      taps_.begin(), taps_.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  EXPECT_EQ(static_cast<size_t>(largest - taps_.begin()), GetParam().peak_place);
  EXPECT_NEAR(*largest, GetParam().peak, 0.5e-6);
}

// To the digits at 64 bands. The sums over more bands are those of the same shape, more closely.
TEST_P(MfbLowDelay, HasItsEnergy) {
  EXPECT_NEAR(Energy() * 64 / bands_, 71.517, bands_ == 64 ? 0.5e-3 : 1e-3);
}

TEST_P(MfbLowDelay, HasSideLobesNoHigherThanThis) {
  const size_t points = 16 * taps_.size();
  reference::WideArray padded(taps_.begin(), taps_.end());
  padded.resize(points);
  const auto response =
      ExactTransform(padded, reference::Direction::kForward, reference::Scaling::kUnscaled);
  double peak = 0;
  for (size_t i = (3 * points + 4 * bands_ - 1) / (4 * bands_); i <= points / 2; ++i) {
    peak = std::max(peak, std::abs(response[i]));
  }
  EXPECT_LT(20 * std::log10(peak / std::abs(response[0])), -70.5);
}

// With h the reverse in time: sums of products of taps whose places add up to 5 M - 1, by the place
// in a block, are 1, and those of taps 2 M, 4 M and so on away from that are 0.
TEST_P(MfbLowDelay, HasSumsOfProductsOfABankThatGivesTheSignalBack) {
  const auto m = static_cast<int>(bands_), count = 10 * m;
  const auto h = [&](int n) {
    return n < 0 || n >= count ? 0.0 : taps_[static_cast<size_t>(count - 1 - n)];
  };
  double misses = 0;
  for (int shift = -8; shift <= 14; ++shift) {
    for (int r = 0; r < m; ++r) {
      double sum = 0;
      for (int j = 0; j < 10; ++j) sum += h(r + j * m) * h(5 * m - 1 + 2 * shift * m - r - j * m);
      misses += (sum - (shift == 0 ? 1 : 0)) * (sum - (shift == 0 ? 1 : 0));
    }
  }
  EXPECT_LT(misses / m, 3e-7);
}

// One continuous shape in the middles of intervals: a tap lies in the middle between two at twice
// as many bands. A cubic through four of those misses it by less than the roundings.
TEST(MfbLowDelayShapes, AreOne) {
  for (size_t i = 0; i + 1 < std::size(kDesigns); ++i) {
    const auto few =
        reference::MfbTapsInTime(kDesigns[i].prototype.values, reference::MfbTime::kForwards);
    const auto many =
        reference::MfbTapsInTime(kDesigns[i + 1].prototype.values, reference::MfbTime::kForwards);
    for (size_t n = 1; n + 1 < few.size(); ++n) {
      const double middle =
          (9 * (many[2 * n] + many[2 * n + 1]) - many[2 * n - 1] - many[2 * n + 2]) / 16;
      ASSERT_NEAR(few[n], middle, 3e-7) << kDesigns[i].prototype.name << " " << n;
    }
  }
}

}  // namespace
}  // namespace testing_support
