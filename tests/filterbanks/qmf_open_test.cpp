// What the records of QMF banks hold once they are open.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "dct/pair_kinds.h"
#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

const float *SinesOf(uint32_t bands) {
  const std::pair<uint32_t, const float *> kTables[] = {
      {4, mvk_dct_twiddle_table16_L4},      {8, mvk_dct_twiddle_table16_L8},
      {16, mvk_dct_twiddle_table16_L16},    {32, mvk_dct_twiddle_table16_L32},
      {64, mvk_dct_twiddle_table16_L64},    {128, mvk_dct_twiddle_table16_L128},
      {256, mvk_dct_twiddle_table16_L256},  {512, mvk_dct_twiddle_table16_L512},
      {1024, mvk_dct_twiddle_table16_L1024}};
  for (const auto &[count, table] : kTables) {
    if (count == bands) return table;
  }
  return nullptr;
}

const float *CosinesOf(uint32_t bands, bool scaled) {
  switch (bands) {
    case 8:
      return scaled ? mvk_cos_8_full_scl : mvk_cos_8_full;
    case 16:
      return scaled ? mvk_cos_16_full_scl : mvk_cos_16_full;
    case 48:
      return scaled ? mvk_cos_48_full_scl : mvk_cos_48_full;
    case 64:
      return scaled ? mvk_cos_64_full_scl : mvk_cos_64_full;
    default:
      return scaled ? mvk_cos_32_full_scl : mvk_cos_32_full;
  }
}

const float *AlignmentOf(uint32_t bands) {
  switch (bands) {
    case 8:
      return mvk_cos_8_ast_mini_twiddle;
    case 16:
      return mvk_cos_16_ast_mini_twiddle;
    case 32:
      return mvk_cos_32_ast_mini_twiddle;
    case 48:
      return mvk_cos_48_ast_mini_twiddle;
    default:
      return nullptr;
  }
}

const uint8_t *Aligned(GuardedBytes &memory, uintptr_t alignment) {
  const auto address = reinterpret_cast<uintptr_t>(memory.data());
  return memory.data() + (alignment - address % alignment) % alignment;
}

template <typename T>
const uint8_t *Bytes(const T *p) {
  return reinterpret_cast<const uint8_t *>(p);
}

template <class Kind>
class QmfOpen : public testing::Test {};
TYPED_TEST_SUITE(QmfOpen, QmfKinds);

template <class Kind>
class QmfAnalysisOpen : public testing::Test {};
TYPED_TEST_SUITE(QmfAnalysisOpen, QmfAnalyses);

constexpr uint32_t kAllBands[] = {4, 8, 16, 32, 48, 64, 128, 256, 512, 1024};

template <class Record>
void ExpectShape(const Record &record, const QmfShape &shape) {
  EXPECT_EQ(record.bands, shape.bands);
  EXPECT_EQ(record.prototype, shape.prototype);
  EXPECT_EQ(record.order, shape.order);
  EXPECT_EQ(record.slots, shape.slots);
  EXPECT_EQ(record.slot_increment, shape.bands);
  EXPECT_EQ(record.history_length, (2 * shape.order - 1) * shape.bands);
  EXPECT_EQ(record.twiddle_mode, shape.mode);
}

TYPED_TEST(QmfOpen, SetsTheShape) {
  for (const uint32_t m : kAllBands) {
    for (const uint32_t order : kOrders) {
      for (const uint32_t mode : {0u, 1u, 8u, 0xffu}) {
        const std::vector<float> table = AnyPrototype({order, m}, 1);
        const QmfShape shape{m, order, table.data(), 7, mode};
        SCOPED_TRACE(testing::Message() << shape);
        QmfBank<TypeParam> bank(shape);
        ExpectShape(*bank.record(), shape);
      }
    }
  }
}

TYPED_TEST(QmfOpen, FindsTheTables) {
  const float table[10 * 1024] = {};
  for (const uint32_t m : kAllBands) {
    SCOPED_TRACE(testing::Message() << m << " bands");
    QmfBank<TypeParam> bank({m, 5, table});
    const auto &record = *bank.record();
    EXPECT_EQ(record.cos_table, CosinesOf(m, TypeParam::kAnalyses));
    EXPECT_EQ(record.pair_full, FastestPair(m));
    if (m == 48) {
      EXPECT_EQ(record.pair_half, FastestPair(TypeParam::kShort ? 24 : 16));
      EXPECT_EQ(record.dct_twiddle, TypeParam::kShort ? nullptr : SinesOf(32));
    } else {
      EXPECT_EQ(record.pair_half, FastestPair(m / 2));
      EXPECT_EQ(record.dct_twiddle, m == 4 && !TypeParam::kAnalyses ? nullptr : SinesOf(m));
    }
  }
}

