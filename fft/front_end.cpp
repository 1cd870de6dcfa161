// The transforms with a state.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

#include "core/carve.h"
#include "fft/packed_spectrum.h"
#include "mvk_fft.h"

using namespace mvk;

namespace {

constexpr uint32_t complex_flags = 0x0F, real_flags = 0xF0;
static_assert(sizeof(mvk_fft_state) == 40);

// The entry points of one direction and scaling.
struct entry_points {
  mvk_fft_transform *const *by_log2;
  mvk_fft_transform *const *by_position;
};

// Null if the length isn't there.
mvk_fft_transform *find(const entry_points &all, uint32_t n) {
  if (std::has_single_bit(n)) return all.by_log2[std::countr_zero(n)];
  const auto *const first = std::begin(mvk_non_power_two_lengths);
  const auto *const found = std::lower_bound(first, std::end(mvk_non_power_two_lengths), n);
  return all.by_position[found - first];
}

}  // namespace

int MVK_fft_is_supported(uint32_t n, int32_t flags) {
  const auto bits = static_cast<uint32_t>(flags);
  if (n < 2 || n > 2048 || bits > (complex_flags | real_flags)) return 0;
  if (std::has_single_bit(n)) return 1;
  return !(bits & real_flags) && std::binary_search(std::begin(mvk_non_power_two_lengths),
                                                    std::end(mvk_non_power_two_lengths), n);
}

uint32_t MVK_fft_state_query_mem(uint32_t n, int32_t flags) {
  return MVK_fft_is_supported(n, flags) ? sizeof(mvk_fft_state) + alignof(mvk_fft_state) - 1 : 0;
}

uint32_t MVK_fft_scratch_query_mem(uint32_t, int32_t) { return 0; }

mvk_fft_state *MVK_fft_init(void *mem, uint32_t n, int32_t flags) {
  if (!mem || !MVK_fft_is_supported(n, flags)) return nullptr;
  const auto bits = static_cast<uint32_t>(flags);
  const auto find_if = [=](uint32_t needing, const entry_points &all) {
    return bits & needing ? find(all, n) : nullptr;
  };
  auto *const state = carver(mem).take<mvk_fft_state>(1);
  *state = {
      find_if(MVK_FFT_CLFWD_SCALEDCL | MVK_FFT_CLFWD_SCALEDL,
              {mvk_fft_cplx_fwd_scl, mvk_odd_fft_cplx_fwd_scl}),
      find_if(MVK_FFT_CLINV_SCALEDCL | MVK_FFT_LINV_SCALEDCL,
              {mvk_fft_cplx_inv_scl, mvk_odd_fft_cplx_inv_scl}),
      find_if(MVK_FFT_CLFWD_UNSCALEDCL | MVK_FFT_CLFWD_UNSCALEDL,
              {mvk_fft_cplx_fwd_usc, mvk_odd_fft_cplx_fwd_usc}),
      find_if(MVK_FFT_CLINV_UNSCALEDCL | MVK_FFT_LINV_UNSCALEDCL,
              {mvk_fft_cplx_inv_usc, mvk_odd_fft_cplx_inv_usc}),
      n,
      bits,
  };
  return state;
}

void MVK_fft_shutdown(mvk_fft_state *state) {
  if (state) *state = {};
}

// ---- Complex ------------------------------------------------------------------

// `in` is the work area.

void MVK_fft_CLfwd_scaledCL(const mvk_fft_state *state, float *out, float *in) {
  state->fwd_scl(out, in, in);
}
void MVK_fft_CLfwd_unscaledCL(const mvk_fft_state *state, float *out, float *in) {
  state->fwd_usc(out, in, in);
}
void MVK_fft_CLinv_scaledCL(const mvk_fft_state *state, float *out, float *in) {
  state->inv_scl(out, in, in);
}
void MVK_fft_CLinv_unscaledCL(const mvk_fft_state *state, float *out, float *in) {
  state->inv_usc(out, in, in);
}

// ---- Real ---------------------------------------------------------------------

void MVK_fft_CLfwd_scaledL(const mvk_fft_state *state, float *out, float *in) {
  state->fwd_scl(out, in, in);
  to_packed<rounding::with_state, true>(out, state->n);
}
void MVK_fft_CLfwd_unscaledL(const mvk_fft_state *state, float *out, float *in) {
  state->fwd_usc(out, in, in);
  to_packed<rounding::with_state, false>(out, state->n);
}
void MVK_fft_Linv_scaledCL(const mvk_fft_state *state, float *out, float *in) {
  from_packed<rounding::with_state, true>(in, state->n);
  state->inv_scl(out, in, in);
}
void MVK_fft_Linv_unscaledCL(const mvk_fft_state *state, float *out, float *in) {
  from_packed<rounding::with_state, false>(in, state->n);
  state->inv_usc(out, in, in);
}
