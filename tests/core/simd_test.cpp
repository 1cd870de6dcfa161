// The vector types against the definitions of their operations.
#include "core/simd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "core/vector_samples.h"

namespace {

template <class V>
class Vector : public testing::Test {};
TYPED_TEST_SUITE(Vector, vectors);

// Compares op with its definition, of one lane, for vectors whose lanes hold every
// combination of the sample values.
template <class V, class Op, class Definition>
void expect_lanes(Op op, Definition definition) {
  const std::vector<float> values = sample_values();
  const std::size_t n = values.size();
  std::size_t next = 0;
  const auto combination = [&](std::size_t k) {
    return std::array{values[k % n], values[k / n % n], values[k / n / n % n]};
  };
  while (next < n * n * n) {
    array_of<V> a, b, c;
    const std::size_t first = next;
    for (std::size_t l = 0; l < a.size(); ++l, ++next) {
      const auto [x, y, z] = combination(next);
      a[l] = x, b[l] = y, c[l] = z;
    }
    const array_of<V> got = to_array(op(from_array<V>(a), from_array<V>(b), from_array<V>(c)));
    for (std::size_t l = 0; l < a.size(); ++l) {
      const auto [x, y, z] = combination(first + l);
      ASSERT_EQ(bits(got[l]), bits(definition(x, y, z)))
          << "lane " << l << " of " << x << ", " << y << ", " << z << ": " << got[l];
    }
  }
}

TYPED_TEST(Vector, ArithmeticRoundsOnce) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V) { return a + b; }, [](float a, float b, float) { return a + b; });
  expect_lanes<V>([](V a, V b, V) { return a - b; }, [](float a, float b, float) { return a - b; });
  expect_lanes<V>([](V a, V b, V) { return a * b; }, [](float a, float b, float) { return a * b; });
  expect_lanes<V>([](V a, V b, V) { return a / b; }, [](float a, float b, float) { return a / b; });
}

TYPED_TEST(Vector, FmaIsAProductPlusAnAddend) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V c) { return mvk::fma(a, b, c); },
                  [](float a, float b, float c) { return std::fma(a, b, c); });
}

TYPED_TEST(Vector, FmsSubtractsTheProductFromTheAddend) {
  using V = TypeParam;
  const auto op = [](V a, V b, V c) { return mvk::fms(a, b, c); };
  EXPECT_EQ(to_array(op(V(2), V(3), V(10)))[0], 4.0f);
  expect_lanes<V>(op, [](float a, float b, float c) { return std::fma(-a, b, c); });
}

TYPED_TEST(Vector, FnmsSubtractsTheAddendFromTheProduct) {
  using V = TypeParam;
  const auto op = [](V a, V b, V c) { return mvk::fnms(a, b, c); };
  EXPECT_EQ(to_array(op(V(2), V(3), V(10)))[0], -4.0f);
  expect_lanes<V>(op, [](float a, float b, float c) { return std::fma(a, b, -c); });
}

TEST(Double, FusedFormsHaveTheSameSigns) {
  EXPECT_EQ(mvk::fma(2.0, 3.0, 10.0), 16.0);
  EXPECT_EQ(mvk::fms(2.0, 3.0, 10.0), 4.0);
  EXPECT_EQ(mvk::fnms(2.0, 3.0, 10.0), -4.0);
  // 1 - (1 + e)(1 - e) is e^2 only if the product isn't rounded.
  EXPECT_EQ(mvk::fms(1 + 0x1p-40, 1 - 0x1p-40, 1.0), 0x1p-80);
}

// The order of numbers with +0 above -0, on the bits as sign and magnitude.
bool greater(float a, float b) {
  const auto key = [](float x) {
    const auto u = std::bit_cast<std::int32_t>(x);
    return u < 0 ? std::int32_t{-1} - (u & 0x7fffffff) : u;
  };
  return key(a) > key(b);
}

TYPED_TEST(Vector, MaxnumAndMinnumPreferNumbersAndOrderZeros) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V) { return mvk::maxnum(a, b); },
                  [](float a, float b, float) {
                    if (std::isnan(a)) return b;
                    if (std::isnan(b)) return a;
                    return greater(a, b) ? a : b;
                  });
  expect_lanes<V>([](V a, V b, V) { return mvk::minnum(a, b); },
                  [](float a, float b, float) {
                    if (std::isnan(a)) return b;
                    if (std::isnan(b)) return a;
                    return greater(a, b) ? b : a;
                  });
}

TYPED_TEST(Vector, PropagatingExtremesKeepANanAndOrderZeros) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V) { return mvk::max_propagating(a, b); },
                  [](float a, float b, float) {
                    if (std::isnan(a) || std::isnan(b)) return NAN;
                    return greater(a, b) ? a : b;
                  });
  expect_lanes<V>([](V a, V b, V) { return mvk::min_propagating(a, b); },
                  [](float a, float b, float) {
                    if (std::isnan(a) || std::isnan(b)) return NAN;
                    return greater(a, b) ? b : a;
                  });
}

