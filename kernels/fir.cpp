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
  window(const float *x, const float *past, int length) : x_(x), past_end_(past + length) {
    const int kept = std::min(length, 8);
    std::copy_n(past_end_ - kept, kept, joint_ + 8 - kept);
    std::copy_n(x, 8, joint_ + 8);
  }

  f32x8 samples(int i) const {
    return load<f32x8>(i >= 0 ? x_ + i : i >= -8 ? joint_ + 8 + i : past_end_ + i);
  }

 private:
  const float *x_, *past_end_;
  float joint_[16] = {};  // the newest of the past, and the oldest of the block
};

// The last outputs first, so that in place no input is written over that is still
// to be read.
template <class Output>
void for_outputs(float *y, Output output) {
  for (int n = block_size - 8; n >= 0; n -= 8) store(y + n, output(n));
}

}  // namespace

void MVK_blk_Lfir2L_setup(float *s) { s[0] = 0; }
MVK_KEEP_COEF(Lfir2L)

MVK_KERNEL(float *, blk_Lfir2L, (float *y, const float *x, const float *c, float *s)) {
  const window w(x, s, 1);
  const float newest = x[block_size - 1];
  for_outputs(y, [&, c0 = f32x8(c[0]), c1 = c[1]](int n) {
    return fma(c0, w.samples(n), c1 * w.samples(n - 1));
  });
  s[0] = newest;
  return y;
}

void MVK_blk_Lfir3L_setup(float *s) { s[0] = s[1] = 0; }
MVK_KEEP_COEF(Lfir3L)

MVK_KERNEL(float *, blk_Lfir3L, (float *y, const float *x, const float *c, float *s)) {
  float past[2] = {s[1], s[0]};  // the state has the newest first
  const window w(x, past, 2);
  const float newest = x[block_size - 1], second = x[block_size - 2];
  for_outputs(y, [&, c0 = f32x8(c[0]), c1 = f32x8(c[1]), c2 = c[2]](int n) {
    return fma(c0, w.samples(n), fma(c1, w.samples(n - 1), c2 * w.samples(n - 2)));
  });
  s[0] = newest;
  s[1] = second;
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
  const int fresh = std::min(oldest, int{block_size}), kept = oldest - fresh;
  float newest[block_size];
  std::copy_n(x + block_size - fresh, fresh, newest);
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
  std::memmove(s, s + fresh, static_cast<std::size_t>(kept) * sizeof(float));
  std::copy_n(newest, fresh, s + kept);
  return y;
}
