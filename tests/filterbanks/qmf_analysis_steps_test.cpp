// The windows of QMF analysis banks to the bit, seen through the modulation behind them.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_qmf.h"
#include "reference/qmf_steps.h"

namespace testing_support {
namespace {

using reference::AnalysisSums;
using reference::AnalysisWindow;

class RealAnalysisSteps : public testing::TestWithParam<uint32_t> {};
class ComplexAnalysisSteps : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, RealAnalysisSteps, testing::ValuesIn(kRealBands),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(All, ComplexAnalysisSteps, testing::ValuesIn(kComplexBands),
                         testing::PrintToStringParamName());

std::vector<float> ModulatedReal(const mvk_qmf_analysisL_state &bank, const AnalysisSums &sums) {
  const std::vector<float> src = reference::FoldedForModulation(sums);
  std::vector<float> out(bank.bands), work(bank.bands);
  mvk_forwardModulationReal(src.data(), out.data(), bank.bands, bank.pair_half, bank.dct_twiddle,
                            work.data());
  return out;
}

// Of sums of which one is zero, so that turning them takes one product.
std::vector<float> ModulatedComplex(const mvk_qmf_analysisL_state &bank, const AnalysisSums &sums) {
  const size_t m = bank.bands;
  std::vector<float> src(2 * m), out(2 * m), work(2 * m);
  for (size_t k = 0; k < m; ++k) {
    const size_t i = m - 1 - k;
    const float a = sums.odd[k], b = sums.even[k];
    const float c1 = bank.cos_table[i / 4 * 8 + i % 4], c2 = bank.cos_table[i / 4 * 8 + i % 4 + 4];
    src[2 * i] = a * c1 - b * c2;
    src[2 * i + 1] = a * c2 + b * c1;
  }
  mvk_forwardModulationComplex(src.data(), out.data(), work.data(), bank.bands, bank.twiddle_mode,
                               bank.rotation, bank.pair_full);
  return out;
}

TEST_P(RealAnalysisSteps, AddTheProductsInOneOrder) {
  const uint32_t m = GetParam();
  Random random(m);
  for (const uint32_t order : kOrders) {
    for (const Material &material : {kUniform, kClose, kFew}) {
      const std::vector<float> table = Samples(material, random, QmfWindow{order, m}.Taps());
      const QmfShape shape{m, order, table.data()};
      QmfBank<LongAnalysis> bank(shape);
      AnalysisWindow window(shape.Window(), table.data());
      for (int slot = 0; slot < 24; ++slot) {
        const std::vector<float> x = Samples(material, random, m);
        ASSERT_TRUE(SameSamples(bank.Real(x), ModulatedReal(*bank.record(), window.Slot(x.data())),
                                {"analysisL", "real", m, {}, material.name}))
            << shape << ", slot " << slot;
      }
    }
  }
}

TEST_P(ComplexAnalysisSteps, AddTheProductsInOneOrder) {
  const uint32_t m = GetParam();
  Random random(m);
  for (const uint32_t order : kOrders) {
    for (const size_t silent_blocks : {0, 1}) {
      for (const Material &material : {kUniform, kClose}) {
        std::vector<float> table = Samples(material, random, QmfWindow{order, m}.Taps());
        for (size_t n = 0; n < table.size(); ++n) {
          if (n / m % 2 == silent_blocks) table[n] = 0;
        }
        const QmfShape shape{m, order, table.data()};
        QmfBank<LongAnalysis> bank(shape);
        AnalysisWindow window(shape.Window(), table.data());
        for (int slot = 0; slot < 24; ++slot) {
          const std::vector<float> x = Samples(material, random, m);
          ASSERT_TRUE(SameSamples(bank.Complex(x),
                                  ModulatedComplex(*bank.record(), window.Slot(x.data())),
                                  {"analysisL", "complex", m, {}, material.name}))
              << shape << ", slot " << slot;
        }
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
