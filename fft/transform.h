// Complete transforms: the passes of a length, and how they go to and fro.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "fft/passes.h"
#include "fft/radices.h"

namespace mvk {

template <family F, int N>
struct plan {
  static constexpr radices r =
      F == family::radix4 ? find_radices(radix4_radices, N) : find_radices(radix8_radices, N);
  static constexpr int passes = r.count;
  static constexpr bool power_of_two = (N & (N - 1)) == 0;

  // Points of a row after pass i.
  static constexpr int L(int i) {
    int l = 1;
    for (int j = 0; j <= i; ++j) l *= r.of[j];
    return l;
  }

  // Where eight lanes would do a whole pass in one step, that pass takes four: a radix-4 kernel
  // of 32 and a radix-8 kernel of 64 points have no business in place, and callers shall not
  // come to rely on it. At 32 that is either pass, and the second reads groups of eight.
  static constexpr bool is_32 = F == family::radix4 && N == 32;
  static constexpr bool starts_on_four_lanes = is_32 || (F == family::radix8 && N == 64);

  // Pass 1 has rows of 4 by twos in vectors of eight.
  static constexpr bool by_twos = lanes<native> == 8 && r.of[0] == 4 && passes > 1 &&
                                  N / L(1) % 4 == 0;

  // Groups of eight have their elements in split order.
  static constexpr bool split = lanes<native> == 8 && r.of[0] == 8 && !is_32;

  // Size of the groups that pass i leaves.
  static constexpr int group(int i) {
    const int l = L(i);
    if (i == passes - 1) return 1;
    if (i == 0 && (by_twos || is_32)) return 8;
    return l % lanes<native> == 0 ? lanes<native> : l % 4 == 0 ? 4 : 1;
  }
};

template <int R>
struct turned_butterfly;
template <>
struct turned_butterfly<3> : radix3_turned {};
template <>
struct turned_butterfly<4> : radix4_turned {};
template <>
struct turned_butterfly<5> : radix5_turned {};
template <>
struct turned_butterfly<6> : radix6_turned {};

// Pass i > 0.
template <family F, int N, accuracy A, bool inverse, int i>
inline void run_later_pass(float *out, const float *in) {
  using P = plan<F, N>;
  constexpr int R = P::r.of[i], L = P::L(i), M = L / R, rows = N / L;
  constexpr int In = P::group(i - 1), Out = P::group(i);
  constexpr bool last = i == P::passes - 1, exchange = inverse && last;
  constexpr bool twos = i == 1 && P::by_twos;
  constexpr bool middle = F == family::radix4 && P::power_of_two && !last;
  constexpr int width = P::is_32 ? 4 : std::min(In, lanes<native>);
  // Only the radix-4 family's rounding is laid down.
  constexpr bool rounding_is_free = F == family::radix8 && R % 4 == 0;

  if constexpr (rounding_is_free && fma_overwrites_addend) {
    using butterfly = std::conditional_t<R == 4, radix4_plain, radix8_plain>;
    later_pass<butterfly, In, Out, width, P::split, exchange>(
        out, in, stage_twiddles<A, L, R, width, P::split>, M, rows);
  } else if constexpr (rounding_is_free) {
    using butterfly = std::conditional_t<R == 4, radix4_tangent, radix8_tangent>;
    later_pass<butterfly, In, Out, width, P::split, exchange>(
        out, in, stage_tangents<L, R, width, P::split>, M, rows);
  } else if constexpr (twos) {
    using butterfly = std::conditional_t<middle, radix4_middle<true>, turned_butterfly<R>>;
    second_pass_of_twos<butterfly, Out>(out, in, stage_twiddles<A, L, R, 8, false, true>, rows);
  } else if constexpr (In == 1) {
    later_pass_of_pairs<turned_butterfly<R>, exchange>(out, in, stage_twiddles<A, L, R, 0, false>,
                                                       M, rows);
  } else {
    using butterfly = std::conditional_t<middle, radix4_middle<false>, turned_butterfly<R>>;
    later_pass<butterfly, In, Out, width, P::split, exchange>(
        out, in, stage_twiddles<A, L, R, width, P::split>, M, rows);
  }
}

// dst = the transform of src. The passes after the first go between dst and scratch, which may
// be src, and end in dst; src may be dst, unless scratch is it as well.
template <family F, int N, accuracy A, bool inverse, bool scaled>
inline void transform(float *dst, const float *src, float *scratch) {
  using P = plan<F, N>;
  constexpr int passes = P::passes, R = P::r.of[0], rows = N / R;
  constexpr bool even = passes % 2 == 0;
  constexpr int width = P::starts_on_four_lanes ? 4
                        : rows >= lanes<native> ? lanes<native>
                        : rows >= 4             ? 4
                                                : 1;
  using V = typename vector_of<width>::type;
  constexpr float scale = 1.0f / N;

  // The first pass can't work in place, unless it is one step, and the last one should not have
  // to.
  constexpr bool one_step = rows == width;
  const bool to_scratch = src == dst || (even && (one_step || scratch != src));
  float *const places[2] = {to_scratch ? scratch : dst, to_scratch ? dst : scratch};
  const auto after = [&](int i) { return i == passes - 1 ? dst : places[i % 2]; };

  first_pass<R, inverse, scaled, V, P::group(0), P::split>(after(0), src, N, scale);
  [&]<int... i>(std::integer_sequence<int, i...>) {
    (run_later_pass<F, N, A, inverse, i + 1>(after(i + 1), after(i)), ...);
  }
  (std::make_integer_sequence<int, passes - 1>{});
}

// The lengths of one butterfly, which may be in place.
template <int N, bool inverse, bool scaled>
inline void transform_at_once(float *dst, const float *src) {
  cpx<float> x[N], y[N];
  for (int m = 0; m < N; ++m) x[m] = {src[2 * m], src[2 * m + 1]};
  transform_inputs<inverse, scaled, true>(x, 1.0f / N, y);
  for (int p = 0; p < N; ++p) store_elements<1>(dst, p, exchanged_if<inverse>(y[p]));
}

}  // namespace mvk
