// Cosine transforms of types II and III.
//
// Even samples ascending and odd ones descending make a sequence whose complex transform, of
// pairs, holds the cosine transform: Z[k] and Z[H - k] split into the spectrum of the real
// sequence, which a rotation by a quarter of a bin turns into the bins k, H - k, H + k and
// N - k. The type III goes the other way.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/complex.h"
#include "core/loop.h"
#include "fft/forward_pair.h"
#include "mvk_dct.h"

using namespace mvk;

namespace {

// Calls body.operator()<V>(k) for vectors of k from first to last - 1, the last ones of which
// may be done twice: what is read is never written.
template <class Body>
void cover(std::size_t first, std::size_t last, Body body) {
  const auto with = [&]<class V>(V) {
    std::size_t k = first;
    for (; k + lanes<V> <= last; k += lanes<V>) body.template operator()<V>(k);
    if (k < last) body.template operator()<V>(last - lanes<V>);
  };
  if (last - first >= std::size_t{lanes<native>})
    with(native{});
  else if (last - first >= 4)
    with(f32x4{});
  else
    with(float{});
}

// The lengths of a transform, and its table t[k] = sin(pi k / (2 N)).
struct lengths {
  std::size_t N, H, Q;
  const float *t;

  lengths(std::uint32_t n, const float *twiddle) : N(n), H(n / 2), Q(n / 4), t(twiddle) {}
};

// Sines and cosines of k and of 4 k.
template <class V>
struct angles {
  V s, c;
};
template <class V>
MVK_INLINE angles<V> of_k(const lengths &l, std::size_t k) {
  return {load<V>(l.t + k), load_descending<V>(l.t + l.N - k)};
}
// Of H - k.
template <class V>
MVK_INLINE angles<V> of_mirrored_k(const lengths &l, std::size_t k) {
  return {load_descending<V>(l.t + l.H - k), load<V>(l.t + l.H + k)};
}
template <class V>
MVK_INLINE angles<V> of_4k(const lengths &l, std::size_t k) {
  return {load_every_fourth<V>(l.t + 4 * k),
          reverse(load_every_fourth<V>(l.t + l.N - 4 * k - 4 * (lanes<V> - 1)))};
}

// Parts of Z[k] and Z[H - k] that the two steps between a complex and a real spectrum share:
// half their sum and half their difference, the latter turned.
template <class V>
struct parts {
  V S, D, u, v;

  MVK_INLINE parts(cpx<V> a, cpx<V> b, angles<V> w) : S(a.re + b.re), D(a.im - b.im) {
    const V P = (b.re - a.re) * V(0.5f), Q = (a.im + b.im) * V(0.5f);
    u = fms(w.c, P, w.s * Q);
    v = fma(w.c, Q, w.s * P);
  }
  MVK_INLINE V half_sum_and_v() const { return fma(S, V(0.5f), v); }
  MVK_INLINE V half_sum_less_v() const { return fnms(S, V(0.5f), v); }
  MVK_INLINE V u_and_half_difference() const { return fma(D, V(0.5f), u); }
  MVK_INLINE V u_less_half_difference() const { return fms(D, V(0.5f), u); }
};

// ---- Type II ------------------------------------------------------------------

// Even samples ascending, odd ones descending.
void fold(float *z, const float *x, const lengths &l) {
  if (l.H < 2) return;
  counted<native>(2 * l.Q, [=, N = l.N]<class V>(std::size_t j) {
    const float *const last = x + 2 * (j + lanes<V> - 1);
    store(z + j, load_complex<V>(x + 2 * j).re);
    store(z + N - lanes<V> - j, load_complex_descending<V>(last).im);
  });
}

// Bins k and N - k of Z[k].
template <bool scaled, class V>
struct rotated {
  V bin, mirrored;

