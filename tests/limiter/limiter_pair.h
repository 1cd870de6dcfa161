// A limiter of the library in guarded memory and the reference's, set and fed alike.
#ifndef MVK_TESTS_LIMITER_LIMITER_PAIR_H_
#define MVK_TESTS_LIMITER_LIMITER_PAIR_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "kernels/guarded_bytes.h"
#include "kernels/kernel_samples.h"
#include "orvane_ht_ztlim.h"
#include "reference/limiter_reference.h"

namespace testing_support {

// What a state's bytes hold.
struct LimiterRecord {
  uint32_t enable;
  float peak;
  float boost;
  uint32_t hard_clip;
  uint32_t num_channels;
  uint32_t max_channels;
  uint32_t sample_rate;
  uint32_t block_size;
  float *hold_buffer;
  const float *coefs;
  const float *window;
  uint32_t sub_block;
  float last_peak;
  float prev_gain;
  uint32_t hold_index;
  uint32_t hold_length;
  float slow_gain;
  float gain;
  float fast_gain;
  float *delay;
  uint32_t num_sub_blocks;
  float prev_boost;
};
static_assert(sizeof(LimiterRecord) == 104);

// Where the delay lies: behind the state or in memory of its own.
enum class DelayPlace { kBehindState, kApart };

struct LimiterMemory {
  DelayPlace place = DelayPlace::kBehindState;
  size_t state_misalignment = 0;
  size_t delay_misalignment = 0;
  uint8_t fill = GuardedBytes::kFill;
};

// A limiter in memory of exactly the size that it asks for.
class LibraryLimiter {
 public:
  LibraryLimiter(uint32_t channels, uint32_t sub_block, const LimiterMemory &memory = {}) {
    uint64_t state_bytes = 0, delay_bytes = 0;
    const uint64_t total =
        orvane_ht_ztlim_query_memory(channels, &state_bytes, &delay_bytes, sub_block);
    const bool apart = memory.place == DelayPlace::kApart;
    state_memory_.emplace(apart ? state_bytes : total, memory.state_misalignment, memory.fill);
    if (apart) delay_memory_.emplace(delay_bytes, memory.delay_misalignment, memory.fill);
    handle_ = orvane_ht_ztlim_init(channels, sub_block, state_memory_->data(),
                                   apart ? delay_memory_->data() : nullptr);
  }

  orvane_ht_ztlim_state *handle() { return handle_; }
  GuardedBytes &state_memory() { return *state_memory_; }
  GuardedBytes &delay_memory() { return delay_memory_ ? *delay_memory_ : *state_memory_; }

  LimiterRecord Record() const {
    LimiterRecord record;
    std::memcpy(&record, handle_, sizeof record);
    return record;
  }
  std::span<float> HoldBuffer() const { return {Record().hold_buffer, Record().hold_length}; }
  std::span<float> Delay() const {
    return {Record().delay, size_t{Record().max_channels} * Record().sub_block};
  }

  testing::AssertionResult GuardsStand() const {
    if (delay_memory_) {
      if (testing::AssertionResult stand = delay_memory_->GuardsStand(); !stand) return stand;
    }
    return state_memory_->GuardsStand();
  }

 private:
  std::optional<GuardedBytes> state_memory_, delay_memory_;
  orvane_ht_ztlim_state *handle_;
};

// Channels of samples at a stride, in buffers between guard words. The words between the
// samples are NaNs.
class Channels {
 public:
  Channels(size_t frames, uint64_t stride) : frames_(frames), stride_(stride) {}
  Channels(const Channels &other)
      : frames_(other.frames_), stride_(other.stride_), channels_(other.channels_) {
    for (const Buffer &buffer : other.buffers_) {
      const std::span<const float> values = buffer.floats.values();
      AddBuffer({values.begin(), values.end()}, buffer.offset);
    }
    for (size_t c = 0; c < channels_.size(); ++c) {
      pointers_.push_back(other.pointers_[c] == nullptr ? nullptr : Start(channels_[c]));
    }
  }
  Channels &operator=(const Channels &) = delete;

  // A channel in a buffer of its own, `offset` floats behind a multiple of 32 bytes.
  void Add(const std::vector<float> &samples, int offset) { AddInterleaved({samples}, offset); }
  void AddSilent(int offset) { Add(std::vector<float>(frames_), offset); }

