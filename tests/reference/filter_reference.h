// Filters of blocks as recursions over any number of samples, for tests.
//
// Each takes n input samples and goes on from the state s, which it leaves behind for the next
// sample; the order of each expression is the order of its roundings.
#ifndef MVK_TESTS_REFERENCE_FILTER_REFERENCE_H_
#define MVK_TESTS_REFERENCE_FILTER_REFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "reference/kernel_arithmetic.h"

namespace reference {

// ---- Finite impulse responses ----

inline void Fir2(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = std::fma(c[0], now, c[1] * s[0]);
    s[0] = now;
  }
}

inline void Fir3(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = std::fma(c[0], now, std::fma(c[1], s[0], c[2] * s[1]));
    s[1] = s[0];
    s[0] = now;
  }
}

// Three taps or more. The whole input is laid out behind the state, so that `now[-k]` is the input
// k samples back.
inline void FirOfTaps(uint32_t taps, float *y, const float *x, size_t n, const float *c, float *s) {
  const size_t past = taps - 1;
  std::vector<float> heard(s, s + past);
  heard.insert(heard.end(), x, x + n);
  for (size_t i = 0; i < n; ++i) {
    const float *now = heard.data() + past + i;
    const auto back = [now](int k) { return *(now - k); };
    float sum = c[taps - 1] * back(static_cast<int>(taps) - 1);
    int k = static_cast<int>(taps) - 2;
    for (; k - 1 >= 2; k -= 2) sum = sum + std::fma(c[k], back(k), c[k - 1] * back(k - 1));
    if (taps % 2 == 0) sum = std::fma(c[2], back(2), sum);
    if (i % 2 == 0) {
      y[i] = std::fma(c[1], back(1), std::fma(back(0), c[0], sum));
    } else {
      y[i] = sum + std::fma(back(1), c[1], back(0) * c[0]);
    }
  }
  std::copy(heard.end() - static_cast<ptrdiff_t>(past), heard.end(), s);
}

// ---- First order ----

// The recursion that all forms in binary32 share: returns w[n]. s: x[n-1], w[n-1].
inline float FirstOrderStep(float x, const float *c, float *s) {
  const float w = std::fma(c[0], x, std::fma(c[1], s[0], c[2] * s[1]));
  s[0] = x;
  s[1] = w;
  return w;
}

inline void Iir1(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) y[i] = FirstOrderStep(x[i], c, s);
}

inline void Iir1Shifted(float *y, const float *x, size_t n, const float *c, float *s, uint32_t k) {
  for (size_t i = 0; i < n; ++i) y[i] = PowerOfTwo(k) * FirstOrderStep(x[i], c, s);
}

inline void Iir1DoubledPlus(float *y, const float *x, const float *b, size_t n, const float *c,
                            float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float addend = b[i];
    y[i] = std::fma(FirstOrderStep(x[i], c, s), 2.0f, addend);
  }
}

// s: x[n-1] in binary32, and w[n-1] in binary64 eight bytes on.
inline void Iir1Wide(float *y, const float *x, size_t n, const float *c, float *s) {
  const double c0 = c[0], c1 = c[1], c2 = c[2];
  double w;
  std::memcpy(&w, s + 2, sizeof w);
  for (size_t i = 0; i < n; ++i) {
    const double now = x[i], before = s[0];
    s[0] = x[i];
    w = std::fma(now, c0, std::fma(w, c2, before * c1));
    y[i] = static_cast<float>(w);
  }
  std::memcpy(s + 2, &w, sizeof w);
}

// ---- Second order, direct form ----

// s: x[n-1], x[n-2], y[n-1], y[n-2]
inline void Iir2Direct(float *y, const float *x, size_t n, const float *c, float *s) {
  const float doubled = c[3] + c[3];
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    const float older = std::fma(c[1], s[0], std::fma(c[2], s[1], c[4] * s[3]));
    y[i] = std::fma(c[0], now, std::fma(doubled, s[2], older));
    s[1] = s[0];
    s[0] = now;
    s[3] = s[2];
    s[2] = y[i];
  }
}

// ---- Second order, state space ----

// The output of the forms that sum both state variables, and of those that use the first alone.
inline float OutputOfSum(float x, const float *c, const float *s) {
  const float t = Fms(c[0], x, s[0] + s[1]);
  return t + t;
}

inline float OutputOfFirst(float x, const float *c, const float *s) {
  const float t = Fms(c[0], x, s[0]);
  return t + t;
}

// All forms have the second state variable in common; `first` is the next value of the other one.
inline void MoveOn(float first, float x, const float *c, float *s) {
  const float second = std::fma(c[2], x, std::fma(c[3], s[1], c[4] * s[0]));
  s[0] = first;
  s[1] = second;
}

inline void StateSpace1(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = OutputOfSum(now, c, s);
    MoveOn(std::fma(c[3], s[0], Fnms(c[1], now, c[4] * s[1])), now, c, s);
  }
}

inline void MoveOn2(float x, const float *c, float *s) {
  MoveOn(std::fma(c[1], x, std::fma(c[3], s[0], s[1])), x, c, s);
}

inline void StateSpace2(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = OutputOfFirst(now, c, s);
    MoveOn2(now, c, s);
  }
}

inline void StateSpace2Shifted(float *y, const float *x, size_t n, const float *c, float *s,
                               uint32_t k) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = Fms(c[0], now, s[0]) * PowerOfTwo(k + 1);
    MoveOn2(now, c, s);
  }
}

inline void StateSpace3(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    const float now = x[i];
    y[i] = OutputOfFirst(now, c, s);
    MoveOn(std::fma(c[1], now, std::fma(c[3], s[0], s[1] * 0.0625f)), now, c, s);
  }
}

// ---- Changing the rate by two ----

inline void MoveOnWithInputLast(float x, const float *c, float *s) {
  MoveOn(std::fma(c[1], x, std::fma(c[3], s[0], -c[4] * s[1])), x, c, s);
}

// n inputs, an even number; n / 2 outputs.
inline void StateSpaceDown(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; i += 2) {
    const float heard = x[i], unheard = x[i + 1];
    y[i / 2] = OutputOfSum(heard, c, s);
    MoveOnWithInputLast(heard, c, s);
    MoveOnWithInputLast(unheard, c, s);
  }
}

// n inputs; 2 n outputs.
inline void StateSpaceUp(float *y, const float *x, size_t n, const float *c, float *s) {
  for (size_t i = 0; i < n; ++i) {
    y[2 * i] = OutputOfSum(x[i], c, s);
    MoveOnWithInputLast(x[i], c, s);
    y[2 * i + 1] = (s[0] + s[1]) + (s[0] + s[1]);
    const float first = std::fma(c[3], s[0], -c[4] * s[1]);
    const float second = std::fma(c[3], s[1], c[4] * s[0]);
    s[0] = first;
    s[1] = second;
  }
}

}  // namespace reference

#endif
