// The limiter, one sample and one comparison at a time, for tests.
#ifndef MVK_TESTS_REFERENCE_LIMITER_REFERENCE_H_
#define MVK_TESTS_REFERENCE_LIMITER_REFERENCE_H_

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "reference/block_reference.h"
#include "reference/reduction_reference.h"

namespace reference {

// What goes with a length of the sub-block.
struct LimiterLength {
  uint32_t sub_block;
  uint32_t hold_length;
  size_t rates;  // it serves that many of kLimiterRates, from the first
};

inline constexpr LimiterLength kLimiterLengths[] = {
    {32, 3, 9}, {40, 2, 9}, {64, 1, 9}, {128, 1, 6}, {256, 1, 3}};

inline constexpr uint32_t kLimiterRates[] = {192000, 176400, 96000, 88200, 64000,
                                             48000,  44100,  32000, 24000};

// What goes with a rate of gain updates a second, in units of 2^-15.
struct LimiterTimes {
  double updates;
  int slow_keep;
  int slow_follow;
  int recover_keep;
  int recover_step;
  int release;
  int release_half;
};

inline constexpr LimiterTimes kLimiterTimes[] = {
    {6000, 32673, 95, 32744, 24, 32020, 32392},   {5512.5, 32665, 103, 32742, 26, 31954, 32359},
    {4800, 32650, 118, 32738, 30, 31835, 32298},  {4410, 32639, 129, 32736, 32, 31754, 32257},
    {3000, 32579, 189, 32721, 47, 31288, 32020},  {2756.25, 32562, 206, 32716, 52, 31159, 31953},
    {2400, 32532, 236, 32709, 59, 30929, 31835},  {2205, 32511, 257, 32704, 64, 30771, 31754},
    {2000, 32485, 283, 32697, 71, 30574, 31652},  {1600, 32415, 353, 32679, 89, 30048, 31379},
    {1500, 32392, 376, 32673, 95, 29875, 31288},  {1378.125, 32359, 409, 32665, 103, 29632, 31161},
    {1200, 32298, 470, 32650, 118, 29193, 30929}, {1102.5, 32257, 511, 32639, 129, 28896, 30771},
    {1000, 32205, 563, 32626, 142, 28526, 30574}, {800, 32066, 702, 32591, 177, 27554, 30048},
    {750, 32020, 748, 32579, 189, 27238, 29875},  {689.0625, 31954, 814, 32563, 205, 26796, 29632},
    {600, 31835, 933, 32532, 236, 26008, 29193},  {500, 31652, 1116, 32485, 283, 24834, 28526},
    {375, 31288, 1480, 32392, 376, 22641, 27238},
};

// Null for a length that there is none of.
inline const LimiterLength *LengthOf(uint32_t sub_block) {
  const auto *found = std::find_if(
      std::begin(kLimiterLengths), std::end(kLimiterLengths),
      [sub_block](const LimiterLength &length) { return length.sub_block == sub_block; });
  return found == std::end(kLimiterLengths) ? nullptr : found;
}

// Null for a rate that the length doesn't serve.
inline const LimiterTimes *TimesOf(uint32_t sub_block, uint32_t rate) {
  const auto *served_end = std::begin(kLimiterRates) + LengthOf(sub_block)->rates;
  if (std::find(std::begin(kLimiterRates), served_end, rate) == served_end) return nullptr;
  const double updates = static_cast<double>(rate) / sub_block;
  return std::find_if(std::begin(kLimiterTimes), std::end(kLimiterTimes),
                      [updates](const LimiterTimes &row) { return row.updates == updates; });
}

// The slow stage turns where the fast one is at this, and its reciprocal.
inline constexpr float kSlowThreshold = std::bit_cast<float>(0x3F576600u);      // 0.8414
inline constexpr float kOverSlowThreshold = std::bit_cast<float>(0x3F98209Cu);  // 1.1885

inline float Fifteenths(int64_t units) { return static_cast<float>(units) * 0x1p-15f; }

// Entry i of the window of n entries.
inline float LimiterWindow(uint32_t n, uint32_t i) {
  const long double half_turn = std::numbers::pi_v<long double> / 2;
  const long double sine = std::sin(half_turn * (i + 0.5L) / n);
  return Fifteenths(std::min(std::llround(sine * sine * 0x1p15L), 32767LL));
}

class Limiter {
 public:
  // Fields that the limiter starts without are as `unset` has them.
  Limiter(uint32_t channels, uint32_t length, uint32_t unset = 0)
      : max_channels(channels),
        block_size(length),
        hold_buffer(LengthOf(length)->hold_length, 1.0f),
        window(length),
        sub_block(length),
        delay(size_t{channels} * length, 0.0f),
        num_sub_blocks(unset) {
    for (uint32_t i = 0; i < length; ++i) window[i] = LimiterWindow(length, i);
  }

  void SetEnable(int on) {
    if (enable == 0 && on != 0 && hard_clip == 0) ClearDelay();
    enable = static_cast<uint32_t>(on);
  }

  void SetHardClip(int on) {
    if (hard_clip != 0 && on == 0 && enable != 0) ClearDelay();
    hard_clip = static_cast<uint32_t>(on);
  }

  void SetBoost(float from, float to) {
    prev_boost = from;
    boost = to;
  }

  int SetSampleRate(uint32_t rate) {
    if (rate == sample_rate) return 0;
    const LimiterTimes *row = TimesOf(sub_block, rate);
    if (row == nullptr) return -1;
    sample_rate = rate;
    times = row;
    slow_gain = 1;
    fast_gain = 1;
    return 0;
  }

