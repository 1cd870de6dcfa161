// What the cosine transforms read and write, and where.
#include <gtest/gtest.h>

#include <vector>

#include "dct/cosine_bounds.h"
#include "dct/cosine_transforms.h"
#include "dct/pair_kinds.h"
#include "dct/twiddle_tables.h"

namespace testing_support {
namespace {

using reference::ErrorOf;

class CosineBuffers : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, CosineBuffers, testing::ValuesIn(kCosineLengths),
                         testing::PrintToStringParamName());

struct Offsets {
  int out, in, twiddle;
};
constexpr Offsets kOffsets[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, {7, 5, 6}};

TEST_P(CosineBuffers, WriteNothingOutsideAtAnyAddress) {
  const uint32_t n = GetParam();
  Random random(n + 3);
  const std::vector<float> x = Samples(kUniform, random, n);
  for (const CosineTransform &transform : kCosineTransforms) {
    const reference::WideReals exact = ExactResult(transform, x);
    for (const PairKind &kind : PairKinds(n / 2)) {
      const double bound = BoundOf(kind.has_coarse_twiddles).largest;
      for (const auto &[to, from, by] : kOffsets) {
        const KernelCall call = {transform.name, kind.name, n, {to, from, by}, ""};
        GuardedFloats out(n, to), in(x, from), twiddle(SinesFor(n), by), data(x, to);
        transform.run(kind.pair, twiddle.data(), out.data(), in.data(), n);
        EXPECT_LT(ErrorOf(out.values(), exact).largest, bound) << call;
        EXPECT_TRUE(out.GuardsStand(call)) << "result";
        EXPECT_TRUE(in.GuardsStand(call)) << "input";
        EXPECT_TRUE(twiddle.Untouched(call)) << "twiddles";
        if (n > 2) {
          EXPECT_FALSE(in.Untouched(call)) << "the input is where the transform ends";
        }
        transform.run_in_place(kind.pair, twiddle.data(), data.data(), n);
        EXPECT_LT(ErrorOf(data.values(), exact).largest, bound) << call << " in place";
        EXPECT_TRUE(data.GuardsStand(call)) << "in place";
        EXPECT_TRUE(twiddle.Untouched(call)) << "twiddles in place";
      }
    }
  }
}

TEST_P(CosineBuffers, InPlaceAreTheSameTransforms) {
  const uint32_t n = GetParam();
  Random random(n + 4);
  const std::vector<float> x = Samples(kUniform, random, n);
  for (const CosineTransform &transform : kCosineTransforms) {
    for (const PairKind &kind : PairKinds(n / 2)) {
      GuardedFloats out(n, 0), in(x, 0), data(x, 0);
      transform.run(kind.pair, SineTable(n), out.data(), in.data(), n);
      transform.run_in_place(kind.pair, SineTable(n), data.data(), n);
      EXPECT_TRUE(
          SameSamples(data.values(), out.values(), {transform.name, kind.name, n, {}, "in place"}));
    }
  }
}

TEST(DctBuffers, InPlaceTakesUpTo2048) {
  Random random(22);
  const std::vector<float> x = Samples(kUniform, random, 2048), t = SinesFor(2048);
  for (const CosineTransform &transform : kCosineTransforms) {
    const KernelCall call = {transform.name, "", 2048, {3}, "in place"};
    GuardedFloats data(x, 3);
    transform.run_in_place(nullptr, t.data(), data.data(), 2048);
    EXPECT_LT(ErrorOf(data.values(), ExactResult(transform, x)).largest, BoundWithoutPair(2048))
        << call;
    EXPECT_TRUE(data.GuardsStand(call));
  }
}

// Lengths that aren't multiples of four give no meaningful result, and stay in their arrays.
TEST(DctBuffers, WritesNothingOutsideAtOtherLengths) {
  for (uint32_t n = 3; n <= 90; ++n) {
    if (n % 4 == 0) continue;
    for (const CosineTransform &transform : kCosineTransforms) {
      const KernelCall call = {transform.name, "", n, {1, 2, 3}, ""};
      const std::vector<float> x(n, 0.5f);
      GuardedFloats out(n, 1), in(x, 2), twiddle(SinesFor(n), 3), data(x, 3);
      transform.run(nullptr, twiddle.data(), out.data(), in.data(), n);
      transform.run_in_place(nullptr, twiddle.data(), data.data(), n);
      EXPECT_TRUE(out.GuardsStand(call)) << "result";
      EXPECT_TRUE(in.GuardsStand(call)) << "input";
      EXPECT_TRUE(twiddle.Untouched(call)) << "twiddles";
      EXPECT_TRUE(data.GuardsStand(call)) << "in place";
    }
  }
}

}  // namespace
}  // namespace testing_support
