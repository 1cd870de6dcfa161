// QMF banks, long and short.
#include <algorithm>
#include <bit>

#include "filterbanks/qmf_banks.h"
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"

namespace testing_support {
namespace {

constexpr uint32_t kSlots = 3;
constexpr size_t kCalls = 5;  // longer than the history

// Rounding is fixed where the transform isn't of the quicker family: below 64 points.
constexpr uint32_t kFixedRealBands[] = {4, 8, 16, 32, 64};
constexpr uint32_t kFixedComplexBands[] = {8, 16, 32, 48};

uint64_t OffsetIn(const GuardedBytes &memory, const void *p) {
  return static_cast<uint64_t>(static_cast<const uint8_t *>(p) - memory.end());
}

template <typename Table>
void AddTable(Digest &digest, const Table *table, size_t count) {
  digest.Integer(table != nullptr);
  if (table != nullptr) digest.Numbers(table, count);
}

// Where in a delay line of synthesis a value stands depends on the length of vectors.
template <class Kind>
void AddHistory(Digest &digest, QmfBank<Kind> &bank) {
  std::vector<float> history(bank.History().begin(), bank.History().end());
  if (!Kind::kAnalyses) std::ranges::sort(history, {}, [](float x) { return BitsOf(x); });
  digest.Numbers(history);
}

// Pointers count by what they point to.
template <class Kind>
void AddRecord(Digest &digest, QmfBank<Kind> &bank) {
  const auto &record = *bank.record();
  const uint32_t m = record.bands;
  digest.Integer(m);
  digest.Integer(record.order);
  digest.Integer(record.slots);
  digest.Integer(record.slot_increment);
  digest.Integer(record.history_length);
  digest.Integer(record.twiddle_mode);
  digest.Integer(OffsetIn(bank.record_memory(), bank.record()));
  digest.Integer(OffsetIn(bank.state_memory(), record.history));
  digest.Integer(OffsetIn(bank.scratch_memory(), record.scratch));
  digest.Integer(record.pair_full != nullptr);
  digest.Integer(record.pair_half != nullptr);
  AddTable(digest, record.prototype, 2 * size_t{record.order} * m);
  AddTable(digest, record.cos_table, 2 * size_t{m});
  AddTable(digest, record.rotation, m);
  AddTable(digest, record.dct_twiddle, std::bit_floor(m));  // of 32 for 48 bands
  AddHistory(digest, bank);
  if constexpr (Kind::kAnalyses) {
    for (uint32_t i = 0; i < 2u * record.order - 1; ++i) {
      digest.Integer(static_cast<uint64_t>(record.slot_ptr[i] - record.history));
    }
  }
}

template <class Kind>
void ForEachShape(std::span<const uint32_t> band_counts, auto run) {
  for (uint32_t bands : band_counts) {
    for (uint32_t order : kOrders) {
      for (const QmfMode &mode : ModesOf(bands)) {
        for (const QmfTable &table : QmfTables({order, bands}, Kind::kAnalyses)) {
          run(QmfShape{bands, order, table.values.data(), kSlots, mode.value});
        }
      }
    }
  }
}

std::vector<float> Signal(const QmfShape &shape, const Material &material, size_t slot_floats) {
  return Corpus(material, shape.bands).Copy(kCalls * kSlots * slot_floats);
}

template <class Kind>
void AddQueries(Digest &digest) {
  for (uint32_t bands = 0; bands <= 130; ++bands) {
    for (uint32_t order = 0; order <= 9; ++order) {
      const QmfSizes sizes = QueriedSizes<Kind>(bands, order);
      digest.Integer(sizes.state);
      digest.Integer(sizes.scratch);
      digest.Integer(sizes.record);
      digest.Integer(sizes.result);
    }
  }
}

template <class Kind>
void AddOpen(Digest &digest) {
  ForEachShape<Kind>(kComplexBands, [&](const QmfShape &shape) {
    QmfBank<Kind> bank(shape, QmfPlaces{4, 8, 12});
    AddRecord(digest, bank);
  });
}

template <class Kind>
void AddReal(Digest &digest) {
  for (const Material &material : kSignals) {
    for (uint32_t bands : kFixedRealBands) {
      if (bands == 4 && !Kind::kAnalyses) continue;
      for (uint32_t order : kOrders) {
        const std::vector<float> table = AnyPrototype({order, bands}, bands);
        const QmfShape shape = {bands, order, table.data(), kSlots, MVK_TWIDDLE_NONE};
        QmfBank<Kind> bank(shape);
        digest.Numbers(bank.Real(Signal(shape, material, bands)));
        AddHistory(digest, bank);
      }
    }
  }
}

template <class Kind>
void AddComplex(Digest &digest, decltype(Kind::kComplex) process) {
  for (const Material &material : kSignals) {
    ForEachShape<Kind>(kFixedComplexBands, [&](const QmfShape &shape) {
      QmfBank<Kind> bank(shape);
      const std::vector<float> in =
          Signal(shape, material, (Kind::kAnalyses ? 1 : 2) * size_t{shape.bands});
      digest.Numbers(bank.Complex(in, process));
      AddHistory(digest, bank);
    });
  }
}

// A bank of 16 bands that has processed something.
template <class Kind>
QmfBank<Kind> BankInUse(uint32_t order) {
  static const std::vector<float> table = AnyPrototype({5, 16}, 1);
  const QmfShape shape = {16, order, table.data(), kSlots, MVK_TWIDDLE_NONE};
  QmfBank<Kind> bank(shape);
  bank.Real(Signal(shape, kUniform, 16));
  return bank;
}

template <class Kind>
void AddInit(Digest &digest) {
  for (uint32_t order : kOrders) {
    QmfBank<Kind> bank = BankInUse<Kind>(order);
    Kind::kInit(bank.record());
    AddRecord(digest, bank);
  }
}

// Slots further apart, with what lies between them left alone.
template <class Kind>
void AddIncrement(Digest &digest) {
  QmfBank<Kind> bank = BankInUse<Kind>(5);
  Kind::kIncrement(bank.record(), 21);
  const std::vector<float> in = Corpus(kUniform).Copy(kSlots * 21);
  std::vector<float> out(kSlots * 21);
  Kind::kReal(bank.record(), out.data(), in.data());
  digest.Integer(bank.record()->slot_increment);
  digest.Numbers(out);
}

template <class Kind>
void AddDelay(Digest &digest) {
  ForEachShape<Kind>(kComplexBands, [&](const QmfShape &shape) {
    QmfBank<Kind> bank(shape);
    digest.Integer(Kind::kDelay(bank.record()));
  });
}

template <class Kind>
void AddClose(Digest &digest) {
  QmfBank<Kind> bank = BankInUse<Kind>(5);
  Kind::kClose(bank.record());
  AddRecord(digest, bank);
}

template <class Kind>
void AddCopiedStates(Digest &digest) {
  for (uint32_t order : kOrders) {
    QmfBank<Kind> from = BankInUse<Kind>(order), to = BankInUse<Kind>(order);
    Kind::kInit(to.record());
    Kind::kCopyStates(to.record(), from.record());
    AddRecord(digest, to);
  }
}

// Through every shape that its memory has room for, without clearing the history.
void AddReconfigurations(Digest &digest) {
  QmfBank<LongAnalysis> bank({64, 5, mvk_qmf_filter_coeff_P5_vec_ana});
  ForEachShape<LongAnalysis>(kFixedComplexBands, [&](const QmfShape &shape) {
    digest.Integer(static_cast<uint64_t>(mvk_qmf_analysisL_reconfig(
        bank.record(), shape.bands, shape.slots, shape.mode, shape.order, shape.prototype)));
    MVK_qmf_analysisL_init(bank.record());
    AddRecord(digest, bank);
    digest.Numbers(bank.Complex(Signal(shape, kUniform, shape.bands)));
  });
}

// Histories are copies: the bits of NaNs stay.
void AddLoad(Digest &digest) {
  for (uint32_t order : kOrders) {
    QmfBank<LongAnalysis> bank = BankInUse<LongAnalysis>(order);
    const std::vector<float> history = Corpus(kMixed).Copy(9 * 16);
    MVK_load_CLqmf_analysisL_filter_stateL(bank.record(), history.data());
    digest.Bytes(bank.record()->history, bank.History().size_bytes());
  }
}

void AddUnload(Digest &digest) {
  for (uint32_t order : kOrders) {
    QmfBank<LongAnalysis> bank = BankInUse<LongAnalysis>(order);
    std::vector<float> history(9 * 16, 0.25f);
    MVK_Lunload_CLqmf_analysisL_filter_state(bank.record(), history.data());
    digest.Numbers(history);
  }
}

template <class Kind>
void ListKind(Entries &entries, const std::string &kind) {
  entries.push_back({"MVK_qmf_" + kind + "_query_mem", AddQueries<Kind>});
  entries.push_back({"mvk_qmf_" + kind + "_open", AddOpen<Kind>});
  entries.push_back({"MVK_qmf_" + kind + "_init", AddInit<Kind>});
  entries.push_back({"MVK_qmf_" + kind + "_set_slot_increment", AddIncrement<Kind>});
  entries.push_back({"MVK_qmf_" + kind + "_get_delay", AddDelay<Kind>});
  entries.push_back({"MVK_qmf_" + kind + "_close", AddClose<Kind>});
  if constexpr (!Kind::kAnalyses) {
    entries.push_back({"MVK_qmf_" + kind + "_copy_states", AddCopiedStates<Kind>});
  }
}

}  // namespace

void ListQmfBanks(Entries &entries) {
  ListKind<LongAnalysis>(entries, "analysisL");
  ListKind<ShortAnalysis>(entries, "analysisS");
  ListKind<LongSynthesis>(entries, "synthesisL");
  ListKind<ShortSynthesis>(entries, "synthesisS");
  MVK_ENTRY(MVK_Lqmf_analysisL, AddReal<LongAnalysis>);
  MVK_ENTRY(MVK_Lqmf_analysisS, AddReal<ShortAnalysis>);
  MVK_ENTRY(MVK_Lqmf_synthesisL, AddReal<LongSynthesis>);
  MVK_ENTRY(MVK_Sqmf_synthesisL, AddReal<ShortSynthesis>);
#define COMPLEX(function, Kind) \
  MVK_ENTRY(function, [](Digest &digest) { AddComplex<Kind>(digest, &function); });
  COMPLEX(MVK_CLqmf_analysisL, LongAnalysis)
  COMPLEX(MVK_CLqmf_analysisS, ShortAnalysis)
  COMPLEX(MVK_Lqmf_synthesisCL, LongSynthesis)
  COMPLEX(MVK_Lqmf_synthesisCL_Head1Bit, LongSynthesis)
  COMPLEX(MVK_Sqmf_synthesisCL, ShortSynthesis)
  MVK_ENTRY(mvk_qmf_analysisL_reconfig, AddReconfigurations);
  MVK_ENTRY(MVK_load_CLqmf_analysisL_filter_stateL, AddLoad);
  MVK_ENTRY(MVK_Lunload_CLqmf_analysisL_filter_state, AddUnload);
  MVK_ENTRY(MVK_qmf_analysisL_get_max_filter_state_length, [](Digest &digest) {
    for (uint32_t flag : {0u, 1u, 4u, 5u}) {
      digest.Integer(MVK_qmf_analysisL_get_max_filter_state_length(flag));
    }
  });
  MVK_ENTRY(MVK_qmf_analysisL_get_filter_state_length, [](Digest &digest) {
    for (uint32_t flag : {0u, 1u, 4u, 5u}) {
      for (uint32_t bands = 0; bands <= 64; ++bands) {
        digest.Integer(MVK_qmf_analysisL_get_filter_state_length(flag, bands));
      }
    }
  });
}

}  // namespace testing_support
