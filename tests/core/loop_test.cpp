// The counted loop visits every sample once, in order, in the widest steps.
#include "core/loop.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(Counted, VisitsEverySampleOnceWithAtMostOneFour) {
  for (std::size_t n = 0; n <= 67; ++n) {
    std::vector<int> visits(n, 0);
    std::size_t expected_next = 0;
    int eights = 0, fours = 0, ones = 0;
    mvk::counted(n, [&]<class V>(std::size_t i) {
      ASSERT_EQ(i, expected_next);
      expected_next += mvk::lanes<V>;
      for (int l = 0; l < mvk::lanes<V>; ++l) ++visits.at(i + static_cast<std::size_t>(l));
      (mvk::lanes<V> == 8 ? eights : mvk::lanes<V> == 4 ? fours : ones) += 1;
    });
    EXPECT_EQ(visits, std::vector<int>(n, 1)) << "n = " << n;
    EXPECT_EQ(eights, static_cast<int>(n / 8)) << "n = " << n;
    EXPECT_EQ(fours, static_cast<int>(n % 8 / 4)) << "n = " << n;
    EXPECT_EQ(ones, static_cast<int>(n % 4)) << "n = " << n;
  }
}

TEST(Counted, GoesInNoWiderStepsThanAskedFor) {
  for (std::size_t n = 0; n <= 19; ++n) {
    std::size_t fours = 0, ones = 0;
    mvk::counted<mvk::f32x4>(n, [&]<class V>(std::size_t) {
      (mvk::lanes<V> == 4 ? fours : ones) += mvk::lanes<V> <= 4;
    });
    EXPECT_EQ(fours, n / 4);
    EXPECT_EQ(ones, n % 4);
    std::size_t expected_next = 0;
    mvk::counted<float>(n, [&]<class V>(std::size_t i) {
      static_assert(mvk::lanes<V> == 1);
      EXPECT_EQ(i, expected_next++);
    });
    EXPECT_EQ(expected_next, n);
  }
}

TEST(Counted, WorksInPlace) {
  std::vector<float> x(31, 1.5f);
  mvk::counted(x.size(),
               [&]<class V>(std::size_t i) { mvk::store(&x[i], mvk::load<V>(&x[i]) + V(1)); });
  EXPECT_EQ(x, std::vector<float>(31, 2.5f));
}

TEST(Unrolled, GivesConstantsInOrder) {
  std::vector<int> seen;
  mvk::unrolled<5>([&](auto k) {
    static_assert(decltype(k)::value >= 0);
    seen.push_back(k);
  });
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4}));
}

}  // namespace
