// The arrangements of the prototypes, and the short forms made of the long ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "filterbanks/by_name.h"
#include "filterbanks/qmf_banks.h"

namespace testing_support {
namespace {

class Prototype : public testing::TestWithParam<QmfPrototype> {};

INSTANTIATE_TEST_SUITE_P(All, Prototype, testing::ValuesIn(kQmfPrototypes), kByName);

TEST_P(Prototype, IsALowPassSymmetricAboutItsMiddle) {
  const auto &[name, window, columns, ana, syn] = GetParam();
  ASSERT_EQ(syn.size(), window.Taps());
  const reference::Taps p = PrototypeOf(window, syn.data());
  const size_t middle = window.Taps() / 2;
  EXPECT_EQ(p[0], 0);
  for (size_t i = 1; i < middle; ++i) ASSERT_EQ(p[middle - i], p[middle + i]) << i;
  for (size_t i = 0; i < window.bands; ++i) ASSERT_GT(p[middle + i], 0) << i;
}

TEST_P(Prototype, IsATapAheadForAnalysis) {
  const auto &[name, window, columns, ana, syn] = GetParam();
  ASSERT_EQ(ana.size(), window.Taps());
  const reference::Taps p = PrototypeOf(window, syn.data());
  for (size_t n = 0; n < window.Taps(); ++n) {
    ASSERT_EQ(ana[n], window.Sign(n) * p[n + 1]) << n;
  }
}

// Rows r of the taps r, r + 2 M, r + 4 M and so on. The rows behind row M - 1 differ.
TEST_P(Prototype, StandsInRowsOfEverySecondBlock) {
  const auto &[name, window, columns, ana, syn] = GetParam();
  const size_t m = window.bands, order = window.order;
  std::vector<float> want;
  const auto add_row = [&](size_t first, float sign) {
    for (size_t e = 0; e < order; ++e) {
      const size_t n = first + 2 * m * e;
      want.push_back(n < syn.size() ? sign * syn[n] : 0);
    }
  };
  for (size_t r = 0; r < m; ++r) add_row(r, 1);
  if (order == 4) {
    add_row(m, -1);
    add_row(2 * m, -1);
  } else {
    add_row(m, 1);
    if (m != 32) want.resize(want.size() + order);
  }
  ASSERT_EQ(columns.size(), want.size());
  for (size_t i = 0; i < want.size(); ++i) ASSERT_EQ(columns[i], want[i]) << i;
}

// ---- Short forms ----

reference::Taps TapsOf(const std::string &name) {
  const QmfPrototype &prototype = QmfPrototypeOf(name);
  return PrototypeOf(prototype.window, prototype.syn.data());
}

TEST(ShortPrototypes, AreEverySoManiethTapOfTheLongOnes) {
  const struct {
    const char *name, *of;
  } kForms[] = {{"P4_32", "P4"},
                {"P5_32", "P5"},
                {"P5_p64orv301_32", "P5_p64orv301"},
                {"P5_p64orv301_16", "P5_p64orv301"},
                {"P5_p64orv301_8", "P5_p64orv301"}};
  for (const auto &[name, of] : kForms) {
    const reference::Taps p = TapsOf(name), whole = TapsOf(of);
    const size_t step = (whole.size() - 1) / (p.size() - 1);
    for (size_t i = 0; i < p.size(); ++i) ASSERT_EQ(p[i], whole[step * i]) << name << " " << i;
  }
}

TEST(ShortPrototypes, Of48BandsLieBetweenTheTapsOf64) {
  const reference::Taps p = TapsOf("P5_p64orv301_48"), whole = TapsOf("P5_p64orv301");
  for (size_t i = 0; i < p.size(); ++i) {
    const size_t below = 4 * i / 3, thirds = 4 * i % 3;
    if (thirds == 0) {
      ASSERT_EQ(p[i], whole[below]) << i;
      continue;
    }
    const double share = static_cast<double>(thirds) / 3;
    const double want = (1 - share) * whole[below] + share * whole[below + 1];
    // Both of the taps are rounded, and so is what lies between them.
    const double larger = std::max(std::fabs(whole[below]), std::fabs(whole[below + 1]));
    ASSERT_NEAR(p[i], want, 2 * 0x1p-24 * larger) << i;
  }
}

// The first half with the middle, in units of the seventh decimal.
TEST(ShortPrototypes, Of8BandsHaveTheseSevenDecimals) {
  constexpr int kTaps[] = {0,       5465,    9161,    13069,   16789,   20295,   23811,
                           27721,   31765,   34585,   35921,   33237,   23728,   4298,
                           -28120,  -76085,  -141203, -223801, -321058, -427513, -534132,
                           -628251, -693880, -712581, -664690, -530846, -294180, 58273,
                           533608,  1131635, 1843852, 2652999, 3533309, 4451590, 5368860,
                           6242808, 7030584, 7691826, 8191563, 8502794, 8608481};
  const reference::Taps p = TapsOf("P5_p64orv301_8");
  for (size_t i = 0; i < std::size(kTaps); ++i) {
    EXPECT_EQ(std::lround(p[i] * 1e7), kTaps[i]) << i;
  }
}

}  // namespace
}  // namespace testing_support
