/* What a resampled file must hold, from the formulas of the filters in double
 * precision. */
#ifndef MVK_TESTS_HOST_REFERENCE_H
#define MVK_TESTS_HOST_REFERENCE_H

#include <vector>

#include "host/audio.h"

namespace host {

/* A change of rate by `factor`, upwards or downwards. */
struct Ratio {
  int factor;
  bool up;

  int rate(int from) const { return up ? from * factor : from / factor; }
  long long frames(long long from) const {
    return up ? from * factor : (from + factor - 1) / factor;
  }
  /* Output frames from an input sample to the centre of its response. */
  int latency() const { return !up ? 13 : factor == 2 ? 27 : 55; }
};

inline constexpr Ratio kRatios[] = {{2, true}, {4, true}, {2, false}, {4, false}};

/* A sample of the output, and how far float arithmetic may be from it. */
struct Expected {
  double value;
  double error;
};

/* Sample n of the filtered stream x, its latency included. */
Expected filtered(Ratio ratio, const std::vector<double> &x, long long n);

/* Checks that `result` is `source` at the other rate: the length, and every
 * sample of every channel within the rounding of float arithmetic and half of
 * `step`, the result's own step (0 for floats). The first frame of `result` is
 * frame `begin` of the filtered stream: the latency for aligned files. */
void expect_resampled(Ratio ratio, const Audio &source, const Audio &result, double step,
                      long long begin);

/* The same for a file that is aligned with its source. */
void expect_aligned(Ratio ratio, const Audio &source, const Audio &result, double step);

}  // namespace host

#endif
