// Blocks of 32 samples with a scalar.
#include "kernels/kernel.h"

using namespace mvk;

// The forms of BLmaxBLL differ in what they make of a NaN sample.

float *mvk_BLmaxBLL_flex(float *y, const float *x, float s) {
  if (!has_maxnum && is_number_but(-0.0f, s))
    return map_block(
        y, [=](auto a) { return greater_of(a, decltype(a)(s)); }, x);
  return map_block(
      y, [=](auto a) { return maxnum(a, decltype(a)(s)); }, x);
}
float *MVK_BLmaxBLL_strict(float *y, const float *x, float s) {
  // A comparison in this order lets a NaN sample through.
  if (!has_maxnum && is_number_but(0.0f, s))
    return map_block(
        y, [=](auto a) { return greater_of(decltype(a)(s), a); }, x);
  return map_block(
      y, [=](auto a) { return max_propagating(a, decltype(a)(s)); }, x);
}
float *mvk_BLmaxBLL_inplace_flex(float *y, float s) { return mvk_BLmaxBLL_flex(y, y, s); }
float *MVK_BLmaxBLL_inplace_strict(float *y, float s) { return MVK_BLmaxBLL_strict(y, y, s); }

MVK_KERNEL(float *, BLmpyBLS_inplace, (float *y, float s)) {
  return map_block(
      y, [=](auto a) { return a * s; }, y);
}

// The shift joins the gain, not the sample.
MVK_KERNEL(float *, BLmpy_scaleBLSU, (float *y, const float *x, float s, uint32_t k)) {
  const float m = s * exp2_bits(k);
  return map_block(
      y, [=](auto a) { return a * m; }, x);
}
MVK_KERNEL(float *, BLmpy_scaleBLSU_inplace, (float *y, float s, uint32_t k)) {
  return mvk_BLmpy_scaleBLSU_flex(y, y, s, k);
}

MVK_KERNEL(float *, BLmpy_scale_xBLSU, (float *y, const float *x, float s, uint32_t k)) {
  const double m = s * exp2_bits(k);
  return map_block(
      y, [=](auto a) { return narrow(widen(a) * m); }, x);
}

MVK_KERNEL(float *, BLsaddBLL, (float *y, const float *x, float s)) {
  return map_block(
      y, [=](auto a) { return a + s; }, x);
}
