// The sized entry points.
#include "fft/transform.h"
#include "mvk_fft.h"

using namespace mvk;

namespace {

template <int N, bool inverse, bool scaled>
void run(float *dst, const float *src, float *scratch) {
  if (!src) src = dst;
  if constexpr (N <= 8)
    transform_at_once<N, inverse, scaled>(dst, src);
  else
    transform<family::radix4, N, accuracy::full, inverse, scaled>(dst, src, scratch);
}

}  // namespace

#define MVK_POWER_OF_TWO(name, N, inverse, scaled) \
  void name(float *dst, float *src, float *scratch) { run<N, inverse, scaled>(dst, src, scratch); }
#define MVK_POWERS_OF_TWO(N)                             \
  MVK_POWER_OF_TWO(mvk_fft_fwd_usc_##N, N, false, false) \
  MVK_POWER_OF_TWO(mvk_fft_inv_usc_##N, N, true, false)  \
  MVK_POWER_OF_TWO(mvk_fft_fwd_scl_##N, N, false, true)  \
  MVK_POWER_OF_TWO(mvk_fft_inv_scl_##N, N, true, true)
MVK_FFT_POWERS_OF_TWO(MVK_POWERS_OF_TWO)

#define MVK_COMPOSITE(name, kernel, N) \
  void name(float *dst, float *src, float *) { kernel(dst, src, N); }
#define MVK_COMPOSITES(N)                                   \
  MVK_COMPOSITE(mvk_fft_fwd_usc_##N, MVK_r4_fft_##N, N)     \
  MVK_COMPOSITE(mvk_fft_inv_usc_##N, MVK_r4_inv_fft_##N, N) \
  MVK_COMPOSITE(mvk_fft_fwd_scl_##N, MVK_r4_fft_##N##_s, N) \
  MVK_COMPOSITE(mvk_fft_inv_scl_##N, MVK_r4_inv_fft_##N##_s, N)
MVK_FFT_COMPOSITES(MVK_COMPOSITES)
