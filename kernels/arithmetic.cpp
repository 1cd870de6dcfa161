// Limits, comparisons and arithmetic of blocks, sample by sample.
#include "kernels/kernel.h"

using namespace mvk;

MVK_KERNEL(float *, blk_Lmpy_shlLLU, (float *y, const float *a, const float *b, uint32_t k)) {
  const double scale = exp2_bits(k);
  return map_block(
      y, [=](auto p, auto q) { return narrow(widen(p) * widen(q) * scale); }, a, b);
}
MVK_KERNEL(float *, blk_Lmpy_shlLSU, (float *y, const float *a, const float *b, uint32_t k)) {
  const float scale = exp2_bits(k);
  return map_block(
      y, [=](auto p, auto q) { return q * p * scale; }, a, b);
}

MVK_KERNEL(float *, blk_LLshuffleLL_inplace, (float *p, float *q)) {
  counted(block_size, [=]<class V>(std::size_t i) {
    const V left = load<V>(p + i), half_right = load<V>(q + i) * 0.5f;
    store(p + i, fma(left, V(0.5f), half_right));
    store(q + i, fma(left, V(0.5f), -half_right));
  });
  return p;
}
MVK_KERNEL(float *, blk_LLdeshuffleLL_inplace, (float *p, float *q)) {
  counted(block_size, [=]<class V>(std::size_t i) {
    const V mid = load<V>(p + i), side = load<V>(q + i);
    store(p + i, mid + side);
    store(q + i, mid - side);
  });
  return p;
}

MVK_KERNEL(float *, blk_Lconst, (float *y, float v)) {
  counted(block_size, [=]<class V>(std::size_t i) { store(y + i, V(v)); });
  return y;
}
MVK_KERNEL(float *, blk_LabsL, (float *y, const float *a)) {
  return map_block(
      y, [](auto p) { return mvk::abs(p); }, a);
}

MVK_KERNEL(float *, blk_LclipL, (float *y, const float *limits, const float *a)) {
  const float low = limits[0], high = limits[1];
  if (!has_maxnum && is_number_but(-0.0f, low) && is_number_but(0.0f, high))
    return map_block(
        y, [=](auto p) { return lesser_of(greater_of(p, decltype(p)(low)), decltype(p)(high)); },
        a);
  return map_block(
      y, [=](auto p) { return minnum(maxnum(p, decltype(p)(low)), decltype(p)(high)); }, a);
}
MVK_KERNEL(float *, blk_LcmpLL, (float *y, const float *choice, const float *a, const float *b)) {
  return map_block(
      y,
      [greater = choice[0], otherwise = choice[1]](auto p, auto q) {
        using V = decltype(p);
        return where_greater(p, q, V(greater), V(otherwise));
      },
      a, b);
}

MVK_KERNEL(float *, blk_LmaxLL, (float *y, const float *a, const float *b)) {
  return map_block(
      y, [](auto p, auto q) { return maxnum(p, q); }, a, b);
}
MVK_KERNEL(float *, blk_LmaxLLL, (float *y, const float *a, const float *b, const float *c)) {
  return map_block(
      y, [](auto p, auto q, auto r) { return maxnum(maxnum(q, r), p); }, a, b, c);
}
MVK_KERNEL(float *, blk_LminLL, (float *y, const float *a, const float *b)) {
  return map_block(
      y, [](auto p, auto q) { return minnum(p, q); }, a, b);
}
MVK_KERNEL(float *, blk_LminLLL, (float *y, const float *a, const float *b, const float *c)) {
  return map_block(
      y, [](auto p, auto q, auto r) { return minnum(minnum(q, r), p); }, a, b, c);
}
MVK_KERNEL(float *, blk_LsaddLL, (float *y, const float *a, const float *b)) {
  return map_block(
      y, [](auto p, auto q) { return p + q; }, a, b);
}
MVK_KERNEL(float *, blk_LsubLL, (float *y, const float *a, const float *b)) {
  return map_block(
      y, [](auto p, auto q) { return p - q; }, a, b);
}
