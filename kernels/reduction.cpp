// Vectors reduced to one number: peaks, headroom, dot products and energies.
#include <algorithm>
#include <bit>
#include <limits>

#include "kernels/kernel.h"
#include "kernels/peak.h"

using namespace mvk;

namespace {

// Folds |x[i]| for i below n, in any order, as op does for two samples.
template <class Op>
float fold(const float *x, std::size_t n, float first, Op op) {
  // Four accumulators hide the latency of op; the loads bound the loop.
  constexpr std::size_t step = 4 * 8;
  f32x8 wide[4] = {first, first, first, first};
  std::size_t i = 0;
  for (; n - i >= step; i += step)
    unrolled<4>([&](auto r) { wide[r] = op(mvk::abs(load<f32x8>(x + i + 8 * r)), wide[r]); });
  f32x8 all = op(op(wide[0], wide[1]), op(wide[2], wide[3]));
  for (; n - i >= 8; i += 8) all = op(mvk::abs(load<f32x8>(x + i)), all);
  const f32x4 four = op(lower(all), upper(all));
  float lane[4];
  store(lane, four);
  float last = op(op(lane[0], lane[1]), op(lane[2], lane[3]));
  for (; i < n; ++i) last = op(mvk::abs(x[i]), last);
  return last;
}

// Elements of a strict form, which takes whole fours.
std::size_t whole_fours(uint32_t n) { return (std::size_t{n} + 3) & ~std::size_t{3}; }

float add_lanes(f32x4 sum) {
  float lane[4];
  store(lane, sum);
  return (lane[0] + lane[1]) + (lane[2] + lane[3]);
}

// Sum of squares of whole fours: one chain of fused operations for each lane.
float sum_squares(const float *x, std::size_t n) {
  f32x4 sum = 0;
  for (std::size_t i = 0; i < n; i += 4) {
    const f32x4 v = load<f32x4>(x + i);
    sum = fma(v, v, sum);
  }
  return add_lanes(sum);
}

// The flex form's: the last one to three join the lanes' sum.
float sum_squares_any(const float *x, uint32_t n) {
  std::size_t i = n & ~3u;
  float sum = i ? sum_squares(x, i) : 0;
  for (; i < n; ++i) sum = fma(x[i], x[i], sum);
  return sum;
}

float mean_scale(uint32_t n) { return static_cast<float>(1.0 / static_cast<int32_t>(n)); }

uint32_t headroom(float peak) {
  if (peak == 0) return 60;
  const auto exponent = static_cast<int>(std::bit_cast<uint32_t>(peak) >> 23 & 0xff);
  return static_cast<uint32_t>(std::clamp(126 - exponent, 0, 60));
}

}  // namespace

// ---- Peaks ------------------------------------------------------------------

// The largest magnitude is what maxnum(-smallest, largest) comes to, zeros
// included. A comparison passes over a NaN; magnitudes as bits keep it.

float mvk::largest_magnitude(const float *x, std::size_t n) {
  return fold(x, n, 0.0f, [](auto a, auto b) { return greater_magnitude(a, b); });
}

float mvk_vec_Labs_maxLU_flex(const float *x, uint32_t n) {
  const float peak =
      fold(x, std::max(n, 1u), -1.0f, [](auto a, auto b) { return greater_of(a, b); });
  return peak < 0 ? std::numeric_limits<float>::quiet_NaN() : peak;
}
float MVK_vec_Labs_maxLU_strict(const float *x, uint32_t n) {
  return largest_magnitude(x, whole_fours(std::max(n, 1u)));
}

MVK_KERNEL(float, vec_Sabs_maxSU, (const float *x, uint32_t n)) {
  return mvk_vec_Labs_maxLU_flex(x, n);
}

MVK_KERNEL(uint32_t, vec_UnormLU, (const float *x, uint32_t n)) {
  return headroom(is_aligned(x) && is_whole(n) ? MVK_vec_Labs_maxLU_strict(x, n)
                                               : mvk_vec_Labs_maxLU_flex(x, n));
}
MVK_KERNEL(uint32_t, vec_UnormSU, (const float *x, uint32_t n)) {
  return headroom(mvk_vec_Sabs_maxSU_flex(x, n));
}

// ---- Dot products -------------------------------------------------------------

float mvk_vec_LdotLLU_flex(const float *a, const float *b, uint32_t n) {
  float s0 = 0;
  if (n % 2) {
    s0 = *a++ * *b++;
    --n;
  }
  if (n == 0) return s0;

  s0 = fma(a[0], b[0], s0);
  float s1 = a[1] * b[1];
  std::size_t i = 2;
  const auto take_pair = [&] {
    s0 = fma(a[i], b[i], s0);
    s1 = fma(a[i + 1], b[i + 1], s1);
    i += 2;
  };
  if (n >= 8) {
    float lane[4] = {s0, s1, 0, 0};
    f32x4 sum = load<f32x4>(lane);
    for (; n - i >= 4; i += 4) sum = fma(load<f32x4>(a + i), load<f32x4>(b + i), sum);
    store(lane, sum);
    s0 = lane[0] + lane[2];
    s1 = lane[1] + lane[3];
  }
  while (i < n) take_pair();
  return s0 + s1;
}

float MVK_vec_LdotLLU_strict(const float *a, const float *b, uint32_t n) {
  f32x4 sum = 0;
  for (std::size_t i = 0; i < whole_fours(n); i += 4)
    sum = fma(load<f32x4>(a + i), load<f32x4>(b + i), sum);
  return add_lanes(sum);
}

// Products of two floats are exact in binary64, so that the rounding of a fused
// operation is that of the sum of its product and its addend.
MVK_KERNEL(double, vec_NdotLLU, (const float *a, const float *b, uint32_t n)) {
  double acc = double{a[0]} * b[0];
  std::size_t i = 1;
  if (n >= 5) {
    f64x2 v = {};
    for (; n - i >= 4; i += 4) {
      const f64x4 products = widen(load<f32x4>(a + i)) * widen(load<f32x4>(b + i));
      v = v + (lower(products) + upper(products));
    }
    acc += sum(v);
  }
  for (; i < n; ++i) acc = fma(double{a[i]}, double{b[i]}, acc);
  return acc;
}

// ---- Energies -----------------------------------------------------------------

float mvk_vec_Lmean_sqrLU_flex(const float *x, uint32_t n) {
  return n == 0 ? 0 : sum_squares_any(x, n) * mean_scale(n);
}
float MVK_vec_Lmean_sqrLU_strict(const float *x, uint32_t n) {
  return sum_squares(x, whole_fours(n)) * mean_scale(n);
}

float mvk_vec_Lsum_sqrLUU_flex(const float *x, uint32_t k, uint32_t n) {
  return n == 0 ? 0 : sum_squares_any(x, n) * exp2_bits_right(k);
}
float MVK_vec_Lsum_sqrLUU_strict(const float *x, uint32_t k, uint32_t n) {
  return n == 0 ? 0 : sum_squares(x, whole_fours(n)) * exp2_bits_right(k);
}