  // Some that lie a float apart, in one buffer.
  void AddInterleaved(const std::vector<std::vector<float>> &samples, int offset) {
    std::vector<float> values(frames_ == 0 ? 0 : (frames_ - 1) * stride_ + samples.size(), kNaN);
    for (size_t c = 0; c < samples.size(); ++c) {
      for (size_t i = 0; i < frames_; ++i) values[i * stride_ + c] = samples[c][i];
      channels_.push_back({buffers_.size(), c});
    }
    AddBuffer(std::move(values), offset);
    while (pointers_.size() < channels_.size()) {
      pointers_.push_back(Start(channels_[pointers_.size()]));
    }
  }

  // Its pointer becomes null.
  void Drop(size_t c) { pointers_[c] = nullptr; }

  void Swap(size_t a, size_t b) {
    std::swap(channels_[a], channels_[b]);
    std::swap(pointers_[a], pointers_[b]);
  }

  size_t frames() const { return frames_; }
  uint64_t stride() const { return stride_; }
  size_t count() const { return pointers_.size(); }
  float **pointers() { return pointers_.data(); }
  float At(size_t c, size_t i) const {
    const Channel &channel = channels_[c];
    return buffers_[channel.buffer].floats.values()[channel.start + i * stride_];
  }
  std::vector<float> Samples(size_t c) const {
    std::vector<float> samples(frames_);
    for (size_t i = 0; i < frames_; ++i) samples[i] = At(c, i);
    return samples;
  }

  // All memory alike in the eyes of `compare`, and nothing outside has changed.
  testing::AssertionResult Same(const Channels &wanted, decltype(SameBits) compare,
                                const char *name) const {
    for (size_t i = 0; i < buffers_.size(); ++i) {
      const Buffer &buffer = buffers_[i];
      const KernelCall call{name, "buffer", i, {buffer.offset}};
      testing::AssertionResult same =
          compare(buffer.floats.values(), wanted.buffers_[i].floats.values(), call);
      if (same) same = buffer.floats.GuardsStand(call);
      if (!same) return same;
    }
    return testing::AssertionSuccess();
  }

 private:
  struct Buffer {
    Buffer(std::vector<float> values, int behind)
        : floats(std::move(values), behind), offset(behind) {}
    GuardedFloats floats;
    int offset;
  };
  struct Channel {
    size_t buffer, start;
  };

  void AddBuffer(std::vector<float> values, int offset) {
    buffers_.emplace_back(std::move(values), offset);
  }
  float *Start(const Channel &channel) {
    return buffers_[channel.buffer].floats.data() + channel.start;
  }

  size_t frames_;
  uint64_t stride_;
  std::deque<Buffer> buffers_;
  std::vector<Channel> channels_;
  std::vector<float *> pointers_;
};

inline testing::AssertionResult SameField(const char *name, float got, float want) {
  return SameResult(got, want, {name, "field"});
}

inline testing::AssertionResult SameField(const char *name, uint32_t got, uint32_t want) {
  if (got == want) return testing::AssertionSuccess();
  return testing::AssertionFailure() << name << ": " << got << " for " << want;
}

// Every field of the state, and what it points to.
inline testing::AssertionResult SameState(const LibraryLimiter &library,
                                          const reference::Limiter &expected) {
  const LimiterRecord got = library.Record();
  const auto hold_length = static_cast<uint32_t>(expected.hold_buffer.size());
  const testing::AssertionResult fields[] = {
      SameField("enable", got.enable, expected.enable),
      SameField("peak", got.peak, expected.peak),
      SameField("boost", got.boost, expected.boost),
      SameField("hard_clip", got.hard_clip, expected.hard_clip),
      SameField("num_channels", got.num_channels, expected.num_channels),
      SameField("max_channels", got.max_channels, expected.max_channels),
      SameField("sample_rate", got.sample_rate, expected.sample_rate),
      SameField("block_size", got.block_size, expected.block_size),
      SameField("sub_block", got.sub_block, expected.sub_block),
      SameField("last_peak", got.last_peak, expected.last_peak),
      SameField("prev_gain", got.prev_gain, expected.prev_gain),
      SameField("hold_index", got.hold_index, expected.hold_index),
      SameField("hold_length", got.hold_length, hold_length),
      SameField("slow_gain", got.slow_gain, expected.slow_gain),
      SameField("gain", got.gain, expected.gain),
      SameField("fast_gain", got.fast_gain, expected.fast_gain),
      SameField("num_sub_blocks", got.num_sub_blocks, expected.num_sub_blocks),
      SameField("prev_boost", got.prev_boost, expected.prev_boost),
      SameSamples({got.hold_buffer, hold_length}, expected.hold_buffer, {"hold_buffer", "field"}),
      SameBits({got.window, expected.sub_block}, expected.window, {"window", "field"}),
      SameBits(library.Delay(), expected.delay, {"delay", "field"}),
  };
  for (const testing::AssertionResult &field : fields) {
    if (!field) return field;
  }
  if ((got.coefs == nullptr) != (expected.times == nullptr)) {
    return testing::AssertionFailure() << "coefs: null or not";
  }
  if (got.coefs != nullptr && got.coefs[4] != reference::Fifteenths(expected.times->release)) {
    return testing::AssertionFailure() << "coefs: of another rate";
  }
  return library.GuardsStand();
}

class LimiterPair {
 public:
  LimiterPair(uint32_t channels, uint32_t sub_block, const LimiterMemory &memory = {})
      : library(channels, sub_block, memory),
        expected(channels, sub_block, memory.fill * 0x01010101u) {}

