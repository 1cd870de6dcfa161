// Vectors from and to memory that holds pairs, a part of a vector, or rows of fours.
#include <gtest/gtest.h>

#include <numeric>

#include "core/simd.h"
#include "core/vector_samples.h"

namespace {

template <class V>
class Pairs : public testing::Test {
 protected:
  static constexpr int n = mvk::lanes<V>;

  Pairs() {
    std::iota(memory, memory + 40, 0.0f);
    std::fill(result, result + 40, -1.0f);
  }

  // What was stored from `start` on, with nothing written around it.
  std::vector<float> stored(int start, int count) const {
    for (int i = 0; i < 40; ++i) {
      const bool inside = i >= start && i < start + count;
      EXPECT_TRUE(inside || result[i] == -1.0f) << "written at " << i;
    }
    return {result + start, result + start + count};
  }

  float memory[40], result[40];
};
TYPED_TEST_SUITE(Pairs, vectors);

// first, first + 1, ...
std::vector<float> consecutive(int first, int count) {
  std::vector<float> values(static_cast<std::size_t>(count));
  std::iota(values.begin(), values.end(), static_cast<float>(first));
  return values;
}

TYPED_TEST(Pairs, AreSplitAsTheyAreLoaded) {
  using V = TypeParam;
  const mvk::halves<V> z = mvk::load_split_pairs<V>(this->memory + 3);
  EXPECT_EQ(to_array(mvk::natural_order(z.lo)), ramp<V>(3, 2));
  EXPECT_EQ(to_array(mvk::natural_order(z.hi)), ramp<V>(4, 2));
}

TYPED_TEST(Pairs, SplitLaneTellsWhereALaneComesFrom) {
  using V = TypeParam;
  const array_of<V> even = to_array(mvk::load_split_pairs<V>(this->memory).lo);
  for (int l = 0; l < this->n; ++l) EXPECT_EQ(even[l], 2.0f * mvk::split_lane<V>[l]) << l;
}

TYPED_TEST(Pairs, AreInterleavedAsTheyAreStored) {
  using V = TypeParam;
  mvk::store_interleaved(this->result + 3, from_array<V>(ramp<V>(0, 2)),
                         from_array<V>(ramp<V>(1, 2)));
  EXPECT_EQ(this->stored(3, 2 * this->n), consecutive(0, 2 * this->n));
}

TYPED_TEST(Pairs, PointersMoveOnBehindWhatIsLoaded) {
  using V = TypeParam;
  const float *p = this->memory + 1;
  const mvk::halves<V> whole = mvk::load_next<V>(p);
  EXPECT_EQ(p, this->memory + 1 + 2 * this->n);
  EXPECT_EQ(to_array(whole.lo), ramp<V>(1));
  EXPECT_EQ(to_array(whole.hi), ramp<V>(1 + this->n));
  const mvk::halves<V> split = mvk::load_split_next<V>(p);
  EXPECT_EQ(p, this->memory + 1 + 4 * this->n);
  EXPECT_EQ(to_array(mvk::natural_order(split.lo)), ramp<V>(1 + 2 * this->n, 2));
  EXPECT_EQ(to_array(mvk::natural_order(split.hi)), ramp<V>(2 + 2 * this->n, 2));
}

TYPED_TEST(Pairs, PointersMoveOnBehindWhatIsStored) {
  using V = TypeParam;
  float *p = this->result + 1;
  mvk::store_next(p, from_array<V>(ramp<V>(0)), from_array<V>(ramp<V>(this->n)));
  EXPECT_EQ(p, this->result + 1 + 2 * this->n);
  mvk::store_interleaved_next(p, from_array<V>(ramp<V>(2 * this->n, 2)),
                              from_array<V>(ramp<V>(2 * this->n + 1, 2)));
  EXPECT_EQ(p, this->result + 1 + 4 * this->n);
  EXPECT_EQ(this->stored(1, 4 * this->n), consecutive(0, 4 * this->n));
}

TYPED_TEST(Pairs, HeldInARegisterAVectorIsTheSame) {
  using V = TypeParam;
  EXPECT_EQ(to_array(mvk::load_once<V>(this->memory + 5)), ramp<V>(5));
}

TYPED_TEST(Pairs, OneLaneCanBeAnothers) {
  using V = TypeParam;
  array_of<V> want = ramp<V>(0);
  want[0] = 100;
  EXPECT_EQ(to_array(mvk::with_lane0(from_array<V>(ramp<V>(100)), mvk::load<V>(this->memory))),
            want);
}

TEST(TwoLanes, AreLoadedAndStoredAlone) {
  const float memory[] = {1, 2, 3, 4, 5};
  float result[] = {-1, -1, -1, -1};
  const mvk::f32x4 two = mvk::load_two(memory + 1);
  EXPECT_EQ(to_array(two)[0], 2);
  EXPECT_EQ(to_array(two)[1], 3);
  mvk::store_two(result + 1, mvk::load<mvk::f32x4>(memory));
  EXPECT_EQ(std::vector<float>(result, result + 4), (std::vector<float>{-1, 1, 2, -1}));
}

TEST(EightLanes, TakeTwoOfAnotherOrExchangeTheirHalves) {
  using V = mvk::f32x8;
  const V a = from_array<V>(ramp<V>(100)), b = from_array<V>(ramp<V>(0));
  EXPECT_EQ(to_array(mvk::with_lanes04(a, b)), (array_of<V>{100, 1, 2, 3, 104, 5, 6, 7}));
  EXPECT_EQ(to_array(mvk::swap_halves(b)), (array_of<V>{4, 5, 6, 7, 0, 1, 2, 3}));
}

template <class V>
class Fours : public testing::Test {};
TYPED_TEST_SUITE(Fours, wide_vectors);

TYPED_TEST(Fours, AreTransposedInEachHalf) {
  using V = TypeParam;
  V rows[4];
  for (int r = 0; r < 4; ++r) rows[r] = from_array<V>(ramp<V>(10 * r));
  mvk::transpose_fours(rows);
  for (int r = 0; r < 4; ++r) {
    const array_of<V> got = to_array(rows[r]);
    for (int l = 0; l < mvk::lanes<V>; ++l)
      EXPECT_EQ(got[l], 10 * (l % 4) + r + l / 4 * 4) << "row " << r << ", lane " << l;
  }
}

}  // namespace
