// The changes of rate that are measured, and the library's engine at work on one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "orvane_resampler.h"

namespace bench {

struct rate_change {
  bool up;
  unsigned factor;

  std::string name() const { return (up ? "up" : "down") + std::to_string(factor); }

  // Frames at either end, for `high` frames at the higher rate.
  std::size_t in_frames(std::size_t high) const { return up ? high / factor : high; }
  std::size_t out_frames(std::size_t high) const { return up ? high : high / factor; }

  // Vectors of four taps: six for the first phase of a filter and five for any
  // other. All of them make one sample going down, and one of each phase going up.
  double fused_per_output() const {
    const unsigned taps = 4 * (6 + 5 * (factor - 1));
    return up ? static_cast<double>(taps) / factor : taps;
  }
};

inline constexpr rate_change rate_changes[] = {{true, 2}, {true, 4}, {false, 2}, {false, 4}};

// The library's resampler on interleaved floats, block by block.
class engine {
 public:
  engine(rate_change change, unsigned channels)
      : change_(change),
        arena_(orvane_resampler_query(change.factor, static_cast<int>(channels), change.up)),
        handle_(orvane_resampler_init(change.factor, channels, change.up, arena_.data())),
        in_(channels),
        out_(channels) {}

  std::size_t push(const float *in, std::size_t /*frames*/, float *out, std::size_t /*room*/) {
    orvane_stream_desc src = layout(in_, const_cast<float *>(in));
    orvane_stream_desc dst = layout(out_, out);
    return change_.up ? orvane_resampler_upsample(&dst, &src, handle_)
                      : orvane_resampler_downsample(&dst, &src, handle_);
  }

 private:
  static orvane_stream_desc layout(std::vector<void *> &channels, float *start) {
    for (std::size_t c = 0; c < channels.size(); ++c) channels[c] = start + c;
    return {static_cast<uint32_t>(channels.size()), channels.size(), DT_LONG, channels.data()};
  }

  rate_change change_;
  placed<unsigned char> arena_;
  orvane_resampler *handle_;
  std::vector<void *> in_, out_;
};

}  // namespace bench
