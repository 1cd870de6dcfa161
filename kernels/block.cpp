// Blocks of 32 samples with a scalar.
#include "kernels/kernel.h"

using namespace mvk;

namespace {

// The forms of BLmaxBLL differ in what they make of a NaN sample.
struct skipping {
  template <class V>
  V operator()(V a, V b) const {
    return maxnum(a, b);
  }
};
struct propagating {
  template <class V>
  V operator()(V a, V b) const {
    return max_propagating(a, b);
  }
};

template <class Max>
float *max_block(float *y, const float *x, float s, Max max) {
  return map_block(
      y, [=](auto a) { return max(a, decltype(a)(s)); }, x);
}

}  // namespace

float *mvk_BLmaxBLL_flex(float *y, const float *x, float s) {
  return max_block(y, x, s, skipping{});
}
float *MVK_BLmaxBLL_strict(float *y, const float *x, float s) {
  return max_block(y, x, s, propagating{});
}
float *mvk_BLmaxBLL_inplace_flex(float *y, float s) { return max_block(y, y, s, skipping{}); }
float *MVK_BLmaxBLL_inplace_strict(float *y, float s) { return max_block(y, y, s, propagating{}); }

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
