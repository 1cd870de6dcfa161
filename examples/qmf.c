/* A complex bank of 64 bands: in which band a tone of 1 kHz at 48 kHz is, and what comes back
 * from noise. */
#include <mvk_qmf.h>
#include <stdio.h>
#include <stdlib.h>

#include "measure.h"

enum { kBands = 64, kOrder = 5, kSlots = 200, kSamples = kSlots * kBands };

int main(void) {
  uint32_t state, scratch, record;
  MVK_qmf_analysisL_query_mem(kBands, kOrder, &state, &scratch, &record);
  void *memory[] = {malloc(state), malloc(scratch), malloc(record), NULL, NULL, NULL};
  mvk_qmf_analysisL_state *analysis = mvk_qmf_analysisL_open(
      kBands, kSlots, MVK_TWIDDLE_NONE, kOrder, mvk_qmf_filter_coeff_P5_p64orv301_vec_ana,
      memory[0], memory[1], memory[2]);
  MVK_qmf_synthesisL_query_mem(kBands, kOrder, &state, &scratch, &record);
  for (int i = 0; i < 3; ++i) memory[3 + i] = malloc(i == 0 ? state : i == 1 ? scratch : record);
  mvk_qmf_synthesisL_state *synthesis = mvk_qmf_synthesisL_open(
      kBands, kSlots, MVK_TWIDDLE_NONE, kOrder, mvk_qmf_filter_coeff_P5_p64orv301_vec_syn,
      memory[3], memory[4], memory[5]);

  static float samples[kSamples], result[kSamples], bands[kSlots][2 * kBands], *slots[kSlots];
  for (int i = 0; i < kSlots; ++i) slots[i] = bands[i];

  for (int i = 0; i < kSamples; ++i) samples[i] = (float)sin(2 * kPi * i / 48);
  MVK_CLqmf_analysisL(analysis, slots, samples);
  const float *last = bands[kSlots - 1];
  int loudest = 0;
  for (int k = 1; k < kBands; ++k) {
    if (hypot(last[2 * k], last[2 * k + 1]) > hypot(last[2 * loudest], last[2 * loudest + 1])) {
      loudest = k;
    }
  }
  printf("loudest band: %d\n", loudest);

  MVK_qmf_analysisL_init(analysis);
  for (int i = 0; i < kSamples; ++i) samples[i] = noise();
  MVK_CLqmf_analysisL(analysis, slots, samples);
  MVK_Lqmf_synthesisCL(synthesis, result, (const float *const *)slots);
  const int delay = measure_delay(result, samples, kSamples, 640);
  printf("delay: %d\n", delay);
  printf("error: %.3g\n", relative_error(result, samples, kSamples, delay));
  for (int i = 0; i < 6; ++i) free(memory[i]);
  return 0;
}