TYPED_TEST(Vector, SignOperationsTouchTheSignBitOnly) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V, V) { return -a; }, [](float a, float, float) { return -a; });
  expect_lanes<V>([](V a, V, V) { return mvk::abs(a); },
                  [](float a, float, float) { return std::signbit(a) ? -a : a; });
}

TYPED_TEST(Vector, SelectionTakesTheSecondUnlessTheComparisonHolds) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V) { return mvk::greater_of(a, b); },
                  [](float a, float b, float) { return a > b ? a : b; });
  expect_lanes<V>([](V a, V b, V) { return mvk::lesser_of(a, b); },
                  [](float a, float b, float) { return a < b ? a : b; });
  expect_lanes<V>([](V a, V b, V c) { return mvk::where_greater(a, b, c, V(7)); },
                  [](float a, float b, float c) { return a > b ? c : 7.0f; });
}

TYPED_TEST(Vector, GreaterMagnitudeComparesBitsAndKeepsNans) {
  using V = TypeParam;
  expect_lanes<V>([](V a, V b, V) { return mvk::greater_magnitude(a, b); },
                  [](float a, float b, float) {
                    if (std::isnan(a) || std::isnan(b)) return NAN;
                    return std::fabs(a) > std::fabs(b) ? std::fabs(a) : std::fabs(b);
                  });
}

TYPED_TEST(Vector, AnyGreaterLooksAtEveryLane) {
  using V = TypeParam;
  for (std::size_t l = 0; l < mvk::lanes<V>; ++l) {
    array_of<V> a{};
    a[l] = 1;
    EXPECT_TRUE(mvk::any_greater(from_array<V>(a), V(0.5f))) << "lane " << l;
    EXPECT_FALSE(mvk::any_greater(from_array<V>(a), V(1)));
    EXPECT_FALSE(mvk::any_greater(from_array<V>(a), V(NAN)));
    a[l] = NAN;
    EXPECT_FALSE(mvk::any_greater(from_array<V>(a), V(0)));
  }
}

TYPED_TEST(Vector, WideProductsAndQuotientsAreRoundedOnceWhenNarrowed) {
  using V = TypeParam;
  expect_lanes<V>(
      [](V a, V b, V c) { return mvk::narrow(mvk::widen(a) * mvk::widen(b) * mvk::widen(c)); },
      [](float a, float b, float c) {
        return static_cast<float>(double{a} * double{b} * double{c});
      });
  expect_lanes<V>(
      [](V a, V b, V) { return mvk::narrow(mvk::widen(a) / mvk::widen(b)); },
      [](float a, float b, float) { return static_cast<float>(double{a} / double{b}); });
  const auto third = mvk::wide<V>(1) / mvk::wide<V>(3);
  for (const float x : to_array(mvk::narrow(third))) EXPECT_EQ(x, 1.0f / 3);
}

TYPED_TEST(Vector, LoadsAndStoresAtAnyFloatAddress) {
  using V = TypeParam;
  float source[24], target[24];
  std::iota(source, source + 24, 1.0f);
  for (int offset = 0; offset < 16; ++offset) {
    std::fill(target, target + 24, -1.0f);
    mvk::store(target + offset, mvk::load<V>(source + offset));
    for (int i = 0; i < 24; ++i) {
      const bool inside = i >= offset && i < offset + mvk::lanes<V>;
      ASSERT_EQ(target[i], inside ? source[i] : -1.0f) << "offset " << offset << ", " << i;
    }
  }
}

TYPED_TEST(Vector, SplatFillsEveryLane) {
  for (const float x : to_array(TypeParam(2.5f))) EXPECT_EQ(x, 2.5f);
}

// ---- Rearrangements -----------------------------------------------------------

template <class V>
class Arranged : public testing::Test {};
TYPED_TEST_SUITE(Arranged, wide_vectors);

TYPED_TEST(Arranged, DescendingSamplesBeginAtTheLast) {
  using V = TypeParam;
  array_of<V> memory = ramp<V>(0), back{};
  const array_of<V> descending = to_array(mvk::load_descending<V>(&memory.back()));
  EXPECT_TRUE(std::equal(descending.begin(), descending.end(), memory.rbegin()));
  mvk::store_descending(&back.back(), from_array<V>(descending));
  EXPECT_EQ(back, memory);
}

TYPED_TEST(Arranged, EveryFourthSampleFillsAVector) {
  using V = TypeParam;
  float memory[4 * mvk::lanes<V>];
  std::iota(memory, std::end(memory), 0.0f);
  EXPECT_EQ(to_array(mvk::load_every_fourth<V>(memory)), ramp<V>(0, 4));
}

TYPED_TEST(Arranged, ReverseTurnsTheLanesRound) {
  constexpr int n = mvk::lanes<TypeParam>;
  EXPECT_EQ(to_array(mvk::reverse(from_array<TypeParam>(ramp<TypeParam>(0)))),
            ramp<TypeParam>(n - 1, -1));
}

