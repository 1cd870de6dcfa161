// Kernels and entry points by their length.
#include <cstdint>
#include <iterator>

#include "mvk_fft.h"

namespace {

// A row of a family's list.
struct kernels {
  uint32_t n;
  mvk_fft_pair forward, inverse;
};

#define MVK_ROW(family, N) \
  {N, {family##_fft_##N, family##_fft_##N##_s}, {family##_inv_fft_##N, family##_inv_fft_##N##_s}},
#define MVK_R4_ROW(N) MVK_ROW(MVK_r4, N)
#define MVK_R8_ROW(N) MVK_ROW(MVK_r8, N)

constexpr kernels radix4[] = {MVK_FFT_POWERS_OF_TWO(MVK_R4_ROW) MVK_FFT_COMPOSITES(MVK_R4_ROW)
                                  MVK_R4_ROW(4096)};
constexpr kernels radix8[] = {MVK_FFT_RADIX8(MVK_R8_ROW)};

template <std::size_t rows>
const mvk_fft_pair *find(const kernels (&family)[rows], mvk_fft_pair kernels::*direction,
                         uint32_t n) {
  if (n == 8192) n = 4096;
  for (const kernels &k : family)
    if (k.n == n) return &(k.*direction);
  return nullptr;
}

mvk_fft_kernel *find(mvk_fft_pair kernels::*direction, mvk_fft_kernel *mvk_fft_pair::*scaling,
                     uint32_t n) {
  const mvk_fft_pair *pair = find(radix4, direction, n);
  return pair ? pair->*scaling : nullptr;
}

}  // namespace

// ---- Look-ups -----------------------------------------------------------------

const mvk_fft_pair *MVK_r4_cplx_fwd_pair(uint32_t n) { return find(radix4, &kernels::forward, n); }
const mvk_fft_pair *MVK_r4_cplx_inv_pair(uint32_t n) { return find(radix4, &kernels::inverse, n); }
const mvk_fft_pair *MVK_r8_cplx_fwd_pair(uint32_t n) { return find(radix8, &kernels::forward, n); }
const mvk_fft_pair *MVK_r8_cplx_inv_pair(uint32_t n) { return find(radix8, &kernels::inverse, n); }

mvk_fft_kernel *MVK_r4_cplx_fwd_unscaled(uint32_t n) {
  return find(&kernels::forward, &mvk_fft_pair::unscaled, n);
}
mvk_fft_kernel *MVK_r4_cplx_inv_unscaled(uint32_t n) {
  return find(&kernels::inverse, &mvk_fft_pair::unscaled, n);
}
mvk_fft_kernel *MVK_r4_cplx_fwd_scaled(uint32_t n) {
  return find(&kernels::forward, &mvk_fft_pair::scaled, n);
}
mvk_fft_kernel *MVK_r4_cplx_inv_scaled(uint32_t n) {
  return find(&kernels::inverse, &mvk_fft_pair::scaled, n);
}

int mvk_valid_pair_ptr(const mvk_fft_pair *pair) { return pair != nullptr; }

// ---- Tables -------------------------------------------------------------------

#define MVK_LENGTH(N) N,
#define MVK_FWD_SCL(N) mvk_fft_fwd_scl_##N,
#define MVK_FWD_USC(N) mvk_fft_fwd_usc_##N,
#define MVK_INV_SCL(N) mvk_fft_inv_scl_##N,
#define MVK_INV_USC(N) mvk_fft_inv_usc_##N,

mvk_fft_transform *const mvk_fft_cplx_fwd_scl[] = {nullptr, MVK_FFT_POWERS_OF_TWO(MVK_FWD_SCL)};
mvk_fft_transform *const mvk_fft_cplx_fwd_usc[] = {nullptr, MVK_FFT_POWERS_OF_TWO(MVK_FWD_USC)};
mvk_fft_transform *const mvk_fft_cplx_inv_scl[] = {nullptr, MVK_FFT_POWERS_OF_TWO(MVK_INV_SCL)};
mvk_fft_transform *const mvk_fft_cplx_inv_usc[] = {nullptr, MVK_FFT_POWERS_OF_TWO(MVK_INV_USC)};

const uint32_t mvk_non_power_two_lengths[] = {MVK_FFT_COMPOSITES(MVK_LENGTH)};
const uint32_t mvk_num_of_non_power_two_lengths = std::size(mvk_non_power_two_lengths);
mvk_fft_transform *const mvk_odd_fft_cplx_fwd_scl[] = {MVK_FFT_COMPOSITES(MVK_FWD_SCL)};
mvk_fft_transform *const mvk_odd_fft_cplx_fwd_usc[] = {MVK_FFT_COMPOSITES(MVK_FWD_USC)};
mvk_fft_transform *const mvk_odd_fft_cplx_inv_scl[] = {MVK_FFT_COMPOSITES(MVK_INV_SCL)};
mvk_fft_transform *const mvk_odd_fft_cplx_inv_usc[] = {MVK_FFT_COMPOSITES(MVK_INV_USC)};
