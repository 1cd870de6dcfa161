// The delay line: a ring of blocks with a mirror of its first block at its end.
#include <cstring>

#include "kernels/kernel.h"

using namespace mvk;

static_assert(offsetof(mvk_blk_delay_state, position) == 0);
static_assert(offsetof(mvk_blk_delay_state, length) == 4);
static_assert(offsetof(mvk_blk_delay_state, buffer) == 8);

namespace {

constexpr std::size_t block_bytes = block_size * sizeof(float);

void clear(float *from, const float *to) {
  std::memset(from, 0, static_cast<std::size_t>(to - from) * sizeof(float));
}

}  // namespace

MVK_KERNEL(void, blk_delay_setup, (mvk_blk_delay_state * state, float *buffer, uint32_t d)) {
  state->position = 0;
  state->length = ((d + 31) & ~31u) + 32;
  state->buffer = buffer;
}

MVK_KERNEL(void, blk_delayL, (mvk_blk_delay_state * state, const float *x)) {
  const uint32_t next = state->position + block_size;
  state->position = next == state->length ? 0 : next;
  std::memmove(state->buffer + state->position, x, block_bytes);
  if (state->position == 0) std::memcpy(state->buffer + state->length, state->buffer, block_bytes);
}

float *MVK_blk_refLdelayU(const mvk_blk_delay_state *state, uint32_t d) {
  const uint32_t start = state->position - d + (state->position >= d ? 0 : state->length);
  return state->buffer + start;
}

MVK_KERNEL(float *, blk_LdelayU, (const mvk_blk_delay_state *state, float *y, uint32_t d)) {
  std::memcpy(y, MVK_blk_refLdelayU(state, d), block_bytes);
  return y;
}

MVK_KERNEL(float *, blk_delay_clear, (mvk_blk_delay_state * state, float *end, uint32_t n)) {
  if (!end) end = state->buffer + state->length + block_size;
  if (end - state->buffer < static_cast<std::ptrdiff_t>(n)) {
    if (end > state->buffer) clear(state->buffer, end);
    return nullptr;
  }
  clear(end - n, end);
  return end - n;
}
