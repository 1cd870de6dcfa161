// What QMF banks remember, and how they forget.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

template <class Kind>
class QmfHistory : public testing::Test {};
TYPED_TEST_SUITE(QmfHistory, QmfKinds);

template <class Kind>
class QmfAnalysisHistory : public testing::Test {};
TYPED_TEST_SUITE(QmfAnalysisHistory, QmfAnalyses);

template <class Kind>
class QmfSynthesisHistory : public testing::Test {};
TYPED_TEST_SUITE(QmfSynthesisHistory, QmfSyntheses);

testing::AssertionResult AllZero(const std::vector<float> &samples) {
  for (size_t i = 0; i < samples.size(); ++i) {
    if (samples[i] != 0) return testing::AssertionFailure() << samples[i] << " at " << i;
  }
  return testing::AssertionSuccess();
}

constexpr uint32_t kAllBands[] = {4, 8, 16, 32, 48, 64, 128, 1024};

// The real and the complex form of a slot, where there are any.
template <class Kind>
struct Forms {
  static std::vector<bool> Of(uint32_t bands) {
    std::vector<bool> is_complex;
    if (bands != 48 && (bands != 4 || Kind::kAnalyses)) is_complex.push_back(false);
    if (bands <= 64 && bands != 4) is_complex.push_back(true);
    return is_complex;
  }

  static std::vector<float> Run(QmfBank<Kind> &bank, const std::vector<float> &in,
                                bool is_complex) {
    return is_complex ? bank.Complex(in) : bank.Real(in);
  }

  static size_t SlotFloats(uint32_t bands, bool is_complex) {
    return is_complex && !Kind::kAnalyses ? 2 * size_t{bands} : bands;
  }

  // Calls check(shape, floats of a slot, is_complex) for banks of all sizes in all forms.
  template <typename Check>
  static void ForEach(Check check) {
    for (const uint32_t m : kAllBands) {
      for (const uint32_t order : kOrders) {
        const std::vector<float> table = AnyPrototype({order, m}, 1);
        const QmfShape shape{m, order, table.data()};
        for (const bool is_complex : Of(m)) {
          SCOPED_TRACE(testing::Message() << shape << (is_complex ? ", complex" : ""));
          check(shape, SlotFloats(m, is_complex), is_complex);
        }
      }
    }
  }
};

TYPED_TEST(QmfHistory, IsSilentUntilThereIsASignalAndAfterInit) {
  using F = Forms<TypeParam>;
  F::ForEach([](const QmfShape &shape, size_t slot, bool is_complex) {
    const std::vector<float> silence(11 * slot);
    QmfBank<TypeParam> bank(shape);
    EXPECT_TRUE(AllZero(F::Run(bank, silence, is_complex))) << "opened";
    EXPECT_FALSE(AllZero(F::Run(bank, QmfNoise(shape.bands, 3 * slot), is_complex)));
    TypeParam::kInit(bank.record());
    EXPECT_TRUE(AllZero(F::Run(bank, silence, is_complex))) << "after init";
  });
}

// A signal is heard for 2 P slots, its own among them, and not a slot longer.
TYPED_TEST(QmfHistory, IsFlushedByTheSlotsOfAWindow) {
  using F = Forms<TypeParam>;
  F::ForEach([](const QmfShape &shape, size_t slot, bool is_complex) {
    QmfBank<TypeParam> bank(shape);
    F::Run(bank, QmfNoise(shape.bands, 4 * slot), is_complex);
    for (uint32_t i = 1; i <= 2 * shape.order - 1; ++i) {
      EXPECT_FALSE(AllZero(F::Run(bank, std::vector<float>(slot), is_complex))) << i;
    }
    EXPECT_TRUE(AllZero(F::Run(bank, std::vector<float>(4 * slot), is_complex)));
    for (const float sample : bank.History()) EXPECT_EQ(sample, 0);
  });
}

// ---- Analysis ----

// The pointers turn by a place for each slot; block j holds the input of j slots ago.
TYPED_TEST(QmfAnalysisHistory, TurnsItsPointersAndMovesNothing) {
  using F = Forms<TypeParam>;
  for (const uint32_t m : {4u, 8u, 48u, 64u}) {
    for (const uint32_t order : kOrders) {
      for (const bool is_complex : F::Of(m)) {
        const std::vector<float> table = AnyPrototype({order, m}, 1);
        QmfBank<TypeParam> bank({m, order, table.data()});
        const size_t blocks = 2 * order - 1;
        std::vector<float *> pointers(bank.record()->slot_ptr, bank.record()->slot_ptr + blocks);
        std::vector<float> all(blocks * m);  // oldest first
        for (int slot = 0; slot < 25; ++slot) {
          SCOPED_TRACE(testing::Message() << m << ", order " << order << ", slot " << slot);
          const std::vector<float> x = QmfNoise(m + slot, m);
          F::Run(bank, x, is_complex);
          all.insert(all.end(), x.begin(), x.end());
          std::rotate(pointers.begin(), pointers.end() - 1, pointers.end());
          for (size_t j = 0; j < blocks; ++j) {
            ASSERT_EQ(bank.record()->slot_ptr[j], pointers[j]) << j;
            const std::span<const float> want(all.data() + all.size() - (j + 1) * m, m);
            ASSERT_TRUE(SameBits({pointers[j], m}, want, {"block", "", j}));
          }
        }
      }
    }
  }
}

