// Complete transforms: which radices a length has, and how its passes go to and fro.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "fft/passes.h"

namespace mvk {

// radix4's twiddles of composite lengths are coarse, those of powers of two fine; radix8 goes
// by its own radices and is fine throughout.
enum class family { radix4, radix8 };

// ---- Radices ------------------------------------------------------------------

struct radices {
  int length;
  int count;
  int of[6];  // in the order of the passes
};

inline constexpr radices radix4_radices[] = {
    {12, 2, {4, 3}},
    {15, 2, {5, 3}},
    {16, 2, {4, 4}},
    {20, 2, {4, 5}},
    {24, 2, {8, 3}},
    {30, 2, {6, 5}},
    {32, 2, {8, 4}},
    {36, 3, {4, 3, 3}},
    {40, 2, {8, 5}},
    {45, 3, {5, 3, 3}},
    {48, 3, {4, 3, 4}},
    {60, 3, {4, 5, 3}},
    {64, 3, {4, 4, 4}},
    {72, 3, {8, 3, 3}},
    {80, 3, {4, 4, 5}},
    {90, 3, {6, 3, 5}},
    {96, 3, {8, 3, 4}},
    {120, 3, {8, 3, 5}},
    {128, 3, {8, 4, 4}},
    {144, 4, {4, 3, 3, 4}},
    {160, 3, {8, 4, 5}},
    {180, 4, {4, 3, 3, 5}},
    {192, 4, {4, 4, 4, 3}},
    {240, 4, {4, 3, 4, 5}},
    {256, 4, {4, 4, 4, 4}},
    {288, 4, {8, 3, 3, 4}},
    {320, 4, {4, 4, 4, 5}},
    {360, 4, {8, 3, 3, 5}},
    {384, 4, {8, 3, 4, 4}},
    {480, 4, {8, 3, 4, 5}},
    {512, 4, {8, 4, 4, 4}},
    {576, 5, {4, 3, 3, 4, 4}},
    {640, 4, {8, 4, 4, 5}},
    {720, 5, {4, 3, 3, 4, 5}},
    {768, 5, {4, 4, 4, 4, 3}},
    {960, 5, {4, 3, 4, 4, 5}},
    {1024, 5, {4, 4, 4, 4, 4}},
    {2048, 5, {8, 4, 4, 4, 4}},
    {4096, 6, {4, 4, 4, 4, 4, 4}},
};

inline constexpr radices radix8_radices[] = {
    {64, 2, {8, 8}},         {128, 3, {8, 4, 4}},     {144, 3, {8, 6, 3}},
    {192, 3, {8, 3, 8}},     {240, 3, {8, 6, 5}},     {256, 3, {8, 8, 4}},
    {320, 3, {8, 5, 8}},     {384, 3, {8, 6, 8}},     {512, 3, {8, 8, 8}},
    {576, 4, {8, 3, 3, 8}},  {720, 4, {8, 3, 6, 5}},  {768, 4, {8, 8, 3, 4}},
    {960, 4, {8, 8, 3, 5}},  {1024, 4, {8, 8, 4, 4}}, {2048, 4, {8, 8, 8, 4}},
    {4096, 4, {8, 8, 8, 8}},
};

template <std::size_t n>
constexpr radices find_radices(const radices (&all)[n], int length) {
  std::size_t i = 0;
  while (all[i].length != length) ++i;
  return all[i];
}

// ---- One length's passes ------------------------------------------------------

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

// Of `width` lanes.
template <int width>
struct vector_of;
template <>
struct vector_of<1> {
  using type = float;
};
template <>
struct vector_of<4> {
  using type = f32x4;
};
template <>
struct vector_of<8> {
  using type = f32x8;
};

// Pass i > 0.
template <family F, int N, accuracy A, bool inverse, int i>
inline void run_later_pass(float *out, const float *in) {
  using P = plan<F, N>;
  constexpr int R = P::r.of[i], L = P::L(i), M = L / R, rows = N / L;
  constexpr int In = P::group(i - 1), Out = P::group(i);
  constexpr bool last = i == P::passes - 1, exchange = inverse && last;
  constexpr bool twos = i == 1 && P::by_twos;
  constexpr bool middle = F == family::radix4 && P::power_of_two && !last;
  // Only the radix-4 family's rounding is laid down.
  constexpr bool tangents = F == family::radix8 && R % 4 == 0;

  if constexpr (tangents) {
    using butterfly = std::conditional_t<R == 4, radix4_tangent, radix8_tangent>;
    later_pass<butterfly, typename vector_of<std::min(In, lanes<native>)>::type, In, Out, P::split,
               exchange>(out, in, stage_tangents<L, R, std::min(In, lanes<native>), P::split>, M,
                         rows);
  } else if constexpr (twos) {
    using butterfly = std::conditional_t<middle, radix4_middle<true>, turned_butterfly<R>>;
    second_pass_of_twos<butterfly, Out>(out, in, stage_twiddles<A, L, R, 8, false, true>, rows);
  } else if constexpr (In == 1) {
    later_pass_of_pairs<turned_butterfly<R>, exchange>(out, in, stage_twiddles<A, L, R, 0, false>,
                                                       M, rows);
  } else {
    constexpr int width = P::is_32 ? 4 : std::min(In, lanes<native>);
    using V = vector_of<width>::type;
    using butterfly = std::conditional_t<middle, radix4_middle<false>, turned_butterfly<R>>;
    later_pass<butterfly, V, In, Out, P::split, exchange>(
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
  using V = vector_of<width>::type;
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
  transform_inputs<inverse, scaled>(x, 1.0f / N, y,
                                    [](const auto &a, const auto &b, auto &z) MVK_INLINED_LAMBDA {
                                      if constexpr (N == 4)
                                        four_points(a, b, z);
                                      else
                                        first_butterfly(a, b, z);
                                    });
  for (int p = 0; p < N; ++p) store_elements<1>(dst, p, exchanged_if<inverse>(y[p]));
}

}  // namespace mvk
