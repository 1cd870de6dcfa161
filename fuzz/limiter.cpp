// A limiter's settings and process calls in any order that its header allows, with any values, in
// memory of exactly the size that it asks for.
#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

#include "orvane_ht_ztlim.h"
#include "require.h"

namespace {

constexpr unsigned kMostFrames = 1024;
constexpr uint32_t kMostChannels = 9;

float AnyFloat(FuzzedDataProvider &data) {
  return std::bit_cast<float>(data.ConsumeIntegral<uint32_t>());
}

// Channels of samples that end with the last one, some of them null where they may be.
class Channels {
 public:
  Channels(FuzzedDataProvider &data, uint32_t channels, unsigned frames, uint64_t stride,
           bool may_be_null) {
    const size_t floats = frames == 0 ? 0 : (frames - 1) * stride + 1;
    const float seed = AnyFloat(data);
    for (uint32_t c = 0; c < channels; ++c) {
      const bool null = may_be_null && data.ConsumeIntegralInRange(0, 7) == 0;
      samples_.emplace_back(null ? 0 : floats);
      for (float &x : samples_.back()) {
        x = data.remaining_bytes() >= sizeof x ? AnyFloat(data) : seed;
      }
      pointers_.push_back(null ? nullptr : samples_.back().data());
    }
  }
  float **pointers() { return pointers_.data(); }

 private:
  std::vector<std::vector<float>> samples_;
  std::vector<float *> pointers_;
};

class Limiter {
 public:
  explicit Limiter(FuzzedDataProvider &data)
      : data_(data),
        most_channels_(data.ConsumeIntegralInRange<uint32_t>(0, kMostChannels)),
        sub_block_(data.PickValueInArray({32U, 40U, 64U, 128U, 256U})) {
    uint64_t state_bytes = 0, delay_bytes = 0;
    const uint64_t bytes =
        orvane_ht_ztlim_query_memory(most_channels_, &state_bytes, &delay_bytes, sub_block_);
    Require(bytes == state_bytes + delay_bytes, "sums up the sizes of memory");
    const bool apart = data.ConsumeBool();
    state_memory_ = std::make_unique<uint8_t[]>(apart ? state_bytes : bytes);
    delay_memory_ = std::make_unique<uint8_t[]>(delay_bytes);
    state_ = orvane_ht_ztlim_init(most_channels_, sub_block_, state_memory_.get(),
                                  apart ? delay_memory_.get() : nullptr);
    Require(state_ != nullptr, "makes a limiter");
    // A rate and a block come first.
    Require(orvane_ht_ztlim_set_sample_rate(state_, 192000) == 0, "takes the highest rate");
    Require(orvane_ht_ztlim_set_block_size(state_, sub_block_) == 0, "takes a sub-block");
  }

  void Call() {
    switch (data_.ConsumeIntegralInRange(0, 9)) {
      case 0: {
        const int enable = data_.ConsumeIntegral<int>();
        orvane_ht_ztlim_set_enable(state_, enable);
        Require((orvane_ht_ztlim_get_enable(state_) != 0) == (enable != 0), "keeps being enabled");
        return;
      }
      case 1:
        return orvane_ht_ztlim_set_peak(state_, AnyFloat(data_));
      case 2: {
        const float previous = AnyFloat(data_);
        return orvane_ht_ztlim_set_boost(state_, previous, AnyFloat(data_));
      }
      case 3:
        return orvane_ht_ztlim_set_hard_clip(state_, data_.ConsumeIntegral<int>());
      case 4:
        return Set(orvane_ht_ztlim_set_sample_rate, orvane_ht_ztlim_get_sample_rate, AnyRate());
      case 5:
        return Set(orvane_ht_ztlim_set_block_size, orvane_ht_ztlim_get_block_size,
                   data_.ConsumeBool()
                       ? sub_block_ * data_.ConsumeIntegralInRange(0U, kMostFrames / sub_block_)
                       : data_.ConsumeIntegralInRange(0U, kMostFrames));
      case 6:
        return Set(orvane_ht_ztlim_set_num_channels, orvane_ht_ztlim_get_num_channels,
                   data_.ConsumeBool() ? data_.ConsumeIntegralInRange(0U, most_channels_)
                                       : data_.ConsumeIntegral<uint32_t>());
      case 7:
        return orvane_ht_ztlim_reset_state(state_);
      case 8:
        return Process(false);
      default:
        return Process(true);
    }
  }

 private:
  unsigned AnyRate() {
    return data_.ConsumeBool() ? data_.PickValueInArray({192000U, 176400U, 96000U, 88200U, 64000U,
                                                         48000U, 44100U, 32000U, 24000U})
                               : data_.ConsumeIntegral<unsigned>();
  }

  // A setter that tests its argument.
  void Set(int set(orvane_ht_ztlim_state *, unsigned), unsigned get(const orvane_ht_ztlim_state *),
           unsigned value) {
    const unsigned before = get(state_);
    const int status = set(state_, value);
    Require(status == 0 || status == -1, "answers 0 or -1");
    Require(get(state_) == (status == 0 ? value : before), "keeps what it refuses to set");
  }

  void Process(bool indirect) {
    const uint32_t channels = orvane_ht_ztlim_get_num_channels(state_);
    const unsigned frames = orvane_ht_ztlim_get_block_size(state_);
    const bool clips = orvane_ht_ztlim_get_hard_clip(state_) != 0;
    const auto in_stride = data_.ConsumeIntegralInRange<uint64_t>(1, 3);
    const auto out_stride = data_.ConsumeIntegralInRange<uint64_t>(1, 3);
    const bool in_place = in_stride == out_stride && data_.ConsumeBool();
    Channels in(data_, channels, frames, in_stride, !clips);
    Channels out(data_, channels, frames, out_stride, false);
    float **to = in_place ? in.pointers() : out.pointers();
    if (indirect) {
      const auto detecting = data_.ConsumeIntegralInRange(0U, kMostChannels);
      Channels detect(data_, detecting, frames, in_stride, !clips);
      orvane_ht_ztlim_process_indirect(state_, to, detect.pointers(), in.pointers(), in_stride,
                                       out_stride, detecting);
    } else {
      orvane_ht_ztlim_process(state_, to, in.pointers(), in_stride, out_stride);
    }
  }

  FuzzedDataProvider &data_;
  uint32_t most_channels_;
  unsigned sub_block_;
  std::unique_ptr<uint8_t[]> state_memory_, delay_memory_;
  orvane_ht_ztlim_state *state_ = nullptr;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  Limiter limiter(data);
  while (data.remaining_bytes() > 0) limiter.Call();
  return 0;
}
