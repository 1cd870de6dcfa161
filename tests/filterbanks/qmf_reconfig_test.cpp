// Analysis banks that take another shape on the same memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

uint64_t Reconfigure(QmfBank<LongAnalysis> &bank, const QmfShape &shape) {
  return static_cast<uint64_t>(mvk_qmf_analysisL_reconfig(
      bank.record(), shape.bands, shape.slots, shape.mode, shape.order, shape.prototype));
}

// All that is derived from the shape; the memories stay.
void ExpectAlike(const mvk_qmf_analysisL_state &got, const mvk_qmf_analysisL_state &want) {
  EXPECT_EQ(got.bands, want.bands);
  EXPECT_EQ(got.prototype, want.prototype);
  EXPECT_EQ(got.order, want.order);
  EXPECT_EQ(got.slots, want.slots);
  EXPECT_EQ(got.slot_increment, want.slot_increment);
  EXPECT_EQ(got.history_length, want.history_length);
  EXPECT_EQ(got.twiddle_mode, want.twiddle_mode);
  EXPECT_EQ(got.cos_table, want.cos_table);
  EXPECT_EQ(got.rotation, want.rotation);
  EXPECT_EQ(got.pair_full, want.pair_full);
  EXPECT_EQ(got.pair_half, want.pair_half);
  EXPECT_EQ(got.dct_twiddle, want.dct_twiddle);
  EXPECT_EQ(got.window_real, want.window_real);
  EXPECT_EQ(got.window_complex, want.window_complex);
  ASSERT_EQ(got.slot_ptr, reinterpret_cast<float **>(got.history + got.history_length));
  for (uint32_t i = 0; i < 2 * got.order - 1; ++i) {
    EXPECT_EQ(got.slot_ptr[i], got.history + size_t{i} * got.bands) << i;
  }
}

TEST(QmfReconfig, MakesABankOfAnotherShape) {
  const std::vector<float> large = AnyPrototype({5, 64}, 1), small = AnyPrototype({4, 16}, 2);
  const QmfShape shapes[] = {{64, 5, large.data(), 1, 0}, {16, 4, small.data(), 2, 8},
                             {8, 5, small.data(), 3, 0},  {4, 4, small.data(), 1, 0},
                             {48, 5, large.data(), 4, 8}, {64, 4, large.data(), 2, 1},
                             {32, 5, large.data(), 1, 1}, {64, 5, large.data(), 1, 8}};
  for (const size_t place : {0, 13}) {
    QmfBank<LongAnalysis> bank(shapes[0], QmfPlaces{place, place, place});
    const float *const history = bank.record()->history, *const scratch = bank.record()->scratch;
    MVK_qmf_analysisL_set_slot_increment(bank.record(), 99);
    for (const QmfShape &shape : shapes) {
      SCOPED_TRACE(testing::Message() << shape);
      EXPECT_EQ(Reconfigure(bank, shape), 0u);
      QmfBank<LongAnalysis> fresh(shape);
      ExpectAlike(*bank.record(), *fresh.record());
      EXPECT_EQ(bank.record()->history, history);
      EXPECT_EQ(bank.record()->scratch, scratch);
      MVK_qmf_analysisL_init(bank.record());
      const std::vector<float> x = QmfNoise(shape.bands, 12 * size_t{shape.bands});
      if (shape.bands != 48) {
        EXPECT_TRUE(SameBits(bank.Real(x), fresh.Real(x), {"reconfig", "real"}));
      }
      if (shape.bands != 4) {
        EXPECT_TRUE(SameBits(bank.Complex(x), fresh.Complex(x), {"reconfig", "complex"}));
      }
      EXPECT_TRUE(bank.GuardsStand());
    }
  }
}

// It stays where it lies, but the blocks are in the order of memory again.
TEST(QmfReconfig, LeavesTheHistory) {
  constexpr uint32_t kBands = 16;
  const std::vector<float> table = AnyPrototype({5, kBands}, 1);
  const QmfShape shape{kBands, 5, table.data()};
  QmfBank<LongAnalysis> bank(shape), other(shape);
  bank.Complex(QmfNoise(2, 13 * kBands));
  const std::vector<float> before(bank.History().begin(), bank.History().end());
  Reconfigure(bank, shape);
  EXPECT_TRUE(SameBits(bank.History(), before, {"reconfig", "history"}));

  std::vector<float> oldest_first;
  for (size_t block = 9; block-- > 0;) {
    oldest_first.insert(oldest_first.end(), &before[block * kBands],
                        &before[block * kBands] + kBands);
  }
  other.Complex(oldest_first);
  const std::vector<float> next = QmfNoise(3, 12 * kBands);
  EXPECT_TRUE(SameBits(bank.Complex(next), other.Complex(next), {"reconfig", "next slots"}));
}

}  // namespace
}  // namespace testing_support
