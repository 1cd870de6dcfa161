// The delay lines of QMF synthesis banks to the bit.
#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"
#include "reference/qmf_steps.h"

namespace testing_support {
namespace {

using reference::SynthesisWindow;

class RealSynthesisSteps : public testing::TestWithParam<uint32_t> {};
class ComplexSynthesisSteps : public testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(All, RealSynthesisSteps, testing::ValuesIn(kRealBands),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(All, ComplexSynthesisSteps, testing::ValuesIn(kComplexBands),
                         testing::PrintToStringParamName());

std::vector<float> Doubled(std::vector<float> values) {
  for (float &value : values) value += value;
  return values;
}

// What goes into the window: M samples of either sort.
struct WindowInput {
  std::vector<float> a, b;
};

WindowInput UnfoldedReal(const mvk_qmf_synthesisL_state &bank, const std::vector<float> &slot) {
  std::vector<float> data = slot, rest(slot.size());
  mvk_inverseModulationReal(data.data(), rest.data(), bank.bands, bank.pair_half, bank.dct_twiddle);
  return {data, rest};
}

// Prototypes of a single 1 let the two sorts through: the first at once, the second a slot later.
class SingleOnes {
 public:
  explicit SingleOnes(const QmfShape &shape) : shape_(shape), table_(10 * size_t{shape.bands}) {
    std::fill_n(table_.begin(), 2 * size_t{shape.bands}, 1.0f);
  }

  WindowInput Of(std::vector<float> slot) {
    QmfShape shape = shape_;
    shape.order = 5;
    shape.prototype = table_.data();
    QmfBank<LongSynthesis> bank(shape);
    slot.resize(2 * slot.size());
    std::vector<float> out = bank.Complex(slot);
    for (float &sample : out) sample /= 2;
    return {{out.begin(), out.begin() + shape.bands}, {out.begin() + shape.bands, out.end()}};
  }

 private:
  QmfShape shape_;
  std::vector<float> table_;
};

TEST_P(RealSynthesisSteps, AddTheProductsInOneOrder) {
  const uint32_t m = GetParam();
  Random random(m);
  for (const uint32_t order : kOrders) {
    for (const Material &material : {kUniform, kClose, kFew}) {
      const std::vector<float> table = Samples(material, random, QmfWindow{order, m}.Taps());
      const QmfShape shape{m, order, table.data()};
      QmfBank<LongSynthesis> bank(shape);
      if (m == 4) bank.record()->dct_twiddle = mvk_dct_twiddle_table16_L4;
      SynthesisWindow window(shape.Window(), table.data());
      for (int slot = 0; slot < 24; ++slot) {
        const std::vector<float> bands = Samples(material, random, m);
        const WindowInput v = UnfoldedReal(*bank.record(), bands);
        ASSERT_TRUE(SameSamples(bank.Real(bands), Doubled(window.Slot(v.a, v.b)),
                                {"synthesisL", "real", m, {}, material.name}))
            << shape << ", slot " << slot;
      }
    }
  }
}

TEST_P(ComplexSynthesisSteps, AddTheProductsInOneOrder) {
  const uint32_t m = GetParam();
  Random random(m);
  for (const uint32_t order : kOrders) {
    for (const QmfMode &mode : ModesOf(m)) {
      for (const Material &material : {kUniform, kClose}) {
        const std::vector<float> table = Samples(material, random, QmfWindow{order, m}.Taps());
        const QmfShape shape{m, order, table.data(), 1, mode.value};
        SingleOnes ones(shape);
        QmfBank<LongSynthesis> bank(shape);
        SynthesisWindow window(shape.Window(), table.data());
        for (int slot = 0; slot < 16; ++slot) {
          const std::vector<float> bands = Samples(material, random, 2 * size_t{m});
          const WindowInput v = ones.Of(bands);
          ASSERT_TRUE(SameSamples(bank.Complex(bands), Doubled(window.Slot(v.a, v.b)),
                                  {"synthesisL", "complex", m, {}, material.name}))
              << shape << ", slot " << slot;
        }
      }
    }
  }
}

// Called in turn, they share one delay line.
TEST_P(ComplexSynthesisSteps, OneBitLessLeavesOutTheDoublingOnly) {
  const uint32_t m = GetParam();
  Random random(m + 1);
  for (const uint32_t order : kOrders) {
    for (const QmfMode &mode : ModesOf(m)) {
      const std::vector<float> table = AnyPrototype({order, m}, order);
      const QmfShape shape{m, order, table.data(), 3, mode.value};
      QmfBank<LongSynthesis> bank(shape), plain(shape);
      for (int call = 0; call < 12; ++call) {
        const bool one_bit_less = call % 3 != 1;
        const std::vector<float> bands = Samples(kClose, random, 3 * 2 * size_t{m});
        const std::vector<float> got =
            one_bit_less ? Doubled(bank.Complex(bands, MVK_Lqmf_synthesisCL_Head1Bit))
                         : bank.Complex(bands);
        ASSERT_TRUE(SameBits(got, plain.Complex(bands), {"synthesisL", "one bit less", m}))
            << shape << ", call " << call;
        ASSERT_TRUE(SameBits(bank.History(), plain.History(), {"synthesisL", "delay line", m}));
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
