// Several slots in a call, slots apart from each other, and buffers at any address.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

template <class Kind>
class QmfSlots : public testing::Test {};
TYPED_TEST_SUITE(QmfSlots, QmfKinds);

template <class Kind>
class QmfAnalysisSlots : public testing::Test {};
TYPED_TEST_SUITE(QmfAnalysisSlots, QmfAnalyses);

template <class Kind>
class QmfSynthesisSlots : public testing::Test {};
TYPED_TEST_SUITE(QmfSynthesisSlots, QmfSyntheses);

constexpr uint32_t kSlots = 120;  // a multiple of all that follow
constexpr uint32_t kSlotsPerCall[] = {2, 3, 4, 5, 8, 15, kSlots};

TYPED_TEST(QmfSlots, ComeOutAlikeOneByOneOrManyInACall) {
  for (const uint32_t m : {4u, 8u, 32u, 64u, 128u}) {
    if (m == 4 && !TypeParam::kAnalyses) continue;
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, 1);
      const std::vector<float> x = QmfNoise(m, kSlots * 2 * size_t{m});
      const std::span<const float> reals(x.data(), kSlots * size_t{m});
      const bool has_complex = m != 4 && m <= 64;
      QmfShape shape{m, order, table.data(), 1, MVK_TWIDDLE_ALIGN};
      QmfBank<TypeParam> one(shape);
      const std::vector<float> real = one.Real(reals);
      TypeParam::kInit(one.record());
      const std::vector<float> complex = has_complex ? one.Complex(x) : real;
      for (const uint32_t slots : kSlotsPerCall) {
        shape.slots = slots;
        QmfBank<TypeParam> many(shape);
        EXPECT_TRUE(SameBits(many.Real(reals), real, {"real", "", slots})) << shape;
        if (!has_complex) continue;
        TypeParam::kInit(many.record());
        EXPECT_TRUE(SameBits(many.Complex(x), complex, {"complex", "", slots})) << shape;
      }
    }
  }
}

// Real slots lie an increment apart, which may be less than a slot where they are read.
std::vector<uint32_t> Increments(uint32_t bands) {
  return {bands, bands + 1, bands + 3, 2 * bands, 3 * bands + 5};
}

TYPED_TEST(QmfAnalysisSlots, GoWhereTheIncrementSays) {
  constexpr uint32_t kCount = 5;
  for (const uint32_t m : {4u, 8u, 64u, 128u}) {
    const std::vector<float> table = AnyPrototype({5, m}, 1);
    const std::vector<float> x = QmfNoise(m, kCount * size_t{m});
    const QmfShape shape{m, 5, table.data(), kCount};
    QmfBank<TypeParam> dense(shape);
    const std::vector<float> want = dense.Real(x);
    for (const uint32_t increment : Increments(m)) {
      for (const int offset : {0, 1, 2, 3, 7}) {
        const KernelCall call{"analysis", "increment", increment, {offset}};
        QmfBank<TypeParam> bank(shape);
        TypeParam::kIncrement(bank.record(), increment);
        EXPECT_EQ(bank.record()->slot_increment, increment);
        GuardedFloats in(x, (offset + 2) % 8), out((kCount - 1) * increment + m, offset);
        TypeParam::kReal(bank.record(), out.data(), in.data());
        std::vector<float> all(out.size(), kNaN);
        for (size_t s = 0; s < kCount; ++s) {
          std::copy_n(want.begin() + static_cast<ptrdiff_t>(s * m), m,
                      all.begin() + static_cast<ptrdiff_t>(s * increment));
        }
        EXPECT_TRUE(SameBits(out.values(), all, call));
        EXPECT_TRUE(out.GuardsStand(call));
        EXPECT_TRUE(in.Untouched(call));
        EXPECT_TRUE(bank.GuardsStand());
      }
    }
  }
}

TYPED_TEST(QmfSynthesisSlots, ComeFromWhereTheIncrementSays) {
  constexpr uint32_t kCount = 5;
  for (const uint32_t m : {4u, 8u, 64u, 128u}) {
    const std::vector<float> table = AnyPrototype({5, m}, 1);
    const QmfShape shape{m, 5, table.data(), kCount};
    std::vector<uint32_t> increments = Increments(m);
    increments.insert(increments.end(), {0, 1, m / 2});
    for (const uint32_t increment : increments) {
      for (const int offset : {0, 1, 2, 3, 7}) {
        const KernelCall call{"synthesis", "increment", increment, {offset}};
        QmfBank<TypeParam> bank(shape), dense(shape);
        for (QmfBank<TypeParam> *each : {&bank, &dense}) {
          if (m == 4) each->record()->dct_twiddle = mvk_dct_twiddle_table16_L4;
        }
        TypeParam::kIncrement(bank.record(), increment);
        EXPECT_EQ(bank.record()->slot_increment, increment);
        GuardedFloats in(QmfNoise(m, (kCount - 1) * increment + m), (offset + 2) % 8);
        GuardedFloats out(kCount * size_t{m}, offset);
        std::vector<float> slots;
        for (size_t s = 0; s < kCount; ++s) {
          slots.insert(slots.end(), in.data() + s * increment, in.data() + s * increment + m);
        }
        TypeParam::kReal(bank.record(), out.data(), in.data());
        EXPECT_TRUE(SameBits(out.values(), dense.Real(slots), call));
        EXPECT_TRUE(out.GuardsStand(call));
        EXPECT_TRUE(in.Untouched(call));
        EXPECT_TRUE(bank.GuardsStand());
      }
    }
  }
}

