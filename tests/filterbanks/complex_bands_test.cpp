// Complex bands as they are defined, and back.
#include <gtest/gtest.h>

#include <complex>
#include <utility>
#include <vector>

#include "dct/pair_kinds.h"
#include "dct/transform_probe.h"
#include "filterbanks/complex_modes.h"
#include "mvk_qmf.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

using reference::ComplexOf;
using reference::Factors;
using reference::LargestError;
using reference::WideArray;
using reference::WideComplex;
using reference::Widened;

class ComplexBands : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, ComplexBands, testing::ValuesIn(BandCounts()),
                         testing::PrintToStringParamName());

WideArray Turned(WideArray values, const Factors &factors) {
  for (size_t i = 0; i < values.size(); ++i) {
    values[i] = reference::Product(values[i], factors[i]);
  }
  return values;
}

WideArray ExactBands(const std::vector<float> &src, const Factors &factors) {
  const WideArray bins = ExactTransform(Widened(ComplexOf(src)), reference::Direction::kForward,
                                        reference::Scaling::kUnscaled);
  const size_t m = bins.size();
  WideArray bands(m);
  for (size_t i = 0; i < m / 2; ++i) {
    bands[2 * i] = std::conj(bins[i]);
    bands[2 * i + 1] = bins[m - 1 - i];
  }
  return Turned(bands, factors);
}

WideArray ExactBlock(const std::vector<float> &src, const Factors &factors) {
  const WideArray bands = Turned(Widened(ComplexOf(src)), reference::Inverses(factors));
  const size_t m = bands.size();
  WideArray bins(m);
  for (size_t i = 0; i < m / 2; ++i) {
    bins[i] = std::conj(bands[2 * i]);
    bins[m - 1 - i] = bands[2 * i + 1];
  }
  return ExactTransform(bins, reference::Direction::kForward, reference::Scaling::kUnscaled);
}

double BoundOf(bool coarse_twiddles) { return coarse_twiddles ? 5e-6 : 8e-7; }

TEST_P(ComplexBands, AreAccurateAndWriteNothingOutsideAtAnyAddress) {
  const uint32_t m = GetParam();
  Random random(m + 2);
  GuardedFloats rotation = Rotations(random, m);
  const std::vector<float> x = Samples(kUniform, random, 2 * size_t{m});
  for (const Mode &mode : Modes(rotation.data(), m)) {
    const Factors factors = FactorsOf(mode.value, mode.rotation, m);
    const WideArray bands = ExactBands(x, factors), block = ExactBlock(x, factors);
    for (const PairKind &kind : PairKinds(m)) {
      for (const std::array<int, 4> &offsets :
           {std::array{0, 0, 0, 0}, {1, 2, 3, 0}, {5, 0, 6, 0}}) {
        const KernelCall call = CallOf(kind.name, mode.name, m, offsets);
        GuardedFloats src(x, offsets[0]), out(x.size(), offsets[1]), work(x.size(), offsets[2]);
        mvk_forwardModulationComplex(src.data(), out.data(), work.data(), m, mode.value,
                                     mode.rotation, kind.pair);
        EXPECT_LT(LargestError(Widened(ComplexOf(out.values())), bands),
                  BoundOf(kind.has_coarse_twiddles))
            << call;
        EXPECT_TRUE(src.GuardsStand(call)) << "source";
        EXPECT_TRUE(out.GuardsStand(call)) << "bands";
        EXPECT_TRUE(work.GuardsStand(call)) << "bins";
        src.Refill();
        mvk_inverseModulationComplex(src.data(), out.data(), work.data(), m, mode.value,
                                     mode.rotation, kind.pair);
        EXPECT_LT(LargestError(Widened(ComplexOf(out.values())), block),
                  BoundOf(kind.has_coarse_twiddles))
            << call;
        EXPECT_TRUE(src.Untouched(call)) << "bands of the inverse";
        EXPECT_TRUE(out.GuardsStand(call)) << "block";
        EXPECT_TRUE(work.GuardsStand(call)) << "bins of the inverse";
      }
    }
    EXPECT_TRUE(rotation.Untouched(CallOf("", mode.name, m))) << "table";
  }
}

TEST_P(ComplexBands, WithoutAPairRunOnRadix4) {
  const uint32_t m = GetParam();
  Random random(m + 3);
  const std::vector<float> x = Samples(kUniform, random, 2 * size_t{m});
  const mvk_fft_pair *pairs[] = {nullptr, MVK_r4_cplx_fwd_pair(m)};
  std::vector<float> bands[2], block[2];
  for (int i = 0; i < 2; ++i) {
    std::vector<float> src = x, work(x.size());
    bands[i].resize(x.size());
    block[i].resize(x.size());
    mvk_forwardModulationComplex(src.data(), bands[i].data(), work.data(), m, 0, nullptr, pairs[i]);
    mvk_inverseModulationComplex(x.data(), block[i].data(), work.data(), m, 0, nullptr, pairs[i]);
  }
  EXPECT_TRUE(SameSamples(bands[0], bands[1], CallOf("forwardModulationComplex", "none", m)));
  EXPECT_TRUE(SameSamples(block[0], block[1], CallOf("inverseModulationComplex", "none", m)));
}