TYPED_TEST(Arranged, InterleaveAlternatesAndDeinterleaveUndoesIt) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  const V even = from_array<V>(ramp<V>(0, 2)), odd = from_array<V>(ramp<V>(1, 2));
  const mvk::halves<V> mixed = mvk::interleave(even, odd);
  EXPECT_EQ(to_array(mixed.lo), ramp<V>(0));
  EXPECT_EQ(to_array(mixed.hi), ramp<V>(n));
  const mvk::halves<V> apart = mvk::deinterleave(mixed.lo, mixed.hi);
  EXPECT_EQ(to_array(apart.lo), to_array(even));
  EXPECT_EQ(to_array(apart.hi), to_array(odd));
}

TYPED_TEST(Arranged, PairsAlternateWithinHalves) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  const mvk::halves<V> mixed =
      mvk::interleave_pairs(from_array<V>(ramp<V>(0)), from_array<V>(ramp<V>(100)));
  const array_of<V> even = to_array(mixed.lo), odd = to_array(mixed.hi);
  for (int l = 0; l < n; ++l) {
    // The first two of each four lanes come from the first operand.
    const float pair = static_cast<float>(l / 4 * 4 + l % 2 + (l % 4 < 2 ? 0 : 100));
    EXPECT_EQ(even[l], pair) << "lane " << l;
    EXPECT_EQ(odd[l], pair + 2) << "lane " << l;
  }
}

TYPED_TEST(Arranged, SplitPairsAreOrderedByNaturalOrderAndJoinedAgain) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  const V first = from_array<V>(ramp<V>(0)), second = from_array<V>(ramp<V>(n));
  const mvk::halves<V> parts = mvk::split_pairs(first, second);
  EXPECT_EQ(to_array(mvk::natural_order(parts.lo)), ramp<V>(0, 2));
  EXPECT_EQ(to_array(mvk::natural_order(parts.hi)), ramp<V>(1, 2));
  const mvk::halves<V> joined = mvk::join_pairs(parts.lo, parts.hi);
  EXPECT_EQ(to_array(joined.lo), to_array(first));
  EXPECT_EQ(to_array(joined.hi), to_array(second));
}

TYPED_TEST(Arranged, AlternateTakesEvenLanesFromTheFirst) {
  using V = TypeParam;
  const array_of<V> mixed =
      to_array(mvk::alternate(from_array<V>(ramp<V>(0)), from_array<V>(ramp<V>(100))));
  for (std::size_t l = 0; l < mixed.size(); ++l)
    EXPECT_EQ(mixed[l], static_cast<float>(l % 2 ? 100 + l : l)) << "lane " << l;
}

TEST(Halves, OfVectorsAndTheSumOfTwoDoubles) {
  const auto eight = from_array<mvk::f32x8>(ramp<mvk::f32x8>(0));
  EXPECT_EQ(to_array(mvk::lower(eight)), ramp<mvk::f32x4>(0));
  EXPECT_EQ(to_array(mvk::upper(eight)), ramp<mvk::f32x4>(4));
  EXPECT_EQ(to_array(mvk::both(mvk::lower(eight), mvk::upper(eight))), to_array(eight));
  const auto four = mvk::widen(from_array<mvk::f32x4>({1, 0x1p-30f, 3, 0x1p-29f}));
  EXPECT_EQ(mvk::sum(mvk::lower(four)), 1 + 0x1p-30);
  EXPECT_EQ(mvk::sum(mvk::lower(four) + mvk::upper(four)), 4 + 0x1p-30 + 0x1p-29);
}

TYPED_TEST(Arranged, TransposeExchangesRowsAndLanes) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  V rows[n];
  for (int r = 0; r < n; ++r) rows[r] = from_array<V>(ramp<V>(n * r));
  mvk::transpose(rows);
  for (int r = 0; r < n; ++r) EXPECT_EQ(to_array(rows[r]), ramp<V>(r, n)) << "row " << r;
}

// ---- Powers of two ------------------------------------------------------------

TEST(Exp2Bits, IsThePowerOfTwoWithinTheExponentsRange) {
  for (int k = -126; k <= 127; ++k)
    EXPECT_EQ(mvk::exp2_bits(k), std::ldexp(1.0f, k)) << "k = " << k;
}

TEST(Exp2Bits, WrapsOutsideIt) {
  EXPECT_EQ(bits(mvk::exp2_bits(-127)), 0x00000000u);
  EXPECT_EQ(bits(mvk::exp2_bits(128)), 0x7f800000u);
  EXPECT_EQ(mvk::exp2_bits(130), -0x1p-126f);
  EXPECT_EQ(bits(mvk::exp2_bits(-130)), 0xfe800000u);
  EXPECT_EQ(mvk::exp2_bits(256), -1.0f);
  EXPECT_EQ(mvk::exp2_bits(512), 1.0f);
  EXPECT_EQ(mvk::exp2_bits(INT32_MIN), 1.0f);
}

}  // namespace
