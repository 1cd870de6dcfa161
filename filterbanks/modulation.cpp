// The modulation stage of the real and the complex QMF banks.
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "filterbanks/rotation.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

using namespace mvk;

namespace {

// Lanes p, p - 1 and so on.
template <class V>
MVK_INLINE V descending(const float *p) {
  return reverse(load<V>(p - (lanes<V> - 1)));
}

}  // namespace

// ---- Real ---------------------------------------------------------------------

void mvk_forwardModulationReal(const float *src, float *out, uint32_t M,
                               const mvk_fft_pair *pair_half, const float *dct_twiddle,
                               float *work) {
  const std::size_t H = M / 2;
  counted<native>(H, [=]<class V>(std::size_t i) {
    const float *middle = src + 3 * H;
    store(work + i, V(0.5f) * (descending<V>(middle - i) + load<V>(middle + i)));
    store(work + H + i, V(0.5f) * (descending<V>(src + 2 * H - i) - load<V>(src + i)));
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
    store(data + H - i - (lanes<V> - 1), reverse(v));
    store(data + H + i, v);
  });
  counted<native>(
      H, [=]<class V>(std::size_t i) { store(work + i, load<V>(y + H + i) + load<V>(y + H + i)); });
  work[H] = 0;
  counted<native>(H - 1, [=]<class V>(std::size_t i) {
    store(work + H + 1 + i, -descending<V>(work + H - 1 - i));
  });
}

// ---- Complex ------------------------------------------------------------------

namespace {

// What turns band j, j + 1 and so on; a vector of bands is in one half of them.

struct identity {};

struct alignment {
  const float *table;

  template <class V>
  MVK_INLINE cpx<V> factor(std::size_t j) const {
    return load_rotation<V>(table, j);
  }
};

struct half_sample {
  const float *table;
  std::size_t M;

  // Of the upper half, -i (c2 - i c1) with the mirrored band's pair.
  template <class V>
  MVK_INLINE cpx<V> factor(std::size_t j) const {
    if (2 * j < M) return load_rotation<V>(table, j);
    const cpx<V> f = reversed(load_rotation<V>(table, M - lanes<V> - j));
    return {-f.im, -f.re};
  }
};

template <class V, class Rotation>
MVK_INLINE cpx<V> turn(cpx<V> y, const Rotation &rotation, std::size_t j) {
  return y * rotation.template factor<V>(j);
}
template <class V>
MVK_INLINE cpx<V> turn(cpx<V> y, const identity &, std::size_t) {
  return y;
}
template <class V, class Rotation>
MVK_INLINE cpx<V> turn_back(cpx<V> y, const Rotation &rotation, std::size_t j) {
  const cpx<V> f = rotation.template factor<V>(j);
  return y * cpx<V>{f.re, -f.im};
}
template <class V>
MVK_INLINE cpx<V> turn_back(cpx<V> y, const identity &, std::size_t) {
  return y;
}

// Band 2 m is bin m, conjugated, and band 2 m + 1 bin M - 1 - m.
template <class V, class Rotation>
void reorder_forward(float *out, const float *bins, std::size_t M, const Rotation &rotation) {
  for (std::size_t m = 0; m < M / 2; m += lanes<V>) {
    const cpx<V> low = load_complex<V>(bins + 2 * m);
    const cpx<V> high = reversed(load_complex<V>(bins + 2 * (M - lanes<V> - m)));
    const auto re = interleave(low.re, high.re), im = interleave(-low.im, high.im);
    const cpx<V> first = turn(cpx<V>{re.lo, im.lo}, rotation, 2 * m);
    const cpx<V> second = turn(cpx<V>{re.hi, im.hi}, rotation, 2 * m + lanes<V>);
    store_complex(out + 4 * m, first);
    store_complex(out + 4 * m + 2 * lanes<V>, second);
  }
}

template <class V, class Rotation>
void reorder_inverse(float *bins, const float *in, std::size_t M, const Rotation &rotation) {
  for (std::size_t m = 0; m < M / 2; m += lanes<V>) {
    const cpx<V> first = turn_back(load_complex<V>(in + 4 * m), rotation, 2 * m);
    const cpx<V> second =
        turn_back(load_complex<V>(in + 4 * m + 2 * lanes<V>), rotation, 2 * m + lanes<V>);
    const auto re = deinterleave(first.re, second.re), im = deinterleave(first.im, second.im);
    store_interleaved(bins + 2 * m, re.lo, -im.lo);
    store_interleaved(bins + 2 * (M - lanes<V> - m), reverse(re.hi), reverse(im.hi));
  }
}

// Calls f(vector, rotation) with the widest vector that suits, and with what turns the bands.
template <class F>
void with_rotation(std::size_t M, std::uint32_t mode, const float *table, F f) {
  const auto with_vector = [&](const auto &rotation) {
    if (M % (2 * lanes<native>) == 0)
      f(native{}, rotation);
    else
      f(f32x4{}, rotation);
  };
  if (mode == MVK_TWIDDLE_NONE || (mode == MVK_TWIDDLE_ALIGN && !table))
    with_vector(identity{});
  else if (mode == MVK_TWIDDLE_ALIGN)
    with_vector(alignment{table});
  else
    with_vector(half_sample{table, M});
}

void transform(const mvk_fft_pair *pair, float *dst, float *src, std::uint32_t M) {
  mvk_fft_kernel *const kernel = pair ? pair->unscaled : MVK_r4_cplx_fwd_unscaled(M);
  if (kernel) kernel(dst, src, M);
}

}  // namespace

void mvk_forwardModulationComplex(float *src, float *out, float *fft_out, uint32_t M,
                                  uint32_t twiddle_mode, const float *rotation,
                                  const mvk_fft_pair *pair) {
  transform(pair, fft_out, src, M);
  with_rotation(M, twiddle_mode, rotation,
                [=]<class V>(V, const auto &turns) { reorder_forward<V>(out, fft_out, M, turns); });
}

void mvk_inverseModulationComplex(const float *src, float *out, float *fft_in, uint32_t M,
                                  uint32_t twiddle_mode, const float *rotation,
                                  const mvk_fft_pair *pair) {
  with_rotation(M, twiddle_mode, rotation,
                [=]<class V>(V, const auto &turns) { reorder_inverse<V>(fft_in, src, M, turns); });
  transform(pair, out, fft_in, M);
}
