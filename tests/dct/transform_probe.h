// A pair of transforms that note how they are called, and answer with what they are told to.
#ifndef MVK_TESTS_DCT_TRANSFORM_PROBE_H_
#define MVK_TESTS_DCT_TRANSFORM_PROBE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "mvk_fft.h"

namespace testing_support {

// One at a time.
class TransformProbe {
 public:
  struct Call {
    bool scaled;
    const float *dst;
    const float *src;
    uint32_t n;
    std::vector<float> input;
  };

  // Reads and writes as many floats as there are in the answer.
  explicit TransformProbe(std::vector<float> answer) {
    answer_ = std::move(answer);
    calls_.clear();
  }

  const mvk_fft_pair *pair() const { return &kPair; }
  const std::vector<Call> &calls() const { return calls_; }

 private:
  template <bool kScaled>
  static void Run(float *dst, float *src, uint32_t n) {
    calls_.push_back({kScaled, dst, src, n, {src, src + answer_.size()}});
    std::copy(answer_.begin(), answer_.end(), dst);
  }

  static constexpr mvk_fft_pair kPair = {Run<false>, Run<true>};
  static inline std::vector<float> answer_;
  static inline std::vector<Call> calls_;
};

}  // namespace testing_support

#endif
