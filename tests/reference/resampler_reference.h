// The resampler written the long way round, for tests.
//
// Engine keeps every sample that it has ever been given and looks each window up in that record;
// Formula evaluates the defining sums in double and knows nothing of phases, lanes or blocks.
#ifndef MVK_TESTS_REFERENCE_RESAMPLER_REFERENCE_H_
#define MVK_TESTS_REFERENCE_RESAMPLER_REFERENCE_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "orvane_resampler.h"
#include "reference/conversion_reference.h"
#include "reference/prototype_taps.h"

namespace reference {

// Four accumulators that share out the slots of a phase, and their sum.
struct Lanes {
  std::array<float, 4> sum{};

  // `sample(k)` meets slot k. Phase 0 goes on to slot 23, any other to slot 19, so that slots
  // without a tap take part as zeros: an infinity that meets one makes a NaN.
  template <typename Sample>
  void AddPhase(unsigned factor, unsigned phase, Sample sample) {
    const int slots = phase == 0 ? 24 : 20;
    for (int k = 0; k < slots; ++k) {
      float &lane = sum[static_cast<size_t>(k % 4)];
      lane = std::fma(Coefficient(factor, phase, k), sample(k), lane);
    }
  }

  float Total() const { return (sum[0] + sum[1]) + (sum[2] + sum[3]); }
};

struct Engine {
  Engine(unsigned engine_factor, unsigned engine_channels, bool goes_up)
      : factor(engine_factor),
        channels(engine_channels),
        up(goes_up),
        heard(channels),
        work(size_t{channels} * InFrames()) {
    for (auto &stream : heard) stream.assign(size_t{kHistory} * factor, 0.0f);
  }

  uint64_t LowFrames() const { return factor == 0 ? 0 : kBlockFrames / factor; }
  uint64_t InFrames() const { return up ? LowFrames() : kBlockFrames; }
  uint64_t OutFrames() const { return up ? kBlockFrames : LowFrames(); }

  unsigned factor;
  unsigned channels;
  bool up;
  std::vector<std::vector<float>> heard;  // per channel: silence, then all blocks so far
  std::vector<float> work;                // the last converted block, interleaved
};

// Output frame n of the block that ends the record `x`.
inline float UpsampledFrame(const Engine &engine, const std::vector<float> &x, unsigned n) {
  const unsigned factor = engine.factor;
  const unsigned phase = factor - 1 - n % factor;
  const float *window = x.data() + x.size() - engine.InFrames() - kHistory + n / factor;
  Lanes lanes;
  lanes.AddPhase(factor, phase, [&](int k) { return window[k]; });
  return factor == 2 ? lanes.Total() + lanes.Total() : lanes.Total() * 4.0f;
}

inline float DownsampledFrame(const Engine &engine, const std::vector<float> &x, unsigned j) {
  const unsigned factor = engine.factor;
  const float *window =
      x.data() + x.size() - engine.InFrames() - size_t{kHistory} * factor + size_t{factor} * j;
  Lanes lanes;
  for (unsigned phase = 0; phase < factor; ++phase) {
    lanes.AddPhase(factor, phase,
                   [&](int k) { return window[factor * static_cast<unsigned>(k) + phase]; });
  }
  return lanes.Total();
}

// Takes the next block of channel c from a stream of floats.
inline void Hear(Engine &engine, const orvane_stream_desc &floats, uint32_t c) {
  for (uint64_t i = 0; i < engine.InFrames(); ++i) {
    engine.heard[c].push_back(Load<float>(SampleAt(floats, c, i)));
  }
}

// One block through an engine, in its direction. Floats are written into the memory of `out`
// channel after channel and converted there, so that streams which overlap come out byte for byte.
inline uint64_t Run(Engine &engine, const orvane_stream_desc &out, const orvane_stream_desc &in) {
  if (engine.factor == 1) {
    const uint64_t span = std::max<uint64_t>(in.nchannels, in.stride);
    std::memmove(out.channel_ptrs[0], in.channel_ptrs[0], span * engine.InFrames() * 4);
    return engine.OutFrames();
  }

  std::vector<void *> work_pointers;
  for (unsigned c = 0; c < engine.channels; ++c) work_pointers.push_back(engine.work.data() + c);
  const bool staged = in.datatype != DT_LONG;
  const orvane_stream_desc work{engine.channels, engine.channels, DT_LONG, work_pointers.data()};
  if (staged) Convert(in, work, 0, 0, engine.InFrames());
  const orvane_stream_desc &floats = staged ? work : in;

  const orvane_stream_desc view{out.nchannels, out.stride, DT_LONG, out.channel_ptrs};
  if (engine.factor == 2 || engine.factor == 4) {
    // Going down, the frames stand as far apart as those of the input.
    orvane_stream_desc written = view;
    if (!engine.up) written.stride = floats.stride;
    for (uint32_t c = 0; c < engine.channels; ++c) {
      Hear(engine, floats, c);
      for (unsigned n = 0; n < engine.OutFrames(); ++n) {
        const auto frame = engine.up ? UpsampledFrame : DownsampledFrame;
        Store(SampleAt(written, c, n), frame(engine, engine.heard[c], n));
      }
    }
  }
  if (staged) Convert(view, out, 0, 0, engine.OutFrames());
  return engine.OutFrames();
}

// Output frame n of the whole stream x, which silence precedes, and the sum of the magnitudes of
// its terms.
struct FormulaResult {
  double value = 0;
  double magnitude = 0;
};

inline FormulaResult Formula(unsigned factor, bool up, const std::vector<float> &x, int n) {
  const int f = static_cast<int>(factor);
  FormulaResult result;
  for (int t = 0; t < TapCount(factor); ++t) {
    int m = 0;
    if (up) {
      // Tap t = f m - n + 24 f - 1 belongs to sample m.
      const int dividend = t + n - (24 * f - 1);
      if (dividend % f != 0) continue;
      m = dividend / f;
    } else {
      m = f * n + t - kHistory * f;
    }
    if (m < 0 || m >= static_cast<int>(x.size())) continue;
    const double gain = up ? f : 1;
    const double term =
        gain * Tap(factor, t) / 32768.0 * static_cast<double>(x[static_cast<size_t>(m)]);
    result.value += term;
    result.magnitude += std::abs(term);
  }
  return result;
}

// How far float arithmetic may lie from the formula: one rounding for each fused step of a lane and
// for the two additions that join the lanes, and one to spare for terms of second order.
inline double RoundingBound(unsigned factor, bool up, const FormulaResult &exact) {
  const int steps = up ? 6 : 6 + 5 * (static_cast<int>(factor) - 1);
  return (steps + 3) * 0x1p-24 * exact.magnitude + 0x1p-140;
}

}  // namespace reference

#endif
