// Second-order sections in state space.
//
// The output of a sample comes from the state before it; then the state moves on.
// The forms differ in the two, and are written over V: a float for one channel,
// a vector for as many side by side.
#include <bit>
#include <cstdlib>

#include "kernels/kernel.h"

using namespace mvk;

namespace {

template <class V>
struct state {
  V s0, s1;
};

struct coefficients {
  float c0, c1, c2, c3, c4;

  explicit coefficients(const float *c) : c0(c[0]), c1(c[1]), c2(c[2]), c3(c[3]), c4(c[4]) {}
};

template <class V>
V twice(V t) {
  return t + t;
}

// ---- Outputs ----------------------------------------------------------------

struct output_of_both {
  template <class V>
  V operator()(const coefficients &c, V x, state<V> s) const {
    return twice(fms(V(c.c0), x, s.s0 + s.s1));
  }
};

struct output_of_first {
  template <class V>
  V operator()(const coefficients &c, V x, state<V> s) const {
    return twice(fms(V(c.c0), x, s.s0));
  }
};

struct scaled_output_of_first {
  float scale;

  template <class V>
  V operator()(const coefficients &c, V x, state<V> s) const {
    return fms(V(c.c0), x, s.s0) * scale;
  }
};

// ---- Next states --------------------------------------------------------------

// s1 moves on alike in all forms.
template <class V>
V next_s1(const coefficients &c, V x, state<V> s) {
  return fma(V(c.c2), x, fma(V(c.c3), s.s1, c.c4 * s.s0));
}

// v1: (c3, c4) rotate the state.
struct rotate {
  template <class V>
  state<V> operator()(const coefficients &c, V x, state<V> s) const {
    return {fma(V(c.c3), s.s0, fnms(V(c.c1), x, c.c4 * s.s1)), next_s1(c, x, s)};
  }
};

// v2: s1 feeds s0 as it is.
struct feed {
  template <class V>
  state<V> operator()(const coefficients &c, V x, state<V> s) const {
    return {fma(V(c.c1), x, fma(V(c.c3), s.s0, s.s1)), next_s1(c, x, s)};
  }
};

// v3: s1 is carried 16 times larger.
struct feed_sixteenth {
  template <class V>
  state<V> operator()(const coefficients &c, V x, state<V> s) const {
    return {fma(V(c.c1), x, fma(V(c.c3), s.s0, s.s1 * 0.0625f)), next_s1(c, x, s)};
  }
};

// The rate changing sections: v1 with the input added last.
struct rotate_then_add {
  state<float> operator()(const coefficients &c, float x, state<float> s) const {
    return {fma(c.c1, x, fma(c.c3, s.s0, -c.c4 * s.s1)), next_s1(c, x, s)};
  }
  state<float> operator()(const coefficients &c, state<float> s) const {
    return {fma(c.c3, s.s0, -c.c4 * s.s1), fma(c.c3, s.s1, c.c4 * s.s0)};
  }
};

// ---- Runs ---------------------------------------------------------------------

template <class Output, class Next>
float *section(float *y, const float *x, const float *coefs, float *s, Output output, Next next) {
  const coefficients c(coefs);
  state<float> now = {s[0], s[1]};
  for (std::size_t n = 0; n < block_size; ++n) {
    const float in = x[n];
    y[n] = output(c, in, now);
    now = next(c, in, now);
  }
  s[0] = now.s0;
  s[1] = now.s1;
  return y;
}

// v3 over as many channels as V has lanes, in place.
template <class V>
void channels_in_place(float *const *y, const coefficients &c, float *const *s) {
  constexpr int n = lanes<V>;
  const auto gathered = [&](int which) {
    float values[n];
    for (int l = 0; l < n; ++l) values[l] = s[l][which];
    return load<V>(values);
  };
  state<V> now = {gathered(0), gathered(1)};
  for (std::size_t i = 0; i < block_size; i += n) {
    V rows[n];
    for (int l = 0; l < n; ++l) rows[l] = load<V>(y[l] + i);
    transpose(rows);
    for (V &sample : rows) {
      const V in = sample;
      sample = output_of_first{}(c, in, now);
      now = feed_sixteenth{}(c, in, now);
    }
    transpose(rows);
    for (int l = 0; l < n; ++l) store(y[l] + i, rows[l]);
  }
  float s0[n], s1[n];
  store(s0, now.s0);
  store(s1, now.s1);
  for (int l = 0; l < n; ++l) {
    s[l][0] = s0[l];
    s[l][1] = s1[l];
  }
}

// The arrays of n floats that the pointers name don't touch each other.
template <int count>
bool are_apart(const float *const *p, std::ptrdiff_t n) {
  const auto distance = [=](int from, int to) {
    return std::bit_cast<std::intptr_t>(p[to]) - std::bit_cast<std::intptr_t>(p[from]);
  };
  const std::ptrdiff_t bytes = n * static_cast<std::ptrdiff_t>(sizeof(float));
  // Most often they lie one behind the other, and then neighbours settle it.
  bool in_order = true;
  for (int i = 1; i < count; ++i) in_order &= distance(i - 1, i) >= bytes;
  if (in_order) return true;
  for (int i = 0; i < count; ++i)
    for (int j = 0; j < i; ++j)
      if (std::abs(distance(j, i)) < bytes) return false;
  return true;
}

}  // namespace

