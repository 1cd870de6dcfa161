// The rotations of a cosine transform of type IV.
#include <cstddef>
#include <cstdint>

#include "core/complex.h"
#include "core/loop.h"
#include "mvk_dct.h"

using namespace mvk;

namespace {

// Samples 2 i and 2 n - 1 - 2 i of the result.
template <class V>
struct turned {
  V even, odd;

  MVK_INLINE turned(const float *in, const float *c, const float *s, std::size_t i, float gain) {
    const cpx<V> z = load_complex<V>(in + 2 * i);
    const V ci = load<V>(c + i), si = load<V>(s + i);
    even = fma(si, z.re, ci * z.im) * V(gain);
    odd = fms(si, z.im, ci * z.re) * V(gain);
  }
};

// By vectors from both ends, for a pair of results is of one from either side.
template <class V>
void post_rotate(float *out, const float *in, const float *c, const float *s, std::size_t n,
                 float gain) {
  for (std::size_t i = 0; 2 * i < n; i += lanes<V>) {
    const std::size_t mirrored = n - lanes<V> - i;
    const turned<V> low(in, c, s, i, gain), high(in, c, s, mirrored, gain);
    store_interleaved(out + 2 * i, low.even, reverse(high.odd));
    store_interleaved(out + 2 * mirrored, high.even, reverse(low.odd));
  }
}

void post_modulate(float *out, const float *in, const float *c, const float *s, std::size_t n,
                   float gain) {
  if (n % lanes<native> == 0) return post_rotate<native>(out, in, c, s, n, gain);
  if (n % 4 == 0) return post_rotate<f32x4>(out, in, c, s, n, gain);
  // By custom, pair 0 isn't turned here.
  out[0] = gain * in[0];
  out[2 * n - 1] = -gain * in[1];
  for (std::size_t i = 1; i < n; ++i) {
    const turned<float> t(in, c, s, i, gain);
    out[2 * i] = t.even;
    out[2 * n - 1 - 2 * i] = t.odd;
  }
}

}  // namespace

void mvk_dct4_premodulation(float *out, const float *in, const float *c, const float *s,
                            uint32_t n) {
  const std::size_t end = 2 * std::size_t{n};
  counted<native>(n, [=]<class V>(std::size_t i) {
    const V a = load_complex<V>(in + 2 * i).re;
    const V b = load_complex_descending<V>(in + end - 2 * i - 2).im;
    const V ci = load<V>(c + i), si = load<V>(s + i);
    store_interleaved(out + 2 * i, fma(si, a, ci * b), fms(ci, a, si * b));
  });
}

void mvk_dct4_postmodulation_shl0(float *out, const float *in, const float *c, const float *s,
                                  uint32_t n) {
  post_modulate(out, in, c, s, n, 1);
}
void mvk_dct4_postmodulation_shl1(float *out, const float *in, const float *c, const float *s,
                                  uint32_t n) {
  post_modulate(out, in, c, s, n, 2);
}
void mvk_dct4_postmodulation_shl2(float *out, const float *in, const float *c, const float *s,
                                  uint32_t n) {
  post_modulate(out, in, c, s, n, 4);
}
void mvk_dct4_postmodulation_shl(float *out, const float *in, const float *c, const float *s,
                                 int32_t shift, uint32_t n) {
  post_modulate(out, in, c, s, n, exp2_bits(static_cast<uint32_t>(shift)));
}
