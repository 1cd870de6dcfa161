// Counted real vectors: shifts, masks, filling and an approximate compare.
#include <algorithm>
#include <cstdlib>

#include "kernels/kernel.h"

using namespace mvk;

namespace {

// 2^k with k clamped to the headroom that vec_UnormLU measures.
float exp2_clamped(int32_t k) {
  constexpr int32_t headroom = 60;
  return exp2_bits(static_cast<uint32_t>(std::clamp(k, -headroom, headroom)));
}

std::size_t distance(const float *y, const float *x) {
  const auto bytes = reinterpret_cast<std::intptr_t>(y) - reinterpret_cast<std::intptr_t>(x);
  return static_cast<std::size_t>(std::abs(bytes));
}

// Runs body over n products of x and m into y. What a result that lies on an
// input gives is that of four lanes, and one element after the other where it
// begins within 16 bytes of it; so wider steps are for results apart. A result
// that lies on x exactly is apart from it, as each step reads before it writes.
template <class Body>
float *masked(float *y, const float *x, const float *m, std::size_t n, Body body) {
  const auto apart = [=](const float *input) { return distance(y, input) >= n * sizeof(float); };
  const auto near = [=](const float *input) { return distance(y, input) < 16; };
  if (apart(m) && (y == x || apart(x)))
    counted(n, body);
  else if (near(x) || near(m))
    counted<float>(n, body);
  else
    counted<f32x4>(n, body);
  return y;
}

}  // namespace

MVK_KERNEL(float *, vec_LmpyLSU, (float *y, const float *x, float s, uint32_t n)) {
  return map(
      y, n, [=](auto a) { return a * s; }, x);
}
MVK_KERNEL(float *, vec_LmpyLSU_inplace, (float *y, float s, uint32_t n)) {
  return map(
      y, n, [=](auto a) { return a * s; }, y);
}

MVK_KERNEL(float *, vec_LshlLIU, (float *y, const float *x, int32_t k, uint32_t n)) {
  return mvk_vec_LmpyLSU_flex(y, x, exp2_clamped(k), n);
}
MVK_KERNEL(float *, vec_LshlLIU_inplace, (float *y, int32_t k, uint32_t n)) {
  return k == 0 ? y : mvk_vec_LshlLIU_flex(y, y, k, n);
}
MVK_KERNEL(float *, vec_SshlSIU_inplace, (float *y, int32_t k, uint32_t n)) {
  return mvk_vec_LshlLIU_inplace_flex(y, k, n);
}

MVK_KERNEL(float *, vec_LmaskLSU, (float *y, const float *x, const float *m, uint32_t n)) {
  return masked(y, x, m, n,
                [=]<class V>(std::size_t i) { store(y + i, load<V>(x + i) * load<V>(m + i)); });
}
MVK_KERNEL(float *, vec_Lmask_rev_coefLSU, (float *y, const float *x, const float *m, uint32_t n)) {
  return masked(y, x, m, n, [=]<class V>(std::size_t i) {
    store(y + i, load<V>(x + i) * load_descending<V>(m + n - 1 - i));
  });
}

MVK_KERNEL(float *, vec_LsetLU, (float *y, float v, uint32_t n)) {
  counted(n, [=]<class V>(std::size_t i) { store(y + i, V(v)); });
  return y;
}

MVK_KERNEL(int32_t, vec_IeqLLU, (const float *a, const float *b, uint32_t n, float tolerance)) {
  bool equal = true;
  // Bounded by the loads; differences are looked for once in a while.
  for (uint32_t start = 0; start < n && equal;) {
    const uint32_t end = start + std::min(n - start, 64u);
    counted(end - start, [&]<class V>(std::size_t i) {
      const V difference = mvk::abs(load<V>(a + start + i) - load<V>(b + start + i));
      equal &= !any_greater(difference, V(tolerance));
    });
    start = end;
  }
  return equal;
}
