// The crossfade of a gain along a table.
#include "kernels/kernel.h"

using namespace mvk;

void MVK_blk_Lcrossfade_gainLS_setup(mvk_blk_crossfade_state *state, const void * /*coefficients*/,
                                     uint32_t length) {
  state->position = 0;
  state->length = length;
}
MVK_KEEP_COEF(Lcrossfade_gainLS)

MVK_KERNEL(float *, blk_Lcrossfade_gainLS,
           (float *y, mvk_blk_crossfade_state *state, const float *x, const float *table, float s,
            float t)) {
  const float *rising = table + state->position;
  const float *falling_end = table + state->length - state->position;
  counted(block_size, [=]<class V>(std::size_t i) {
    const V falling = load_descending<V>(falling_end - 1 - i);
    const V gain = fma(falling, V(s), t * load<V>(rising + i));
    store(y + i, gain * load<V>(x + i));
  });
  const uint32_t next = state->position + block_size;
  state->position = next < state->length ? next : next - state->length;
  return y;
}
