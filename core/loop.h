// Loops over samples, with their tails.
#pragma once

#include <cstddef>
#include <utility>

#include "core/simd.h"

namespace mvk {

// Runs body(k) for k from 0 to N - 1 as straight code, k being a constant, so
// that arrays indexed by k stay in registers.
template <class Body, int... K>
[[gnu::always_inline]] inline void unrolled(Body body, std::integer_sequence<int, K...>) {
  (body(std::integral_constant<int, K>{}), ...);
}
template <int N, class Body>
[[gnu::always_inline]] inline void unrolled(Body body) {
  unrolled(body, std::make_integer_sequence<int, N>{});
}

// As `counted` below, but for what is left over of four: n without it is returned.
template <class Widest = f32x8, class Body>
[[gnu::always_inline]] inline std::size_t counted_fours(std::size_t n, Body body) {
  std::size_t i = 0;
  if constexpr (lanes<Widest> == 8) {
    for (; i + 32 <= n; i += 32)
      unrolled<4>([&](auto k) { body.template operator()<f32x8>(i + 8 * k); });
    for (; i + 8 <= n; i += 8) body.template operator()<f32x8>(i);
  }
  for (; i + 4 <= n; i += 4) body.template operator()<f32x4>(i);
  return i;
}

// Runs body.operator()<V>(i) over samples i to i + lanes<V> - 1 until n samples
// are done: in eights, then in fours, then one at a time, beginning with the
// widest that is asked for. No sample is visited twice, so a body may work in
// place. Four eights make a round, so that the counting of a short body's loop
// doesn't bound it.
//
//     counted(n, [&]<class V>(size_t i) { store(y + i, load<V>(x + i) * g); });
template <class Widest = f32x8, class Body>
[[gnu::always_inline]] inline void counted(std::size_t n, Body body) {
  std::size_t i = 0;
  if constexpr (lanes<Widest> >= 4) i = counted_fours<Widest>(n, body);
  for (; i < n; ++i) body.template operator()<float>(i);
}

}  // namespace mvk
