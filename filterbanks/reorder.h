// Between the order of bands and that of a transform's bins: band 2 m is in bin m, and band
// 2 m + 1 in bin M - 1 - m.
#pragma once

#include <cstddef>

#include "core/complex.h"
#include "core/loop.h"

namespace mvk {

// What a band differs from its bin by.
struct plain {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> z) const {
    return z;
  }
};
struct conjugate {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> z) const {
    return {z.re, -z.im};
  }
};
struct times_i {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> z) const {
    return {-z.im, z.re};
  }
};
struct conjugate_times_i {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> z) const {
    return {z.im, z.re};
  }
};
struct conjugate_times_minus_i {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> z) const {
    return {-z.im, -z.re};
  }
};

// Bands j, j + 1 and so on stay as they are.
struct not_turned {
  template <class V>
  MVK_INLINE cpx<V> operator()(cpx<V> y, std::size_t) const {
    return y;
  }
};

template <class Even, class Odd, class Turn = not_turned>
MVK_INLINE void bands_from_bins(float *bands, const float *bins, std::size_t M, Even even, Odd odd,
                                Turn turn = {}) {
  counted<native>(M / 2, [=]<class V>(std::size_t m) {
    const cpx<V> low = even(load_complex<V>(bins + 2 * m));
    const cpx<V> high = odd(load_complex_descending<V>(bins + 2 * (M - 1 - m)));
    const halves<V> re = interleave(low.re, high.re), im = interleave(low.im, high.im);
    store_complex(bands + 4 * m, turn(cpx<V>{re.lo, im.lo}, 2 * m));
    store_complex(bands + 4 * m + 2 * lanes<V>, turn(cpx<V>{re.hi, im.hi}, 2 * m + lanes<V>));
  });
}

template <class Even, class Odd, class Turn = not_turned>
MVK_INLINE void bins_from_bands(float *bins, const float *bands, std::size_t M, Even even, Odd odd,
                                Turn turn = {}) {
  counted<native>(M / 2, [=]<class V>(std::size_t m) {
    const cpx<V> first = turn(load_complex<V>(bands + 4 * m), 2 * m);
    const cpx<V> second = turn(load_complex<V>(bands + 4 * m + 2 * lanes<V>), 2 * m + lanes<V>);
    const halves<V> re = deinterleave(first.re, second.re), im = deinterleave(first.im, second.im);
    store_complex(bins + 2 * m, even(cpx<V>{re.lo, im.lo}));
    store_complex_descending(bins + 2 * (M - 1 - m), odd(cpx<V>{re.hi, im.hi}));
  });
}

}  // namespace mvk
