// The Fourier transforms that others run on: those they find for themselves, and those of either
// family.
#ifndef MVK_TESTS_DCT_PAIR_KINDS_H_
#define MVK_TESTS_DCT_PAIR_KINDS_H_

#include <cstdint>
#include <vector>

#include "mvk_fft.h"
#include "reference/fft_values.h"

namespace testing_support {

struct PairKind {
  const char *name;
  const mvk_fft_pair *pair;
  bool has_coarse_twiddles;
};

// Of the radix-4 transforms, all of those that aren't of a power of two have twiddles of six
// decimals, and so has the one of 16 points.
inline bool HasCoarseTwiddles(uint32_t n) { return !reference::IsPowerOfTwo(n) || n == 16; }

// The forward pair of n points, of the faster family that has one; or null.
inline const mvk_fft_pair *FastestPair(uint32_t n) {
  const mvk_fft_pair *pair = MVK_r8_cplx_fwd_pair(n);
  return pair != nullptr ? pair : MVK_r4_cplx_fwd_pair(n);
}

// The forward pairs of n points.
inline std::vector<PairKind> PairKinds(uint32_t n) {
  std::vector<PairKind> kinds = {{"no pair", nullptr, HasCoarseTwiddles(n)}};
  if (const mvk_fft_pair *pair = MVK_r4_cplx_fwd_pair(n)) {
    kinds.push_back({"radix 4", pair, HasCoarseTwiddles(n)});
  }
  if (const mvk_fft_pair *pair = MVK_r8_cplx_fwd_pair(n)) kinds.push_back({"radix 8", pair, false});
  return kinds;
}

}  // namespace testing_support

#endif
