/* What a limited file must hold, from the definition of the limiter. */
#ifndef MVK_TESTS_HOST_LIMIT_REFERENCE_H
#define MVK_TESTS_HOST_LIMIT_REFERENCE_H

#include <string>
#include <vector>

#include "host/audio.h"

namespace host {

/* Levels are in decibels. */
struct Limiting {
  double peak = -1.0;
  double boost = 0.0;
  unsigned sub_block = 64;
  bool hard_clip = false;

  /* As options of mvk limit. */
  std::vector<std::string> options() const;

  /* Ahead of the boost, as the limiter is given them. */
  float peak_ahead() const;
  float boost_gain() const;
};

/* 1 for 0 dB. */
double amplitude(double decibels);

struct Limited {
  std::vector<double> samples;  // interleaved, aligned with the source
  std::vector<float> gains;     // reached where each of the source's sub-blocks begins
};

/* The source limited by its own peaks, or by those of `detect`. */
Limited limited(const Audio &source, const Limiting &how);
Limited limited(const Audio &source, const Audio &detect, const Limiting &how);

/* The highest a sample gets: the peak, and ten roundings of float arithmetic. The
 * limit and the boost are rounded once each. The level ahead of the gain, its
 * reciprocal, the required gain and its product with the slow stage make four. The
 * product of gain and boost, that with the sample, that with the window and the sum
 * make four more; the windows add up to no more than 1. An eleventh is for their
 * products. */
double highest(const Limiting &how);

}  // namespace host

#endif