void MVK_blk_Liir2ssL_setup(float *s) { s[0] = s[1] = 0; }
MVK_KEEP_COEF(Liir2ssL)
void MVK_blk_Liir2ssefL_setup(float *s) { MVK_blk_Liir2ssL_setup(s); }
MVK_KEEP_COEF(Liir2ssefL)

MVK_KERNEL(float *, blk_Liir2ssv1L, (float *y, const float *x, const float *c, float *s)) {
  return section(y, x, c, s, output_of_both{}, rotate{});
}
MVK_KERNEL(float *, blk_Liir2ssv1efL, (float *y, const float *x, const float *c, float *s)) {
  return mvk_blk_Liir2ssv1L_flex(y, x, c, s);
}
MVK_KERNEL(float *, blk_Liir2ssv2L, (float *y, const float *x, const float *c, float *s)) {
  return section(y, x, c, s, output_of_first{}, feed{});
}
MVK_KERNEL(float *, blk_Liir2ssv2L_inplace, (float *y, const float *c, float *s)) {
  return mvk_blk_Liir2ssv2L_flex(y, y, c, s);
}
MVK_KERNEL(float *, blk_Liir2ssv2_shlLU,
           (float *y, const float *x, const float *c, float *s, uint32_t k)) {
  return section(y, x, c, s, scaled_output_of_first{exp2_bits(k + 1)}, feed{});
}
MVK_KERNEL(float *, blk_Liir2ssv3L_inplace, (float *y, const float *c, float *s)) {
  channels_in_place<float>(&y, coefficients(c), &s);
  return y;
}

extern "C" float **MVK_blk_Liir2ssv3aLU_inplace_strict(float **y, const float *c, float **s,
                                                       uint32_t n)
    __attribute__((alias("MVK_blk_Liir2ssv3aLU_inplace")));
float **MVK_blk_Liir2ssv3aLU_inplace(float **y, const float *c, float **s, uint32_t n) {
  // Channels run side by side unless one has to wait for another.
  counted(n, [&]<class V>(std::size_t i) {
    constexpr int side_by_side = lanes<V>;
    if (are_apart<side_by_side>(y + i, block_size) && are_apart<side_by_side>(s + i, 2))
      channels_in_place<V>(y + i, coefficients(c), s + i);
    else
      for (int l = 0; l < side_by_side; ++l)
        channels_in_place<float>(y + i + l, coefficients(c), s + i + l);
  });
  return y;
}

MVK_KERNEL(float *, blk_Liir2ssv1_dsmpL, (float *y, const float *x, const float *coefs, float *s)) {
  const coefficients c(coefs);
  const rotate_then_add next;
  state<float> now = {s[0], s[1]};
  for (std::size_t n = 0; n < block_size; ++n) {
    const float even = x[2 * n], odd = x[2 * n + 1];
    y[n] = output_of_both{}(c, even, now);
    now = next(c, odd, next(c, even, now));
  }
  s[0] = now.s0;
  s[1] = now.s1;
  return y;
}

MVK_KERNEL(float *, blk_Liir2ssv1_usmpL, (float *y, const float *x, const float *coefs, float *s)) {
  const coefficients c(coefs);
  const rotate_then_add next;
  state<float> now = {s[0], s[1]};
  for (std::size_t n = 0; n < block_size; ++n) {
    const float in = x[n];
    y[2 * n] = output_of_both{}(c, in, now);
    now = next(c, in, now);
    y[2 * n + 1] = twice(now.s0 + now.s1);
    now = next(c, now);
  }
  s[0] = now.s0;
  s[1] = now.s1;
  return y;
}
