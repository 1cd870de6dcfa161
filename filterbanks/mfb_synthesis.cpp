// MFB synthesis: per slot and channel a transform, a turn, and a window into the delay line.
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "filterbanks/mfb.h"
#include "filterbanks/reorder.h"
#include "filterbanks/rotation.h"
#include "mvk_mfb.h"

using namespace mvk;

using state = mvk_mfb_p10km_synthesisCL_state;
static_assert(sizeof(state) == 16);

namespace {

// ---- What the functions differ by ---------------------------------------------

// The two streams that meet the taps, from the turned bins.
enum class streams { re, minus_re, im, minus_im };

template <streams S, class V>
MVK_INLINE V stream(cpx<V> z) {
  if constexpr (S == streams::re) return z.re;
  if constexpr (S == streams::minus_re) return -z.re;
  if constexpr (S == streams::im) return z.im;
  return -z.im;
}

// With v meeting odd terms and u even ones, a term d of the window is
//
//     sign(d) c[d or 9 - d] (v or u)   sign = - + + - - + + - - +
struct form {
  streams u, v;
  bool taps_reversed;  // term d has tap 9 - d
  bool bins_reversed;  // sample k of the prototype meets bin M - 1 - k
  bool out_reversed;   // and gives output M - 1 - k
};

using enum streams;
constexpr form symmetric = {im, re, false, false, false};
constexpr form legacy = {minus_re, minus_im, false, false, true};
constexpr form legacy_extra_latency = {minus_im, minus_re, true, false, false};
constexpr form even_0 = {minus_re, im, true, true, true};
constexpr form even_1 = {im, re, true, true, true};
constexpr form even_2 = {re, minus_im, true, true, true};
constexpr form even_3 = {minus_im, minus_re, true, true, true};

// ---- Window -------------------------------------------------------------------

// Each four samples have their nine stages one after the other. Returns the sums that leave, at
// half their level. Bounded by the loads of stages and taps, and in eight lanes by the number of
// instructions: so these take two terms of four samples at once.
template <bool taps_reversed>
MVK_INLINE f32x4 delay_line(float *history, const float *prototype, std::size_t k, f32x4 u,
                            f32x4 v) {
  float *const stages = history + mfb_stages * k;
  const float *const taps = prototype + mfb_taps * k;
  const auto c = [=](int term) {
    return load<f32x4>(taps + 4 * (taps_reversed ? mfb_taps - 1 - term : term));
  };
  const auto x = [=, minus_u = -u, minus_v = -v](int term) {
    const bool negative = (term + 1) / 2 % 2 == 0;
    return term % 2 ? (negative ? minus_v : v) : (negative ? minus_u : u);
  };
  const f32x4 out = fma(c(0), x(0), load<f32x4>(stages));
  unrolled<mfb_stages - 1>([&](auto j) {
    store(stages + 4 * j, fma(c(j + 1), x(j + 1), load<f32x4>(stages + 4 * (j + 1))));
  });
  store(stages + 4 * (mfb_stages - 1), c(mfb_stages) * x(mfb_stages));
  return out;
}
template <bool taps_reversed>
MVK_INLINE f32x4 delay_line_by_pairs(float *history, const float *prototype, std::size_t k,
                                     f32x8 minus_u_v) {
  float *const stages = history + mfb_stages * k;
  const float *const taps = prototype + mfb_taps * k;
  const auto c = [=](int term) {
    return taps_reversed ? swap_halves(load<f32x8>(taps + 4 * (mfb_taps - 2 - term)))
                         : load<f32x8>(taps + 4 * term);
  };
  // Terms 0 and 1 have signs - and +, 2 and 3 the opposite, and so on. What comes behind the last
  // stage is -0, which leaves every sum as it is.
  const f32x8 u_minus_v = -minus_u_v;
  const f32x8 first = fma(c(0), minus_u_v, load<f32x8>(stages));
  store(stages, upper(first));
  unrolled<mfb_taps / 2 - 1>([&](auto i) {
    constexpr int term = 2 * i + 2;
    const f32x8 ahead = term < mfb_stages - 1 ? load<f32x8>(stages + 4 * term)
                                              : both(load<f32x4>(stages + 4 * term), f32x4(-0.0f));
    store(stages + 4 * (term - 1), fma(c(term), i % 2 ? minus_u_v : u_minus_v, ahead));
  });
  return lower(first);
}
template <bool taps_reversed>
MVK_INLINE f32x8 delay_line(float *history, const float *prototype, std::size_t k, f32x8 u,
                            f32x8 v) {
  const f32x8 minus_u = -u;
  return both(
      delay_line_by_pairs<taps_reversed>(history, prototype, k, both(lower(minus_u), lower(v))),
      delay_line_by_pairs<taps_reversed>(history, prototype, k + 4,
                                         both(upper(minus_u), upper(v))));
}

template <form F>
MVK_INLINE void window(float *out, float *history, const float *prototype, const float *twiddle,
                       const float *bins, std::size_t M) {
  counted_fours<native>(M, [=]<class V>(std::size_t k) {
    const std::size_t mirrored = M - lanes<V> - k, bin = F.bins_reversed ? mirrored : k;
    const cpx<V> turned = load_complex<V>(bins + 2 * bin) * load_rotation<V>(twiddle, bin);
    const cpx<V> z = F.bins_reversed ? reversed(turned) : turned;
    const V y = delay_line<F.taps_reversed>(history, prototype, k, stream<F.u>(z), stream<F.v>(z));
    if constexpr (F.out_reversed)
      store(out + mirrored, reverse(y + y));
    else
      store(out + k, y + y);
  });
}

// ---- All of them --------------------------------------------------------------

template <form F, class Even, class Odd>
MVK_INLINE void synthesise(state *record, const float *prototype, const float *twiddle,
                           void *scratch, std::uint32_t channels, std::uint32_t slots,
                           std::uint32_t M, float *const *const *out, const float *const *const *in,
                           Even even, Odd odd) {
  float *const z = carver(scratch).take<float>(4 * M, 32), *const bins = z + 2 * M;
  for (std::uint32_t s = 0; s < slots; ++s)
    for (std::uint32_t c = 0; c < channels; ++c) {
      bins_from_bands(z, in[s][c], M, even, odd);
      transform_unscaled(record->pair, bins, z, M);
      window<F>(out[s][c], record->channel_history[c], prototype, twiddle, bins, M);
    }
}

}  // namespace

