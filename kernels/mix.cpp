// Mixes of one to four blocks.
#include "kernels/kernel.h"

using namespace mvk;

namespace {

// The sums begin with the second block's product.
auto mix1(float g0) {
  return [=](auto a) { return a * g0; };
}
auto mix2(const float *g) {
  return [g0 = g[0], g1 = g[1]](auto a, auto b) { return fma(a, decltype(a)(g0), b * g1); };
}
auto mix3(const float *g) {
  return [ab = mix2(g), g2 = g[2]](auto a, auto b, auto c) {
    return fma(c, decltype(c)(g2), ab(a, b));
  };
}
auto mix4(const float *g) {
  return [abc = mix3(g), g3 = g[3]](auto a, auto b, auto c, auto d) {
    return fma(d, decltype(d)(g3), abc(a, b, c));
  };
}

// A mix whose finished sum is shifted.
template <class Mix>
auto shifted(Mix mix, uint32_t k) {
  return [=, scale = exp2_bits(k)](auto... inputs) { return mix(inputs...) * scale; };
}

}  // namespace

MVK_KERNEL(float *, blk_LmixL, (float *y, const float *g, const float *a)) {
  return map_block(y, mix1(g[0]), a);
}
MVK_KERNEL(float *, blk_LmixLL, (float *y, const float *g, const float *a, const float *b)) {
  return map_block(y, mix2(g), a, b);
}
MVK_KERNEL(float *, blk_LmixLLL,
           (float *y, const float *g, const float *a, const float *b, const float *c)) {
  return map_block(y, mix3(g), a, b, c);
}
MVK_KERNEL(float *, blk_LmixLLLL,
           (float *y, const float *g, const float *a, const float *b, const float *c,
            const float *d)) {
  return map_block(y, mix4(g), a, b, c, d);
}

// One block's shift joins its gain; the others' joins the sum.
MVK_KERNEL(float *, blk_Lmix_shlUL, (float *y, const float *g, uint32_t k, const float *a)) {
  return map_block(y, mix1(g[0] * exp2_bits(k)), a);
}
MVK_KERNEL(float *, blk_Lmix_shlULL,
           (float *y, const float *g, uint32_t k, const float *a, const float *b)) {
  return map_block(y, shifted(mix2(g), k), a, b);
}
MVK_KERNEL(float *, blk_Lmix_shlULLL,
           (float *y, const float *g, uint32_t k, const float *a, const float *b, const float *c)) {
  return map_block(y, shifted(mix3(g), k), a, b, c);
}
MVK_KERNEL(float *, blk_Lmix_shlULLLL,
           (float *y, const float *g, uint32_t k, const float *a, const float *b, const float *c,
            const float *d)) {
  return map_block(y, shifted(mix4(g), k), a, b, c, d);
}