  int SetBlockSize(uint32_t frames) {
    if (frames % sub_block != 0) return -1;
    block_size = frames;
    num_sub_blocks = frames / sub_block;
    return 0;
  }

  int SetNumChannels(uint32_t channels) {
    if (channels > max_channels) return -1;
    num_channels = channels;
    return 0;
  }

  void Reset() {
    fast_gain = slow_gain = gain = prev_gain = 1;
    last_peak = 0;
    hold_index = 0;
    ClearDelay();
  }

  void Process(float *const *out, const float *const *in, uint64_t in_stride, uint64_t out_stride) {
    ProcessIndirect(out, in, in, in_stride, out_stride, num_channels);
  }

  void ProcessIndirect(float *const *out, const float *const *detect, const float *const *in,
                       uint64_t in_stride, uint64_t out_stride, uint32_t detect_channels) {
    if (enable == 0) return;
    if (hard_clip != 0) {
      const bool in_blocks = in_stride == 1 && out_stride == 1 && sub_block != 40;
      for (uint32_t c = 0; c < num_channels; ++c) {
        for (uint32_t i = 0; i < block_size; ++i) {
          const float x = in[c][i * in_stride];
          out[c][i * out_stride] = in_blocks ? ClippedInBlock(x) : Clipped(x);
        }
      }
      return;
    }
    for (uint64_t s = 0; s < num_sub_blocks; ++s) {
      const uint64_t frame = s * sub_block;
      UpdateGains(PeakFrom(detect, frame, in_stride, detect_channels));
      for (uint32_t c = 0; c < num_channels; ++c) {
        if (in[c] == nullptr) continue;
        Apply(c, out[c] + frame * out_stride, in[c] + frame * in_stride, in_stride, out_stride);
      }
      prev_boost = boost;
    }
  }

  // What the audio that arrives, with peak p, makes of the gains.
  void UpdateGains(float p) {
    const float q = !(last_peak < p) ? last_peak : p;
    const float t = q * slow_gain;
    prev_gain = gain;
    last_peak = p;
    float g = 1;
    if (t > peak) g = static_cast<float>(1.0 / static_cast<double>(t)) * peak;
    float m = g;
    for (float b : hold_buffer) m = b > m ? m : b;
    hold_buffer[hold_index] = g;
    hold_index = (hold_index + 1) % static_cast<uint32_t>(hold_buffer.size());

    const float wanted = g * slow_gain;
    if (wanted < gain) {
      fast_gain = g;
      gain = wanted;
    } else {
      const float a = Fifteenths(times->release);
      fast_gain = std::fma(fast_gain, a, std::fma(-a, m, m));
      const float released = slow_gain * fast_gain;
      if (gain < released) gain = released;
      if (wanted < gain) gain = wanted;
    }

    const float f = fast_gain;
    const float u = slow_gain;
    if (f < kSlowThreshold) {
      const float towards = (f * u) * kOverSlowThreshold;
      slow_gain =
          std::fma(u, Fifteenths(times->slow_keep), towards * Fifteenths(times->slow_follow));
    } else {
      slow_gain = std::fma(u, Fifteenths(times->recover_keep), Fifteenths(times->recover_step));
    }
  }

  uint32_t enable = 0;
  float peak = 1;
  float boost = 1.0f / 256;
  uint32_t hard_clip = 0;
  uint32_t num_channels = 0;
  uint32_t max_channels;
  uint32_t sample_rate = 0xffffffffu;
  uint32_t block_size;
  std::vector<float> hold_buffer;
  const LimiterTimes *times = nullptr;
  std::vector<float> window;
  uint32_t sub_block;
  float last_peak = 0;
  float prev_gain = 1;
  uint32_t hold_index = 0;
  float slow_gain = 1;
  float gain = 1;
  float fast_gain = 1;
  std::vector<float> delay;
  uint32_t num_sub_blocks;
  float prev_boost = 1.0f / 256;

 private:
  void ClearDelay() { std::fill(delay.begin(), delay.end(), 0.0f); }

  // A NaN is held to the upper limit.
  float BelowPeak(float x) const { return x < peak ? x : peak; }

  float Clipped(float x) const {
    const float t = BelowPeak(x);
    const float y = -peak > t ? -peak : t;
    return (y * boost) * 256.0f;
  }

  float ClippedInBlock(float x) const { return Scaled(Max(BelowPeak(x), -peak), boost, 8); }

  float PeakFrom(const float *const *detect, uint64_t frame, uint64_t stride,
                 uint32_t channels) const {
    float p = 0;
    for (uint32_t c = 0; c < channels; ++c) {
      if (detect[c] == nullptr) continue;
      const float *x = detect[c] + frame * stride;
      if (stride == 1) {
        const float m = IsAligned(x) ? PeakOfGroups(x, sub_block) : Peak(x, sub_block);
        p = m > p ? m : p;
        continue;
      }
      for (uint32_t i = 0; i < sub_block; ++i) {
        const float y = x[i * stride];
        const float a = -y > y ? -y : y;
        p = p > a ? p : a;
      }
    }
    return p;
  }

  void Apply(uint32_t c, float *out, const float *in, uint64_t in_stride, uint64_t out_stride) {
    const uint32_t n = sub_block;
    const float before = prev_gain * prev_boost;
    const float now = gain * boost;
    for (uint32_t i = 0; i < n; ++i) {
      float &held = delay[size_t{c} * n + i];
      const float d = held;
      held = in[i * in_stride];
      const float rising = (now * d) * window[i];
      out[i * out_stride] = std::fma(window[n - 1 - i], before * d, rising) * 256.0f;
    }
  }
};

}  // namespace reference

#endif
