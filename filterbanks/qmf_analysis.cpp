// QMF analysis: per slot a window over the history, then the modulation stage.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "filterbanks/qmf.h"
#include "filterbanks/qmf_windows.h"

using namespace mvk;

static_assert(sizeof(mvk_qmf_analysisL_state) == 120);
static_assert(sizeof(mvk_qmf_analysisS_state) == 112);

namespace {

template <class Record>
void reconfigure(Record &r, std::uint32_t bands, std::uint32_t slots, std::uint32_t twiddle_mode,
                 std::uint32_t order, const float *prototype, cosine_transform transform) {
  configure(r, bands, slots, twiddle_mode, order, prototype, transform);
  r.cos_table = find_window_modulation(bands).scaled;
  r.slot_ptr = reinterpret_cast<float **>(r.history + r.history_length);
  for (std::uint32_t i = 0; i < history_blocks(order); ++i) r.slot_ptr[i] = r.history + i * bands;
}

template <class Record>
void window(Record &r, mvk_qmf_ana_window *window, const float *in) {
  window(r.scratch, r.slot_ptr, r.prototype, r.cos_table, in, r.bands);
}

template <class Record>
void analyse_real(Record &r, float *out, const float *in) {
  const std::size_t M = r.bands;
  for (std::uint32_t slot = 0; slot < r.slots; ++slot, in += M, out += r.slot_increment) {
    window(r, r.window_real, in);
    if (r.dct_twiddle)
      mvk_forwardModulationReal(r.scratch + 2 * M, out, r.bands, r.pair_half, r.dct_twiddle,
                                r.scratch);
  }
}

template <class Record>
void analyse_complex(Record &r, float *const *out_slots, const float *in) {
  const std::size_t M = r.bands;
  for (std::uint32_t slot = 0; slot < r.slots; ++slot, in += M) {
    window(r, r.window_complex, in);
    mvk_forwardModulationComplex(r.scratch, out_slots[slot], r.scratch + 2 * M, r.bands,
                                 r.twiddle_mode, r.rotation, r.pair_full);
  }
}

}  // namespace

// ---- Both kinds of record -----------------------------------------------------

#define MVK_QMF_ANALYSIS(T)                                                                        \
  void MVK_qmf_analysis##T##_init(mvk_qmf_analysis##T##_state *record) { clear_history(*record); } \
  void MVK_qmf_analysis##T##_set_slot_increment(mvk_qmf_analysis##T##_state *record,               \
                                                uint32_t increment) {                              \
    record->slot_increment = increment;                                                            \
  }                                                                                                \
  void MVK_Lqmf_analysis##T(mvk_qmf_analysis##T##_state *record, float *out, const float *in) {    \
    analyse_real(*record, out, in);                                                                \
  }                                                                                                \
  void MVK_CLqmf_analysis##T(mvk_qmf_analysis##T##_state *record, float *const *out_slots,         \
                             const float *in) {                                                    \
    analyse_complex(*record, out_slots, in);                                                       \
  }                                                                                                \
  uint32_t MVK_qmf_analysis##T##_get_delay(const mvk_qmf_analysis##T##_state *record) {            \
    return record->bands * record->order - record->bands / 2;                                      \
  }                                                                                                \
  void MVK_qmf_analysis##T##_close(mvk_qmf_analysis##T##_state *) {}
MVK_QMF_ANALYSIS(L)
MVK_QMF_ANALYSIS(S)

// ---- Long samples -------------------------------------------------------------

uint32_t MVK_qmf_analysisL_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                     uint32_t *scratch_bytes, uint32_t *record_bytes) {
  const sizes size = find_sizes(long_size(bands), order, sizeof(float *));
  *state_bytes = size.state;
  *scratch_bytes = size.scratch;
  return *record_bytes = sizeof(mvk_qmf_analysisL_state) + record_alignment - 1;
}

int mvk_qmf_analysisL_reconfig(mvk_qmf_analysisL_state *record, uint32_t bands, uint32_t slots,
                               uint32_t twiddle_mode, uint32_t order, const float *prototype) {
  reconfigure(*record, bands, slots, twiddle_mode, order, prototype,
              find_cosine_transform(long_transform(bands)));
  record->window_real = order == 5 ? mvk_qmf_ana_window_p5 : mvk_qmf_ana_window_p4;
  record->window_complex = order == 5 ? mvk_qmf_ana_window_cplx_p5 : mvk_qmf_ana_window_cplx_p4;
  return 0;
}

mvk_qmf_analysisL_state *mvk_qmf_analysisL_open(uint32_t bands, uint32_t slots,
                                                uint32_t twiddle_mode, uint32_t order,
                                                const float *prototype, void *state_mem,
                                                void *scratch_mem, void *record_mem) {
  auto *const record = place<mvk_qmf_analysisL_state>(state_mem, scratch_mem, record_mem);
  mvk_qmf_analysisL_reconfig(record, bands, slots, twiddle_mode, order, prototype);
  clear_history(*record);
  return record;
}

uint32_t MVK_qmf_analysisL_get_filter_state_length(uint32_t order_flag, uint32_t bands) {
  return history_blocks(order_flag ? 5 : 4) * bands;
}

uint32_t MVK_qmf_analysisL_get_max_filter_state_length(uint32_t order_flag) {
  return MVK_qmf_analysisL_get_filter_state_length(order_flag, 64);
}

void MVK_load_CLqmf_analysisL_filter_stateL(mvk_qmf_analysisL_state *record, const float *src) {
  if (record->order != 5) return;
  for (std::uint32_t i = history_blocks(5); i-- > 0; src += record->bands)
    std::copy_n(src, record->bands, record->slot_ptr[i]);
}

void MVK_Lunload_CLqmf_analysisL_filter_state(const mvk_qmf_analysisL_state *record, float *dst) {
  if (record->order != 5) return;
  for (std::uint32_t i = history_blocks(5); i-- > 0; dst += record->bands)
    std::copy_n(record->slot_ptr[i], record->bands, dst);
}

// ---- Short samples ------------------------------------------------------------

uint32_t MVK_qmf_analysisS_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                     uint32_t *scratch_bytes, uint32_t *record_bytes) {
  const sizes size = find_sizes(short_size(bands), order, sizeof(float *));
  *state_bytes = size.state;
  *scratch_bytes = size.scratch;
  *record_bytes = sizeof(mvk_qmf_analysisS_state) + record_alignment - 1;
  return 1024;
}

mvk_qmf_analysisS_state *mvk_qmf_analysisS_open(uint32_t bands, uint32_t slots,
                                                uint32_t twiddle_mode, uint32_t order,
                                                const float *prototype, void *state_mem,
                                                void *scratch_mem, void *record_mem) {
  auto *const record = place<mvk_qmf_analysisS_state>(state_mem, scratch_mem, record_mem);
  reconfigure(*record, bands, slots, twiddle_mode, order, prototype, find_cosine_transform(bands));
  record->window_real = order == 5 ? mvk_qmf_ana_window_s_p5 : mvk_qmf_ana_window_s_p4;
  record->window_complex = order == 5 ? mvk_qmf_ana_window_cplx_s_p5 : mvk_qmf_ana_window_cplx_s_p4;
  clear_history(*record);
  return record;
}
