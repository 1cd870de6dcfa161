#include "bench/plain_limiter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr float peak = 1, threshold = 0.8414f;

float decay(double half_life, double rate) {
  return static_cast<float>(std::exp2(-1 / (half_life * rate)));
}

}  // namespace

bench::plain_limiter::plain_limiter(unsigned channels, unsigned sub_block, double sample_rate)
    : channels_(channels),
      n_(sub_block),
      window_(n_),
      delay_(channels * n_),
      held_(n_ == 32   ? 3
            : n_ == 40 ? 2
                       : 1,
            1.0f),
      release_(decay(0.005, sample_rate / n_)),
      slow_keep_(decay(0.04, sample_rate / n_)),
      recover_keep_(decay(0.16, sample_rate / n_)) {
  for (unsigned i = 0; i < n_; ++i) {
    const double s = std::sin(std::numbers::pi * (i + 0.5) / (2 * n_));
    window_[i] = static_cast<float>(s * s);
  }
}

void bench::plain_limiter::process(float **out, float **in, std::size_t stride,
                                   std::size_t frames) {
  for (std::size_t start = 0; start < frames; start += n_) {
    float level = 0;
    for (unsigned c = 0; c < channels_; ++c)
      for (unsigned i = 0; i < n_; ++i)
        level = std::max(level, std::abs(in[c][(start + i) * stride]));

    const float heard = std::max(level, last_peak_) * slow_;
    const float required = heard > peak ? peak / heard : 1;
    const float held = std::min(required, *std::min_element(held_.begin(), held_.end()));
    held_[held_index_] = required;
    held_index_ = (held_index_ + 1) % held_.size();
    last_peak_ = level;

    const float from = gain_;
    if (required * slow_ < gain_) {
      fast_ = required;
      gain_ = required * slow_;
    } else {
      fast_ = release_ * fast_ + (1 - release_) * held;
      gain_ = std::min(std::max(gain_, slow_ * fast_), required * slow_);
    }
    if (fast_ < threshold)
      slow_ = slow_keep_ * slow_ + (1 - slow_keep_) * (fast_ * slow_ / threshold);
    else
      slow_ = recover_keep_ * slow_ + (1 - recover_keep_);

    for (unsigned c = 0; c < channels_; ++c)
      for (unsigned i = 0; i < n_; ++i) {
        float &delayed = delay_[c * n_ + i];
        const float g = window_[n_ - 1 - i] * from + window_[i] * gain_;
        const float x = in[c][(start + i) * stride];
        out[c][(start + i) * stride] = g * delayed;
        delayed = x;
      }
  }
}
