// Mixes of the planes of complex vectors.
#include <gtest/gtest.h>

#include "kernels/kernel_samples.h"
#include "kernels/vector_rows.h"
#include "mvk_kernels.h"
#include "reference/complex_reference.h"

namespace testing_support {
namespace {

using Call = const VectorCall &;

// The last plane ends with its last element.
template <uint32_t kPlanes>
size_t Planes(uint32_t n) {
  return n == 0 ? 0 : size_t{kPlanes - 1} * reference::PlaneStride(n) + Pairs(n);
}

template <uint32_t kGains>
size_t Gains(uint32_t) {
  return kGains;
}

using MixOfPlanes = float (*)(const float *p, uint32_t stride, const float *g);

void Mix(float *y, Call c, MixOfPlanes mix, const float *g) {
  for (uint32_t i = 0; i < 2 * c.n; ++i) y[i] = mix(c.a + i, reference::PlaneStride(c.n), g);
}

template <MixOfPlanes kMix, uint32_t kPlanes>
constexpr VectorKernel TwoMixes(const char *name, float *(*flex)(Call), float *(*strict)(Call)) {
  return {
      .name = name,
      .flex = flex,
      .strict = strict,
      .oracle =
          [](Call c) {
            Mix(c.y, c, kMix, c.b);
            Mix(c.z, c, kMix, c.b + kPlanes);
          },
      .y = Pairs,
      .z = Pairs,
      .a = Planes<kPlanes>,
      .b = Gains<2 * kPlanes>,
  };
}

float *StrictSix(Call c) { return MVK_CLCLmix6CL12SU_strict(c.y, c.z, c.a, c.b, c.n); }
float *StrictSeven(Call c) { return MVK_CLCLmix7CL14SU_strict(c.y, c.z, c.a, c.b, c.n); }

// The mixes of six and of seven planes need neither alignment nor whole groups by
// either name.
const VectorKernel kPlaneMixes[] = {
    {
        .name = "CLmix4CL4SU",
        .flex = [](Call c) { return mvk_CLmix4CL4SU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLmix4CL4SU_strict(c.y, c.a, c.b, c.n); },
        .oracle = [](Call c) { Mix(c.y, c, reference::MixOfFourPlanes, c.b); },
        .y = Pairs,
        .a = Planes<4>,
        .b = Gains<4>,
        .over_a = true,
    },
    TwoMixes<reference::MixOfFourPlanes, 4>(
        "CLCLmix4CL8SU", [](Call c) { return mvk_CLCLmix4CL8SU_flex(c.y, c.z, c.a, c.b, c.n); },
        [](Call c) { return MVK_CLCLmix4CL8SU_strict(c.y, c.z, c.a, c.b, c.n); }),
    TwoMixes<reference::MixOfSixPlanes, 6>(
        "CLCLmix6CL12SU", [](Call c) { return mvk_CLCLmix6CL12SU_flex(c.y, c.z, c.a, c.b, c.n); },
        StrictSix),
    TwoMixes<reference::MixOfSixPlanes, 6>("CLCLmix6CL12SU by its strict name", StrictSix,
                                           StrictSix),
    TwoMixes<reference::MixOfSevenPlanes, 7>(
        "CLCLmix7CL14SU", [](Call c) { return mvk_CLCLmix7CL14SU_flex(c.y, c.z, c.a, c.b, c.n); },
        StrictSeven),
    TwoMixes<reference::MixOfSevenPlanes, 7>("CLCLmix7CL14SU by its strict name", StrictSeven,
                                             StrictSeven),
};

TEST(PlaneMixes, TakeAnyCountAtAnyAlignment) {
  for (const VectorKernel &kernel : kPlaneMixes) ExpectAnyCountAtAnyAlignment(kernel);
}

TEST(PlaneMixes, RoundAsDefinedInBothForms) {
  for (const VectorKernel &kernel : kPlaneMixes) ExpectAnySamples(kernel);
}

TEST(PlaneMixes, MayBeWrittenOverTheFirstPlaneIfThereIsOneResult) {
  for (const VectorKernel &kernel : kPlaneMixes) ExpectResultsOverInputs(kernel);
}

TEST(PlaneMixes, KeepSpecialValuesToTheirPlace) {
  for (const VectorKernel &kernel : kPlaneMixes) ExpectSpecialValuesAtEachPlace(kernel, 6);
}

TEST(PlaneMixes, TouchNothingOutside) {
  for (const VectorKernel &kernel : kPlaneMixes) ExpectNothingTouchedOutside(kernel);
}

TEST(PlaneMixes, MayBeWrittenOverAnyPlaneIfThereIsOneResult) {
  constexpr uint32_t kCount = 21;
  const size_t stride = reference::PlaneStride(kCount);
  Random random(1);
  for (size_t plane = 0; plane < 4; ++plane) {
    GuardedFloats planes(Samples(kUniform, random, Planes<4>(kCount)), 1);
    GuardedFloats gains(Samples(kUniform, random, 4), 2);
    std::vector<float> want = planes.given();
    for (size_t i = 0; i < Pairs(kCount); ++i) {
      want[plane * stride + i] = reference::MixOfFourPlanes(
          planes.given().data() + i, reference::PlaneStride(kCount), gains.data());
    }
    mvk_CLmix4CL4SU_flex(planes.data() + plane * stride, planes.data(), gains.data(), kCount);
    EXPECT_TRUE(SameSamples(planes.values(), want, {"CLmix4CL4SU", "flex", kCount})) << plane;
  }
}

// Planes that hold 1, 10, 100, ... in each place, and gains of one.
void ExpectStride(uint32_t n, size_t stride) {
  GuardedFloats planes(7 * stride, 0), gains(std::vector<float>(14, 1.0f), 0);
  float value = 1;
  for (size_t plane = 0; plane < 7; ++plane, value *= 10) {
    std::fill_n(planes.data() + plane * stride, 2 * n, value);
  }
  const KernelCall call = {"a mix of planes", "flex", n};
  GuardedFloats y(2 * size_t{n}, 0), z(2 * size_t{n}, 0);
  const auto expect = [&](const GuardedFloats &got, float sum) {
    EXPECT_TRUE(SameSamples(got.values(), std::vector<float>(2 * size_t{n}, sum), call));
  };
  mvk_CLmix4CL4SU_flex(y.data(), planes.data(), gains.data(), n);
  expect(y, 1111);
  mvk_CLCLmix6CL12SU_flex(y.data(), z.data(), planes.data(), gains.data(), n);
  expect(y, 111111);
  expect(z, 111111);
  mvk_CLCLmix7CL14SU_flex(y.data(), z.data(), planes.data(), gains.data(), n);
  expect(y, 1111111);
  expect(z, 1111111);
}

TEST(PlaneMixes, FindPlanesAtWholeGroupsOfFourElements) {
  ExpectStride(1, 8);
  ExpectStride(3, 8);
  ExpectStride(4, 8);
  ExpectStride(5, 16);
  ExpectStride(8, 16);
  ExpectStride(9, 24);
}

// Half a unit in the last place of 1, which is lost beside 1 unless it meets its like
// before.
constexpr float kHalfUnit = 0x1p-24f;

TEST(PlaneMixes, TakeUpSixAndSevenPlanesInAnotherOrder) {
  const std::vector<float> ones(14, 1.0f);
  std::vector<float> planes(7 * 8, 0.0f);
  planes[0] = 1.0f;
  planes[4 * 8] = planes[5 * 8] = kHalfUnit;
  float y[2], z[2];
  mvk_CLCLmix6CL12SU_flex(y, z, planes.data(), ones.data(), 1);
  EXPECT_EQ(y[0], 1.0f);
  EXPECT_EQ(z[0], 1.0f);
  mvk_CLCLmix7CL14SU_flex(y, z, planes.data(), ones.data(), 1);
  EXPECT_EQ(y[0], 1.0f + 2 * kHalfUnit);
  EXPECT_EQ(z[0], 1.0f + 2 * kHalfUnit);
}

TEST(PlaneMixes, HaveGainsOfTheirOwnForEachResult) {
  const std::vector<float> planes(7 * 8, 1.0f);
  const float gains[] = {1, 2, 4, 8, 16, 32, 64, 3, 6, 12, 24, 48, 96, 192};
  float y[2], z[2];
  mvk_CLCLmix4CL8SU_flex(y, z, planes.data(), gains, 1);
  EXPECT_EQ(y[0], 15);
  EXPECT_EQ(z[1], 16 + 32 + 64 + 3);
  mvk_CLCLmix6CL12SU_flex(y, z, planes.data(), gains, 1);
  EXPECT_EQ(y[1], 63);
  EXPECT_EQ(z[0], 64 + 3 + 6 + 12 + 24 + 48);
  mvk_CLCLmix7CL14SU_flex(y, z, planes.data(), gains, 1);
  EXPECT_EQ(y[0], 127);
  EXPECT_EQ(z[1], 3 * 127);
}

}  // namespace
}  // namespace testing_support
