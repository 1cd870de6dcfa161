// Banks of short samples are those of long ones.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"

namespace testing_support {
namespace {

template <class Short, class Long>
void ExpectReal(const QmfShape &shape) {
  const std::vector<float> x = QmfNoise(shape.bands, 24 * size_t{shape.bands});
  QmfBank<Short> of_short(shape);
  QmfBank<Long> of_long(shape);
  if (shape.bands == 4) {
    of_short.record()->dct_twiddle = mvk_dct_twiddle_table16_L4;
    of_long.record()->dct_twiddle = mvk_dct_twiddle_table16_L4;
  }
  EXPECT_TRUE(SameBits(of_short.Real(x), of_long.Real(x), {"short", "real"})) << shape;
  EXPECT_TRUE(SameBits(of_short.History(), of_long.History(), {"short", "history"})) << shape;
  EXPECT_TRUE(of_short.GuardsStand()) << shape;
}

template <class Short, class Long>
void ExpectComplex(const QmfShape &shape) {
  const std::vector<float> x = QmfNoise(shape.bands, 24 * 2 * size_t{shape.bands});
  QmfBank<Short> of_short(shape);
  QmfBank<Long> of_long(shape);
  EXPECT_TRUE(SameBits(of_short.Complex(x), of_long.Complex(x), {"short", "complex"})) << shape;
  EXPECT_TRUE(SameBits(of_short.History(), of_long.History(), {"short", "history"})) << shape;
  EXPECT_TRUE(of_short.GuardsStand()) << shape;
}

constexpr uint32_t kSlotsPerCall[] = {1, 2, 3, 8};

TEST(ShortQmf, RealBandsAreThoseOfLongSamples) {
  for (const uint32_t m : kRealBands) {
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, m);
      for (const uint32_t slots : kSlotsPerCall) {
        ExpectReal<ShortAnalysis, LongAnalysis>({m, order, table.data(), slots});
        ExpectReal<ShortSynthesis, LongSynthesis>({m, order, table.data(), slots});
      }
    }
  }
}

TEST(ShortQmf, ComplexBandsAreThoseOfLongSamples) {
  for (const uint32_t m : kComplexBands) {
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, m);
      for (const QmfMode &mode : ModesOf(m)) {
        for (const uint32_t slots : kSlotsPerCall) {
          const QmfShape shape{m, order, table.data(), slots, mode.value};
          ExpectComplex<ShortAnalysis, LongAnalysis>(shape);
          ExpectComplex<ShortSynthesis, LongSynthesis>(shape);
        }
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
