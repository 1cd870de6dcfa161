/* The library's complex QMF banks, for one channel. */
#ifndef MVK_TOOLS_FILTER_BANK_H
#define MVK_TOOLS_FILTER_BANK_H

#include <array>
#include <cstddef>
#include <vector>

#include "library.h"
#include "mvk_qmf.h"

namespace mvk {

/* What banks there are, by their bands. */
inline constexpr std::array kBandCounts = {8, 16, 32, 48, 64};

/* Slots of complex bands, as the library takes them. */
class Slots {
 public:
  Slots(std::size_t slots, std::size_t bands);
  Slots(const Slots &) = delete;
  Slots &operator=(const Slots &) = delete;

  float *const *pointers() { return pointers_.data(); }
  const float *slot(std::size_t s) const { return pointers_[s]; }

 private:
  std::vector<float> values_;
  std::vector<float *> pointers_;
};

/* An analysis bank, which starts from silence. Slots of as many samples as there are
 * bands go in. */
class BandAnalysis {
 public:
  BandAnalysis(const Library &library, unsigned bands, unsigned slots);
  BandAnalysis(BandAnalysis &&) = default;

  void process(const float *in, Slots &out) { process_(record_, out.pointers(), in); }

  /* Samples. */
  unsigned delay() const { return delay_; }

 private:
  decltype(MVK_CLqmf_analysisL) *process_;
  std::array<std::vector<char>, 3> memory_;
  mvk_qmf_analysisL_state *record_;
  unsigned delay_;
};

/* The synthesis bank that belongs to it. */
class BandSynthesis {
 public:
  BandSynthesis(const Library &library, unsigned bands, unsigned slots);
  BandSynthesis(BandSynthesis &&) = default;

  void process(Slots &in, float *out) { process_(record_, out, in.pointers()); }

  unsigned delay() const { return delay_; }

 private:
  decltype(MVK_Lqmf_synthesisCL) *process_;
  std::array<std::vector<char>, 3> memory_;
  mvk_qmf_synthesisL_state *record_;
  unsigned delay_;
};

/* Half the length of the banks' filters, in slots. */
inline constexpr unsigned kBankOrder = 5;

}  // namespace mvk

#endif
