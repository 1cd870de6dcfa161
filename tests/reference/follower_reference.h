// Envelope followers, the limited integrator and the running reciprocal as recursions over any
// number of samples, for tests.
#ifndef MVK_TESTS_REFERENCE_FOLLOWER_REFERENCE_H_
#define MVK_TESTS_REFERENCE_FOLLOWER_REFERENCE_H_

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "reference/kernel_arithmetic.h"

namespace reference {

// One step of a smoother in binary64, the complement of its coefficient formed in binary32.
inline double Smoothed(double e, float x, float c) {
  const float complement = 1.0f - c;
  return std::fma(static_cast<double>(x), static_cast<double>(c),
                  e * static_cast<double>(complement));
}

inline void AttackDecay(float *y, const float *x, size_t n, const float *c, double *e) {
  for (size_t i = 0; i < n; ++i) {
    *e = Maxnum(Smoothed(*e, x[i], c[1]), Smoothed(*e, x[i], c[0]));
    y[i] = static_cast<float>(*e);
  }
}

inline void AttackDecayPeak(float *y, const float *x, size_t n, const float *c, double *e) {
  for (size_t i = 0; i < n; ++i) {
    const double floor = static_cast<double>(x[i]) * static_cast<double>(c[2]);
    *e = Maxnum(Maxnum(Smoothed(*e, x[i], c[1]), Smoothed(*e, x[i], c[0])), floor);
    y[i] = static_cast<float>(*e);
  }
}

// The upper limit lies before the lower one.
inline void Integrate(float *y, const float *x, size_t n, const float *limits, float *s) {
  for (size_t i = 0; i < n; ++i) {
    *s = Minnum(Maxnum(*s + x[i], limits[1]), limits[0]);
    y[i] = *s;
  }
}

inline void RunningReciprocal(float *y, const float *x, size_t n, uint32_t k, float *r) {
  const float limit = PowerOfTwo(1 - k) * 0.75f;
  const float half = PowerOfTwo(k - 1);
  for (size_t i = 0; i < n; ++i) {
    const float m = Minnum(*r * x[i], limit);
    const float e = Fms(half, m, 1.0f);
    *r = *r * (e + e);
    y[i] = *r;
  }
}

}  // namespace reference

#endif
