// The polyphase filters over one window of one channel.
//
// A sample is four independent lane sums, lane l over the taps 4 v + l, added
// up as (0 + 1) + (2 + 3). The lanes are taken one after another, and the vector
// unit is filled with neighbouring samples: eight registers of them hide the
// latency of the fused multiply-add, and each broadcast coefficient serves
// several.
#pragma once

#include "core/loop.h"
#include "core/simd.h"

namespace mvk {

inline constexpr int history_length = 23;  // samples a window looks back
inline constexpr int phase_slots = 24;     // coefficients of a phase vector

// Samples of one channel and phase in a block, and in its window.
template <int F>
inline constexpr int phase_samples = 256 / F;
template <int F>
inline constexpr int window_length = history_length + phase_samples<F>;

namespace detail {

// Phase 0 takes six vectors of four coefficients; the others have no sixth.
constexpr int taps(int phase) {
  return phase == 0 ? phase_slots : phase_slots - 4;
}

inline constexpr int registers = 8;
using sums = f32x8[registers];

// Adds up what lane(l, acc) leaves in the accumulators of each lane.
template <class Lane>
[[gnu::always_inline]] inline void add_lanes(sums &total, Lane lane) {
  const auto cleared_lane = [&](int l, sums &acc) {
    unrolled<registers>([&](auto r) { acc[r] = splat<f32x8>(0); });
    lane(l, acc);
  };
  sums a, b;
  cleared_lane(0, total);
  cleared_lane(1, a);
  unrolled<registers>([&](auto r) { total[r] = total[r] + a[r]; });
  cleared_lane(2, a);
  cleared_lane(3, b);
  unrolled<registers>([&](auto r) { total[r] = total[r] + (a[r] + b[r]); });
}

inline void store_frames(float *y, f32x8 phase0, f32x8 phase1) {
  const auto frames = interleave(phase1 + phase1, phase0 + phase0);
  store(y, frames.lo);
  store(y + 8, frames.hi);
}

inline void store_frames(float *y, f32x8 phase0, f32x8 phase1, f32x8 phase2, f32x8 phase3) {
  const f32x8 gain = splat<f32x8>(4);
  const auto odd = interleave(phase3 * gain, phase1 * gain);
  const auto even = interleave(phase2 * gain, phase0 * gain);
  const auto first = interleave(odd.lo, even.lo), second = interleave(odd.hi, even.hi);
  store(y, first.lo);
  store(y + 8, first.hi);
  store(y + 16, second.lo);
  store(y + 24, second.hi);
}

}  // namespace detail

// The 256 samples of the higher rate: frame F i + F - 1 - p is F times phase p
// over the window from i on.
template <int F>
inline void interpolate(float *y, const float *window, const float *const *phases) {
  constexpr int per_phase = detail::registers / F;
  for (int i = 0; i < phase_samples<F>; i += 8 * per_phase) {
    detail::sums total;
    // A lane's registers: phase p has those from p * per_phase on.
    detail::add_lanes(total, [&](int l, detail::sums &acc) {
      const float *x = window + i;
      int t = l;
      for (; t < detail::taps(1); t += 4)
        unrolled<per_phase>([&](auto b) {
          const f32x8 samples = load<f32x8>(x + 8 * b + t);
          unrolled<F>([&](auto p) {
            f32x8 &sum = acc[p * per_phase + b];
            sum = fma(splat<f32x8>(phases[p][t]), samples, sum);
          });
        });
      const f32x8 last = splat<f32x8>(phases[0][t]);
      unrolled<per_phase>([&](auto b) { acc[b] = fma(last, load<f32x8>(x + 8 * b + t), acc[b]); });
    });
    unrolled<per_phase>([&](auto b) {
      float *frames = y + F * (i + 8 * b);
      if constexpr (F == 2)
        detail::store_frames(frames, total[b], total[2 * 2 + b]);
      else
        detail::store_frames(frames, total[b], total[2 + b], total[4 + b], total[6 + b]);
    });
  }
}

// The 256 / F samples of the lower rate: each lane runs on through the phases,
// every phase over its own window.
template <int F>
inline void decimate(float *y, const float (&windows)[F][window_length<F>],
                     const float *const *phases) {
  for (int j = 0; j < phase_samples<F>; j += 8 * detail::registers) {
    detail::sums total;
    detail::add_lanes(total, [&](int l, detail::sums &acc) {
      for (int p = 0; p < F; ++p)
        for (int t = l; t < detail::taps(p); t += 4) {
          const f32x8 coefficient = splat<f32x8>(phases[p][t]);
          unrolled<detail::registers>([&](auto r) {
            acc[r] = fma(coefficient, load<f32x8>(windows[p] + j + 8 * r + t), acc[r]);
          });
        }
    });
    unrolled<detail::registers>([&](auto r) { store(y + j + 8 * r, total[r]); });
  }
}

}  // namespace mvk
