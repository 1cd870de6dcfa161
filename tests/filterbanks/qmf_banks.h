// QMF banks in guarded memory, the four kinds alike, and what they are run with.
#ifndef MVK_TESTS_FILTERBANKS_QMF_BANKS_H_
#define MVK_TESTS_FILTERBANKS_QMF_BANKS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include "dct/pair_kinds.h"
#include "kernels/guarded_bytes.h"
#include "kernels/kernel_samples.h"
#include "mvk_fft.h"
#include "mvk_qmf.h"
#include "reference/qmf_exact.h"
#include "reference/qmf_prototypes.h"

namespace testing_support {

using reference::QmfWindow;
using reference::Turning;

// ---- Prototypes ----

struct QmfPrototype {
  const char *name;
  QmfWindow window;
  std::span<const float> columns, ana, syn;

  friend std::ostream &operator<<(std::ostream &out, const QmfPrototype &prototype) {
    return out << prototype.name;
  }
};

#define QMF_PROTOTYPE(name, order, bands)                                                       \
  {                                                                                             \
#name, {order, bands }, mvk_qmf_filter_coeff_##name, mvk_qmf_filter_coeff_##name##_vec_ana, \
            mvk_qmf_filter_coeff_##name##_vec_syn                                               \
  }
inline const QmfPrototype kQmfPrototypes[] = {
    QMF_PROTOTYPE(P4, 4, 64),
    QMF_PROTOTYPE(P4_32, 4, 32),
    QMF_PROTOTYPE(P5, 5, 64),
    QMF_PROTOTYPE(P5_32, 5, 32),
    QMF_PROTOTYPE(P5_p64orv301, 5, 64),
    QMF_PROTOTYPE(P5_p64orv301_48, 5, 48),
    QMF_PROTOTYPE(P5_p64orv301_32, 5, 32),
    QMF_PROTOTYPE(P5_p64orv301_16, 5, 16),
    QMF_PROTOTYPE(P5_p64orv301_8, 5, 8),
};
#undef QMF_PROTOTYPE

inline const QmfPrototype &QmfPrototypeOf(const std::string &name) {
  for (const QmfPrototype &prototype : kQmfPrototypes) {
    if (name == prototype.name) return prototype;
  }
  std::abort();
}

// A table of no symmetry at all.
inline std::vector<float> AnyPrototype(const QmfWindow &window, uint64_t seed) {
  Random random(seed);
  return Samples(kUniform, random, window.Taps());
}

// Tables for a bank: one of no symmetry and those of the library.
struct QmfTable {
  std::string name;
  std::vector<float> values;
};

inline std::vector<QmfTable> QmfTables(const QmfWindow &window, bool for_analysis) {
  std::vector<QmfTable> tables = {{"any", AnyPrototype(window, window.bands)}};
  for (const QmfPrototype &prototype : kQmfPrototypes) {
    if (prototype.window.bands == window.bands && prototype.window.order == window.order) {
      const std::span<const float> table = for_analysis ? prototype.ana : prototype.syn;
      tables.push_back({prototype.name, {table.begin(), table.end()}});
    }
  }
  return tables;
}

// ---- Shapes ----

inline constexpr uint32_t kOrders[] = {4, 5};
inline constexpr uint32_t kRealBands[] = {4, 8, 16, 32, 64, 128, 256, 512, 1024};
inline constexpr uint32_t kComplexBands[] = {8, 16, 32, 48, 64};

struct QmfMode {
  uint32_t value;
  Turning turning;
};

// Those that mean something with so many bands.
inline std::vector<QmfMode> ModesOf(uint32_t bands) {
  std::vector<QmfMode> modes = {{MVK_TWIDDLE_NONE, Turning::kNone},
                                {MVK_TWIDDLE_ALIGN, Turning::kAligned}};
  if (bands == 32 || bands == 64) modes.push_back({1, Turning::kHalfSample});
  return modes;
}

struct QmfShape {
  uint32_t bands;
  uint32_t order;
  const float *prototype;
  uint32_t slots = 1;
  uint32_t mode = 0;

