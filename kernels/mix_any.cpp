// Mixes of any number of blocks. The sum stays in registers until its end, so
// that the result may be any of the inputs.
#include <cstdarg>

#include "kernels/kernel.h"

using namespace mvk;

namespace {

// A block in registers, with the notation of its samples.
struct block {
  f32x8 r[4];
};

block load_block(const float *x) {
  return {{load<f32x8>(x), load<f32x8>(x + 8), load<f32x8>(x + 16), load<f32x8>(x + 24)}};
}
float *store_block(float *y, const block &a) {
  unrolled<4>([&](auto i) { store(y + 8 * i, a.r[i]); });
  return y;
}
block operator*(const block &a, float g) {
  return {{a.r[0] * g, a.r[1] * g, a.r[2] * g, a.r[3] * g}};
}
block operator+(const block &a, const block &b) {
  return {{a.r[0] + b.r[0], a.r[1] + b.r[1], a.r[2] + b.r[2], a.r[3] + b.r[3]}};
}
block fma(const block &a, float g, const block &c) {
  return {{mvk::fma(a.r[0], f32x8(g), c.r[0]), mvk::fma(a.r[1], f32x8(g), c.r[1]),
           mvk::fma(a.r[2], f32x8(g), c.r[2]), mvk::fma(a.r[3], f32x8(g), c.r[3])}};
}

// How many of n inputs come before the groups of four.
uint32_t head_of(uint32_t n) { return (n - 1) % 4 + 1; }

// The mix of n inputs that next() gives in order.
template <class Next>
block mix(const float *g, uint32_t n, Next next) {
  const uint32_t head = head_of(n);
  const block a = next();
  block y;
  if (head == 1)
    y = a * g[0];
  else
    y = fma(a, g[0], next() * g[1]);
  for (uint32_t i = 2; i < head; ++i) y = fma(next(), g[i], y);

  for (uint32_t i = head; i < n; i += 4) {
    const block p = next();
    const block t = fma(p, g[i], next() * g[i + 1]) + y;
    const block r = fma(next(), g[i + 2], t);
    y = fma(next(), g[i + 3], r);
  }
  return y;
}

// Of three or four adjacent blocks the first three nest the other way round.
block mix_adjacent_head(const float *g, uint32_t head, const float *a, float scale) {
  const auto in = [a](uint32_t i) { return load_block(a + i * block_size); };
  switch (head) {
    case 1:
      return in(0) * (g[0] * scale);
    case 2:
      return fma(in(0), g[0], in(1) * g[1]) * scale;
    case 3:
      return fma(in(0), g[0], fma(in(1), g[1], in(2) * g[2])) * scale;
    default:
      return fma(in(3), g[3], fma(in(0), g[0], fma(in(1), g[1], in(2) * g[2]))) * scale;
  }
}

}  // namespace

// The forms that test their pointers give the same bits either way.

extern "C" float *MVK_blk_LmixnL_strict(float *y, const float *g, uint32_t n, ...)
    __attribute__((alias("MVK_blk_LmixnL")));
float *MVK_blk_LmixnL(float *y, const float *g, uint32_t n, ...) {
  va_list inputs;
  va_start(inputs, n);
  const block sum = mix(g, n, [&] { return load_block(va_arg(inputs, const float *)); });
  va_end(inputs);
  return store_block(y, sum);
}

extern "C" float *MVK_blk_Lmix_shlUnL_strict(float *y, const float *g, uint32_t k, uint32_t n, ...)
    __attribute__((alias("MVK_blk_Lmix_shlUnL")));
float *MVK_blk_Lmix_shlUnL(float *y, const float *g, uint32_t k, uint32_t n, ...) {
  const float scale = exp2_bits(k);
  va_list inputs;
  va_start(inputs, n);
  block sum = load_block(va_arg(inputs, const float *)) * (scale * g[0]);
  for (uint32_t i = 1; i < n; ++i)
    sum = fma(load_block(va_arg(inputs, const float *)), scale * g[i], sum);
  va_end(inputs);
  return store_block(y, sum);
}

extern "C" float *MVK_blk_Lmix_shlaL_strict(float *y, const float *g, uint32_t n,
                                            const float *blocks, uint32_t k)
    __attribute__((alias("MVK_blk_Lmix_shlaL")));
float *MVK_blk_Lmix_shlaL(float *y, const float *g, uint32_t n, const float *blocks, uint32_t k) {
  const float scale = exp2_bits(k);
  const auto in = [blocks](uint32_t i) { return load_block(blocks + i * block_size); };
  const uint32_t head = head_of(n);
  block sum = mix_adjacent_head(g, head, blocks, scale);
  for (uint32_t m = head; m < n; m += 4) {
    const block pair = fma(in(m), g[m], in(m + 1) * g[m + 1]);
    sum = fma(fma(in(m + 3), g[m + 3], fma(in(m + 2), g[m + 2], pair)), scale, sum);
  }
  return store_block(y, sum);
}
