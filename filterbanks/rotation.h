// Tables of pairs (c1, c2) by fours.
#pragma once

#include <cstddef>

#include "core/complex.h"

namespace mvk {

// Pairs j, j + 1 and so on, one in each lane: c1 + i c2.
template <class V>
MVK_INLINE cpx<V> load_rotation(const float *table, std::size_t j) {
  if constexpr (lanes<V> == 8) {
    const float *p = table + 2 * j;
    return {both(load<f32x4>(p), load<f32x4>(p + 8)),
            both(load<f32x4>(p + 4), load<f32x4>(p + 12))};
  } else if constexpr (lanes<V> == 4) {
    const float *p = table + 2 * j;
    return {load<V>(p), load<V>(p + 4)};
  } else {
    const float *p = table + 8 * (j / 4) + j % 4;
    return {p[0], p[4]};
  }
}

}  // namespace mvk
