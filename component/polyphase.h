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

// Vectors of four coefficients: a sixth only phase 0 has.
inline constexpr int first_phase_vectors = phase_slots / 4;
inline constexpr int further_phase_vectors = first_phase_vectors - 1;

// A lane of as many neighbouring samples as keep the unit busy.
inline constexpr int registers = 8;

struct sums {
  f32x8 r[registers];
};

inline sums zero() {
  sums a;
  unrolled<registers>([&](auto i) { a.r[i] = f32x8(0); });
  return a;
}

inline sums operator+(sums a, sums b) {
  unrolled<registers>([&](auto i) { a.r[i] = a.r[i] + b.r[i]; });
  return a;
}

inline void store_frames(float *y, f32x8 phase0, f32x8 phase1) {
  const auto frames = interleave(phase1 + phase1, phase0 + phase0);
  store(y, frames.lo);
  store(y + 8, frames.hi);
}

inline void store_frames(float *y, f32x8 phase0, f32x8 phase1, f32x8 phase2, f32x8 phase3) {
  const f32x8 gain = f32x8(4);
  const auto odd = interleave(phase3 * gain, phase1 * gain);
  const auto even = interleave(phase2 * gain, phase0 * gain);
  const auto first = interleave(odd.lo, even.lo), second = interleave(odd.hi, even.hi);
  store(y, first.lo);
  store(y + 8, first.hi);
  store(y + 16, second.lo);
  store(y + 24, second.hi);
}

// One phase of a lane of the lower rate: register r takes vector v of the
// coefficients over the window from 8 r + 4 v on. Walking the window by fours,
// each load serves all the registers that want it.
template <int vectors>
[[gnu::always_inline]] inline void add_phase(sums &acc, const float *window, const float *phase) {
  f32x8 h[vectors];
  unrolled<vectors>([&](auto v) { h[v] = f32x8(phase[4 * v]); });
  unrolled<2 * (registers - 1) + vectors>([&](auto k) {
    const f32x8 samples = load<f32x8>(window + 4 * k);
    unrolled<registers>([&](auto r) {
      constexpr int v = k - 2 * r;
      if constexpr (v >= 0 && v < vectors) acc.r[r] = fma(h[v], samples, acc.r[r]);
    });
  });
}

}  // namespace detail

// The F n samples of the higher rate for n, a multiple of 32, of the lower: frame
// F i + F - 1 - p is F times phase p over the window from i on.
template <int F>
inline void interpolate(float *y, const float *window, const float *const *phases, int n) {
  using namespace detail;
  constexpr int per_phase = registers / F;  // phase p has those from p * per_phase on
  for (int i = 0; i < n; i += 8 * per_phase) {
    const auto lane = [&](int l) __attribute__((always_inline)) {
      const float *x = window + i;
      sums acc = zero();
      int t = l;
      for (; t < 4 * further_phase_vectors; t += 4) {
        f32x8 h[F];
        unrolled<F>([&](auto p) { h[p] = f32x8(phases[p][t]); });
        unrolled<per_phase>([&](auto b) {
          const f32x8 samples = load<f32x8>(x + 8 * b + t);
          unrolled<F>([&](auto p) {
            f32x8 &sum = acc.r[p * per_phase + b];
            sum = fma(h[p], samples, sum);
          });
        });
      }
      unrolled<per_phase>([&](auto b) {
        acc.r[b] = fma(f32x8(phases[0][t]), load<f32x8>(x + 8 * b + t), acc.r[b]);
      });
      return acc;
    };
    const sums y_i = (lane(0) + lane(1)) + (lane(2) + lane(3));
    unrolled<per_phase>([&](auto b) {
      float *frames = y + F * (i + 8 * b);
      if constexpr (F == 2)
        store_frames(frames, y_i.r[b], y_i.r[4 + b]);
      else
        store_frames(frames, y_i.r[b], y_i.r[2 + b], y_i.r[4 + b], y_i.r[6 + b]);
    });
  }
}

// Deals 256 contiguous samples out to the F phases.
inline void split_phases(float (&phases)[2][window_length<2>], const float *x) {
  for (int i = 0; i < phase_samples<2>; i += 8) {
    const float *from = x + 2 * i;
    const auto both = deinterleave(load<f32x8>(from), load<f32x8>(from + 8));
    store(phases[0] + history_length + i, both.lo);
    store(phases[1] + history_length + i, both.hi);
  }
}

inline void split_phases(float (&phases)[4][window_length<4>], const float *x) {
  for (int i = 0; i < phase_samples<4>; i += 8) {
    const float *from = x + 4 * i;
    const auto first = deinterleave(load<f32x8>(from), load<f32x8>(from + 8));
    const auto second = deinterleave(load<f32x8>(from + 16), load<f32x8>(from + 24));
    const auto even = deinterleave(first.lo, second.lo);
    const auto odd = deinterleave(first.hi, second.hi);
    store(phases[0] + history_length + i, even.lo);
    store(phases[1] + history_length + i, odd.lo);
    store(phases[2] + history_length + i, even.hi);
    store(phases[3] + history_length + i, odd.hi);
  }
}

// The 256 / F samples of the lower rate: each lane runs on through the phases,
// every phase over its own window.
template <int F>
inline void decimate(float *y, const float (&windows)[F][window_length<F>],
                     const float *const *phases) {
  using namespace detail;
  for (int j = 0; j < phase_samples<F>; j += 8 * registers) {
    const auto lane = [&](int l) __attribute__((always_inline)) {
      sums acc = zero();
      add_phase<first_phase_vectors>(acc, windows[0] + j + l, phases[0] + l);
      for (int p = 1; p < F; ++p)
        add_phase<further_phase_vectors>(acc, windows[p] + j + l, phases[p] + l);
      return acc;
    };
    const sums y_j = (lane(0) + lane(1)) + (lane(2) + lane(3));
    unrolled<registers>([&](auto b) { store(y + j + 8 * b, y_j.r[b]); });
  }
}

}  // namespace mvk
