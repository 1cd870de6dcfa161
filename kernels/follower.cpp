// Envelope followers, the limited integrator and the running reciprocal: one
// chain of dependent operations along the samples bounds each.
#include "kernels/kernel.h"

using namespace mvk;

namespace {

// e = peak(maxnum(u, v), x) of the smoothers u by c1 and v by c0.
template <class Peak>
float *attack_decay(float *y, const float *x, const float *c, double *state, Peak peak) {
  const double c0 = c[0], c1 = c[1], rest0 = 1 - c[0], rest1 = 1 - c[1];
  double e = *state;
  for (std::size_t n = 0; n < block_size; ++n) {
    const double in = x[n];
    const double u = fma(in, c1, e * rest1), v = fma(in, c0, e * rest0);
    e = peak(maxnum(u, v), in);
    y[n] = narrow(e);
  }
  *state = e;
  return y;
}

}  // namespace

void MVK_blk_Lattack_decay_iir1L_setup(double *e) { *e = 0; }
MVK_KEEP_COEF(Lattack_decay_iir1L)

MVK_KERNEL(float *, blk_Lattack_decay_iir1L,
           (float *y, const float *x, const float *c, double *e)) {
  return attack_decay(y, x, c, e, [](double larger, double) { return larger; });
}

void MVK_blk_Lattack_decay_peak_iir1L_setup(double *e) { *e = 0; }
MVK_KEEP_COEF(Lattack_decay_peak_iir1L)

MVK_KERNEL(float *, blk_Lattack_decay_peak_iir1L,
           (float *y, const float *x, const float *c, double *e)) {
  return attack_decay(y, x, c, e, [c2 = double{c[2]}](double larger, double in) {
    return maxnum(larger, in * c2);
  });
}

void MVK_blk_LintegrateL_setup(float *s) { *s = 0; }
MVK_KEEP_COEF(LintegrateL)

MVK_KERNEL(float *, blk_LintegrateL, (float *y, const float *x, const float *limits, float *s)) {
  const float upper = limits[0], lower = limits[1];
  const auto integrate = [=](auto at_least, auto at_most) {
    float sum = *s;
    for (std::size_t n = 0; n < block_size; ++n) {
      sum = at_most(at_least(sum + x[n], lower), upper);
      y[n] = sum;
    }
    *s = sum;
    return y;
  };
  if (!has_maxnum && is_number_but(-0.0f, lower) && is_number_but(0.0f, upper))
    return integrate([](float a, float b) { return greater_of(a, b); },
                     [](float a, float b) { return lesser_of(a, b); });
  return integrate([](float a, float b) { return maxnum(a, b); },
                   [](float a, float b) { return minnum(a, b); });
}

void MVK_blk_LnrrecipLU_setup(float *r, uint32_t k) { *r = exp2_bits_right(k); }
MVK_KEEP_COEF(LnrrecipLU)

// The limit keeps e at 0.25 or more, so that no jump of the input turns the step
// negative.
MVK_KERNEL(float *, blk_LnrrecipLU, (float *y, const float *x, uint32_t k, float *state)) {
  const float limit = exp2_bits(1 - k) * 0.75f, half = exp2_bits(k - 1);
  float r = *state;
  for (std::size_t n = 0; n < block_size; ++n) {
    const float e = fms(half, minnum(r * x[n], limit), 1.0f);
    r = r * (e + e);
    y[n] = r;
  }
  *state = r;
  return y;
}