#define MVK_SYNTHESIS(name, even, odd)                                                             \
  void MVK_Lmfb_p10km_synthesisCL_##name(state *record, const float *prototype,                    \
                                         const float *twiddle, void *scratch, uint32_t channels,   \
                                         uint32_t slots, uint32_t bands, float *const *const *out, \
                                         const float *const *const *in) {                          \
    synthesise<name>(record, prototype, twiddle, scratch, channels, slots, bands, out, in, even{}, \
                     odd{});                                                                       \
  }
MVK_SYNTHESIS(symmetric, conjugate, plain)
MVK_SYNTHESIS(legacy, times_i, conjugate_times_i)
MVK_SYNTHESIS(legacy_extra_latency, conjugate_times_i, times_i)
MVK_SYNTHESIS(even_0, conjugate, plain)
MVK_SYNTHESIS(even_1, conjugate, plain)
MVK_SYNTHESIS(even_2, conjugate, plain)
MVK_SYNTHESIS(even_3, conjugate, plain)

// ---- Record -------------------------------------------------------------------

uint32_t MVK_mfb_p10km_synthesisCL_query_mem(uint32_t channels, uint32_t, uint32_t bands) {
  return mfb_bytes<state>(channels, bands);
}

uint32_t MVK_mfb_p10km_synthesisCL_query_scratch(uint32_t, uint32_t, uint32_t bands) {
  return mfb_scratch_bytes(bands);
}

state *MVK_Lmfb_p10km_synthesisCL_init(uint32_t channels, uint32_t, uint32_t bands, void *mem) {
  return mfb_place<state>(mem, channels, bands);
}

void MVK_Lmfb_p10km_synthesisCL_close(state *) {}
