/* Takes two interleaved channels from 192 to 48 kHz: 1 kHz in the left one, which stays, and
 * 30 kHz in the right one, which the new rate has no room for. */
#include <orvane_resampler.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kFactor = 4, kChannels = 2, kBlocks = 50 };

int main(void) {
  void *arena = malloc(orvane_resampler_query(kFactor, kChannels, 0));
  orvane_resampler *resampler = orvane_resampler_init(kFactor, kChannels, 0, arena);
  if (!resampler) return 1;
  uint64_t in_frames, out_frames;
  orvane_resampler_get_processing_block_size(resampler, &in_frames, &out_frames);
  printf("frames of a block: %d\n", (int)in_frames);

  static float left[kBlocks * 64], right[kBlocks * 64];
  for (int block = 0; block < kBlocks; ++block) {
    float samples[256][kChannels], result[64][kChannels];
    for (int i = 0; i < (int)in_frames; ++i) {
      const double seconds = (block * 256 + i) / 192000.0;
      samples[i][0] = (float)sin(2 * kPi * 1000 * seconds);
      samples[i][1] = (float)sin(2 * kPi * 30000 * seconds);
    }
    void *from[] = {&samples[0][0], &samples[0][1]}, *to[] = {&result[0][0], &result[0][1]};
    orvane_stream_desc in = {kChannels, kChannels, DT_LONG, from};
    orvane_stream_desc out = {kChannels, kChannels, DT_LONG, to};
    orvane_resampler_downsample(&out, &in, resampler);
    for (int i = 0; i < (int)out_frames; ++i) {
      left[block * 64 + i] = result[i][0];
      right[block * 64 + i] = result[i][1];
    }
  }

  /* A period of 1 kHz is 48 frames now. 30 kHz would appear at 48 - 30 = 18 kHz. */
  const tone kept = measure_tone(left + 480, 2400, 1000.0 / 48000);
  const tone alias = measure_tone(right + 480, 2400, 18000.0 / 48000);
  printf("gain at 1 kHz: %.6f\n", kept.level);
  printf("delay in frames: %.4f\n", kept.lag / 360 * 48);
  printf("latency told: %u\n", orvane_resampler_get_output_latency(resampler));
  printf("dB at 30 kHz: %.2f\n", 20 * log10(alias.level));
  free(arena);
  return 0;
}
