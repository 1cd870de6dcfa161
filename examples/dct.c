/* A cosine transform of 480 samples, and the way back with what the first coefficient owes. */
#include <mvk_dct.h>
#include <stdio.h>
#include <string.h>

#include "measure.h"

enum { kSamples = 480 };

int main(void) {
  static float samples[kSamples], work[kSamples], spectrum[kSamples], back[kSamples];
  for (int i = 0; i < kSamples; ++i) {
    samples[i] = (float)(0.5 + 0.25 * cos(kPi * (2 * i + 1) * 20 / (2 * kSamples)));
  }

  /* The transform of half the length is looked up once. */
  const mvk_fft_pair *pair = MVK_r4_cplx_fwd_pair(kSamples / 2);
  memcpy(work, samples, sizeof work);
  mvk_dctII_scaled(pair, mvk_dct_twiddle_table16_L480, spectrum, work, kSamples);
  printf("constant: %.6f\n", spectrum[0]);
  /* The sum over a cosine's square is half the samples. */
  printf("coefficient 20: %.6f\n", spectrum[20]);
  double others = 0;
  for (int k = 1; k < kSamples; ++k) {
    if (k != 20) others = fmax(others, fabs(spectrum[k]));
  }
  printf("highest other coefficient: %.2g\n", others);

  /* A type III gives the first coefficient full weight, of which half is due. It is scaled
   * by 1 / N, and so are the coefficients already. */
  memcpy(work, spectrum, sizeof work);
  work[0] /= 2;
  mvk_dctIII_scaled(pair, mvk_dct_twiddle_table16_L480, back, work, kSamples);
  for (int i = 0; i < kSamples; ++i) back[i] *= 2 * kSamples;
  printf("error there and back: %.2g\n", relative_error(back, samples, kSamples, 0));
  return 0;
}
