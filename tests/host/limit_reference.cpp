#include "host/limit_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "reference/limiter_reference.h"

namespace host {
namespace {

// A sub-block with its channels one after another, silent beyond the audio's end.
struct SubBlock {
  SubBlock(const Audio &audio, std::size_t first, std::size_t frames)
      : samples(frames * static_cast<std::size_t>(audio.channels)) {
    const auto count = static_cast<std::size_t>(audio.channels);
    for (std::size_t c = 0; c < count; ++c) {
      channels.push_back(&samples[c * frames]);
      for (std::size_t i = 0; i < frames; ++i) {
        const std::size_t at = (first + i) * count + c;
        if (at < audio.samples.size()) channels[c][i] = static_cast<float>(audio.samples[at]);
      }
    }
  }

  std::vector<float> samples;
  std::vector<float *> channels;
};

}  // namespace

std::vector<std::string> Limiting::options() const {
  const auto decibels = [](double level) {
    char text[32];
    std::snprintf(text, sizeof text, "%gdB", level);
    return std::string(text);
  };
  std::vector<std::string> words = {"--peak", decibels(peak)};
  if (boost != 0.0) words.insert(words.end(), {"--boost", decibels(boost)});
  if (sub_block != 64) words.insert(words.end(), {"--sub-block", std::to_string(sub_block)});
  if (hard_clip) words.push_back("--hard-clip");
  return words;
}

float Limiting::peak_ahead() const { return static_cast<float>(amplitude(peak - boost)); }

float Limiting::boost_gain() const { return static_cast<float>(amplitude(boost)); }

double amplitude(double decibels) { return std::pow(10.0, decibels / 20.0); }

Limited limited(const Audio &source, const Limiting &how) { return limited(source, source, how); }

Limited limited(const Audio &source, const Audio &detect, const Limiting &how) {
  const auto channels = static_cast<uint32_t>(source.channels);
  reference::Limiter limiter(channels, how.sub_block);
  limiter.SetNumChannels(channels);
  limiter.SetSampleRate(static_cast<uint32_t>(source.rate));
  limiter.SetBlockSize(how.sub_block);
  limiter.peak = how.peak_ahead();
  limiter.SetBoost(how.boost_gain() / 256, how.boost_gain() / 256);
  limiter.SetHardClip(how.hard_clip);
  limiter.SetEnable(1);

  Limited result;
  const auto frames = static_cast<std::size_t>(source.frames());
  const std::size_t late = how.hard_clip ? 0 : how.sub_block;
  for (std::size_t first = 0; first < frames + late; first += how.sub_block) {
    SubBlock audio(source, first, how.sub_block);
    const SubBlock deciding(detect, first, how.sub_block);
    limiter.ProcessIndirect(audio.channels.data(), deciding.channels.data(), audio.channels.data(),
                            1, 1, static_cast<uint32_t>(detect.channels));
    result.gains.push_back(limiter.gain);
    for (std::size_t i = 0; i < how.sub_block; ++i) {
      for (const float *channel : audio.channels) result.samples.push_back(channel[i]);
    }
  }
  const auto begin = result.samples.begin() + static_cast<std::ptrdiff_t>(late * channels);
  result.samples.erase(result.samples.begin(), std::min(begin, result.samples.end()));
  result.samples.resize(source.samples.size());
  return result;
}

double highest(const Limiting &how) {
  return amplitude(how.peak) * std::pow(1.0 + std::ldexp(1.0, -24), 11);
}

}  // namespace host
