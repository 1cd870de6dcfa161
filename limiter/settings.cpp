// The limiter's memory, settings and life.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/carve.h"
#include "limiter/state.h"

using namespace mvk;

namespace {

constexpr std::size_t alignment = 32;
constexpr std::size_t slack = alignment - 1;  // for a piece at any address
constexpr std::uint32_t no_rate = 0xFFFFFFFF;

// Room for the record, up to where the hold buffer may begin.
constexpr std::uint64_t record_room = align_up(sizeof(orvane_ht_ztlim_state), alignment) + slack;
static_assert(record_room == 159);

bool limits(const orvane_ht_ztlim_state &s) { return s.enable && !s.hard_clip; }

void clear_delay(orvane_ht_ztlim_state &s) {
  std::fill_n(s.delay, std::size_t{s.max_channels} * s.sub_block, 0.0f);
}

}  // namespace

extern "C" {

const float orvane_ht_ZTLIM_ONE_OVER_256_S = 1 / boost_unit;
const float orvane_ht_ZTLIM_ONE_OVER_256_L = 1 / boost_unit;

const orvane_ht_ztlim_version *orvane_ht_ztlim_get_version() {
  static constexpr orvane_ht_ztlim_version version = {1, 8, 2, {}};
  return &version;
}

// ---- Memory -------------------------------------------------------------------

uint64_t orvane_ht_ztlim_query_memory(unsigned max_channels, uint64_t *state_bytes,
                                      uint64_t *delay_bytes, unsigned sub_block) {
  const sub_block_form *form = find_form(sub_block);
  const std::uint64_t state = record_room + (form ? slack + sizeof(float) * form->hold_length : 0);
  const std::uint64_t delay = slack + sizeof(float) * std::uint64_t{max_channels} * sub_block;
  if (state_bytes && delay_bytes) {
    *state_bytes = state;
    *delay_bytes = delay;
  }
  return state + delay;
}

orvane_ht_ztlim_state *orvane_ht_ztlim_init(unsigned max_channels, unsigned sub_block,
                                            void *state_mem, void *delay_mem) {
  const sub_block_form *form = find_form(sub_block);
  if (!form) return nullptr;

  carver pieces(state_mem);
  auto *const s = pieces.take<orvane_ht_ztlim_state>(1, alignment);
  s->hold_buffer = pieces.take<float>(form->hold_length, alignment);
  carver apart(delay_mem);
  s->delay =
      (delay_mem ? apart : pieces).take<float>(std::size_t{max_channels} * sub_block, alignment);

  s->enable = 0;
  s->peak = 1;
  s->boost = orvane_ht_ZTLIM_ONE_OVER_256_S;
  s->hard_clip = 0;
  s->num_channels = 0;
  s->max_channels = max_channels;
  s->sample_rate = no_rate;
  s->block_size = sub_block;
  s->coefs = nullptr;
  s->window = form->window;
  s->sub_block = sub_block;
  s->hold_length = form->hold_length;
  s->prev_boost = orvane_ht_ZTLIM_ONE_OVER_256_S;
  // num_sub_blocks is left to orvane_ht_ztlim_set_block_size.
  std::fill_n(s->hold_buffer, s->hold_length, 1.0f);
  orvane_ht_ztlim_reset_state(s);
  return s;
}

void orvane_ht_ztlim_reset_state(orvane_ht_ztlim_state *s) {
  s->fast_gain = 1;
  s->slow_gain = 1;
  s->gain = 1;
  s->prev_gain = 1;
  s->last_peak = 0;
  s->hold_index = 0;
  clear_delay(*s);
}

// ---- Settings -----------------------------------------------------------------

// The delay holds what came in while limiting, and is cleared on each way there.

void orvane_ht_ztlim_set_enable(orvane_ht_ztlim_state *s, int enable) {
  const bool limited = limits(*s);
  s->enable = static_cast<std::uint32_t>(enable);
  if (limits(*s) && !limited) clear_delay(*s);
}
int orvane_ht_ztlim_get_enable(const orvane_ht_ztlim_state *s) {
  return static_cast<int>(s->enable);
}

void orvane_ht_ztlim_set_hard_clip(orvane_ht_ztlim_state *s, int hard_clip) {
  const bool limited = limits(*s);
  s->hard_clip = static_cast<std::uint32_t>(hard_clip);
  if (limits(*s) && !limited) clear_delay(*s);
}
int orvane_ht_ztlim_get_hard_clip(const orvane_ht_ztlim_state *s) {
  return static_cast<int>(s->hard_clip);
}

void orvane_ht_ztlim_set_peak(orvane_ht_ztlim_state *s, float peak) { s->peak = peak; }
float orvane_ht_ztlim_get_peak(const orvane_ht_ztlim_state *s) { return s->peak; }

void orvane_ht_ztlim_set_boost(orvane_ht_ztlim_state *s, float prev_boost, float boost) {
  s->prev_boost = prev_boost;
  s->boost = boost;
}
float orvane_ht_ztlim_get_boost(const orvane_ht_ztlim_state *s) { return s->boost; }

int orvane_ht_ztlim_set_sample_rate(orvane_ht_ztlim_state *s, unsigned rate) {
  if (rate == s->sample_rate) return 0;
  const orvane_ht_ztlim_coefs *coefs = find_coefs(*find_form(s->sub_block), rate);
  if (!coefs) return -1;
  s->sample_rate = rate;
  s->coefs = coefs;
  s->slow_gain = 1;
  s->fast_gain = 1;
  return 0;
}
unsigned orvane_ht_ztlim_get_sample_rate(const orvane_ht_ztlim_state *s) { return s->sample_rate; }

int orvane_ht_ztlim_set_block_size(orvane_ht_ztlim_state *s, unsigned frames) {
  if (frames % s->sub_block != 0) return -1;
  s->block_size = frames;
  s->num_sub_blocks = frames / s->sub_block;
  return 0;
}
unsigned orvane_ht_ztlim_get_block_size(const orvane_ht_ztlim_state *s) { return s->block_size; }

int orvane_ht_ztlim_set_num_channels(orvane_ht_ztlim_state *s, unsigned channels) {
  if (channels > s->max_channels) return -1;
  s->num_channels = channels;
  return 0;
}
unsigned orvane_ht_ztlim_get_num_channels(const orvane_ht_ztlim_state *s) {
  return s->num_channels;
}

float orvane_ht_ztlim_get_limiter_gain(const orvane_ht_ztlim_state *s) { return s->gain; }

unsigned orvane_ht_ztlim_get_latency(const orvane_ht_ztlim_state *s) {
  return limits(*s) ? s->sub_block : 0;
}

}  // extern "C"
