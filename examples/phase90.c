/* Shifts a sine of 1 kHz at 48 kHz by 90 degrees, in place. */
#include <phase90_hilbert.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kFrame = 1024, kFrames = 48, kSamples = kFrame * kFrames, kDelay = 1280 };

int main(void) {
  unsigned state, work, history;
  if (getRequiredBufferSize_Phase90Hilbert(kFrame, &state, &work, &history)) return 1;
  void *memory[] = {malloc(state), malloc(work), malloc(history)};
  Phase90Hilbert_state *shifter;
  if (init_Phase90Hilbert(&shifter, kFrame, memory[0], memory[1], memory[2])) return 1;

  static float samples[kSamples];
  for (int i = 0; i < kSamples; ++i) samples[i] = (float)sin(2 * kPi * i / 48);
  for (int i = 0; i < kFrames; ++i) process_Phase90Hilbert(shifter, samples + i * kFrame);

  /* Whole periods behind the delay, which isn't one. */
  const tone shifted = measure_tone(samples + kDelay + 4800, 38400, 1.0 / 48);
  printf("level: %.5f\n", shifted.level);
  printf("lag in degrees: %.2f\n", shifted.lag);
  for (int i = 0; i < 3; ++i) free(memory[i]);
  return 0;
}