TEST(QmfFilterState, IsTheLastInputOldestFirst) {
  for (const uint32_t m : {8u, 16u, 32u, 48u, 64u}) {
    const std::vector<float> table = AnyPrototype({5, m}, 1);
    const KernelCall call{"filter state", "", m};
    for (int slots = 0; slots <= 20; ++slots) {
      QmfBank<LongAnalysis> bank({m, 5, table.data()}), other({m, 5, table.data()});
      std::vector<float> x = QmfNoise(m, slots * size_t{m});
      bank.Complex(x);
      other.Complex(QmfNoise(m + 1, 4 * size_t{m}));
      GuardedFloats state(9 * size_t{m}, 3);
      MVK_Lunload_CLqmf_analysisL_filter_state(bank.record(), state.data());
      EXPECT_TRUE(state.GuardsStand(call));
      x.insert(x.begin(), 9 * size_t{m}, 0.0f);
      EXPECT_TRUE(SameBits(state.values(), {x.data() + x.size() - 9 * m, 9 * size_t{m}}, call));

      // Loaded elsewhere, it goes on there.
      GuardedFloats loaded({state.values().begin(), state.values().end()}, 1);
      std::vector<float *> pointers(other.record()->slot_ptr, other.record()->slot_ptr + 9);
      MVK_load_CLqmf_analysisL_filter_stateL(other.record(), loaded.data());
      EXPECT_TRUE(loaded.Untouched(call));
      EXPECT_TRUE(std::equal(pointers.begin(), pointers.end(), other.record()->slot_ptr));
      const std::vector<float> next = QmfNoise(m + 2, 12 * size_t{m});
      EXPECT_TRUE(SameBits(other.Complex(next), bank.Complex(next), call)) << slots << " slots";
      EXPECT_TRUE(other.GuardsStand());
    }
  }
}

TEST(QmfFilterState, IsLeftAloneUnlessTheOrderIs5) {
  const std::vector<float> table = AnyPrototype({4, 8}, 1);
  QmfBank<LongAnalysis> bank({8, 4, table.data()});
  bank.Complex(QmfNoise(1, 3 * 8));
  const std::vector<float> before(bank.History().begin(), bank.History().end());
  GuardedFloats state(QmfNoise(2, 9 * 8), 0);
  MVK_Lunload_CLqmf_analysisL_filter_state(bank.record(), state.data());
  EXPECT_TRUE(state.Untouched({"unload", "order 4"}));
  MVK_load_CLqmf_analysisL_filter_stateL(bank.record(), state.data());
  EXPECT_TRUE(SameBits(bank.History(), before, {"load", "order 4"}));
}

// ---- Synthesis ----

TYPED_TEST(QmfSynthesisHistory, IsCopiedWhole) {
  using F = Forms<TypeParam>;
  for (const uint32_t m : {8u, 48u, 64u, 128u}) {
    for (const uint32_t order : kOrders) {
      for (const bool is_complex : F::Of(m)) {
        const std::vector<float> table = AnyPrototype({order, m}, 1);
        const QmfShape shape{m, order, table.data()};
        SCOPED_TRACE(testing::Message() << shape << (is_complex ? ", complex" : ""));
        const size_t slot = F::SlotFloats(m, is_complex);
        QmfBank<TypeParam> from(shape), to(shape, QmfPlaces{5, 6, 7});
        F::Run(from, QmfNoise(1, 13 * slot), is_complex);
        F::Run(to, QmfNoise(2, 3 * slot), is_complex);
        const std::vector<float> before(from.History().begin(), from.History().end());
        TypeParam::kCopyStates(to.record(), from.record());
        EXPECT_TRUE(SameBits(from.History(), before, {"source", "", m}));
        EXPECT_TRUE(SameBits(to.History(), before, {"copy", "", m}));
        const std::vector<float> next = QmfNoise(3, 12 * slot);
        EXPECT_TRUE(SameBits(F::Run(to, next, is_complex), F::Run(from, next, is_complex),
                             {"next slots", "", m}));
        EXPECT_TRUE(to.GuardsStand());
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
