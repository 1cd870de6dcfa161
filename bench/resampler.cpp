// The resampler beside other libraries' at the same work: interleaved floats,
// pushed block by block through a stream that is well under way.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "bench/peers.h"
#include "bench/rates.h"

namespace {

using bench::rate_change;

// A sine of this many frames at the lower rate passes every filter unharmed.
constexpr unsigned low_period = 32;

unsigned period(rate_change change) { return change.up ? low_period : low_period * change.factor; }

struct block {
  std::size_t in_frames, out_frames;
  bench::placed<float> in, out;
};

// Room for twice what a block gives: those that work by chunks of their own
// deliver unevenly.
block make_block(rate_change change, unsigned channels, std::size_t high_frames) {
  const std::size_t in_frames = change.in_frames(high_frames);
  const std::size_t out_frames = change.out_frames(high_frames);
  return {in_frames, out_frames, bench::sines(in_frames, channels, period(change)),
          bench::placed<float>(2 * out_frames * channels)};
}

template <class Resampler>
std::size_t push(Resampler &r, block &b) {
  return r.push(b.in.data(), b.in_frames, b.out.data(), 2 * b.out_frames);
}

// Warms the resampler up, and throws unless it does the work: as many frames as
// the change of rate asks for, less what it holds back, and every channel's sine
// in them.
template <class Resampler>
void warm_up(Resampler &r, block &b, unsigned channels) {
  constexpr std::size_t pushed = 1 << 15, held_back = 1 << 13;  // frames at the higher rate
  const std::size_t high_frames = std::max(b.in_frames, b.out_frames);
  std::size_t asked = 0, given = 0, counted = 0;
  std::vector<double> power(channels);
  for (std::size_t done = 0; done < pushed; done += high_frames) {
    const std::size_t frames = push(r, b);
    asked += b.out_frames;
    given += frames;
    if (done < held_back) continue;
    counted += frames;
    for (std::size_t i = 0; i < frames * channels; ++i)
      power[i % channels] += static_cast<double>(b.out[i]) * b.out[i];
  }

  const std::size_t missing = held_back * b.out_frames / high_frames;
  if (given > asked || given + missing < asked)
    throw std::runtime_error("gave " + std::to_string(given) + " frames for " +
                             std::to_string(asked));
  for (unsigned c = 0; c < channels; ++c) {
    const double level = std::sqrt(2 * power[c] / static_cast<double>(counted));
    const double ratio = level / bench::amplitude(c);
    if (!(ratio > 0.97 && ratio < 1.03))
      throw std::runtime_error("channel " + std::to_string(c) + " has " + std::to_string(ratio) +
                               " of its amplitude");
  }
}

template <class Resampler>
void measure(benchmark::State &state, rate_change change, unsigned channels,
             std::size_t high_frames) {
  Resampler r(change, channels);
  block b = make_block(change, channels, high_frames);
  try {
    warm_up(r, b, channels);
  } catch (const std::exception &fault) {
    return state.SkipWithError(fault.what());
  }
  bench::repeat(state, [&] { return push(r, b) * channels; });
  bench::count(state, "floor", "peak/fused", change.fused_per_output());
}

// high_frames: a block's frames at the higher rate. The library's is fixed; the
// others are quickest with long ones, and gain nothing from still longer ones.
template <class Resampler>
bool enroll(const char *contender, std::size_t high_frames) {
  for (const rate_change change : bench::rate_changes)
    for (const unsigned channels : {1u, 2u, 35u})
      bench::enroll(
          "resampler/" + change.name() + "/" + std::to_string(channels) + "ch/" + contender,
          [=](benchmark::State &state) {
            measure<Resampler>(state, change, channels, high_frames);
          });
  return true;
}

[[maybe_unused]] const bool enrolled[] = {
    enroll<bench::engine>("library", 256),
#ifdef MVK_BENCH_SOXR
    enroll<bench::soxr_stream<SOXR_LQ>>("soxr-LQ", 2048),
    enroll<bench::soxr_stream<SOXR_HQ>>("soxr-HQ", 2048),
#endif
#ifdef MVK_BENCH_SPEEXDSP
    enroll<bench::speex_stream>("speexdsp-3", 2048),
#endif
#ifdef MVK_BENCH_ZITA
    enroll<bench::zita_stream>("zita-16", 2048),
#endif
};

}  // namespace