// Each slot in a buffer of its own, at another address, in no order.
class ApartSlots {
 public:
  ApartSlots(const std::vector<float> &values, size_t slot_floats) {
    for (size_t i = 0; i * slot_floats < values.size(); ++i) {
      const auto first = values.begin() + static_cast<ptrdiff_t>(i * slot_floats);
      buffers_.emplace_back(std::vector<float>(first, first + static_cast<ptrdiff_t>(slot_floats)),
                            static_cast<int>(3 * i % 8));
    }
    for (size_t i = 0; i < buffers_.size(); ++i) {
      buffer_of_slot_.push_back((3 * i + 2) % buffers_.size());
      pointers_.push_back(buffers_[buffer_of_slot_[i]].data());
    }
  }

  float **pointers() { return pointers_.data(); }
  std::vector<float> Values() const {
    std::vector<float> values;
    for (const size_t i : buffer_of_slot_) {
      values.insert(values.end(), buffers_[i].values().begin(), buffers_[i].values().end());
    }
    return values;
  }
  bool GuardsStand() const {
    return std::all_of(buffers_.begin(), buffers_.end(), [](const auto &buffer) {
      return bool{buffer.GuardsStand({"", ""})};
    });
  }
  bool Untouched() const {
    return std::all_of(buffers_.begin(), buffers_.end(), [](const auto &buffer) {
      return bool{buffer.Untouched({"", ""})};
    });
  }

 private:
  std::deque<GuardedFloats> buffers_;
  std::vector<size_t> buffer_of_slot_;
  std::vector<float *> pointers_;
};

// Calls check(shape) for complex banks of all sizes that take a few slots in a call.
template <typename Check>
void ForEachComplexShape(Check check) {
  for (const uint32_t m : kComplexBands) {
    for (const uint32_t order : kOrders) {
      const std::vector<float> table = AnyPrototype({order, m}, 1);
      const QmfShape shape{m, order, table.data(), 7};
      SCOPED_TRACE(testing::Message() << shape);
      check(shape);
    }
  }
}

TYPED_TEST(QmfAnalysisSlots, OfPairsGoToAnyPlaces) {
  ForEachComplexShape([](const QmfShape &shape) {
    const size_t m = shape.bands;
    QmfBank<TypeParam> bank(shape), dense(shape);
    const KernelCall call{"analysis", "pairs", m};
    for (int i = 0; i < 3; ++i) {
      GuardedFloats in(QmfNoise(m + i, shape.slots * m), i + 1);
      ApartSlots out(std::vector<float>(shape.slots * 2 * m, kNaN), 2 * m);
      TypeParam::kComplex(bank.record(), out.pointers(), in.data());
      EXPECT_TRUE(SameBits(out.Values(), dense.Complex(in.given()), call));
      EXPECT_TRUE(out.GuardsStand());
      EXPECT_TRUE(in.Untouched(call));
    }
    EXPECT_TRUE(bank.GuardsStand());
  });
}

TYPED_TEST(QmfSynthesisSlots, OfPairsComeFromAnyPlaces) {
  ForEachComplexShape([](const QmfShape &shape) {
    const size_t m = shape.bands;
    QmfBank<TypeParam> bank(shape), dense(shape);
    const KernelCall call{"synthesis", "pairs", m};
    for (int i = 0; i < 3; ++i) {
      ApartSlots in(QmfNoise(m + i, shape.slots * 2 * m), 2 * m);
      GuardedFloats out(shape.slots * m, i + 1);
      TypeParam::kComplex(bank.record(), out.data(), in.pointers());
      EXPECT_TRUE(SameBits(out.values(), dense.Complex(in.Values()), call));
      EXPECT_TRUE(in.Untouched());
      EXPECT_TRUE(out.GuardsStand(call));
    }
    EXPECT_TRUE(bank.GuardsStand());
  });
}

// A table need have no more than a float's alignment.
TYPED_TEST(QmfSlots, DoNotDependOnWhereTheTableLies) {
  for (const uint32_t m : {8u, 64u}) {
    for (const uint32_t order : kOrders) {
      const std::vector<float> values = AnyPrototype({order, m}, 1);
      const std::vector<float> x = QmfNoise(m, 24 * size_t{m});
      std::vector<float> real, complex;
      for (const int offset : {0, 1, 3, 6}) {
        GuardedFloats table(values, offset);
        QmfBank<TypeParam> bank({m, order, table.data()});
        const std::vector<float> got_real = bank.Real(x), got_complex = bank.Complex(x);
        if (offset == 0) {
          real = got_real;
          complex = got_complex;
        }
        EXPECT_TRUE(SameBits(got_real, real, {"real", "", m, {offset}}));
        EXPECT_TRUE(SameBits(got_complex, complex, {"complex", "", m, {offset}}));
        EXPECT_TRUE(table.Untouched({"table", ""}));
      }
    }
  }
}

TYPED_TEST(QmfSlots, MayBeNone) {
  for (const uint32_t order : kOrders) {
    const std::vector<float> table = AnyPrototype({order, 64}, 1);
    QmfBank<TypeParam> bank({64, order, table.data(), 0});
    std::fill(bank.History().begin(), bank.History().end(), 0.5f);
    const std::vector<uint8_t> state = bank.state_memory().Copy();
    TypeParam::kReal(bank.record(), nullptr, nullptr);
    if (TypeParam::kShort) TypeParam::kComplex(bank.record(), nullptr, nullptr);
    EXPECT_EQ(bank.state_memory().Copy(), state) << order;
  }
}

}  // namespace
}  // namespace testing_support
