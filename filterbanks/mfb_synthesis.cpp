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

// Stages of samples k, k + 1 and so on stand one after the other, a vector each. Returns the sum
// that leaves, at half its level. Bounded by the loads of stages and taps.
template <bool taps_reversed, class V>
MVK_INLINE V delay_line(float *history, const float *prototype, std::size_t k, V u, V v) {
  float *const stages = history + mfb_stages * k;
  const V minus_u = -u, minus_v = -v;
  const auto c = [=](int term) {
    return load_tap<V>(prototype, taps_reversed ? mfb_taps - 1 - term : term, k);
  };
  const auto x = [=](int term) {
    const bool negative = (term + 1) / 2 % 2 == 0;
    return term % 2 ? (negative ? minus_v : v) : (negative ? minus_u : u);
  };
  const V out = fma(c(0), x(0), load<V>(stages));
  unrolled<mfb_stages - 1>([&](auto j) {
    store(stages + j * lanes<V>, fma(c(j + 1), x(j + 1), load<V>(stages + (j + 1) * lanes<V>)));
  });
  store(stages + (mfb_stages - 1) * lanes<V>, c(mfb_stages) * x(mfb_stages));
  return out;
}

template <form F>
MVK_INLINE void window(float *out, float *history, const float *prototype, const float *twiddle,
                       const float *bins, std::size_t M) {
  counted<native>(M, [=]<class V>(std::size_t k) {
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
  mvk_fft_kernel *const transform =
      record->pair ? record->pair->unscaled : MVK_r4_cplx_fwd_unscaled(M);
  for (std::uint32_t s = 0; s < slots; ++s)
    for (std::uint32_t c = 0; c < channels; ++c) {
      bins_from_bands(z, in[s][c], M, even, odd);
      if (transform) transform(bins, z, M);
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