TEST_P(ComplexBands, InverseUndoesForward) {
  const uint32_t m = GetParam();
  Random random(m + 4);
  GuardedFloats rotation = Rotations(random, m);
  const std::vector<float> x = Samples(kUniform, random, 2 * size_t{m});
  for (const Mode &mode : Modes(rotation.data(), m)) {
    std::vector<float> src = x, bands(x.size()), work(x.size()), bins(x.size());
    mvk_forwardModulationComplex(src.data(), bands.data(), bins.data(), m, mode.value,
                                 mode.rotation, nullptr);
    // Put back into the order of bins they are those that the bands were made of.
    const TransformProbe probe(bins);
    mvk_inverseModulationComplex(bands.data(), src.data(), work.data(), m, mode.value,
                                 mode.rotation, probe.pair());
    EXPECT_LT(LargestError(Widened(ComplexOf(work)), Widened(ComplexOf(bins))), 1e-6)
        << m << " mode " << mode.value;
  }
}

// ---- With the exported tables ----

// exp(i pi numerator / denominator)
WideComplex Turn(uint64_t numerator, uint64_t denominator) {
  const auto root = reference::RootOfUnity<double>(numerator, 2 * denominator);
  return {root.cosine, root.sine};
}

TEST(ComplexModulation, HalfSampleTablesTurnByHalfASample) {
  for (const auto &[m, table] :
       {std::pair{32u, mvk_cos_32_full_twiddle}, std::pair{64u, mvk_cos_64_full_twiddle}}) {
    Factors factors;
    for (uint32_t k = 0; k < m; ++k) factors.push_back(-std::conj(Turn(2 * k + 1, 4 * m)));
    Random random(m);
    std::vector<float> x = Samples(kUniform, random, 2 * size_t{m}), out(x.size()), work(x.size());
    const WideArray bands = ExactBands(x, factors), block = ExactBlock(x, factors);
    mvk_inverseModulationComplex(x.data(), out.data(), work.data(), m, 1, table, nullptr);
    EXPECT_LT(LargestError(Widened(ComplexOf(out)), block), BoundOf(HasCoarseTwiddles(m))) << m;
    mvk_forwardModulationComplex(x.data(), out.data(), work.data(), m, 1, table, nullptr);
    EXPECT_LT(LargestError(Widened(ComplexOf(out)), bands), BoundOf(HasCoarseTwiddles(m))) << m;
  }
}

TEST(ComplexModulation, AlignmentTablesTurnByTheirBandsShareOf64) {
  const struct {
    uint32_t m;
    const float *table;
    uint32_t phi16;  // sixteenths of phi
  } kTables[] = {{8, mvk_cos_8_ast_mini_twiddle, 7},
                 {16, mvk_cos_16_ast_mini_twiddle, 6},
                 {32, mvk_cos_32_ast_mini_twiddle, 4},
                 {48, mvk_cos_48_ast_mini_twiddle, 2}};
  for (const auto &[m, table, phi16] : kTables) {
    Factors factors;
    for (uint32_t j = 0; j < m; ++j) factors.push_back(Turn((2 * j + 1) * phi16, 32 * m));
    Random random(m);
    std::vector<float> x = Samples(kUniform, random, 2 * size_t{m}), out(x.size()), work(x.size());
    const WideArray bands = ExactBands(x, factors), block = ExactBlock(x, factors);
    mvk_inverseModulationComplex(x.data(), out.data(), work.data(), m, kAlign, table, nullptr);
    EXPECT_LT(LargestError(Widened(ComplexOf(out)), block), BoundOf(HasCoarseTwiddles(m))) << m;
    mvk_forwardModulationComplex(x.data(), out.data(), work.data(), m, kAlign, table, nullptr);
    EXPECT_LT(LargestError(Widened(ComplexOf(out)), bands), BoundOf(HasCoarseTwiddles(m))) << m;
  }
}

TEST(ComplexModulation, BandNoughtIsTheConjugateOfBinNought) {
  std::vector<float> src(16, 0.0f), out(16), work(16);
  src[0] = 1;
  src[1] = 2;
  mvk_forwardModulationComplex(src.data(), out.data(), work.data(), 8, 0, nullptr, nullptr);
  for (uint32_t band = 0; band < 8; ++band) {
    EXPECT_EQ(out[2 * band], 1) << band;
    EXPECT_EQ(out[2 * band + 1], band % 2 == 0 ? -2 : 2) << band;
  }
}

}  // namespace
}  // namespace testing_support
