// The phase shifter: all-pass sections in z^-2, forward and then backward in time.
//
// Even and odd samples never meet within a pass, so that they go side by side, in lanes 0
// and 1. What bounds a pass is a section's two fused operations for each pair of samples.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "core/simd.h"
#include "phase90_hilbert.h"

using namespace mvk;

static_assert(sizeof(Phase90Hilbert_state) == 104);
static_assert(offsetof(Phase90Hilbert_state, fwd) == 32);
static_assert(offsetof(Phase90Hilbert_state, frame_length) == 72);
static_assert(offsetof(Phase90Hilbert_state, history) == 88);

namespace {

constexpr std::size_t delay = 1280;

// The backward pass comes down from the newest sample to this many above the frame before
// its result is used: section A, the slowest to settle, runs up to it alone.
constexpr std::size_t settled = 298;

constexpr float input_scale = 0.498687744140625f;
constexpr float c1 = 0.9947509765625f, c2 = 0.9791259765625f;
constexpr float c3 = 0.84515380859375f, c4 = 0.2373046875f;
constexpr float cA = 0.99176025390625f, cB = 0.942626953125f, cC = 0.61724853515625f;

// What section A has taken in and given out, had silence followed: sums of the forward
// pairs, in the order of `primed`.
constexpr int primed[] = {1, 0, 2, 3, 4};
constexpr float primed_input[] = {0.0052172360f, -0.19637249f, -0.040932201f, 0.79944104f,
                                  0.2373046875f};
constexpr float primed_output[] = {0.98365247f, 0.67830122f, 0.64264393f, -0.69916219f,
                                   -0.23414071f};

float prime(const float *pairs, const float (&row)[5]) {
  float sum = pairs[2 * primed[0]] * row[0];
  for (int k = 1; k < 5; ++k) sum = fma(pairs[2 * primed[k]], row[k], sum);
  return sum;
}

// y = c (y' - x) + x', with x' and y' of two samples before.
f32x4 all_pass(f32x4 x, f32x4 c, f32x4 x_before, f32x4 y_before) {
  return fms(x, c, fma(y_before, c, x_before));
}

void run_forward(float *out, const float *in, std::size_t n, float *pairs) {
  f32x4 a = load_two(pairs), y1 = load_two(pairs + 2), y2 = load_two(pairs + 4),
        y3 = load_two(pairs + 6), y4 = load_two(pairs + 8);
  for (std::size_t i = 0; i < n; i += 2) {
    const f32x4 a_before = a, y1_before = y1, y2_before = y2, y3_before = y3;
    a = load_two(in + i) * f32x4(input_scale);
    y1 = fnms(y1, f32x4(c1), a) + a_before;
    y2 = all_pass(y1, f32x4(c2), y1_before, y2);
    y3 = all_pass(y2, f32x4(c3), y2_before, y3);
    y4 = all_pass(y3, f32x4(c4), y3_before, y4);
    store_two(out + i, y4);
  }
  store_two(pairs, a);
  store_two(pairs + 2, y1);
  store_two(pairs + 4, y2);
  store_two(pairs + 6, y3);
  store_two(pairs + 8, y4);
}

// Section A, from one pair of positions to the next below.
struct section_a {
  f32x4 input, output;

  f32x4 operator()(f32x4 v) {
    output = fma(output, f32x4(cA), fms(v, f32x4(cA), input));
    input = v;
    return output;
  }
};

// Sections B and C behind it.
struct sections_bc {
  f32x4 b, c;

