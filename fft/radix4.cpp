// The kernels of the radix-4 family.
#include "fft/kernel.h"

using namespace mvk;

namespace {

// By custom, 16 points have coarse twiddles as well.
constexpr accuracy accuracy_of(int n) {
  if ((n & (n - 1)) != 0) return accuracy::composite;
  return n == 16 ? accuracy::six_decimals : accuracy::full;
}

template <int N, bool inverse, bool scaled>
void run(float *dst, float *src) {
  if constexpr (N <= 8) {
    transform_at_once<N, inverse, scaled>(dst, src);
  } else if constexpr (N == 16) {
    float scratch[2 * N];  // src is kept, and may be dst
    transform<family::radix4, N, accuracy_of(N), inverse, scaled>(dst, src, scratch);
  } else {
    transform<family::radix4, N, accuracy_of(N), inverse, scaled>(dst, src, src);
  }
}

}  // namespace

#define MVK_R4(N) MVK_FFT_KERNELS(MVK_r4, N)
MVK_FFT_POWERS_OF_TWO(MVK_R4)
MVK_FFT_COMPOSITES(MVK_R4)
MVK_R4(4096)
