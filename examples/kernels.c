/* Three kernels over a tone of 1 kHz at 48 kHz: the power by a sum of squares, the difference
 * of neighbours by a filter, and a wait of 100 samples by a delay line. */
#include <mvk_kernels.h>
#include <stdio.h>

#include "measure.h"

enum { kBlock = 32, kSamples = 4800, kDelay = 100 };

int main(void) {
  static float tone_in[kSamples], difference[kSamples], delayed[kSamples];
  for (int i = 0; i < kSamples; ++i) tone_in[i] = (float)sin(2 * kPi * i / 48);

  /* Any count at any address: a flex form. */
  printf("mean square: %.7f\n", mvk_vec_Lmean_sqrLU_flex(tone_in, kSamples));

  /* y[n] = x[n] - x[n - 1], block by block; the state goes on from one to the next. */
  const float taps[2] = {1, -1};
  float state[1];
  MVK_blk_Lfir2L_setup(state);
  for (int i = 0; i < kSamples; i += kBlock) {
    mvk_blk_Lfir2L_flex(difference + i, tone_in + i, taps, state);
  }
  const tone changed = measure_tone(difference + 480, 4320, 1.0 / 48);
  printf("gain of the difference: %.6f\n", changed.level);
  printf("its phase ahead in degrees: %.3f\n", 360 - changed.lag);

  /* The ring: 100 rounded up to 128, one block to write to, one to repeat. */
  static float ring[128 + kBlock + kBlock];
  mvk_blk_delay_state line;
  mvk_blk_delay_setup_flex(&line, ring, kDelay);
  mvk_blk_delay_clear_flex(&line, NULL, 128 + kBlock + kBlock);
  for (int i = 0; i < kSamples; i += kBlock) {
    mvk_blk_delayL_flex(&line, tone_in + i);
    mvk_blk_LdelayU_flex(&line, delayed + i, kDelay);
  }
  printf("error of the delay: %g\n", relative_error(delayed, tone_in, kSamples, kDelay));
  return 0;
}
