// Short FIR filters of blocks.
#include <algorithm>
#include <cstring>

#include "kernels/kernel.h"

using namespace mvk;

namespace {

// A block with the samples before it, for eight outputs at a time: samples(i) are
// x[i] to x[i + 7], where x[-1] is the newest of the past.
class window {
 public:
  window(const float *x, const float *past, int length) : past_end_(past + length) {
    std::copy_n(x, block_size, joint_ + 8);
    const int kept = std::min(length, 8);
    std::copy_n(past_end_ - kept, kept, joint_ + 8 - kept);
  }

  f32x8 samples(int i) const {
    return i >= -8 ? load<f32x8>(joint_ + 8 + i) : load<f32x8>(past_end_ + i);
  }

  // The newest n samples.
  const float *newest(int n) const { return joint_ + 8 + block_size - n; }

 private:
  const float *past_end_;
  float joint_[8 + block_size] = {};  // the newest of the past, and the block
};

// Moves the past, oldest first, on by a block.
void remember(float *past, int length, const window &w) {
  constexpr int block = block_size;
  const int kept = std::max(length - block, 0);
  std::memmove(past, past + (length - kept), static_cast<std::size_t>(kept) * sizeof(float));
  std::copy_n(w.newest(length - kept), length - kept, past + kept);
}

template <class Output>
void for_outputs(float *y, Output output) {
  for (int n = 0; n < static_cast<int>(block_size); n += 8) store(y + n, output(n));
}

}  // namespace

void MVK_blk_Lfir2L_setup(float *s) { s[0] = 0; }
MVK_KEEP_COEF(Lfir2L)

MVK_KERNEL(float *, blk_Lfir2L, (float *y, const float *x, const float *c, float *s)) {
  const window w(x, s, 1);
  for_outputs(y, [&, c0 = f32x8(c[0]), c1 = c[1]](int n) {
    return fma(c0, w.samples(n), c1 * w.samples(n - 1));
  });
  remember(s, 1, w);
  return y;
}

void MVK_blk_Lfir3L_setup(float *s) { s[0] = s[1] = 0; }
MVK_KEEP_COEF(Lfir3L)

MVK_KERNEL(float *, blk_Lfir3L, (float *y, const float *x, const float *c, float *s)) {
  float past[2] = {s[1], s[0]};  // the state has the newest first
  const window w(x, past, 2);
  for_outputs(y, [&, c0 = f32x8(c[0]), c1 = f32x8(c[1]), c2 = c[2]](int n) {
    return fma(c0, w.samples(n), fma(c1, w.samples(n - 1), c2 * w.samples(n - 2)));
  });
  s[0] = w.newest(1)[0];
  s[1] = w.newest(2)[0];
  return y;
}

void MVK_blk_LfirUL_setup(float *s, uint32_t taps) {
  if (taps > 1) std::fill_n(s, taps - 1, 0.0f);
}
MVK_KEEP_COEF(LfirUL)

// The taps come in pairs from the oldest on, and the two outputs of a pair end
// differently: the first fuses its last two products into the sum, the second
// adds them up first.
MVK_KERNEL(float *, blk_LfirUL,
           (float *y, const float *x, uint32_t taps, const float *c, float *s)) {
  const int oldest = static_cast<int>(taps) - 1;
  const window w(x, s, oldest);
  for_outputs(y, [&](int n) {
    const auto x_at = [&](int k) { return w.samples(n - k); };
    const auto tap = [c](int k) { return f32x8(c[k]); };
    f32x8 acc = tap(oldest) * x_at(oldest);
    int k = oldest - 1;
    for (; k >= 3; k -= 2) acc = acc + fma(tap(k), x_at(k), tap(k - 1) * x_at(k - 1));
    if (k == 2) acc = fma(tap(2), x_at(2), acc);
    const f32x8 first = fma(tap(1), x_at(1), fma(x_at(0), tap(0), acc));
    const f32x8 second = acc + fma(x_at(1), tap(1), x_at(0) * tap(0));
    return alternate(first, second);
  });
  remember(s, oldest, w);
  return y;
}
