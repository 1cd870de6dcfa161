/* Two channels through one bank of 64 bands and back: noise, and the same at half the level. */
#include <mvk_mfb.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kBands = 64, kChannels = 2, kSlots = 200, kSamples = kSlots * kBands };

int main(void) {
  void *a_memory = malloc(MVK_mfb_p10km_analysisL_query_mem(kChannels, 0, kBands));
  void *s_memory = malloc(MVK_mfb_p10km_synthesisCL_query_mem(kChannels, 0, kBands));
  mvk_mfb_p10km_analysisL_state *analysis =
      MVK_CLmfb_p10km_analysisL_init(kChannels, 0, kBands, a_memory);
  mvk_mfb_p10km_synthesisCL_state *synthesis =
      MVK_Lmfb_p10km_synthesisCL_init(kChannels, 0, kBands, s_memory);
  void *scratch = malloc(MVK_mfb_p10km_analysisL_query_scratch(kChannels, 0, kBands));
  void *s_scratch = malloc(MVK_mfb_p10km_synthesisCL_query_scratch(kChannels, 0, kBands));

  static float samples[kChannels][kSamples], result[kChannels][kSamples];
  static float bands[kChannels][kSlots][2 * kBands];
  /* Of each slot a row of pointers, one for each channel. */
  static const float *in[kSlots][kChannels], *mid_in[kSlots][kChannels];
  static float *mid[kSlots][kChannels], *out[kSlots][kChannels];
  const float *const *in_slots[kSlots], *const *mid_in_slots[kSlots];
  float *const *mid_slots[kSlots], *const *out_slots[kSlots];
  for (int s = 0; s < kSlots; ++s) {
    for (int c = 0; c < kChannels; ++c) {
      in[s][c] = samples[c] + s * kBands;
      out[s][c] = result[c] + s * kBands;
      mid_in[s][c] = mid[s][c] = bands[c][s];
    }
    in_slots[s] = in[s], mid_slots[s] = mid[s], mid_in_slots[s] = mid_in[s], out_slots[s] = out[s];
  }

  for (int i = 0; i < kSamples; ++i) samples[1][i] = (samples[0][i] = noise()) / 2;
  MVK_CLmfb_p10km_analysisL(analysis, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E, scratch, kChannels,
                            kSlots, kBands, mid_slots, in_slots);
  MVK_Lmfb_p10km_synthesisCL_symmetric(synthesis, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E,
                                       s_scratch, kChannels, kSlots, kBands, out_slots,
                                       mid_in_slots);
  const int delay = measure_delay(result[0], samples[0], kSamples, 640);
  printf("delay: %d\n", delay);
  printf("error: %.3g\n", relative_error(result[0], samples[0], kSamples, delay));
  printf("error of channel 2: %.3g\n", relative_error(result[1], samples[1], kSamples, delay));
  free(a_memory), free(s_memory), free(scratch), free(s_scratch);
  return 0;
}