  void SetEnable(int on) {
    orvane_ht_ztlim_set_enable(library.handle(), on);
    expected.SetEnable(on);
  }
  void SetHardClip(int on) {
    orvane_ht_ztlim_set_hard_clip(library.handle(), on);
    expected.SetHardClip(on);
  }
  void SetPeak(float peak) {
    orvane_ht_ztlim_set_peak(library.handle(), peak);
    expected.peak = peak;
  }
  void SetBoost(float from, float to) {
    orvane_ht_ztlim_set_boost(library.handle(), from, to);
    expected.SetBoost(from, to);
  }
  void SetSampleRate(uint32_t rate) {
    EXPECT_EQ(orvane_ht_ztlim_set_sample_rate(library.handle(), rate),
              expected.SetSampleRate(rate));
  }
  void SetBlockSize(uint32_t frames) {
    EXPECT_EQ(orvane_ht_ztlim_set_block_size(library.handle(), frames),
              expected.SetBlockSize(frames));
  }
  void SetNumChannels(uint32_t channels) {
    EXPECT_EQ(orvane_ht_ztlim_set_num_channels(library.handle(), channels),
              expected.SetNumChannels(channels));
  }
  void Reset() {
    orvane_ht_ztlim_reset_state(library.handle());
    expected.Reset();
  }

  // The calls that come before the first block. The rate is one that every length serves.
  void Start(uint32_t channels, uint32_t frames, uint32_t rate = 96000) {
    SetNumChannels(channels);
    SetSampleRate(rate);
    SetBlockSize(frames);
    SetEnable(1);
  }

  // One block through both, each in memory of its own. `out` gets the library's result.
  testing::AssertionResult Process(Channels &out, Channels &in) { return Run(out, nullptr, in); }
  testing::AssertionResult ProcessIndirect(Channels &out, Channels &detect, Channels &in) {
    return Run(out, &detect, in);
  }

  // As a process call on the memory itself.
  testing::AssertionResult ProcessInPlace(Channels &audio) { return Run(audio, nullptr, audio); }

  LibraryLimiter library;
  reference::Limiter expected;

 private:
  testing::AssertionResult Run(Channels &out, Channels *detect, Channels &in) {
    Channels wanted_in = in;
    std::optional<Channels> other_out, other_detect;
    Channels &wanted_out = &out == &in ? wanted_in : other_out.emplace(out);
    if (detect == nullptr) {
      orvane_ht_ztlim_process(library.handle(), out.pointers(), in.pointers(), in.stride(),
                              out.stride());
      expected.Process(wanted_out.pointers(), wanted_in.pointers(), in.stride(), out.stride());
    } else {
      Channels &wanted_detect = detect == &in ? wanted_in : other_detect.emplace(*detect);
      const auto detect_channels = static_cast<uint32_t>(detect->count());
      orvane_ht_ztlim_process_indirect(library.handle(), out.pointers(), detect->pointers(),
                                       in.pointers(), in.stride(), out.stride(), detect_channels);
      expected.ProcessIndirect(wanted_out.pointers(), wanted_detect.pointers(),
                               wanted_in.pointers(), in.stride(), out.stride(), detect_channels);
      if (other_detect) {
        if (auto same = detect->Same(*other_detect, SameBits, "detect"); !same) return same;
      }
    }
    if (auto same = out.Same(wanted_out, SameSamples, "out"); !same) return same;
    if (&out != &in) {
      if (auto same = in.Same(wanted_in, SameBits, "in"); !same) return same;
    }
    return SameState(library, expected);
  }
};

}  // namespace testing_support

#endif
