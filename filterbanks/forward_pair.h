// The complex transform of a bank.
#pragma once

#include <cstdint>

#include "mvk_fft.h"

namespace mvk {

// The forward pair of n points, of the faster family that has one; or null.
inline const mvk_fft_pair *find_forward_pair(std::uint32_t n) {
  const mvk_fft_pair *const pair = MVK_r8_cplx_fwd_pair(n);
  return pair ? pair : MVK_r4_cplx_fwd_pair(n);
}

}  // namespace mvk
