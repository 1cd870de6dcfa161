// The bands of QMF analysis banks against the sums that define them.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "reference/qmf_exact.h"

namespace testing_support {
namespace {

using reference::ExactAnalysis;
using reference::QmfSlot;
using reference::WideComplex;

constexpr double kImpulse = 0.75f;

void ExpectSlot(const float *got, bool is_complex, const QmfSlot &want) {
  for (size_t k = 0; k < want.bands.size(); ++k) {
    const WideComplex band = is_complex ? WideComplex(got[2 * k], got[2 * k + 1]) : got[k];
    ASSERT_LE(std::abs(band - want.bands[k]), want.bound) << "band " << k;
  }
}

template <class Expected>
void ExpectBands(const std::vector<float> &got, uint32_t bands, bool is_complex,
                 Expected expected) {
  const size_t slot = is_complex ? 2 * size_t{bands} : bands;
  for (size_t s = 0; s * slot < got.size(); ++s) {
    SCOPED_TRACE(testing::Message() << "slot " << s);
    ExpectSlot(&got[s * slot], is_complex, expected(s));
    if (testing::Test::HasFatalFailure()) return;
  }
}

// What an impulse at `place` makes of slot s.
template <class Response>
QmfSlot ImpulseSlot(uint32_t bands, size_t s, size_t place, double modulation, Response response) {
  QmfSlot slot{reference::WideArray(bands), 0};
  const size_t newest = (s + 1) * bands - 1;
  if (newest < place) return slot;
  for (size_t k = 0; k < bands; ++k) slot.bands[k] = kImpulse * response(k, newest - place);
  // One product, and two in turning it.
  slot.bound = (modulation + 4 * reference::kRounding) * reference::Rms(slot.bands);
  return slot;
}

// In each part of a block and of the four lanes, and in a later block.
std::vector<size_t> Places(uint32_t bands) {
  return {0, 1, 2, 3, bands / 2, bands - 2, bands - 1, bands, 2 * size_t{bands} + 1};
}

class RealAnalysis : public testing::TestWithParam<uint32_t> {};
class ComplexAnalysis : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, RealAnalysis, testing::ValuesIn(kRealBands),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(All, ComplexAnalysis, testing::ValuesIn(kComplexBands),
                         testing::PrintToStringParamName());

TEST_P(RealAnalysis, AnswersImpulsesByThePrototypeOnItsCarriers) {
  const uint32_t m = GetParam();
  const double modulation = RealModulationBound(m);
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, true)) {
      const QmfShape shape{m, order, table.values.data()};
      const ExactAnalysis exact(shape.Window(), shape.prototype);
      for (const size_t place : Places(m)) {
        SCOPED_TRACE(testing::Message() << shape << ", " << table.name << ", impulse at " << place);
        std::vector<float> x((2 * order + 4) * size_t{m});
        x[place] = kImpulse;
        QmfBank<LongAnalysis> bank(shape);
        ExpectBands(bank.Real(x), m, false, [&](size_t s) {
          return ImpulseSlot(m, s, place, modulation,
                             [&](size_t k, size_t d) { return exact.Real(k, d); });
        });
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_P(ComplexAnalysis, AnswersImpulsesByThePrototypeOnItsCarriers) {
  const uint32_t m = GetParam();
  const double modulation = ComplexModulationBound(m);
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, true)) {
      const ExactAnalysis exact({order, m}, table.values.data());
      for (const QmfMode &mode : ModesOf(m)) {
        const QmfShape shape{m, order, table.values.data(), 1, mode.value};
        for (const size_t place : Places(m)) {
          SCOPED_TRACE(testing::Message()
                       << shape << ", " << table.name << ", impulse at " << place);
          std::vector<float> x((2 * order + 4) * size_t{m});
          x[place] = kImpulse;
          QmfBank<LongAnalysis> bank(shape);
          ExpectBands(bank.Complex(x), m, true, [&](size_t s) {
            return ImpulseSlot(m, s, place, modulation, [&](size_t k, size_t d) {
              return exact.Complex(mode.turning, k, d);
            });
          });
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST_P(RealAnalysis, SumsUpItsInput) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, true)) {
      const QmfShape shape{m, order, table.values.data()};
      SCOPED_TRACE(testing::Message() << shape << ", " << table.name);
      const ExactAnalysis exact(shape.Window(), shape.prototype);
      const std::vector<float> x = QmfNoise(m + order, (2 * order + 2) * size_t{m});
      QmfBank<LongAnalysis> bank(shape);
      ExpectBands(bank.Real(x), m, false,
                  [&](size_t s) { return exact.RealSlot(x, s, RealModulationBound(m)); });
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(ComplexAnalysis, SumsUpItsInput) {
  const uint32_t m = GetParam();
  for (const uint32_t order : kOrders) {
    for (const QmfTable &table : QmfTables({order, m}, true)) {
      const ExactAnalysis exact({order, m}, table.values.data());
      const std::vector<float> x = QmfNoise(m + order, (2 * order + 2) * size_t{m});
      for (const QmfMode &mode : ModesOf(m)) {
        const QmfShape shape{m, order, table.values.data(), 1, mode.value};
        SCOPED_TRACE(testing::Message() << shape << ", " << table.name);
        QmfBank<LongAnalysis> bank(shape);
        ExpectBands(bank.Complex(x), m, true, [&](size_t s) {
          return exact.ComplexSlot(mode.turning, x, s, ComplexModulationBound(m));
        });
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(ComplexAnalysis64, AlignmentChangesNothing) {
  for (const uint32_t order : kOrders) {
    const std::vector<float> table = AnyPrototype({order, 64}, order);
    const std::vector<float> x = QmfNoise(order, 12 * 64);
    QmfBank<LongAnalysis> plain({64, order, table.data(), 1, MVK_TWIDDLE_NONE});
    QmfBank<LongAnalysis> aligned({64, order, table.data(), 1, MVK_TWIDDLE_ALIGN});
    EXPECT_EQ(aligned.record()->rotation, nullptr);
    EXPECT_TRUE(SameBits(aligned.Complex(x), plain.Complex(x), {"analysisL", "aligned"}));
  }
}

}  // namespace
}  // namespace testing_support
