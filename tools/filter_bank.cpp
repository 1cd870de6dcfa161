#include "filter_bank.h"

#include <string>

namespace mvk {
namespace {

// "ana" or "syn".
const float *prototype(const Library &library, unsigned bands, const std::string &side) {
  std::string name = "mvk_qmf_filter_coeff_P5_p64orv301";
  if (bands != 64) name.append("_").append(std::to_string(bands));
  name += "_vec_" + side;
  return library.find<const float>(name.c_str());
}

template <typename Query>
std::array<std::vector<char>, 3> memory_for(Query *query, unsigned bands) {
  std::array<uint32_t, 3> bytes{};
  query(bands, kBankOrder, &bytes[0], &bytes[1], &bytes[2]);
  return {std::vector<char>(bytes[0]), std::vector<char>(bytes[1]), std::vector<char>(bytes[2])};
}

}  // namespace

Slots::Slots(std::size_t slots, std::size_t bands) : values_(2 * slots * bands) {
  for (std::size_t s = 0; s < slots; ++s) pointers_.push_back(&values_[2 * s * bands]);
}

BandAnalysis::BandAnalysis(const Library &library, unsigned bands, unsigned slots)
    : process_(library.find<decltype(MVK_CLqmf_analysisL)>("MVK_CLqmf_analysisL")),
      memory_(memory_for(
          library.find<decltype(MVK_qmf_analysisL_query_mem)>("MVK_qmf_analysisL_query_mem"),
          bands)) {
  auto *open = library.find<decltype(mvk_qmf_analysisL_open)>("mvk_qmf_analysisL_open");
  record_ = open(bands, slots, MVK_TWIDDLE_NONE, kBankOrder, prototype(library, bands, "ana"),
                 memory_[0].data(), memory_[1].data(), memory_[2].data());
  delay_ =
      library.find<decltype(MVK_qmf_analysisL_get_delay)>("MVK_qmf_analysisL_get_delay")(record_);
}

BandSynthesis::BandSynthesis(const Library &library, unsigned bands, unsigned slots)
    : process_(library.find<decltype(MVK_Lqmf_synthesisCL)>("MVK_Lqmf_synthesisCL")),
      memory_(memory_for(
          library.find<decltype(MVK_qmf_synthesisL_query_mem)>("MVK_qmf_synthesisL_query_mem"),
          bands)) {
  auto *open = library.find<decltype(mvk_qmf_synthesisL_open)>("mvk_qmf_synthesisL_open");
  record_ = open(bands, slots, MVK_TWIDDLE_NONE, kBankOrder, prototype(library, bands, "syn"),
                 memory_[0].data(), memory_[1].data(), memory_[2].data());
  delay_ =
      library.find<decltype(MVK_qmf_synthesisL_get_delay)>("MVK_qmf_synthesisL_get_delay")(record_);
}

}  // namespace mvk
