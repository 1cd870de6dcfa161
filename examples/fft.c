/* A complex transform of 480 points: the bins of two rotating tones, and the way back. */
#include <mvk_fft.h>
#include <stdio.h>
#include <string.h>

#include "measure.h"

enum { kPoints = 480 };

static double level_of_bin(const float *spectrum, int bin) {
  return hypot(spectrum[2 * bin], spectrum[2 * bin + 1]);
}

int main(void) {
  static float samples[2 * kPoints], work[2 * kPoints], spectrum[2 * kPoints];
  for (int i = 0; i < kPoints; ++i) {
    const double angle = 2 * kPi * i / kPoints;
    samples[2 * i] = (float)(cos(3 * angle) + 0.25 * cos(-100 * angle));
    samples[2 * i + 1] = (float)(sin(3 * angle) + 0.25 * sin(-100 * angle));
  }

  /* By name: forward, scaled by 1 / N. Its source would be overwritten. */
  memcpy(work, samples, sizeof work);
  MVK_r4_fft_480_s(spectrum, work, kPoints);
  printf("bin 3: %.6f\n", level_of_bin(spectrum, 3));
  printf("bin 380: %.6f\n", level_of_bin(spectrum, 380));
  double others = 0;
  for (int bin = 0; bin < kPoints; ++bin) {
    if (bin != 3 && bin != 380) others = fmax(others, level_of_bin(spectrum, bin));
  }
  printf("highest other bin: %.2g\n", others);

  /* By length, looked up: inverse, unscaled. */
  const mvk_fft_pair *inverse = MVK_r4_cplx_inv_pair(kPoints);
  if (!mvk_valid_pair_ptr(inverse)) return 1;
  inverse->unscaled(work, spectrum, kPoints);
  printf("error there and back: %.2g\n", relative_error(work, samples, 2 * kPoints, 0));
  return 0;
}
