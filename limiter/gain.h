// The limiter's gain computer: one update for each sub-block.
#pragma once

#include <bit>
#include <cstdint>

#include "core/simd.h"
#include "limiter/state.h"

namespace mvk {

// Under sustained limiting the slow stage takes over all but this much, about
// -1.5 dB, of the fast one's work.
inline constexpr float slow_threshold = std::bit_cast<float>(0x3F576600u);  // 0.8414
inline constexpr float over_threshold = std::bit_cast<float>(0x3F98209Cu);  // its reciprocal

// The smallest of g and of the last hold_length values that came here.
inline float hold(orvane_ht_ztlim_state &s, float g) {
  float smallest = g;
  for (std::uint32_t i = 0; i < s.hold_length; ++i)
    smallest = lesser_of(smallest, s.hold_buffer[i]);
  s.hold_buffer[s.hold_index] = g;
  s.hold_index = s.hold_index + 1 < s.hold_length ? s.hold_index + 1 : 0;
  return smallest;
}

// Moves the gain on, given the peak of the sub-block that has come in; the one that
// goes out is that before. Each sub-block waits here for the one before, by way of
// slow_gain and one division, so the choices are selections: no branch is mispredicted
// where a signal goes in and out of limiting.
inline void update_gain(orvane_ht_ztlim_state &s, float peak) {
  const orvane_ht_ztlim_coefs &c = *s.coefs;
  const float u = s.slow_gain;

  const float level = (s.last_peak < peak ? peak : s.last_peak) * u;
  s.last_peak = peak;
  const float reciprocal = static_cast<float>(1.0 / static_cast<double>(level));
  const float g = level > s.peak ? reciprocal * s.peak : 1;

  // Attack at once; release towards the smallest gain of late.
  const float m = hold(s, g);
  const float released = fma(s.fast_gain, c.release, fms(c.release, m, m));
  const float attack = g * u;
  const float f = attack < s.gain ? g : released;
  s.prev_gain = s.gain;
  s.gain = lesser_of(attack, s.gain < u * released ? u * released : s.gain);
  s.fast_gain = f;

  s.slow_gain = f < slow_threshold ? fma(u, c.slow_keep, ((f * u) * over_threshold) * c.slow_follow)
                                   : fma(u, c.recover_keep, c.recover_step);
}

}  // namespace mvk
