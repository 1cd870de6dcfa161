// Complex numbers, one and in lanes.
#include "core/complex.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/vector_samples.h"

namespace {

template <class V>
class Complex : public testing::Test {};
TYPED_TEST_SUITE(Complex, vectors);

// Compares op with its definition, of one number, for lanes in which every pair of the sample
// values is the first operand, and another pair the second.
template <class V, class Op, class Definition>
void expect_numbers(Op op, Definition definition) {
  const std::vector<float> values = sample_values();
  const std::size_t n = values.size();
  for (std::size_t first = 0; first < n * n; ++first) {
    array_of<V> parts[4];
    for (std::size_t l = 0; l < parts[0].size(); ++l) {
      const std::size_t k = first + l;
      parts[0][l] = values[k % n];
      parts[1][l] = values[k / n % n];
      parts[2][l] = values[(k + 7) % n];
      parts[3][l] = values[(k / n + 19) % n];
    }
    const mvk::cpx<V> a = {from_array<V>(parts[0]), from_array<V>(parts[1])};
    const mvk::cpx<V> b = {from_array<V>(parts[2]), from_array<V>(parts[3])};
    const mvk::cpx<V> got = op(a, b);
    const array_of<V> re = to_array(got.re), im = to_array(got.im);
    for (std::size_t l = 0; l < re.size(); ++l) {
      const mvk::cpx<float> want = definition(parts[0][l], parts[1][l], parts[2][l], parts[3][l]);
      ASSERT_EQ(bits(re[l]), bits(want.re)) << "lane " << l << ", number " << first;
      ASSERT_EQ(bits(im[l]), bits(want.im)) << "lane " << l << ", number " << first;
    }
  }
}

TYPED_TEST(Complex, SumsAndDifferencesAreOfTheParts) {
  using V = TypeParam;
  using number = mvk::cpx<V>;
  expect_numbers<V>([](number a, number b) { return a + b; },
                    [](float x, float y, float u, float v) {
                      return mvk::cpx<float>{x + u, y + v};
                    });
  expect_numbers<V>([](number a, number b) { return a - b; },
                    [](float x, float y, float u, float v) {
                      return mvk::cpx<float>{x - u, y - v};
                    });
}

TYPED_TEST(Complex, ProductsFuseTheFirstImaginaryPart) {
  using V = TypeParam;
  expect_numbers<V>([](mvk::cpx<V> a, mvk::cpx<V> b) { return a * b; },
                    [](float x, float y, float u, float v) {
                      return mvk::cpx<float>{std::fma(-y, v, x * u), std::fma(y, u, x * v)};
                    });
}

TYPED_TEST(Complex, PairsOfMemoryAreNumbersInOrder) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  float memory[2 * n + 1], back[2 * n + 1];
  for (int i = 0; i <= 2 * n; ++i) memory[i] = static_cast<float>(i);
  const mvk::cpx<V> z = mvk::load_complex<V>(memory + 1);
  const array_of<V> re = to_array(z.re), im = to_array(z.im);
  const mvk::cpx<V> turned_round = mvk::reversed(z);
  const array_of<V> last_re = to_array(turned_round.re), last_im = to_array(turned_round.im);
  for (int l = 0; l < n; ++l) {
    EXPECT_EQ(re[l], memory[1 + 2 * l]) << "lane " << l;
    EXPECT_EQ(im[l], memory[2 + 2 * l]) << "lane " << l;
    EXPECT_EQ(last_re[n - 1 - l], re[l]) << "lane " << l;
    EXPECT_EQ(last_im[n - 1 - l], im[l]) << "lane " << l;
  }
  mvk::store_complex(back + 1, z);
  EXPECT_TRUE(std::equal(back + 1, back + 1 + 2 * n, memory + 1));
}

TYPED_TEST(Complex, DescendingPairsBeginAtTheLast) {
  using V = TypeParam;
  constexpr int n = mvk::lanes<V>;
  float memory[2 * n], back[2 * n];
  for (int i = 0; i < 2 * n; ++i) memory[i] = static_cast<float>(i);
  const mvk::cpx<V> z = mvk::load_complex_descending<V>(memory + 2 * (n - 1));
  const array_of<V> re = to_array(z.re), im = to_array(z.im);
  for (int l = 0; l < n; ++l) {
    EXPECT_EQ(re[l], memory[2 * (n - 1 - l)]) << "lane " << l;
    EXPECT_EQ(im[l], memory[2 * (n - 1 - l) + 1]) << "lane " << l;
  }
  mvk::store_complex_descending(back + 2 * (n - 1), z);
  EXPECT_TRUE(std::equal(back, back + 2 * n, memory));
}

}  // namespace
