// How far the cosine transforms may be off.
#ifndef MVK_TESTS_DCT_COSINE_BOUNDS_H_
#define MVK_TESTS_DCT_COSINE_BOUNDS_H_

#include <cstdint>

#include "dct/pair_kinds.h"
#include "reference/dct_exact.h"

namespace testing_support {

// At most 6e-7 by the Fourier transform and 2e-7 in the mean, or twice to six times as much with
// coarse twiddles; and some eight roundings in the steps around it.
inline reference::Error BoundOf(bool coarse_twiddles) {
  return coarse_twiddles ? reference::Error{4.5e-6, 1e-6} : reference::Error{1e-6, 2.5e-7};
}

// Of n samples.
inline double BoundWithoutPair(uint32_t n) { return BoundOf(HasCoarseTwiddles(n / 2)).largest; }

}  // namespace testing_support

#endif
