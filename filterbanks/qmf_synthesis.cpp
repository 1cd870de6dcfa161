// QMF synthesis: per slot the modulation stage, then a window into the delay line.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "filterbanks/qmf.h"
#include "filterbanks/qmf_windows.h"

using namespace mvk;

static_assert(sizeof(mvk_qmf_synthesisL_state) == 120);
static_assert(sizeof(mvk_qmf_synthesisS_state) == 112);

namespace {

// All fields but the windows.
template <class Record>
Record *open(std::uint32_t bands, std::uint32_t slots, std::uint32_t twiddle_mode,
             std::uint32_t order, const float *prototype, void *state_mem, void *scratch_mem,
             void *record_mem, cosine_transform transform) {
  auto *const r = place<Record>(state_mem, scratch_mem, record_mem);
  if (bands == 4) transform.twiddle = nullptr;
  configure(*r, bands, slots, twiddle_mode, order, prototype, transform);
  r->cos_table = find_window_modulation(bands).full;
  clear_history(*r);
  return r;
}

template <class Record>
void window(Record &r, mvk_qmf_syn_window *window, float *out) {
  window(out, r.history, r.prototype, r.cos_table, r.scratch, r.bands);
}

template <class Record>
void synthesise_real(Record &r, float *out, const float *in) {
  const std::size_t M = r.bands;
  for (std::uint32_t slot = 0; slot < r.slots; ++slot, in += r.slot_increment, out += M) {
    std::copy_n(in, M, r.scratch);
    if (r.dct_twiddle)
      mvk_inverseModulationReal(r.scratch, r.scratch + M, r.bands, r.pair_half, r.dct_twiddle);
    window(r, r.window_real, out);
  }
}

template <class Record>
void synthesise_complex(Record &r, mvk_qmf_syn_window *window_complex, float *out,
                        const float *const *in_slots) {
  const std::size_t M = r.bands;
  for (std::uint32_t slot = 0; slot < r.slots; ++slot, out += M) {
    mvk_inverseModulationComplex(in_slots[slot], r.scratch, r.scratch + 2 * M, r.bands,
                                 r.twiddle_mode, r.rotation, r.pair_full);
    window(r, window_complex, out);
  }
}

}  // namespace

// ---- Both kinds of record -----------------------------------------------------

#define MVK_QMF_SYNTHESIS(T)                                                                \
  void MVK_qmf_synthesis##T##_init(mvk_qmf_synthesis##T##_state *record) {                  \
    clear_history(*record);                                                                 \
  }                                                                                         \
  void MVK_qmf_synthesis##T##_set_slot_increment(mvk_qmf_synthesis##T##_state *record,      \
                                                 uint32_t increment) {                      \
    record->slot_increment = increment;                                                     \
  }                                                                                         \
  uint32_t MVK_qmf_synthesis##T##_get_delay(const mvk_qmf_synthesis##T##_state *record) {   \
    return record->bands * record->order + 1 - record->bands / 2;                           \
  }                                                                                         \
  void MVK_qmf_synthesis##T##_copy_states(mvk_qmf_synthesis##T##_state *dst_record,         \
                                          const mvk_qmf_synthesis##T##_state *src_record) { \
    std::copy_n(src_record->history, src_record->history_length, dst_record->history);      \
  }                                                                                         \
  void MVK_qmf_synthesis##T##_close(mvk_qmf_synthesis##T##_state *) {}
MVK_QMF_SYNTHESIS(L)
MVK_QMF_SYNTHESIS(S)

// ---- Long samples -------------------------------------------------------------

uint32_t MVK_qmf_synthesisL_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                      uint32_t *scratch_bytes, uint32_t *record_bytes) {
  const sizes size = find_sizes(long_size(bands), order, 0);
  *state_bytes = size.state;
  *scratch_bytes = size.scratch;
  return *record_bytes = sizeof(mvk_qmf_synthesisL_state) + record_alignment - 1;
}

mvk_qmf_synthesisL_state *mvk_qmf_synthesisL_open(uint32_t bands, uint32_t slots,
                                                  uint32_t twiddle_mode, uint32_t order,
                                                  const float *prototype, void *state_mem,
                                                  void *scratch_mem, void *record_mem) {
  auto *const record = open<mvk_qmf_synthesisL_state>(bands, slots, twiddle_mode, order, prototype,
                                                      state_mem, scratch_mem, record_mem,
                                                      find_cosine_transform(long_transform(bands)));
  const bool p5 = order == 5;
  record->window_real = p5 ? mvk_qmf_syn_window_p5 : mvk_qmf_syn_window_p4;
  record->window_complex = p5 ? mvk_qmf_syn_window_cplx_p5 : mvk_qmf_syn_window_cplx_p4;
  record->window_complex_head1bit =
      p5 ? mvk_qmf_syn_window_cplx_head1bit_p5 : mvk_qmf_syn_window_cplx_head1bit_p4;
  return record;
}

void MVK_Lqmf_synthesisL(mvk_qmf_synthesisL_state *record, float *out, const float *in) {
  synthesise_real(*record, out, in);
}

void MVK_Lqmf_synthesisCL(mvk_qmf_synthesisL_state *record, float *out,
                          const float *const *in_slots) {
  synthesise_complex(*record, record->window_complex, out, in_slots);
}

void MVK_Lqmf_synthesisCL_Head1Bit(mvk_qmf_synthesisL_state *record, float *out,
                                   const float *const *in_slots) {
  synthesise_complex(*record, record->window_complex_head1bit, out, in_slots);
}

// ---- Short samples ------------------------------------------------------------

uint32_t MVK_qmf_synthesisS_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                      uint32_t *scratch_bytes, uint32_t *record_bytes) {
  const sizes size = find_sizes(short_size(bands), order, 0);
  *state_bytes = size.state;
  *scratch_bytes = size.scratch;
  *record_bytes = sizeof(mvk_qmf_synthesisS_state) + record_alignment - 1;
  return 1024;
}

mvk_qmf_synthesisS_state *mvk_qmf_synthesisS_open(uint32_t bands, uint32_t slots,
                                                  uint32_t twiddle_mode, uint32_t order,
                                                  const float *prototype, void *state_mem,
                                                  void *scratch_mem, void *record_mem) {
  auto *const record =
      open<mvk_qmf_synthesisS_state>(bands, slots, twiddle_mode, order, prototype, state_mem,
                                     scratch_mem, record_mem, find_cosine_transform(bands));
  record->window_real = order == 5 ? mvk_qmf_syn_window_s_p5 : mvk_qmf_syn_window_s_p4;
  record->window_complex = order == 5 ? mvk_qmf_syn_window_cplx_s_p5 : mvk_qmf_syn_window_cplx_s_p4;
  return record;
}

void MVK_Sqmf_synthesisL(mvk_qmf_synthesisS_state *record, float *out, const float *in) {
  synthesise_real(*record, out, in);
}

void MVK_Sqmf_synthesisCL(mvk_qmf_synthesisS_state *record, float *out,
                          const float *const *in_slots) {
  synthesise_complex(*record, record->window_complex, out, in_slots);
}
