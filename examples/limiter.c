/* Holds a tone at a peak of 0.5: first at a quarter, which passes untouched, then at 4. */
#include <orvane_ht_ztlim.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kSubBlock = 64, kFrames = 1024, kBlocks = 96 };

/* The highest sample of `blocks` blocks of a tone of 1 kHz, and the output's. */
static float highest(orvane_ht_ztlim_state *limiter, float amplitude, int blocks) {
  float samples[kFrames], result[kFrames], peak = 0;
  float *in[] = {samples};
  float *out[] = {result};
  for (int block = 0; block < blocks; ++block) {
    for (int i = 0; i < kFrames; ++i) {
      samples[i] = amplitude * (float)sin(2 * kPi * (block * kFrames + i) / 48);
    }
    orvane_ht_ztlim_process(limiter, out, in, 1, 1);
    for (int i = 0; i < kFrames; ++i) peak = fmaxf(peak, fabsf(result[i]));
  }
  return peak;
}

int main(void) {
  void *memory = malloc(orvane_ht_ztlim_query_memory(1, NULL, NULL, kSubBlock));
  orvane_ht_ztlim_state *limiter = orvane_ht_ztlim_init(1, kSubBlock, memory, NULL);
  if (!limiter || orvane_ht_ztlim_set_num_channels(limiter, 1) ||
      orvane_ht_ztlim_set_sample_rate(limiter, 48000) ||
      orvane_ht_ztlim_set_block_size(limiter, kFrames)) {
    return 1;
  }
  orvane_ht_ztlim_set_peak(limiter, 0.5f);
  orvane_ht_ztlim_set_enable(limiter, 1);
  printf("delay in frames: %u\n", orvane_ht_ztlim_get_latency(limiter));

  printf("highest of a quiet tone: %.7f\n", highest(limiter, 0.25f, kBlocks));
  printf("gain: %.7f\n", orvane_ht_ztlim_get_limiter_gain(limiter));

  printf("highest of a loud tone: %.7f\n", highest(limiter, 4, kBlocks));
  printf("gain then: %.7f\n", orvane_ht_ztlim_get_limiter_gain(limiter));
  free(memory);
  return 0;
}
