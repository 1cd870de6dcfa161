// Between the transform Z of n points, of pairs of real samples, and the packed spectrum P of
// the 2 n samples: P[0] = (X[0], X[n]) and P[k] = X[k], in place.
//
// For k from 1 to n/2 - 1 and m = n - k, the even samples' part (Z[k] + conj Z[m]) / 2 and the
// odd samples' part (Z[k] - conj Z[m]) / 2j make X[k] and X[m], the latter turned by
// exp(-j pi k / n); and the other way round.
#pragma once

#include <cstddef>

#include "core/complex.h"

namespace mvk {

// Bins k and n - k.
template <class V>
struct bin_pair {
  cpx<V> k, m;
};

// c + j s = exp(j pi k / n), A + j B the odd samples' part, turned: which product is rounded
// by itself is part of the definition of the transforms with a state. Those without one round
// the other.
enum class rounding { with_state, without_state };

// ---- Forward ------------------------------------------------------------------

template <rounding R, bool scaled>
struct to_spectrum {
  template <class V>
  static bin_pair<V> pair(bin_pair<V> z, V s, V c) {
    const V h = scaled ? 0.25f : 0.5f, minus_h = scaled ? -0.25f : -0.5f;
    const V hi = z.m.im * h, hr = z.m.re * h, minus_hi = z.m.im * minus_h;
    const V A = fma(z.k.im, h, hi), B = fms(z.k.re, h, hr), C = fma(z.k.re, h, hr);
    const V D = fma(z.k.im, h, minus_hi), E = fms(z.k.im, h, hi);
    V p, q;
    if constexpr (R == rounding::with_state) {
      p = fma(s, B, c * A);
      q = fnms(c, B, s * A);
    } else {
      p = fma(c, A, s * B);
      q = fms(s, A, c * B);
    }
    return {{C + p, D + q}, {C - p, E + q}};
  }

  static cpx<float> ends(cpx<float> z) {
    if (!scaled) return {z.re + z.im, z.re - z.im};
    const float b = z.im * 0.5f;
    return {fma(z.re, 0.5f, b), fnms(z.re, 0.5f, b)};
  }
  static cpx<float> middle(cpx<float> z) {
    if (!scaled) return {z.re, -z.im};
    return {z.re * 0.5f, z.im * -0.5f};
  }
};

// ---- Inverse ------------------------------------------------------------------

template <rounding R, bool scaled>
struct from_spectrum {
  template <class V>
  static bin_pair<V> pair(bin_pair<V> x, V s, V c) {
    V A, B, C, D, E;
    if constexpr (scaled) {
      const V h = 0.5f;
      const V hi = x.m.im * h, hr = x.m.re * h, minus_hi = x.m.im * V(-0.5f),
              minus_hr = x.m.re * V(-0.5f);
      A = fma(x.k.im, h, hi), B = fma(x.k.re, h, minus_hr), C = fma(x.k.re, h, hr);
      D = fma(x.k.im, h, minus_hi), E = fms(x.k.im, h, hi);
    } else {
      A = x.k.im + x.m.im, B = x.k.re - x.m.re, C = x.k.re + x.m.re;
      D = x.k.im - x.m.im, E = x.m.im - x.k.im;
    }
    V p, q;
    if constexpr (R == rounding::with_state) {
      p = fma(c, A, s * B);
      q = fnms(c, B, s * A);
    } else {
      p = fma(s, B, c * A);
      q = fms(s, A, c * B);
    }
    return {{C - p, D + q}, {C + p, E + q}};
  }

  static cpx<float> ends(cpx<float> x) {
    if (!scaled) return {x.re + x.im, x.re - x.im};
    const float t = x.im * 0.5f;
    return {fma(x.re, 0.5f, t), fnms(x.re, 0.5f, t)};
  }
  static cpx<float> middle(cpx<float> x) {
    if (!scaled) return {x.re + x.re, x.im * -2.0f};
    return {x.re, -x.im};
  }
};

// ---- All bins -----------------------------------------------------------------

// z has n pairs, n a power of two from 2 on; sine[k - 1] = sin(pi k / n) for k below n / 2.
template <class Conversion>
inline void convert_bins(float *z, std::size_t n, const float *sine) {
  const auto convert = [=]<class V>(std::size_t k, V) {
    const bin_pair<V> bins = {load_complex<V>(z + 2 * k),
                              load_complex_descending<V>(z + 2 * (n - k))};
    const V s = load<V>(sine + k - 1), c = load_descending<V>(sine + n / 2 - k - 1);
    return Conversion::pair(bins, s, c);
  };
  const auto store_bins = [=]<class V>(std::size_t k, bin_pair<V> x) {
    store_complex(z + 2 * k, x.k);
    store_complex_descending(z + 2 * (n - k), x.m);
  };

  const auto convert_one = [=](std::size_t k, auto conversion) {
    store_complex(z + 2 * k, conversion(load_complex<float>(z + 2 * k)));
  };
  convert_one(0, Conversion::ends);
  convert_one(n / 2, Conversion::middle);

  const std::size_t bins = n / 2;
  std::size_t k = 1;
  if (bins > lanes<native>) {
    // The last bins fill a vector together with some before them: they are read ahead of
    // those and written behind them.
    const std::size_t last = bins - lanes<native>;
    const auto end = convert(last, native{});
    for (; k < last; k += lanes<native>) store_bins(k, convert(k, native{}));
    store_bins(last, end);
  } else {
    for (; k < bins; ++k) store_bins(k, convert(k, float{}));
  }
}

// sin(pi k / n) for k from 1 to n / 2 - 1; null for n = 2, which has none.
const float *quarter_sine(std::size_t n);

template <rounding R, bool scaled>
inline void to_packed(float *z, std::size_t n) {
  convert_bins<to_spectrum<R, scaled>>(z, n, quarter_sine(n));
}
template <rounding R, bool scaled>
inline void from_packed(float *x, std::size_t n) {
  convert_bins<from_spectrum<R, scaled>>(x, n, quarter_sine(n));
}

}  // namespace mvk
