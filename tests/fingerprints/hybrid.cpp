// The hybrid bank.
#include "filterbanks/hybrid_banks.h"
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"

namespace testing_support {
namespace {

constexpr uint32_t kFlags[] = {0, 1, 4, 5};
constexpr size_t kCalls = 30;  // longer than the history

template <typename Query>
void AddQuery(Digest &digest, Query query) {
  for (uint32_t flags = 0; flags < 8; ++flags) {
    uint32_t sizes[3] = {99, 99, 99};
    digest.Integer(query(flags, &sizes[0], &sizes[1], &sizes[2]));
    for (uint32_t size : sizes) digest.Integer(size);
  }
}

void AddRecord(Digest &digest, HybridAnalysis &bank) {
  digest.Integer(bank.record()->mode);
  digest.Integer(bank.record()->reorder);
  digest.Integer(bank.record()->pair4 != nullptr);
  digest.Integer(bank.record()->pair8 != nullptr);
  digest.Numbers(bank.History());
}

void AddOpenAnalysis(Digest &digest) {
  for (uint32_t flags : kFlags) {
    HybridAnalysis bank(flags, 4);
    AddRecord(digest, bank);
    digest.Integer(static_cast<uint64_t>(reinterpret_cast<uint8_t *>(bank.record()) -
                                         bank.record_memory().data()));
    digest.Integer(static_cast<uint64_t>(reinterpret_cast<uint8_t *>(bank.record()->history) -
                                         bank.state_memory().data()));
  }
  for (uint32_t flags : {2u, 3u, 6u, 7u}) {
    GuardedBytes state(kHybridState, 0), record(kHybridAnalysisRecord, 0);
    digest.Integer(MVK_hybrid_analysisCL_open(flags, state.data(), nullptr, record.data()) !=
                   nullptr);
  }
}

// What a call leaves of a bank in use.
template <typename Call>
void AddCall(Digest &digest, Call call) {
  for (const Material &material : kSignals) {
    for (uint32_t flags : kFlags) {
      HybridAnalysis bank(flags);
      bank.Run(Corpus(material).Take(6 * kCalls));
      call(bank.record());
      AddRecord(digest, bank);
    }
  }
}

void AddSynthesisRecord(Digest &digest, HybridSynthesis &bank) {
  digest.Integer(bank.record()->mode);
  digest.Integer(bank.record()->reorder);
  digest.Integer(static_cast<uint64_t>(reinterpret_cast<uint8_t *>(bank.record()) -
                                       bank.record_memory().data()));
}

template <typename Call>
void AddSynthesisCall(Digest &digest, Call call) {
  for (uint32_t flags : kFlags) {
    HybridSynthesis bank(flags, 4);
    call(bank.record());
    AddSynthesisRecord(digest, bank);
  }
}

}  // namespace

void ListHybridBank(Entries &entries) {
  MVK_ENTRY(MVK_hybrid_analysisCL_query_mem,
            [](Digest &digest) { AddQuery(digest, &MVK_hybrid_analysisCL_query_mem); });
  MVK_ENTRY(MVK_hybrid_synthesisCL_query_mem,
            [](Digest &digest) { AddQuery(digest, &MVK_hybrid_synthesisCL_query_mem); });
  MVK_ENTRY(MVK_hybrid_analysisCL_open, AddOpenAnalysis);
  MVK_ENTRY(MVK_hybrid_synthesisCL_open, [](Digest &digest) {
    AddSynthesisCall(digest, [](auto *) {});
    GuardedBytes record(kHybridSynthesisRecord, 0);
    for (uint32_t flags : {2u, 3u, 6u, 7u}) {
      digest.Integer(MVK_hybrid_synthesisCL_open(flags, nullptr, nullptr, record.data()) !=
                     nullptr);
    }
  });
  MVK_ENTRY(MVK_hybrid_analysisCL_init,
            [](Digest &digest) { AddCall(digest, MVK_hybrid_analysisCL_init); });
  MVK_ENTRY(MVK_hybrid_analysisCL_close,
            [](Digest &digest) { AddCall(digest, MVK_hybrid_analysisCL_close); });
  MVK_ENTRY(MVK_hybrid_synthesisCL_init,
            [](Digest &digest) { AddSynthesisCall(digest, MVK_hybrid_synthesisCL_init); });
  MVK_ENTRY(MVK_hybrid_synthesisCL_close,
            [](Digest &digest) { AddSynthesisCall(digest, MVK_hybrid_synthesisCL_close); });
  MVK_ENTRY(MVK_hybrid_analysisCL_shl, [](Digest &digest) {
    for (int32_t shift : {0, 4, -9, 100}) {
      AddCall(digest, [shift](auto *record) { MVK_hybrid_analysisCL_shl(record, shift); });
    }
  });
  MVK_ENTRY(MVK_hybrid_analysisCL_get_scale, [](Digest &digest) {
    AddCall(digest, [&](auto *record) {
      digest.Integer(MVK_hybrid_analysisCL_get_scale(record));
      MVK_hybrid_analysisCL_shl(record, -11);
      digest.Integer(MVK_hybrid_analysisCL_get_scale(record));
    });
  });
  MVK_ENTRY(MVK_hybrid_analysisCL_get_delay,
            [](Digest &digest) { digest.Integer(MVK_hybrid_analysisCL_get_delay()); });
  MVK_ENTRY(MVK_hybrid_synthesisCL_get_delay,
            [](Digest &digest) { digest.Integer(MVK_hybrid_synthesisCL_get_delay()); });
  MVK_ENTRY(MVK_CLhybrid_analysisCL, [](Digest &digest) {
    for (const Material &material : kSignals) {
      for (uint32_t flags : kFlags) {
        HybridAnalysis bank(flags, 8);
        digest.Numbers(bank.Run(Corpus(material).Take(6 * kCalls)));
        digest.Numbers(bank.History());
      }
    }
  });
  MVK_ENTRY(MVK_CLhybrid_synthesisCL, [](Digest &digest) {
    for (const Material &material : kValues) {
      for (uint32_t flags : kFlags) {
        digest.Numbers(HybridSynthesis(flags).Run(Corpus(material).Take(kCalls * 160)));
      }
    }
  });
}

}  // namespace testing_support
