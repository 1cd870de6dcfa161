// What the modulation of complex banks does before and behind its Fourier transform.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dct/transform_probe.h"
#include "filterbanks/complex_modes.h"
#include "mvk_qmf.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

using reference::BandsOfBins;
using reference::BinsOfBands;
using reference::ComplexArray;
using reference::ComplexOf;
using reference::Factors;
using reference::FloatsOf;
using reference::WideComplex;

// What one multiplication by a factor may be off by: two products that are rounded and their sum,
// and as much again for a table whose pairs are rounded, where one multiplies by its inverse.
testing::AssertionResult AreProducts(const ComplexArray &got, const ComplexArray &values,
                                     const Factors &factors, double roundings,
                                     const KernelCall &call) {
  for (size_t i = 0; i < values.size(); ++i) {
    const WideComplex value(values[i].re, values[i].im);
    const WideComplex want = reference::Product(factors[i], value);
    const double bound = roundings * 0x1p-24 * (std::fabs(value.real()) + std::fabs(value.imag())) *
                         (std::fabs(factors[i].real()) + std::fabs(factors[i].imag()));
    if (!(std::abs(WideComplex(got[i].re, got[i].im) - want) <= bound + 0x1p-140)) {
      return testing::AssertionFailure()
             << call << ", band " << i << ": " << got[i].re << " " << got[i].im << " for " << want;
    }
  }
  return testing::AssertionSuccess();
}

// Of values that only change places, any.
std::vector<Material> MaterialsFor(const Mode &mode) {
  if (mode.turns) return {kUniform};
  return {kUniform, kMixed};
}

class ComplexOrder : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, ComplexOrder, testing::ValuesIn(BandCounts()),
                         testing::PrintToStringParamName());

TEST_P(ComplexOrder, ForwardReordersAndTurnsTheBins) {
  const uint32_t m = GetParam();
  Random random(m);
  GuardedFloats rotation = Rotations(random, m);
  for (const Mode &mode : Modes(rotation.data(), m)) {
    for (const Material &material : MaterialsFor(mode)) {
      const KernelCall call = CallOf("forwardModulationComplex", mode.name, m);
      const std::vector<float> bins = Samples(material, random, 2 * size_t{m});
      const TransformProbe probe(bins);
      GuardedFloats src(Samples(kUniform, random, bins.size()), 0), out(bins.size(), 0);
      GuardedFloats fft_out(bins.size(), 0);
      mvk_forwardModulationComplex(src.data(), out.data(), fft_out.data(), m, mode.value,
                                   mode.rotation, probe.pair());
      ASSERT_EQ(probe.calls().size(), 1u) << call;
      EXPECT_FALSE(probe.calls()[0].scaled) << call;
      EXPECT_EQ(probe.calls()[0].dst, fft_out.data()) << call;
      EXPECT_EQ(probe.calls()[0].src, src.data()) << call;
      EXPECT_EQ(probe.calls()[0].n, m) << call;
      EXPECT_TRUE(SameBits(probe.calls()[0].input, src.given(), call)) << "given";
      EXPECT_TRUE(rotation.Untouched(call)) << "table";
      const ComplexArray want = BandsOfBins(ComplexOf(bins));
      if (mode.turns) {
        EXPECT_TRUE(AreProducts(ComplexOf(out.values()), want,
                                FactorsOf(mode.value, mode.rotation, m), 2, call));
      } else {
        EXPECT_TRUE(SameSamples(out.values(), FloatsOf(want), call));
      }
    }
  }
}

TEST_P(ComplexOrder, InverseTurnsBackAndReordersTheBands) {
  const uint32_t m = GetParam();
  Random random(m + 1);
  GuardedFloats rotation = Rotations(random, m);
  for (const Mode &mode : Modes(rotation.data(), m)) {
    for (const Material &material : MaterialsFor(mode)) {
      const KernelCall call = CallOf("inverseModulationComplex", mode.name, m);
      const std::vector<float> bands = Samples(material, random, 2 * size_t{m});
      const TransformProbe probe(Samples(kUniform, random, bands.size()));
      GuardedFloats src(bands, 0), out(bands.size(), 0), fft_in(bands.size(), 0);
      mvk_inverseModulationComplex(src.data(), out.data(), fft_in.data(), m, mode.value,
                                   mode.rotation, probe.pair());
      ASSERT_EQ(probe.calls().size(), 1u) << call;
      EXPECT_FALSE(probe.calls()[0].scaled) << call;
      EXPECT_EQ(probe.calls()[0].dst, out.data()) << call;
      EXPECT_EQ(probe.calls()[0].src, fft_in.data()) << call;
      EXPECT_EQ(probe.calls()[0].n, m) << call;
      EXPECT_TRUE(src.Untouched(call)) << "bands";
      EXPECT_TRUE(rotation.Untouched(call)) << "table";
      const std::vector<float> &got = probe.calls()[0].input;
      if (mode.turns) {
        // As bands again, where the conjugates are undone.
        EXPECT_TRUE(AreProducts(BandsOfBins(ComplexOf(got)), ComplexOf(bands),
                                reference::Inverses(FactorsOf(mode.value, mode.rotation, m)), 4,
                                call));
      } else {
        EXPECT_TRUE(SameSamples(got, FloatsOf(BinsOfBands(ComplexOf(bands))), call));
      }
    }
  }
}

// The bins of a block of 16 bands, turned by the first half of a table for 32: no rotation that
// means anything, but the one that it says.
TEST(ComplexModulation, TablesOfOtherBandCountsAreTakenAsTheyAre) {
  Random random(71);
  const std::vector<float> bins = Samples(kUniform, random, 32);
  const TransformProbe probe(bins);
  std::vector<float> src(32), out(32), work(32);
  mvk_forwardModulationComplex(src.data(), out.data(), work.data(), 16, 1, mvk_cos_32_full_twiddle,
                               probe.pair());
  EXPECT_TRUE(AreProducts(ComplexOf(out), BandsOfBins(ComplexOf(bins)),
                          reference::HalfSampleFactors(mvk_cos_32_full_twiddle, 16), 2,
                          CallOf("forwardModulationComplex", "half a sample", 16)));
}

}  // namespace
}  // namespace testing_support
