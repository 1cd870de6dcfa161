// The modulation stage of the real and the complex QMF banks.
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "fft/forward_pair.h"
#include "filterbanks/reorder.h"
#include "filterbanks/rotation.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

using namespace mvk;

// ---- Real ---------------------------------------------------------------------

void mvk_forwardModulationReal(const float *src, float *out, uint32_t M,
                               const mvk_fft_pair *pair_half, const float *dct_twiddle,
                               float *work) {
  const std::size_t H = M / 2;
  counted<native>(H, [=]<class V>(std::size_t i) {
    const float *middle = src + 3 * H;
    store(work + i, V(0.5f) * (load_descending<V>(middle - i) + load<V>(middle + i)));
    store(work + H + i, V(0.5f) * (load_descending<V>(src + 2 * H - i) - load<V>(src + i)));
  });
  work[0] = 0.5f * src[3 * H];
  if (work == out)
    _mvk_ldct3_scaled_iplu(pair_half, dct_twiddle, work, M);
  else
    mvk_dctIII_scaled(pair_half, dct_twiddle, out, work, M);
}

void mvk_inverseModulationReal(float *data, float *work, uint32_t M, const mvk_fft_pair *pair_half,
                               const float *dct_twiddle) {
  if (work == data)
    _mvk_ldct2_unscaled_iplu(pair_half, dct_twiddle, work, M);
  else
    mvk_dctII_unscaled(pair_half, dct_twiddle, work, data, M);

  // The halves of y are mirrored about their middles: v = y reversed and y, doubled, and the
  // upper half's reverse with its sign changed, about a zero.
  const std::size_t H = M / 2;
  float *const y = work;
  data[0] = y[H] + y[H];
  counted<native>(H, [=]<class V>(std::size_t i) {
    const V v = load<V>(y + i) + load<V>(y + i);
    store_descending(data + H - i, v);
    store(data + H + i, v);
  });
  counted<native>(
      H, [=]<class V>(std::size_t i) { store(work + i, load<V>(y + H + i) + load<V>(y + H + i)); });
  work[H] = 0;
  counted<native>(H - 1, [=]<class V>(std::size_t i) {
    store(work + H + 1 + i, -load_descending<V>(work + H - 1 - i));
  });
}

// ---- Complex ------------------------------------------------------------------

namespace {

// The pair of a table, as band j and the following are turned by it: c2 + i c1.
template <class V>
MVK_INLINE cpx<V> load_turn(const float *table, std::size_t j) {
  const cpx<V> c = load_rotation<V>(table, j);
  return {c.im, c.re};
}

struct alignment {
  const float *table;

  template <class V>
  MVK_INLINE cpx<V> factor(std::size_t j) const {
    return load_turn<V>(table, j);
  }
};

struct half_sample {
  const float *table;
  std::size_t M;

  // Of the upper half, -i (c2 - i c1) with the mirrored band's pair.
  template <class V>
  MVK_INLINE cpx<V> factor(std::size_t j) const {
    if (2 * j < M) return load_turn<V>(table, j);
    const cpx<V> f = reversed(load_turn<V>(table, M - lanes<V> - j));
    return {-f.im, -f.re};
  }
};

template <class Rotation>
struct turned {
  Rotation by;

  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> y, std::size_t j) const {
    return y * by.template factor<V>(j);
  }
};
template <class Rotation>
struct turned_back {
  Rotation by;

  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> y, std::size_t j) const {
    const cpx<V> f = by.template factor<V>(j);
    return y * cpx<V>{f.re, -f.im};
  }
};

bool turns(std::uint32_t twiddle_mode, const float *rotation) {
  return twiddle_mode != MVK_TWIDDLE_NONE && (twiddle_mode != MVK_TWIDDLE_ALIGN || rotation);
}

}  // namespace

void mvk_forwardModulationComplex(float *src, float *out, float *fft_out, uint32_t M,
                                  uint32_t twiddle_mode, const float *rotation,
                                  const mvk_fft_pair *pair) {
  transform_unscaled(pair, fft_out, src, M);
  const auto reorder = [=](auto turn) {
    bands_from_bins(out, fft_out, M, conjugate{}, plain{}, turn);
  };
  if (!turns(twiddle_mode, rotation))
    reorder(not_turned{});
  else if (twiddle_mode == MVK_TWIDDLE_ALIGN)
    reorder(turned<alignment>{{rotation}});
  else
    reorder(turned<half_sample>{{rotation, M}});
}

void mvk_inverseModulationComplex(const float *src, float *out, float *fft_in, uint32_t M,
                                  uint32_t twiddle_mode, const float *rotation,
                                  const mvk_fft_pair *pair) {
  const auto reorder = [=](auto turn) {
    bins_from_bands(fft_in, src, M, conjugate{}, plain{}, turn);
  };
  if (!turns(twiddle_mode, rotation))
    reorder(not_turned{});
  else if (twiddle_mode == MVK_TWIDDLE_ALIGN)
    reorder(turned_back<alignment>{{rotation}});
  else
    reorder(turned_back<half_sample>{{rotation, M}});
  transform_unscaled(pair, out, fft_in, M);
}