  QmfWindow Window() const { return {order, bands}; }
};

inline std::ostream &operator<<(std::ostream &out, const QmfShape &shape) {
  return out << shape.bands << " bands, order " << shape.order << ", mode " << shape.mode << ", "
             << shape.slots << " slots";
}

// Of the transform that a modulation runs on, over the rms of its result.
inline double ModulationBound(uint32_t transform_length) {
  const bool coarse =
      MVK_r8_cplx_fwd_pair(transform_length) == nullptr && HasCoarseTwiddles(transform_length);
  return coarse ? 5e-6 : 1e-6;
}
inline double RealModulationBound(uint32_t bands) { return ModulationBound(bands / 2); }
inline double ComplexModulationBound(uint32_t bands) { return ModulationBound(bands); }

// ---- Kinds ----

#define QMF_KIND(state, name)                                              \
  using State = state;                                                     \
  static constexpr auto kQuery = &MVK_qmf_##name##_query_mem;              \
  static constexpr auto kOpen = &mvk_qmf_##name##_open;                    \
  static constexpr auto kInit = &MVK_qmf_##name##_init;                    \
  static constexpr auto kIncrement = &MVK_qmf_##name##_set_slot_increment; \
  static constexpr auto kDelay = &MVK_qmf_##name##_get_delay;              \
  static constexpr auto kClose = &MVK_qmf_##name##_close;

struct LongAnalysis {
  QMF_KIND(mvk_qmf_analysisL_state, analysisL)
  static constexpr auto kReal = &MVK_Lqmf_analysisL;
  static constexpr auto kComplex = &MVK_CLqmf_analysisL;
  static constexpr bool kShort = false, kAnalyses = true;
};

struct ShortAnalysis {
  QMF_KIND(mvk_qmf_analysisS_state, analysisS)
  static constexpr auto kReal = &MVK_Lqmf_analysisS;
  static constexpr auto kComplex = &MVK_CLqmf_analysisS;
  static constexpr bool kShort = true, kAnalyses = true;
};

struct LongSynthesis {
  QMF_KIND(mvk_qmf_synthesisL_state, synthesisL)
  static constexpr auto kReal = &MVK_Lqmf_synthesisL;
  static constexpr auto kComplex = &MVK_Lqmf_synthesisCL;
  static constexpr auto kCopyStates = &MVK_qmf_synthesisL_copy_states;
  static constexpr bool kShort = false, kAnalyses = false;
};

struct ShortSynthesis {
  QMF_KIND(mvk_qmf_synthesisS_state, synthesisS)
  static constexpr auto kReal = &MVK_Sqmf_synthesisL;
  static constexpr auto kComplex = &MVK_Sqmf_synthesisCL;
  static constexpr auto kCopyStates = &MVK_qmf_synthesisS_copy_states;
  static constexpr bool kShort = true, kAnalyses = false;
};
#undef QMF_KIND

using QmfKinds = testing::Types<LongAnalysis, ShortAnalysis, LongSynthesis, ShortSynthesis>;
using QmfAnalyses = testing::Types<LongAnalysis, ShortAnalysis>;
using QmfSyntheses = testing::Types<LongSynthesis, ShortSynthesis>;

// ---- Memory ----

struct QmfSizes {
  uint32_t state = 1, scratch = 2, record = 3;
  uint64_t result = 4;
};

template <class Kind>
QmfSizes QueriedSizes(uint32_t bands, uint32_t order) {
  QmfSizes sizes;
  sizes.result = Kind::kQuery(bands, order, &sizes.state, &sizes.scratch, &sizes.record);
  return sizes;
}

// What is asked for, unless that is known to be too little.
template <class Kind>
QmfSizes SufficientSizes(uint32_t bands, uint32_t order) {
  QmfSizes sizes = QueriedSizes<Kind>(bands, order);
  if (bands > 64 || (Kind::kShort && bands == 48)) {
    const auto blocks = static_cast<uint32_t>(QmfWindow{order, bands}.Blocks());
    sizes.state = 31 + blocks * bands * 4 + (Kind::kAnalyses ? blocks * 8 : 0);
    sizes.scratch = 31 + 16 * bands;
  }
  return sizes;
}

// How many bytes behind a multiple of 64 the memories start.
struct QmfPlaces {
  size_t state = 0, scratch = 0, record = 0;
};

// A bank in memory of exactly so many bytes.
template <class Kind>
class QmfBank {
 public:
  explicit QmfBank(const QmfShape &shape, const QmfPlaces &places = {})
      : QmfBank(shape, SufficientSizes<Kind>(shape.bands, shape.order), places) {}

  QmfBank(const QmfShape &shape, const QmfSizes &sizes, const QmfPlaces &places = {})
      : state_(sizes.state, places.state),
        scratch_(sizes.scratch, places.scratch),
        record_memory_(sizes.record, places.record),
        record_(Kind::kOpen(shape.bands, shape.slots, shape.mode, shape.order, shape.prototype,
                            state_.data(), scratch_.data(), record_memory_.data())) {}

  typename Kind::State *record() { return record_; }
  GuardedBytes &state_memory() { return state_; }
  GuardedBytes &scratch_memory() { return scratch_; }
  GuardedBytes &record_memory() { return record_memory_; }
  std::span<float> History() { return {record_->history, record_->history_length}; }

  testing::AssertionResult GuardsStand() const {
    for (const GuardedBytes *memory : {&state_, &scratch_, &record_memory_}) {
      if (testing::AssertionResult stand = memory->GuardsStand(); !stand) return stand;
    }
    return testing::AssertionSuccess();
  }

  // Slots one behind the other, as many as a call takes at once. A slot is M floats, or M pairs.
  std::vector<float> Real(std::span<const float> in) {
    const size_t call = size_t{record_->slots} * record_->bands;
    std::vector<float> out(in.size(), kNaN);
    for (size_t i = 0; i + call <= in.size(); i += call) {
      Kind::kReal(record_, out.data() + i, in.data() + i);
    }
    return out;
  }

  std::vector<float> Complex(std::span<const float> in) { return Complex(in, Kind::kComplex); }

  std::vector<float> Complex(std::span<const float> in, decltype(Kind::kComplex) process) {
    const size_t bands = record_->bands;
    const size_t in_slot = Kind::kAnalyses ? bands : 2 * bands, out_slot = 3 * bands - in_slot;
    std::vector<float> out(in.size() / in_slot * out_slot, kNaN), copy(in.begin(), in.end());
    std::vector<float *> slots(record_->slots);
    for (size_t s = 0; s + slots.size() <= in.size() / in_slot; s += slots.size()) {
      for (size_t i = 0; i < slots.size(); ++i) {
        slots[i] = Kind::kAnalyses ? &out[(s + i) * out_slot] : &copy[(s + i) * in_slot];
      }
      Call(process, slots, Kind::kAnalyses ? &copy[s * in_slot] : &out[s * out_slot]);
    }
    return out;
  }

 private:
  void Call(decltype(Kind::kComplex) process, std::vector<float *> &slots, float *samples) {
    if constexpr (Kind::kAnalyses) {
      process(record_, slots.data(), samples);
    } else {
      process(record_, samples, slots.data());
    }
  }

  GuardedBytes state_, scratch_, record_memory_;
  typename Kind::State *record_;
};

inline std::vector<float> QmfNoise(uint64_t seed, size_t count) {
  Random random(seed);
  return Samples(kUniform, random, count);
}

}  // namespace testing_support

#endif
