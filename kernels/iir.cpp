// Recursive filters of blocks, of first and second order.
//
// Each runs along the samples in one chain of dependent operations, which bounds
// it; products that don't depend on the last output stand off the chain.
#include "kernels/kernel.h"

using namespace mvk;

// ---- First order ------------------------------------------------------------

namespace {

// y[n] = fma(c0, x[n], fma(c1, x[n-1], c2 * y[n-1])). What else is made of a sample
// comes after the block: beside the chain it would compete with it.
float *first_order(float *y, const float *x, const float *c, float *s) {
  const float c0 = c[0], c1 = c[1], c2 = c[2];
  float last = s[0], w = s[1];
  for (std::size_t n = 0; n < block_size; ++n) {
    const float now = x[n];
    w = fma(c0, now, fma(c1, last, c2 * w));
    last = now;
    y[n] = w;
  }
  s[0] = last;
  s[1] = w;
  return y;
}

}  // namespace

void MVK_blk_Liir1L_setup(float *s) { s[0] = s[1] = 0; }
MVK_KEEP_COEF(Liir1L)

MVK_KERNEL(float *, blk_Liir1L, (float *y, const float *x, const float *c, float *s)) {
  return first_order(y, x, c, s);
}
MVK_KERNEL(float *, blk_Liir1_shlLU,
           (float *y, const float *x, const float *c, float *s, uint32_t k)) {
  float w[block_size];
  first_order(w, x, c, s);
  return map_block(
      y, [scale = exp2_bits(k)](auto p) { return scale * p; }, w);
}
MVK_KERNEL(float *, blk_Liir1_shl_addLL,
           (float *y, const float *x, const float *b, const float *c, float *s)) {
  float w[block_size];
  first_order(w, x, c, s);
  return map_block(
      y, [](auto p, auto q) { return fma(p, decltype(p)(2.0f), q); }, w, b);
}

static_assert(offsetof(mvk_blk_iir1x_state, w) == 8);

void MVK_blk_Liir1xL_setup(mvk_blk_iir1x_state *s) {
  s->s0 = 0;
  s->w = 0;
}
MVK_KEEP_COEF(Liir1xL)

MVK_KERNEL(float *, blk_Liir1xL,
           (float *y, const float *x, const float *c, mvk_blk_iir1x_state *s)) {
  const double c0 = c[0], c1 = c[1], c2 = c[2];
  double last = s->s0, w = s->w;
  for (std::size_t n = 0; n < block_size; ++n) {
    const double now = x[n];
    w = fma(now, c0, fma(w, c2, last * c1));
    last = now;
    y[n] = narrow(w);
  }
  s->s0 = narrow(last);
  s->w = w;
  return y;
}

// ---- Second order, direct form ------------------------------------------------

void MVK_blk_Liir2df1L_setup(float *s) { s[0] = s[1] = s[2] = s[3] = 0; }
MVK_KEEP_COEF(Liir2df1L)

MVK_KERNEL(float *, blk_Liir2df1L, (float *y, const float *x, const float *c, float *s)) {
  const float c0 = c[0], c1 = c[1], c2 = c[2], d = c[3] + c[3], c4 = c[4];
  float x1 = s[0], x2 = s[1], y1 = s[2], y2 = s[3];
  for (std::size_t n = 0; n < block_size; ++n) {
    const float x0 = x[n];
    const float y0 = fma(c0, x0, fma(d, y1, fma(c1, x1, fma(c2, x2, c4 * y2))));
    x2 = x1;
    x1 = x0;
    y2 = y1;
    y1 = y0;
    y[n] = y0;
  }
  s[0] = x1;
  s[1] = x2;
  s[2] = y1;
  s[3] = y2;
  return y;
}
