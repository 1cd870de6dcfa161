// MFB banks.
#include "filterbanks/mfb_banks.h"
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"

namespace testing_support {
namespace {

// Rounding is fixed where the transform isn't of the quicker family: below 64 points.
constexpr uint32_t kFixedBands[] = {4, 8, 20, 48};
constexpr uint32_t kChannels = 3;
constexpr size_t kSlots = 11;  // longer than the history

MfbChannels Signals(const Material &material, uint32_t channels, size_t count) {
  MfbChannels signals;
  for (uint32_t c = 0; c < channels; ++c) signals.push_back(Corpus(material, c).Copy(count));
  return signals;
}

template <class Kind, class Process, class... Tables>
void AddProcess(Digest &digest, Process process, Tables... tables) {
  for (const Material &material : kSignals) {
    for (uint32_t bands : kFixedBands) {
      MfbBank<Kind> bank(kChannels, bands, 4);
      const std::vector<float> prototype = Corpus(kUniform).Copy(kMfbTaps * bands);
      const std::vector<float> twiddle = Corpus(kUniform, 2).Copy(2 * size_t{bands});
      // Fewer channels than there is memory for, too.
      for (uint32_t channels : {kChannels, 1u}) {
        const MfbChannels in = Signals(material, channels, kSlots * Kind::kInParts * bands);
        for (const auto &channel : bank.Run(process, prototype, twiddle, in, tables...)) {
          digest.Numbers(channel);
        }
      }
      for (uint32_t c = 0; c < kChannels; ++c) digest.Numbers(bank.History(c));
    }
  }
}

template <class Kind>
void AddQueries(Digest &digest, decltype(Kind::kQuery) query) {
  for (uint32_t channels = 0; channels <= 9; ++channels) {
    for (uint32_t bands : kMoreMfbBands) digest.Integer(query(channels, 7, bands));
  }
}

template <class Kind>
void AddRecord(Digest &digest, MfbBank<Kind> &bank, uint32_t channels) {
  digest.Integer(bank.record()->pair != nullptr);
  if constexpr (requires { bank.record()->position; }) digest.Integer(bank.record()->position);
  const auto *const end = bank.memory().end();
  digest.Integer(static_cast<uint64_t>(reinterpret_cast<const uint8_t *>(bank.record()) - end));
  for (uint32_t c = 0; c < channels; ++c) {
    const std::span<const float> history = bank.History(c);
    digest.Integer(static_cast<uint64_t>(reinterpret_cast<const uint8_t *>(history.data()) - end));
    digest.Numbers(history);
  }
}

template <class Kind>
void AddInit(Digest &digest) {
  for (uint32_t bands : kMoreMfbBands) {
    for (uint32_t channels : {1u, 2u, 5u}) {
      MfbBank<Kind> bank(channels, bands, 12);
      AddRecord(digest, bank, channels);
    }
  }
}

// What calls leave that do nothing, or clear a channel of three.
template <class Kind, class Call>
void AddCall(Digest &digest, Call call) {
  constexpr uint32_t kBands = 8;
  MfbBank<Kind> bank(kChannels, kBands);
  bank.Run(Kind::kProcess, Corpus(kUniform).Take(kMfbTaps * kBands),
           Corpus(kUniform).Take(2 * kBands),
           Signals(kUniform, kChannels, kSlots * Kind::kInParts * kBands));
  call(bank.record());
  AddRecord(digest, bank, kChannels);
}

}  // namespace

void ListMfbBanks(Entries &entries) {
#define QUERY(function, Kind) \
  MVK_ENTRY(function, [](Digest &digest) { AddQueries<Kind>(digest, &function); });
  QUERY(MVK_mfb_p10km_analysisL_query_mem, MfbAnalysisKind)
  QUERY(MVK_mfb_p10km_analysisL_query_scratch, MfbAnalysisKind)
  QUERY(MVK_mfb_p10km_synthesisCL_query_mem, MfbSynthesisKind)
  QUERY(MVK_mfb_p10km_synthesisCL_query_scratch, MfbSynthesisKind)
  MVK_ENTRY(MVK_CLmfb_p10km_analysisL_init, AddInit<MfbAnalysisKind>);
  MVK_ENTRY(MVK_Lmfb_p10km_synthesisCL_init, AddInit<MfbSynthesisKind>);
#define CALL(function, Kind, ...)                                                            \
  MVK_ENTRY(function, [](Digest &digest) {                                                   \
    AddCall<Kind>(digest,                                                                    \
                  [](Kind::State *record) { function(record __VA_OPT__(, ) __VA_ARGS__); }); \
  });
  CALL(MVK_mfb_p10km_analysisL_reset_channel, MfbAnalysisKind, 8, 1)
  CALL(MVK_CLmfb_p10km_analysisL_close, MfbAnalysisKind)
  CALL(MVK_Lmfb_p10km_synthesisCL_close, MfbSynthesisKind)
  CALL(MVK_load_mfb_p10km_analysisL_filter_state, MfbAnalysisKind,
       Corpus(kUniform).Take(9 * 8).data())
  CALL(MVK_unload_mfb_p10km_analysisL_filter_state, MfbAnalysisKind, nullptr)
#define ANALYSIS(function) \
  MVK_ENTRY(function, [](Digest &digest) { AddProcess<MfbAnalysisKind>(digest, &function); });
  ANALYSIS(MVK_CLmfb_p10km_analysisL)
  ANALYSIS(MVK_CLmfb_p10km_analysisL_legacy)
  MVK_ENTRY(MVK_CLmfb_p10km_analysisL_legacy_twiddle, [](Digest &digest) {
    AddProcess<MfbAnalysisKind>(digest, &MVK_CLmfb_p10km_analysisL_legacy_twiddle,
                                Corpus(kUniform, 3).Take(48).data());
  });
#define SYNTHESIS(name)                                                       \
  MVK_ENTRY(MVK_Lmfb_p10km_synthesisCL_##name, [](Digest &digest) {           \
    AddProcess<MfbSynthesisKind>(digest, &MVK_Lmfb_p10km_synthesisCL_##name); \
  });
  MVK_MFB_SYNTHESES(SYNTHESIS)
}

}  // namespace testing_support
