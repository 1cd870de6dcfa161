// The kernels of the radix-8 family.
#include "fft/kernel.h"

using namespace mvk;

namespace {

template <int N, bool inverse, bool scaled>
void run(float *dst, float *src) {
  transform<family::radix8, N, accuracy::full, inverse, scaled>(dst, src, src);
}

}  // namespace

#define MVK_R8(N) MVK_FFT_KERNELS(MVK_r8, N)
MVK_FFT_RADIX8(MVK_R8)
