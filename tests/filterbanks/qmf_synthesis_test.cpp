// The output of QMF synthesis banks against the sums that define it.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"
#include "reference/qmf_exact.h"

namespace testing_support {
namespace {

using reference::ExactSynthesis;
using reference::QmfOutput;
using reference::WideComplex;

void ExpectOutput(const std::vector<float> &got, const QmfOutput &want) {
  for (size_t i = 0; i < got.size(); ++i) {
    ASSERT_LE(std::fabs(got[i] - want.samples[i]), want.bounds[i]) << "sample " << i;
  }
}

// All bands where there are few, and the ends and some between.
std::vector<size_t> Bands(uint32_t bands) {
  if (bands > 64) return {0, 1, 2, 3, bands / 2 - 1, bands / 2, bands - 5, bands - 1};
  std::vector<size_t> all(bands);
  for (size_t k = 0; k < bands; ++k) all[k] = k;
  return all;
}

// The bound is that of random slots: the delay line adds zeros to one product.
template <class Response>
void ExpectImpulse(const std::vector<float> &got, const QmfWindow &window, const float *table,
                   double size, double modulation, Response response) {
  const reference::Taps taps = reference::TapsOfSynthesis(window, table);
  for (size_t n = 0; n < got.size(); ++n) {
    const double tap = n < taps.size() ? std::fabs(taps[n]) : 0;
    const double bound = tap * size * (modulation + 6 * reference::kRounding);
    ASSERT_LE(std::fabs(got[n] - response(n)), bound) << "sample " << n;
  }
}

// There is no table of sines for four bands: their caller brings it.
void BringTable(QmfBank<LongSynthesis> &bank) {
  if (bank.record()->bands != 4) return;
  EXPECT_EQ(bank.record()->dct_twiddle, nullptr);
  bank.record()->dct_twiddle = mvk_dct_twiddle_table16_L4;
}

class RealSynthesis : public testing::TestWithParam<uint32_t> {};
class ComplexSynthesis : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, RealSynthesis, testing::ValuesIn(kRealBands),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(All, ComplexSynthesis, testing::ValuesIn(kComplexBands),
                         testing::PrintToStringParamName());

TEST_P(RealSynthesis, AnswersABandByThePrototypeOnItsCarrier) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, false)) {
      const QmfShape shape{m, order, table.values.data()};
      const ExactSynthesis exact(shape.Window(), shape.prototype);
      QmfBank<LongSynthesis> bank(shape);
      BringTable(bank);
      for (const size_t k : Bands(m)) {
        SCOPED_TRACE(testing::Message() << shape << ", " << table.name << ", band " << k);
        std::vector<float> slots((2 * order + 2) * size_t{m});
        slots[k] = -0.75f;
        MVK_qmf_synthesisL_init(bank.record());
        ExpectImpulse(bank.Real(slots), shape.Window(), shape.prototype, 4 * 0.75,
                      RealModulationBound(m), [&](size_t n) { return -0.75 * exact.Real(k, n); });
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_P(ComplexSynthesis, AnswersABandByThePrototypeOnItsCarrier) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, false)) {
      const ExactSynthesis exact({order, m}, table.values.data());
      for (const QmfMode &mode : ModesOf(m)) {
        const QmfShape shape{m, order, table.values.data(), 1, mode.value};
        QmfBank<LongSynthesis> bank(shape);
        for (const size_t k : Bands(m)) {
          SCOPED_TRACE(testing::Message() << shape << ", " << table.name << ", band " << k);
          const WideComplex band(0.75, -0.5);
          std::vector<float> slots(2 * (2 * order + 2) * size_t{m});
          slots[2 * k] = static_cast<float>(band.real());
          slots[2 * k + 1] = static_cast<float>(band.imag());
          MVK_qmf_synthesisL_init(bank.record());
          ExpectImpulse(bank.Complex(slots), shape.Window(), shape.prototype, 2 * std::abs(band),
                        ComplexModulationBound(m),
                        [&](size_t n) { return exact.Complex(mode.turning, k, band, n); });
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST_P(RealSynthesis, SumsUpItsSlots) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, false)) {
      const QmfShape shape{m, order, table.values.data()};
      SCOPED_TRACE(testing::Message() << shape << ", " << table.name);
      const std::vector<float> slots = QmfNoise(m + order, (2 * order + 2) * size_t{m});
      QmfBank<LongSynthesis> bank(shape);
      BringTable(bank);
      const ExactSynthesis exact(shape.Window(), shape.prototype);
      ExpectOutput(bank.Real(slots), exact.OfReal(slots, RealModulationBound(m)));
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(ComplexSynthesis, SumsUpItsSlots) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, false)) {
      const ExactSynthesis exact({order, m}, table.values.data());
      const std::vector<float> slots = QmfNoise(m + order, 2 * (2 * order + 2) * size_t{m});
      for (const QmfMode &mode : ModesOf(m)) {
        const QmfShape shape{m, order, table.values.data(), 1, mode.value};
        SCOPED_TRACE(testing::Message() << shape << ", " << table.name);
        QmfBank<LongSynthesis> bank(shape);
        ExpectOutput(bank.Complex(slots),
                     exact.OfComplex(mode.turning, slots, ComplexModulationBound(m)));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(ComplexSynthesis64, AlignmentChangesNothing) {
  for (const uint32_t order : kOrders) {
    const std::vector<float> table = AnyPrototype({order, 64}, order);
    const std::vector<float> slots = QmfNoise(order, 2 * 12 * 64);
    QmfBank<LongSynthesis> plain({64, order, table.data(), 1, MVK_TWIDDLE_NONE});
    QmfBank<LongSynthesis> aligned({64, order, table.data(), 1, MVK_TWIDDLE_ALIGN});
    EXPECT_EQ(aligned.record()->rotation, nullptr);
    EXPECT_TRUE(SameBits(aligned.Complex(slots), plain.Complex(slots), {"synthesisL", "aligned"}));
  }
}

}  // namespace
}  // namespace testing_support
