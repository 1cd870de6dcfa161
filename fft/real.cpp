// The real transforms without a state.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fft/packed_spectrum.h"
#include "mvk_fft.h"

using namespace mvk;

namespace {

void run(mvk_fft_kernel *kernel, float *dst, float *src, uint32_t n) {
  if (kernel) kernel(dst, src, n);
}

// The scaled transform of b, then a.
void transform_halves(const float *a, const float *b, float *dst, uint32_t n) {
  std::memcpy(dst, b, n * sizeof *b);
  std::memcpy(dst + n, a, n * sizeof *a);
  run(MVK_r4_cplx_fwd_scaled(n), dst, dst, n);
}

}  // namespace

void MVK_r4_rfft_nn(float *src, float *dst, uint32_t n) {
  run(MVK_r4_cplx_fwd_unscaled(n), dst, src, n);
  to_packed<rounding::without_state, false>(dst, n);
}
void MVK_r4_rfft_nn_s(float *src, float *dst, uint32_t n) {
  run(MVK_r4_cplx_fwd_scaled(n), dst, src, n);
  to_packed<rounding::without_state, true>(dst, n);
}

void MVK_r4_rsplit_fft_nn(const float *a, const float *b, float *dst, uint32_t n) {
  transform_halves(a, b, dst, n);
  to_packed<rounding::without_state, false>(dst, n);
}
void MVK_r4_rsplit_fft_nn_s(const float *a, const float *b, float *dst, uint32_t n) {
  transform_halves(a, b, dst, n);
  to_packed<rounding::without_state, true>(dst, n);
}

void MVK_r4_inv_rfft_nn(float *src, float *dst, uint32_t n) {
  from_packed<rounding::without_state, false>(src, n);
  run(MVK_r4_cplx_inv_unscaled(n), dst, src, n);
}
void MVK_r4_inv_rfft_half_n(float *src, float *dst, uint32_t n) { MVK_r4_inv_rfft_nn(src, dst, n); }
void MVK_r4_inv_rfft_nn_s(float *src, float *dst, uint32_t n) {
  from_packed<rounding::without_state, true>(src, n);
  run(MVK_r4_cplx_inv_scaled(n), dst, src, n);
}
