// The forward transforms that cosine transforms and banks are made of.
#pragma once

#include <cstddef>
#include <cstdint>

#include "mvk_fft.h"

namespace mvk {

// The forward pair of n points, of the faster family that has one; or null.
inline const mvk_fft_pair *find_forward_pair(std::uint32_t n) {
  const mvk_fft_pair *const pair = MVK_r8_cplx_fwd_pair(n);
  return pair ? pair : MVK_r4_cplx_fwd_pair(n);
}

// By the pair, or where it is null by the radix-4 family's of n points. Without either, nothing is
// done.
inline void transform_scaled(const mvk_fft_pair *pair, float *dst, float *src, std::size_t n) {
  const auto points = static_cast<std::uint32_t>(n);
  mvk_fft_kernel *const kernel = pair ? pair->scaled : MVK_r4_cplx_fwd_scaled(points);
  if (kernel) kernel(dst, src, points);
}
inline void transform_unscaled(const mvk_fft_pair *pair, float *dst, float *src, std::size_t n) {
  const auto points = static_cast<std::uint32_t>(n);
  mvk_fft_kernel *const kernel = pair ? pair->unscaled : MVK_r4_cplx_fwd_unscaled(points);
  if (kernel) kernel(dst, src, points);
}

}  // namespace mvk
