// The limiter's state record and what hangs on the length of its sub-blocks.
#pragma once

#include <cstdint>

#include "orvane_ht_ztlim.h"

struct orvane_ht_ztlim_state {
  std::uint32_t enable;
  float peak;
  float boost;
  std::uint32_t hard_clip;
  std::uint32_t num_channels;
  std::uint32_t max_channels;
  std::uint32_t sample_rate;
  std::uint32_t block_size;
  float *hold_buffer;  // the last hold_length required gains, a ring
  const orvane_ht_ztlim_coefs *coefs;
  const float *window;
  std::uint32_t sub_block;  // frames per gain update, and of look-ahead
  float last_peak;          // of the sub-block before
  float prev_gain;          // where the cross-fade begins
  std::uint32_t hold_index;
  std::uint32_t hold_length;
  float slow_gain;
  float gain;
  float fast_gain;
  float *delay;  // one run of sub_block samples for each of max_channels
  std::uint32_t num_sub_blocks;
  float prev_boost;
};
static_assert(sizeof(orvane_ht_ztlim_state) == 104);

namespace mvk {

// Unity gain is a boost of 1/256: this comes last, on every sample.
inline constexpr float boost_unit = 256;

// What goes with a length of sub-blocks.
struct sub_block_form {
  std::uint32_t frames, hold_length;
  const float *window;
  const orvane_ht_ztlim_coefs *const *coefs;  // by the index of the sample rate
};

// Null for a length that has none.
const sub_block_form *find_form(std::uint32_t sub_block);

// The time constants for a sample rate, or null where it isn't served.
const orvane_ht_ztlim_coefs *find_coefs(const sub_block_form &form, std::uint32_t sample_rate);

}  // namespace mvk