  f32x4 operator()(f32x4 a, f32x4 a_before) {
    const f32x4 b_before = b;
    b = all_pass(a, f32x4(cB), a_before, b);
    c = all_pass(b, f32x4(cC), b_before, c);
    return c;
  }
};

// Down over the n + delay values of `work`. The odd position of a pair comes first. The
// result of a position goes to the one below, which has to be read before.
void run_backward(Phase90Hilbert_state &s, std::size_t n) {
  float *const work = s.work;
  const float *const in = s.back_a, *const out = s.back_a + 2;
  section_a a = {f32x4(in[1], in[0], 0, 0), f32x4(out[1], out[0], 0, 0)};
  std::size_t i = n + delay - 2;
  for (; i > n + settled; i -= 2) {
    const f32x4 y = a(load_two(work + i));
    store_two(work + i, y + y);
  }

  // In this pair sections B and C begin, at its lower position.
  sections_bc bc = {0, 0};
  f32x4 a_before = a.output;
  f32x4 y = a(load_two(work + i));
  store_two(work + i, y + y);
  bc(y, a_before);
  bc = {with_lane0(bc.b, 0), with_lane0(bc.c, 0)};

  for (; i > 0; i -= 2) {
    const f32x4 v = load_two(work + i - 2);
    store_two(work + i - 1, bc.c + bc.c);
    a_before = y;
    y = a(v);
    bc(y, a_before);
  }

  float last[4];
  const auto keep = [&](float *pair, f32x4 x) {
    store(last, x);
    pair[0] = last[1];
    pair[1] = last[0];
  };
  keep(s.back_a, a.input);
  keep(s.back_a + 2, a.output);
  keep(s.back_b, bc.b);
  keep(s.back_b + 2, bc.c);
  store(last, bc.c + bc.c);
  work[0] = last[1];
}

bool is_served(unsigned length) { return length == 512 || length == 1024 || length == 2048; }

}  // namespace

int getRequiredBufferSize_Phase90Hilbert(unsigned length, unsigned *state_bytes,
                                         unsigned *work_bytes, unsigned *history_bytes) {
  *state_bytes = *work_bytes = *history_bytes = 0;
  if (!is_served(length)) return 2;
  *state_bytes = sizeof(Phase90Hilbert_state);
  *work_bytes = (length + delay) * sizeof(float);
  *history_bytes = delay * sizeof(float);
  return 0;
}

int init_Phase90Hilbert(Phase90Hilbert_state **out, unsigned length, void *state_mem,
                        void *work_mem, void *history_mem) {
  if (!is_served(length)) return 2;
  auto *const s = static_cast<Phase90Hilbert_state *>(state_mem);
  *s = {};
  s->frame_length = static_cast<std::int16_t>(length);
  s->inv_length = 1 / static_cast<float>(length);
  s->history = static_cast<float *>(history_mem);
  s->work = static_cast<float *>(work_mem);
  *out = s;
  return reset_Phase90Hilbert(s);
}

int reset_Phase90Hilbert(Phase90Hilbert_state *state) {
  std::ranges::fill(state->back_a, 0.0f);
  std::ranges::fill(state->back_b, 0.0f);
  std::ranges::fill(state->fwd, 0.0f);
  state->boundary = 0;
  std::fill_n(state->history, delay, 0.0f);
  return 0;
}

int process_Phase90Hilbert(Phase90Hilbert_state *state, float *samples) {
  Phase90Hilbert_state &s = *state;
  float *const work = s.work;
  const auto n = static_cast<std::size_t>(s.frame_length);

  std::copy_n(s.history, delay, work);
  run_forward(work + delay, samples, n, s.fwd);
  std::copy_n(work + n, delay, s.history);

  for (int parity = 0; parity < 2; ++parity) {
    s.back_a[parity] = prime(s.fwd + parity, primed_input);
    s.back_a[2 + parity] = prime(s.fwd + parity, primed_output);
  }
  run_backward(s, n);

  // The ramp from where the frame before ended to where this one begins.
  const float step = s.boundary - work[0];
  s.boundary = work[n];
  constexpr float ascending[] = {0, 1, 2, 3, 4, 5, 6, 7};
  native ramp = fms(load<native>(ascending), native(s.inv_length), native(1.0f));
  const native fall = s.inv_length * static_cast<float>(lanes<native>);
  for (std::size_t i = 0; i < n; i += lanes<native>) {
    store(samples + i, fma(ramp, native(step), load<native>(work + i)));
    ramp = ramp - fall;
  }
  return 0;
}
