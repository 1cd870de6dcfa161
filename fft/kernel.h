// The exported kernels, four forms of each length of a family.
#pragma once

#include "fft/transform.h"
#include "mvk_fft.h"

// Their definitions: run<N, inverse, scaled>(dst, src) does the work.
#define MVK_FFT_KERNEL(name, N, inverse, scaled) \
  void name(float *dst, float *src, uint32_t) { run<N, inverse, scaled>(dst, src); }
#define MVK_FFT_KERNELS(family, N)                     \
  MVK_FFT_KERNEL(family##_fft_##N, N, false, false)    \
  MVK_FFT_KERNEL(family##_inv_fft_##N, N, true, false) \
  MVK_FFT_KERNEL(family##_fft_##N##_s, N, false, true) \
  MVK_FFT_KERNEL(family##_inv_fft_##N##_s, N, true, true)
