/* Splits three bands into 16 sub-bands: where a tone in the lowest band goes, and what the
 * sub-bands of noise add up to. */
#include <mvk_hybrid.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kFrames = 1000, kBands = 3, kSubBands = 16 };

int main(void) {
  uint32_t state, scratch, record;
  MVK_hybrid_analysisCL_query_mem(MVK_HYBRID_MODE_1, &state, &scratch, &record);
  void *a_state = malloc(state), *a_record = malloc(record);
  mvk_hybrid_analysisCL_state *analysis =
      MVK_hybrid_analysisCL_open(MVK_HYBRID_MODE_1, a_state, NULL, a_record);
  MVK_hybrid_synthesisCL_query_mem(MVK_HYBRID_MODE_1, &state, &scratch, &record);
  void *s_record = malloc(record);
  mvk_hybrid_synthesisCL_state *synthesis =
      MVK_hybrid_synthesisCL_open(MVK_HYBRID_MODE_1, NULL, NULL, s_record);

  /* A tone at 5 pi / 8 in band 0, the middle of its third sub-band. */
  float bands[2 * kBands] = {0}, sub_bands[2 * kSubBands];
  for (int i = 0; i < 100; ++i) {
    bands[0] = (float)cos(kPi * 5 / 8 * i);
    bands[1] = (float)sin(kPi * 5 / 8 * i);
    MVK_CLhybrid_analysisCL(analysis, sub_bands, bands);
  }
  int loudest = 0;
  double levels[kSubBands];
  for (int k = 0; k < kSubBands; ++k) {
    levels[k] = hypot(sub_bands[2 * k], sub_bands[2 * k + 1]);
    if (levels[k] > levels[loudest]) loudest = k;
  }
  printf("loudest sub-band: %d\n", loudest);
  printf("its level: %.6f\n", levels[loudest]);

  MVK_hybrid_analysisCL_init(analysis);
  static float in[kFrames], out[kFrames];
  for (int i = 0; i < kFrames; ++i) {
    for (int k = 0; k < 2 * kBands; ++k) bands[k] = noise();
    in[i] = bands[0];
    MVK_CLhybrid_analysisCL(analysis, sub_bands, bands);
    MVK_CLhybrid_synthesisCL(synthesis, bands, sub_bands);
    out[i] = bands[0];
  }
  const int delay = measure_delay(out, in, kFrames, 20);
  printf("delay: %d\n", delay);
  printf("error: %.3g\n", relative_error(out, in, kFrames, delay));
  free(a_state), free(a_record), free(s_record);
  return 0;
}
