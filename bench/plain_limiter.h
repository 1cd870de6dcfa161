// The limiter as one would first write it: sample by sample, one loop for each step.
#pragma once

#include <cstddef>
#include <vector>

namespace bench {

class plain_limiter {
 public:
  plain_limiter(unsigned channels, unsigned sub_block, double sample_rate);

  void process(float **out, float **in, std::size_t stride, std::size_t frames);

 private:
  unsigned channels_, n_;
  std::vector<float> window_, delay_, held_;
  std::size_t held_index_ = 0;
  float last_peak_ = 0, gain_ = 1, fast_ = 1, slow_ = 1;
  float release_, slow_keep_, recover_keep_;
};

}  // namespace bench