  MVK_INLINE rotated(V re, V im, angles<V> w)
      : bin(fms(w.s, im, w.c * re)), mirrored(fma(w.s, re, w.c * im)) {
    if constexpr (scaled) {
      bin = bin * V(0.5f);
      mirrored = mirrored * V(0.5f);
    }
  }
};

template <bool scaled>
void split_and_rotate(float *y, const float *z, const lengths &l) {
  const float h = scaled ? 0.5f : 1.0f;
  y[0] = h * z[0] + h * z[1];
  y[l.H] = (h * z[0] - h * z[1]) * l.t[l.H];
  if (l.Q > 1)
    cover(1, l.Q, [=]<class V>(std::size_t k) {
      const cpx<V> a = load_complex<V>(z + 2 * k),
                   b = load_complex_descending<V>(z + 2 * (l.H - k));
      const parts<V> p(a, b, of_4k<V>(l, k));
      const rotated<scaled, V> low(p.half_sum_and_v(), p.u_less_half_difference(), of_k<V>(l, k));
      const rotated<scaled, V> high(p.half_sum_less_v(), p.u_and_half_difference(),
                                    of_mirrored_k<V>(l, k));
      store(y + k, low.bin);
      store_descending(y + l.N - k, low.mirrored);
      store_descending(y + l.H - k, high.bin);
      store(y + l.H + k, high.mirrored);
    });
  // What has no partner: k = Q.
  for (std::size_t k = l.Q < 1 ? 1 : l.Q; k + l.Q <= l.H && k < l.H; ++k) {
    const rotated<scaled, float> r(z[2 * k], z[2 * k + 1], of_k<float>(l, k));
    y[k] = r.bin;
    y[l.N - k] = r.mirrored;
  }
}

// ---- Type III -----------------------------------------------------------------

template <class V>
MVK_INLINE cpx<V> rotate_back(V x, V mirrored, angles<V> w) {
  return {fma(w.c, x, w.s * mirrored) * V(0.5f), fms(w.s, x, w.c * mirrored) * V(0.5f)};
}

// The spectrum, its bins in reversed order, so that a forward transform is the inverse one.
void rotate_and_merge(float *z, const float *x, const lengths &l) {
  const float g = 0.5f * (x[l.H] * l.t[l.H]);
  z[0] = g + 0.5f * x[0];
  z[1] = 0.5f * x[0] - g;
  if (l.Q > 1)
    cover(1, l.Q, [=]<class V>(std::size_t k) {
      const cpx<V> a = rotate_back(load<V>(x + k), load_descending<V>(x + l.N - k), of_k<V>(l, k));
      const cpx<V> b = rotate_back(load_descending<V>(x + l.H - k), load<V>(x + l.H + k),
                                   of_mirrored_k<V>(l, k));
      const parts<V> p(a, b, of_4k<V>(l, k));
      store_interleaved(z + 2 * k, p.half_sum_less_v(), p.u_and_half_difference());
      store_pairs_descending(z + 2 * (l.H - k), p.half_sum_and_v(), p.u_less_half_difference());
    });
  for (std::size_t k = l.Q < 1 ? 1 : l.Q; k + l.Q <= l.H && k < l.H; ++k) {
    const cpx<float> w = rotate_back(x[k], x[l.N - k], of_k<float>(l, k));
    z[2 * k] = w.re;
    z[2 * k + 1] = w.im;
  }
}

void unfold(float *y, const float *z, const lengths &l) {
  counted<native>(2 * l.Q, [=, N = l.N]<class V>(std::size_t j) {
    store_interleaved(y + 2 * j, load<V>(z + j), load_descending<V>(z + N - 1 - j));
  });
}

// ---- In place -----------------------------------------------------------------

using transform = void(const mvk_fft_pair *, const float *, float *, float *, std::uint32_t);

void in_place(transform *f, const mvk_fft_pair *pair, const float *twiddle, float *data,
              std::uint32_t n) {
  alignas(32) float copy[2048];
  std::memcpy(copy, data, n * sizeof *data);
  f(pair, twiddle, data, copy, n);
}

}  // namespace

void mvk_dctII_scaled(const mvk_fft_pair *pair, const float *twiddle, float *out, float *in,
                      uint32_t n) {
  const lengths l(n, twiddle);
  fold(out, in, l);
  transform_scaled(pair, in, out, l.H);
  split_and_rotate<true>(out, in, l);
}

void mvk_dctII_unscaled(const mvk_fft_pair *pair, const float *twiddle, float *out, float *in,
                        uint32_t n) {
  const lengths l(n, twiddle);
  fold(out, in, l);
  transform_unscaled(pair, in, out, l.H);
  split_and_rotate<false>(out, in, l);
}

void mvk_dctIII_scaled(const mvk_fft_pair *pair, const float *twiddle, float *out, float *in,
                       uint32_t n) {
  const lengths l(n, twiddle);
  rotate_and_merge(out, in, l);
  transform_scaled(pair, in, out, l.H);
  unfold(out, in, l);
}

void _mvk_ldct2_scaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                            uint32_t n) {
  in_place(mvk_dctII_scaled, pair, twiddle, data, n);
}
void _mvk_ldct2_unscaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                              uint32_t n) {
  in_place(mvk_dctII_unscaled, pair, twiddle, data, n);
}
void _mvk_ldct3_scaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                            uint32_t n) {
  in_place(mvk_dctIII_scaled, pair, twiddle, data, n);
}
