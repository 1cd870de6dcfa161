// Entries of constant tables against their rules.
#ifndef MVK_TESTS_DCT_TABLE_CHECKS_H_
#define MVK_TESTS_DCT_TABLE_CHECKS_H_

#include <gtest/gtest.h>

#include <limits>

#include "kernels/kernel_samples.h"

namespace testing_support {

// The float next to a value that is itself off by a few units of its own precision, signs of zeros
// included. A value that this leaves in doubt fails.
inline testing::AssertionResult IsNearest(float got, long double value) {
  const long double doubt = 8 * std::numeric_limits<long double>::epsilon() * value;
  const auto want = static_cast<float>(value);
  if (want != static_cast<float>(value - doubt) || want != static_cast<float>(value + doubt)) {
    return testing::AssertionFailure() << want << " is too near the middle of two floats";
  }
  if (BitsOf(got) == BitsOf(want)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << got << " for " << want << ", bits " << std::hex
                                     << BitsOf(got) << " for " << BitsOf(want);
}

}  // namespace testing_support

#endif