TYPED_TEST(QmfOpen, FindsTheRotations) {
  const float table[10 * 64] = {};
  for (const uint32_t m : kComplexBands) {
    SCOPED_TRACE(testing::Message() << m << " bands");
    QmfBank<TypeParam> aligned({m, 5, table, 1, MVK_TWIDDLE_ALIGN});
    EXPECT_EQ(aligned.record()->rotation, AlignmentOf(m));
    for (const uint32_t mode : {1u, 2u, 7u, 9u, 16u, 0xffffffffu}) {
      QmfBank<TypeParam> half_sample({m, 5, table, 1, mode});
      EXPECT_EQ(half_sample.record()->rotation,
                m == 64 ? mvk_cos_64_full_twiddle : mvk_cos_32_full_twiddle)
          << mode;
    }
  }
}

// All values but 0 and 8 are one mode.
TYPED_TEST(QmfOpen, TurnsByHalfASampleInAllOtherModes) {
  for (const uint32_t m : {32u, 64u}) {
    const std::vector<float> table = AnyPrototype({5, m}, 1), x = QmfNoise(m, 12 * 2 * m);
    QmfBank<TypeParam> one({m, 5, table.data(), 1, 1});
    const std::vector<float> want = one.Complex(x);
    for (const uint32_t mode : {2u, 4u, 7u, 9u, 16u, 0x80000000u, 0xffffffffu}) {
      QmfBank<TypeParam> bank({m, 5, table.data(), 1, mode});
      EXPECT_TRUE(SameBits(bank.Complex(x), want, {"mode", "", mode}));
    }
  }
}

TYPED_TEST(QmfOpen, TakesTheWindowsOfOrder5ForThatOnly) {
  const float table[32 * 8] = {};
  const QmfSizes ample{4096, 4096, 127, 0};
  QmfBank<TypeParam> four({8, 4, table}, ample), five({8, 5, table}, ample);
  EXPECT_NE(four.record()->window_real, five.record()->window_real);
  EXPECT_NE(four.record()->window_complex, five.record()->window_complex);
  for (const uint32_t order : {1u, 2u, 3u, 6u, 7u, 8u, 13u}) {
    QmfBank<TypeParam> other({8, order, table}, ample);
    EXPECT_EQ(other.record()->window_real, four.record()->window_real) << order;
    EXPECT_EQ(other.record()->window_complex, four.record()->window_complex) << order;
  }
}

TEST(QmfSynthesisOpen, TakesTheOneBitLowerWindowsByOrderToo) {
  const float table[10 * 8] = {};
  QmfBank<LongSynthesis> four({8, 4, table}), five({8, 5, table});
  EXPECT_NE(four.record()->window_complex_head1bit, five.record()->window_complex_head1bit);
  for (QmfBank<LongSynthesis> *bank : {&four, &five}) {
    EXPECT_NE(bank->record()->window_complex_head1bit, bank->record()->window_complex);
  }
}

// Each memory aligned by itself, and used to its last byte.
TYPED_TEST(QmfOpen, LaysOutItsMemoryAtAnyAddress) {
  for (const uint32_t m : {8u, 64u}) {
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, 1);
      const std::vector<float> x = QmfNoise(m, 12 * size_t{m}), pairs = QmfNoise(m, 24 * m);
      std::vector<float> real, complex;
      for (size_t place = 0; place < 64; ++place) {
        SCOPED_TRACE(testing::Message() << m << " bands, order " << order << ", " << place);
        QmfBank<TypeParam> bank({m, order, table.data()},
                                QmfPlaces{place, 37 * place % 64, 63 - place});
        const auto *record = bank.record();
        EXPECT_EQ(Bytes(record), Aligned(bank.record_memory(), 8));
        EXPECT_EQ(Bytes(record->history), Aligned(bank.state_memory(), 32));
        EXPECT_EQ(Bytes(record->scratch), Aligned(bank.scratch_memory(), 32));
        for (const float sample : bank.History()) ASSERT_EQ(BitsOf(sample), 0u);
        const std::vector<float> got_real = bank.Real(x), got_complex = bank.Complex(pairs);
        if (place == 0) {
          real = got_real;
          complex = got_complex;
        }
        EXPECT_TRUE(SameBits(got_real, real, {"real", ""}));
        EXPECT_TRUE(SameBits(got_complex, complex, {"complex", ""}));
        TypeParam::kInit(bank.record());
        TypeParam::kClose(bank.record());
        EXPECT_TRUE(bank.GuardsStand());
      }
    }
  }
}

