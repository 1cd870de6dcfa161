// What the QMF banks share: their windows, and the choice of tables and transforms.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/carve.h"
#include "fft/forward_pair.h"
#include "mvk_qmf.h"

namespace mvk {

// Blocks of M samples that a bank remembers.
constexpr std::uint32_t history_blocks(std::uint32_t order) { return 2 * order - 1; }

constexpr std::size_t record_alignment = 8, memory_alignment = 32;

// The answers of the queries. Short banks are asked for 64 bands or for fewer.
struct sizes {
  std::uint32_t state, scratch;
};
constexpr std::uint32_t long_size(std::uint32_t bands) { return bands <= 64 ? bands : 32; }
constexpr std::uint32_t short_size(std::uint32_t bands) { return bands == 64 ? 64 : 32; }

// `block_extra` bytes go with each block of history.
constexpr sizes find_sizes(std::uint32_t bands, std::uint32_t order, std::size_t block_extra) {
  const std::size_t slack = memory_alignment - 1, blocks = history_blocks(order & 3 ? 5 : 4);
  return {static_cast<std::uint32_t>(slack + blocks * (bands * sizeof(float) + block_extra)),
          static_cast<std::uint32_t>(slack + 4 * bands * sizeof(float))};
}

// A cleared record with its memory.
template <class Record>
Record *place(void *state_mem, void *scratch_mem, void *record_mem) {
  auto *const record = carver(record_mem).take<Record>(1, record_alignment);
  *record = {};
  record->history = carver(state_mem).take<float>(1, memory_alignment);
  record->scratch = carver(scratch_mem).take<float>(1, memory_alignment);
  return record;
}

// The table that turns complex bands, or null.
const float *find_rotation(std::uint32_t bands, std::uint32_t twiddle_mode);

// What a real bank transforms its bands with, each null where there is none.
struct cosine_transform {
  const mvk_fft_pair *pair;
  const float *twiddle;
};
cosine_transform find_cosine_transform(std::uint32_t bands);

// Long records of 48 bands are given the transform of 32, short ones none. Neither makes a real
// bank of 48 bands.
constexpr std::uint32_t long_transform(std::uint32_t bands) { return bands == 48 ? 32 : bands; }

// mvk_cos_<M>_full and mvk_cos_<M>_full_scl, of 32 bands where M has none.
struct window_modulation {
  const float *full, *scaled;
};
window_modulation find_window_modulation(std::uint32_t bands);

// The fields that all records have, but for windows and memory.
template <class Record>
void configure(Record &r, std::uint32_t bands, std::uint32_t slots, std::uint32_t twiddle_mode,
               std::uint32_t order, const float *prototype, cosine_transform transform) {
  r.bands = bands;
  r.prototype = prototype;
  r.order = order;
  r.slots = slots;
  r.slot_increment = bands;
  r.history_length = history_blocks(order) * bands;
  r.twiddle_mode = twiddle_mode;
  r.rotation = find_rotation(bands, twiddle_mode);
  r.pair_full = find_forward_pair(bands);
  r.pair_half = transform.pair;
  r.dct_twiddle = transform.twiddle;
}

template <class Record>
void clear_history(Record &r) {
  std::fill_n(r.history, r.history_length, 0.0f);
}

}  // namespace mvk
