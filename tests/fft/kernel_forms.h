// Rows of the tables of transforms: the four forms of one length.
#ifndef MVK_TESTS_FFT_KERNEL_FORMS_H_
#define MVK_TESTS_FFT_KERNEL_FORMS_H_

#include "fft/fft_kernels.h"
#include "mvk_fft.h"

#define MVK_KERNEL_ROW(name, family, n, direction, scaling) \
  {#name, Family::family, n, Direction::direction, Scaling::scaling, name},

#define MVK_KERNEL_ROWS(prefix, family, n)                             \
  MVK_KERNEL_ROW(prefix##_fft_##n, family, n, kForward, kUnscaled)     \
  MVK_KERNEL_ROW(prefix##_inv_fft_##n, family, n, kInverse, kUnscaled) \
  MVK_KERNEL_ROW(prefix##_fft_##n##_s, family, n, kForward, kScaled)   \
  MVK_KERNEL_ROW(prefix##_inv_fft_##n##_s, family, n, kInverse, kScaled)

#define MVK_ENTRY_POINT_ROW(name, n, direction, scaling) \
  {#name, n, Direction::direction, Scaling::scaling, name},

#define MVK_ENTRY_POINT_ROWS(n)                                    \
  MVK_ENTRY_POINT_ROW(mvk_fft_fwd_usc_##n, n, kForward, kUnscaled) \
  MVK_ENTRY_POINT_ROW(mvk_fft_inv_usc_##n, n, kInverse, kUnscaled) \
  MVK_ENTRY_POINT_ROW(mvk_fft_fwd_scl_##n, n, kForward, kScaled)   \
  MVK_ENTRY_POINT_ROW(mvk_fft_inv_scl_##n, n, kInverse, kScaled)

#endif