// Whatever is answered for a band count suffices, except for those that are answered as fewer.
TYPED_TEST(QmfOpen, StaysWithinTheQueriedBytes) {
  for (const uint32_t m : {4u, 8u, 16u, 32u, 48u, 64u}) {
    if (TypeParam::kShort && m == 48) continue;
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, 1);
      const QmfShape shape{m, order, table.data(), 2};
      SCOPED_TRACE(testing::Message() << shape);
      for (const size_t place : {0, 1, 31}) {
        QmfBank<TypeParam> bank(shape, QueriedSizes<TypeParam>(m, order), {place, place, place});
        const bool has_real = m != 48 && !(m == 4 && !TypeParam::kAnalyses);
        if (has_real) bank.Real(QmfNoise(m, 2 * 12 * size_t{m}));
        if (m != 4) bank.Complex(QmfNoise(m, 2 * 24 * size_t{m}));
        EXPECT_TRUE(bank.GuardsStand());
      }
    }
  }
}

TYPED_TEST(QmfAnalysisOpen, PutsThePointersBehindTheHistory) {
  for (const uint32_t m : kAllBands) {
    for (const uint32_t order : kOrders) {
      SCOPED_TRACE(testing::Message() << m << " bands, order " << order);
      const std::vector<float> table = AnyPrototype({order, m}, 1);
      QmfBank<TypeParam> bank({m, order, table.data()});
      const auto *record = bank.record();
      EXPECT_EQ(Bytes(record->slot_ptr), Bytes(record->history + record->history_length));
      for (uint32_t i = 0; i < 2 * order - 1; ++i) {
        EXPECT_EQ(record->slot_ptr[i], record->history + size_t{i} * m) << i;
      }
    }
  }
}

TYPED_TEST(QmfOpen, HasNothingToClose) {
  const std::vector<float> table = AnyPrototype({5, 16}, 1);
  QmfBank<TypeParam> bank({16, 5, table.data()});
  bank.Real(QmfNoise(1, 5 * 16));
  const auto copies = [&] {
    return std::array{bank.state_memory().Copy(), bank.scratch_memory().Copy(),
                      bank.record_memory().Copy()};
  };
  const auto before = copies();
  TypeParam::kClose(bank.record());
  EXPECT_EQ(copies(), before);
}

// ---- Layout of the records ----

using Offsets = std::vector<size_t>;

TEST(QmfRecords, OfLongAnalysisHaveThisLayout) {
  using R = mvk_qmf_analysisL_state;
  EXPECT_EQ((Offsets{offsetof(R, bands), offsetof(R, prototype), offsetof(R, order),
                     offsetof(R, slots), offsetof(R, slot_increment), offsetof(R, history),
                     offsetof(R, slot_ptr), offsetof(R, history_length), offsetof(R, twiddle_mode),
                     offsetof(R, cos_table), offsetof(R, rotation), offsetof(R, pair_full),
                     offsetof(R, pair_half), offsetof(R, dct_twiddle), offsetof(R, scratch),
                     offsetof(R, window_real), offsetof(R, window_complex), sizeof(R)}),
            (Offsets{0, 8, 16, 20, 24, 32, 40, 48, 52, 56, 64, 72, 80, 88, 96, 104, 112, 120}));
}

template <class R>
Offsets SynthesisOffsets() {
  return {offsetof(R, bands),          offsetof(R, prototype),      offsetof(R, order),
          offsetof(R, slots),          offsetof(R, slot_increment), offsetof(R, history),
          offsetof(R, history_length), offsetof(R, twiddle_mode),   offsetof(R, rotation),
          offsetof(R, cos_table),      offsetof(R, pair_full),      offsetof(R, pair_half),
          offsetof(R, dct_twiddle),    offsetof(R, scratch),        offsetof(R, window_real),
          offsetof(R, window_complex)};
}

TEST(QmfRecords, OfSynthesisHaveThisLayout) {
  const Offsets offsets = {0, 8, 16, 20, 24, 32, 40, 44, 48, 56, 64, 72, 80, 88, 96, 104};
  EXPECT_EQ(SynthesisOffsets<mvk_qmf_synthesisL_state>(), offsets);
  EXPECT_EQ(SynthesisOffsets<mvk_qmf_synthesisS_state>(), offsets);
  EXPECT_EQ(offsetof(mvk_qmf_synthesisL_state, window_complex_head1bit), 112u);
}

}  // namespace
}  // namespace testing_support
