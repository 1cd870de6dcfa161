// MFB analysis: per slot and channel a window over the ring of blocks, a turn, a transform.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "filterbanks/mfb.h"
#include "filterbanks/reorder.h"
#include "filterbanks/rotation.h"
#include "mvk_mfb.h"

using namespace mvk;

using state = mvk_mfb_p10km_analysisL_state;
static_assert(sizeof(state) == 24);

// ---- Window -------------------------------------------------------------------

namespace {

// Ways of analysis: which end of the slot the window begins at, and which of its sums is the real
// part.
enum class way { usual, legacy };

// Into u, M complex values. Samples enter the history at half their level, over its oldest block.
// Bounded by loads: ten taps, by two for eight lanes, and ten blocks.
template <way W>
MVK_INLINE void window(float *u, float *history, std::uint32_t position, const float *prototype,
                       const float *twiddle, const float *in, std::size_t M) {
  const std::uint32_t oldest = position % mfb_stages;
  float *blocks[mfb_stages];
  for (std::uint32_t j = 0; j < mfb_stages; ++j)
    blocks[j] = history + (oldest + j) % mfb_stages * M;
  counted_fours<native>(M, [&]<class V>(std::size_t k) {
    const auto c = [=](int tap) { return load_tap<V>(prototype, tap, k); };
    const auto x = [&](int j) { return load<V>(blocks[j] + k); };
    const V newest =
        V(0.5f) * (W == way::usual ? load<V>(in + k) : load_descending<V>(in + M - 1 - k));
    V odd = c(5) * x(5);
    odd = fma(c(1), x(1), odd);
    odd = fms(c(3), x(3), odd);
    odd = fms(c(7), x(7), odd);
    odd = fma(c(9), newest, odd);
    V even = c(4) * x(4);
    even = fma(c(0), x(0), even);
    even = fma(c(8), x(8), even);
    even = fms(c(2), x(2), even);
    even = fms(c(6), x(6), even);
    store(blocks[0] + k, newest);
    const cpx<V> z = W == way::usual ? cpx<V>{odd, even} : cpx<V>{even, odd};
    store_complex(u + 2 * k, load_rotation<V>(twiddle, k) * z);
  });
}

// finish(bands, bins) brings the transform's bins to the order of bands.
template <way W, class Finish>
MVK_INLINE void analyse(state *record, const float *prototype, const float *twiddle, void *scratch,
                        std::uint32_t channels, std::uint32_t slots, std::uint32_t M,
                        float *const *const *out, const float *const *const *in, Finish finish) {
  float *const u = carver(scratch).take<float>(4 * M, 32), *const bins = u + 2 * M;
  for (std::uint32_t s = 0; s < slots; ++s, ++record->position)
    for (std::uint32_t c = 0; c < channels; ++c) {
      window<W>(u, record->channel_history[c], record->position, prototype, twiddle, in[s][c], M);
      transform_scaled(record->pair, bins, u, M);
      finish(out[s][c], bins);
    }
}

}  // namespace

// ---- Bands --------------------------------------------------------------------

void MVK_CLmfb_p10km_analysisL(state *record, const float *prototype, const float *twiddle,
                               void *scratch, uint32_t channels, uint32_t slots, uint32_t bands,
                               float *const *const *out, const float *const *const *in) {
  analyse<way::usual>(
      record, prototype, twiddle, scratch, channels, slots, bands, out, in,
      [=](float *y, const float *bins) { bands_from_bins(y, bins, bands, plain{}, conjugate{}); });
}

void MVK_CLmfb_p10km_analysisL_legacy(state *record, const float *prototype, const float *twiddle,
                                      void *scratch, uint32_t channels, uint32_t slots,
                                      uint32_t bands, float *const *const *out,
                                      const float *const *const *in) {
  analyse<way::legacy>(record, prototype, twiddle, scratch, channels, slots, bands, out, in,
                       [=](float *y, const float *bins) {
                         bands_from_bins(y, bins, bands, conjugate_times_minus_i{}, times_i{});
                       });
}

namespace {

// Bins from both ends, each turned by two of the four columns of w, which is read forward for
// the lower half of the bands and backward for the upper half.
void turn_bins(float *bands, const float *bins, const float *w, std::size_t M) {
  const std::size_t Q = M / 4;
  for (std::size_t m = 0; m < Q; ++m) {
    const float *t = w + 4 * m;
    const cpx<float> low = load_complex<float>(bins + 2 * m);
    const cpx<float> high = load_complex<float>(bins + 2 * (M - 1 - m));
    float *const y = bands + 4 * m;
    y[0] = fms(low.re, t[1], low.im * t[0]);
    y[1] = fma(low.re, t[0], low.im * t[1]);
    y[2] = fma(high.re, t[3], high.im * t[2]);
    y[3] = fms(high.re, t[2], high.im * t[3]);
  }
  for (std::size_t m = 0; m < Q; ++m) {
    const float *t = w + M - 4 - 4 * m;
    const cpx<float> low = load_complex<float>(bins + 2 * (Q + m));
    const cpx<float> high = load_complex<float>(bins + 2 * (3 * Q - 1 - m));
    float *const y = bands + 2 * (M / 2 + 2 * m);
    y[0] = fms(low.im, t[3], low.re * t[2]);
    y[1] = fms(low.re, t[3], -low.im * t[2]);
    y[2] = fms(high.re, t[0], -high.im * t[1]);
    y[3] = fms(high.im, t[0], high.re * t[1]);
  }
}

}  // namespace

void MVK_CLmfb_p10km_analysisL_legacy_twiddle(state *record, const float *prototype,
                                              const float *twiddle, const float *post_twiddle,
                                              void *scratch, uint32_t channels, uint32_t slots,
                                              uint32_t bands, float *const *const *out,
                                              const float *const *const *in) {
  analyse<way::legacy>(
      record, prototype, twiddle, scratch, channels, slots, bands, out, in,
      [=](float *y, const float *bins) { turn_bins(y, bins, post_twiddle, bands); });
}

// ---- Record -------------------------------------------------------------------

uint32_t MVK_mfb_p10km_analysisL_query_mem(uint32_t channels, uint32_t, uint32_t bands) {
  return mfb_bytes<state>(channels, bands);
}

uint32_t MVK_mfb_p10km_analysisL_query_scratch(uint32_t, uint32_t, uint32_t bands) {
  return mfb_scratch_bytes(bands);
}

state *MVK_CLmfb_p10km_analysisL_init(uint32_t channels, uint32_t, uint32_t bands, void *mem) {
  auto *const record = mfb_place<state>(mem, channels, bands);
  record->position = 0;
  return record;
}

void MVK_mfb_p10km_analysisL_reset_channel(state *record, uint32_t bands, uint32_t channel) {
  std::fill_n(record->channel_history[channel], mfb_stages * bands, 0.0f);
}

void MVK_load_mfb_p10km_analysisL_filter_state(state *, const float *) {}
void MVK_unload_mfb_p10km_analysisL_filter_state(const state *, float *) {}
void MVK_CLmfb_p10km_analysisL_close(state *) {}
