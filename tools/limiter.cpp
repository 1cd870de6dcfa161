#include "limiter.h"

#include <cmath>
#include <utility>

#include "choice.h"
#include "messages.h"

namespace mvk {
namespace {

constexpr int kLongestSubBlock = 4096;  // that is tried
constexpr int kHighestRate = 384000;

// A state in `memory`, or null for a sub-block that there is none of.
orvane_ht_ztlim_state *make_state(const LimiterFunctions &functions, std::vector<char> &memory,
                                  unsigned channels, unsigned sub_block) {
  memory.resize(functions.query_memory(channels, nullptr, nullptr, sub_block));
  return functions.init(channels, sub_block, memory.data(), nullptr);
}

// The rates of every sub-block, one line for those that have them in common. The
// library doesn't name them, but tells for each whether it serves it.
std::string choices(const LimiterFunctions &functions) {
  std::vector<char> memory;
  std::vector<std::pair<std::vector<int>, std::vector<int>>> rows;
  for (int sub_block = 1; sub_block <= kLongestSubBlock; ++sub_block) {
    orvane_ht_ztlim_state *state =
        make_state(functions, memory, 0, static_cast<unsigned>(sub_block));
    if (state == nullptr) continue;
    std::vector<int> rates;
    for (int rate = 1; rate <= kHighestRate; ++rate) {
      if (functions.set_sample_rate(state, static_cast<unsigned>(rate)) == 0) rates.push_back(rate);
    }
    if (rows.empty() || rows.back().first != rates) rows.push_back({rates, {}});
    rows.back().second.push_back(sub_block);
  }
  std::string lines;
  for (const auto &[rates, sub_blocks] : rows) {
    lines += "\n  --sub-block " + listed(sub_blocks, "or") + ": " + listed(rates, "and") + " Hz";
  }
  return lines;
}

std::string frames_of(unsigned sub_block) { return std::to_string(sub_block) + " frames"; }

orvane_ht_ztlim_state *make_known_state(const LimiterFunctions &functions,
                                        std::vector<char> &memory, int channels,
                                        unsigned sub_block) {
  // Without channels first, for which no length is too long.
  if (make_state(functions, memory, 0, sub_block) == nullptr) {
    refuse("the limiter has no sub-blocks of " + frames_of(sub_block) + "; it takes" +
           choices(functions));
  }
  return make_state(functions, memory, static_cast<unsigned>(channels), sub_block);
}

}  // namespace

LimiterFunctions::LimiterFunctions(const Library &library) {
  const auto find = [&]<typename Type>(Type *&function, const char *name) {
    function = library.find<Type>(name);
  };
  find(query_memory, "orvane_ht_ztlim_query_memory");
  find(init, "orvane_ht_ztlim_init");
  find(set_num_channels, "orvane_ht_ztlim_set_num_channels");
  find(set_sample_rate, "orvane_ht_ztlim_set_sample_rate");
  find(set_block_size, "orvane_ht_ztlim_set_block_size");
  find(set_peak, "orvane_ht_ztlim_set_peak");
  find(set_boost, "orvane_ht_ztlim_set_boost");
  find(set_hard_clip, "orvane_ht_ztlim_set_hard_clip");
  find(set_enable, "orvane_ht_ztlim_set_enable");
  find(get_latency, "orvane_ht_ztlim_get_latency");
  find(get_limiter_gain, "orvane_ht_ztlim_get_limiter_gain");
  find(process_indirect, "orvane_ht_ztlim_process_indirect");
}

Limiter::Limiter(const Library &library, const LimiterSettings &settings, const LimiterAudio &audio)
    : functions_(library),
      state_(make_known_state(functions_, memory_, audio.channels, settings.sub_block)),
      audio_(settings.sub_block, audio.channels),
      detect_(settings.sub_block, audio.detect_channels) {
  functions_.set_num_channels(state_, static_cast<unsigned>(audio.channels));
  // Clipping has no time constants, and so no rates that it doesn't serve.
  if (!settings.hard_clip &&
      functions_.set_sample_rate(state_, static_cast<unsigned>(audio.rate)) != 0) {
    refuse(audio.name + " has " + std::to_string(audio.rate) + " Hz, which sub-blocks of " +
           frames_of(settings.sub_block) + " don't serve; the limiter takes" + choices(functions_));
  }
  functions_.set_block_size(state_, settings.sub_block);
  functions_.set_peak(state_, settings.peak);
  const float boost = settings.boost / 256;  // the library's unity
  functions_.set_boost(state_, boost, boost);
  functions_.set_hard_clip(state_, settings.hard_clip ? 1 : 0);
  functions_.set_enable(state_, 1);
}

void Limiter::process(const float *in, const float *detect, float *out) {
  audio_.take(in);
  if (!detect_.channels.empty()) detect_.take(detect);
  Planes &deciding = detect_.channels.empty() ? audio_ : detect_;
  functions_.process_indirect(state_, audio_.channels.data(), deciding.channels.data(),
                              audio_.channels.data(), 1, 1,
                              static_cast<unsigned>(deciding.channels.size()));
  audio_.give(out);
}

Limiter::Planes::Planes(std::size_t frames, int count)
    : samples(frames * static_cast<std::size_t>(count)) {
  for (int c = 0; c < count; ++c) {
    channels.push_back(samples.data() + static_cast<std::size_t>(c) * frames);
  }
}

void Limiter::Planes::take(const float *interleaved) {
  const std::size_t frames = samples.size() / channels.size();
  for (std::size_t i = 0; i < frames; ++i) {
    for (float *channel : channels) {
      const float x = *interleaved++;
      channel[i] = std::isfinite(x) ? x : 0.0F;
    }
  }
}

void Limiter::Planes::give(float *interleaved) const {
  const std::size_t frames = samples.size() / channels.size();
  for (std::size_t i = 0; i < frames; ++i) {
    for (const float *channel : channels) *interleaved++ = channel[i];
  }
}

}  // namespace mvk
