// What MFB analysis and synthesis share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/carve.h"
#include "core/simd.h"
#include "fft/forward_pair.h"

namespace mvk {

inline constexpr int mfb_taps = 10, mfb_stages = 9;

// Tap j of samples k, k + 1 and so on; taps stand in groups of four samples.
template <class V>
MVK_INLINE V load_tap(const float *prototype, int j, std::size_t k) {
  const float *p = prototype + 4 * mfb_taps * (k / 4) + 4 * j;
  if constexpr (lanes<V> == 8)
    return both(load<f32x4>(p), load<f32x4>(p + 4 * mfb_taps));
  else if constexpr (lanes<V> == 4)
    return load<V>(p);
  else
    return p[k % 4];
}

// A record in the caller's memory, with nine blocks of M samples for each channel.
template <class Record>
Record *mfb_place(void *mem, std::uint32_t channels, std::uint32_t bands) {
  carver memory(mem);
  auto *const record = memory.take<Record>(1, 32);
  record->channel_history = memory.take<float *>(channels, 32);
  for (std::uint32_t c = 0; c < channels; ++c) {
    record->channel_history[c] = memory.take<float>(mfb_stages * bands, 32);
    std::fill_n(record->channel_history[c], mfb_stages * bands, 0.0f);
  }
  record->pair = find_forward_pair(bands);
  return record;
}

// Bytes for that, wherever the memory begins.
template <class Record>
constexpr std::uint32_t mfb_bytes(std::uint32_t channels, std::uint32_t bands) {
  const std::size_t slack = 31;
  const std::size_t channel = sizeof(float *) + slack + mfb_stages * sizeof(float) * bands;
  return static_cast<std::uint32_t>(slack + sizeof(Record) + slack + channel * channels);
}

// A slot before its transform and behind it.
constexpr std::uint32_t mfb_scratch_bytes(std::uint32_t bands) {
  return static_cast<std::uint32_t>(4 * sizeof(float) * bands + 31);
}

}  // namespace mvk
