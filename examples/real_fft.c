/* The spectrum of 1024 real samples, by a transform chosen at run time: a constant, a tone,
 * and half the sampling rate, which is packed beside the constant. */
#include <mvk_fft.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "measure.h"

enum { kSamples = 1024, kPairs = kSamples / 2 };

int main(void) {
  const int32_t flags = MVK_FFT_CLFWD_SCALEDL | MVK_FFT_LINV_UNSCALEDCL;
  if (!MVK_fft_is_supported(kPairs, flags)) return 1;
  void *memory = malloc(MVK_fft_state_query_mem(kPairs, flags));
  mvk_fft_state *transform = MVK_fft_init(memory, kPairs, flags);

  static float samples[kSamples], work[kSamples], spectrum[kSamples];
  for (int i = 0; i < kSamples; ++i) {
    samples[i] = (float)(0.5 + 0.25 * sin(2 * kPi * 20 * i / kSamples) + (i % 2 ? -0.125 : 0.125));
  }
  memcpy(work, samples, sizeof work);
  MVK_fft_CLfwd_scaledL(transform, spectrum, work);
  printf("constant: %.6f\n", spectrum[0]);
  printf("half the rate: %.6f\n", spectrum[1]);
  /* A sine of amplitude a is -a / 2 in the imaginary part. */
  printf("tone, real part: %.6f\n", spectrum[2 * 20]);
  printf("tone, imaginary part: %.6f\n", spectrum[2 * 20 + 1]);

  /* What was scaled on the way there must not be on the way back. */
  MVK_fft_Linv_unscaledCL(transform, work, spectrum);
  printf("error there and back: %.2g\n", relative_error(work, samples, kSamples, 0));
  MVK_fft_shutdown(transform);
  free(memory);
  return 0;
}
