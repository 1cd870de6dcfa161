// The limiter, limiting all the time, beside a copy of the same memory and beside a
// limiter written sample by sample.
#include <cstddef>
#include <string>

#include "bench/callees.h"
#include "bench/kernels.h"
#include "bench/plain_limiter.h"
#include "orvane_ht_ztlim.h"

namespace {

constexpr unsigned channels = 2, frames = 2048, rate = 96000;
constexpr unsigned sub_blocks[] = {32, 40, 64, 128, 256};

// A block's frames: 2048, or as near as whole sub-blocks come.
constexpr unsigned block_frames(unsigned sub_block) { return frames / sub_block * sub_block; }

struct layout {
  const char *name;
  std::size_t frame_step, channel_step;
};
constexpr layout layouts[] = {{"contiguous", 1, frames}, {"interleaved", channels, 1}};

// Stereo noise twice as loud as the peak, and where it goes.
struct stereo {
  bench::placed<float> x = bench::noise(channels * frames, 1), y{channels * frames};
  float *in[channels], *out[channels];

  explicit stereo(const layout &l) {
    for (float *p = x.data(); p < x.data() + x.size(); ++p) *p *= 2;
    for (unsigned c = 0; c < channels; ++c) {
      in[c] = x.data() + c * l.channel_step;
      out[c] = y.data() + c * l.channel_step;
    }
  }
};

struct limiter {
  explicit limiter(unsigned sub_block)
      : memory(orvane_ht_ztlim_query_memory(channels, nullptr, nullptr, sub_block)),
        state(orvane_ht_ztlim_init(channels, sub_block, memory.data(), nullptr)) {
    orvane_ht_ztlim_set_num_channels(state, channels);
    orvane_ht_ztlim_set_sample_rate(state, rate);
    orvane_ht_ztlim_set_block_size(state, block_frames(sub_block));
    orvane_ht_ztlim_set_enable(state, 1);
  }
  bench::placed<std::byte> memory;
  orvane_ht_ztlim_state *state;
};

void enroll_signal(const layout &l, unsigned sub_block) {
  const std::string name = std::string("limiter/") + l.name + "/" + std::to_string(sub_block) + "/";
  const unsigned n = block_frames(sub_block);
  bench::enroll(name + "library", [=](benchmark::State &state) {
    limiter own(sub_block);
    stereo s(l);
    bench::repeat(state, [&] {
      orvane_ht_ztlim_process(own.state, s.out, s.in, l.frame_step, l.frame_step);
      return channels * n;
    });
  });
  bench::enroll(name + "copy", [=](benchmark::State &state) {
    stereo s(l);
    bench::repeat(state, [&] {
      bench::copy(s.y.data(), s.x.data(), channels * n);
      return channels * n;
    });
  });
  bench::enroll(name + "scalar", [=](benchmark::State &state) {
    bench::plain_limiter own(channels, sub_block, rate);
    stereo s(l);
    bench::repeat(state, [&] {
      own.process(s.out, s.in, l.frame_step, n);
      return channels * n;
    });
  });
}

// The gain computer nearly alone: one short channel to detect in and none to limit. A
// "sample" is a sub-block here.
void enroll_gain() {
  bench::enroll("limiter-gain/update/library", [](benchmark::State &state) {
    constexpr unsigned sub_block = 32;
    limiter own(sub_block);
    orvane_ht_ztlim_set_num_channels(own.state, 0);
    stereo s(layouts[0]);
    bench::repeat(state, [&] {
      orvane_ht_ztlim_process_indirect(own.state, s.out, s.in, s.in, 1, 1, 1);
      return frames / sub_block;
    });
    // From slow_gain to slow_gain: the level, its reciprocal, the required and the held gain,
    // the release and the slow stage's four steps, with a selection behind each comparison.
    bench::count(state, "chain", "latency/reciprocal64", 1);
    bench::count(state, "chain", "latency/mul", 5);
    bench::count(state, "chain", "latency/fma", 3);
    bench::count(state, "chain", "latency/max", 4);
  });
}

[[maybe_unused]] const bool enrolled = [] {
  for (const layout &l : layouts)
    for (const unsigned sub_block : sub_blocks) enroll_signal(l, sub_block);
  enroll_gain();
  return true;
}();

}  // namespace
