// Long programmes of audio and of changed settings, through the library and the reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

// Audio in passages of a random kind and level.
class Source {
 public:
  float Next(Random &random) {
    if (remaining_ == 0) Begin(random);
    --remaining_;
    switch (kind_) {
      case kNoise:
        return level_ * random.Unit();
      case kTone:
        phase_ += step_;
        return level_ * std::sin(phase_);
      case kConstant:
        return level_;
      case kBursts:
        return random.Below(40) == 0 ? 8 * level_ * random.Unit() : 0.01f * level_;
      case kDenormal:
        return random.Unit() * 0x1p-127f;
      default:
        return level_ < 0.1f ? -0.0f : 0.0f;
    }
  }

 private:
  enum Kind { kNoise, kTone, kConstant, kBursts, kDenormal, kSilence, kKinds };

  void Begin(Random &random) {
    kind_ = static_cast<Kind>(random.Below(kKinds));
    const int exponent = static_cast<int>(random.Below(9)) - 6;
    level_ = std::ldexp(1 + 0.5f * random.Unit(), exponent);
    step_ = 0.5f * std::abs(random.Unit());
    remaining_ = 1 + random.Below(random.Below(3) == 0 ? 3000 : 200);
  }

  Kind kind_ = kSilence;
  float level_ = 0;
  float phase_ = 0;
  float step_ = 0;
  unsigned remaining_ = 0;
};

struct Piece {
  uint32_t sub_block;
  uint64_t seed;
  bool specials;  // NaNs, infinities, and peaks and boosts to go with them
};

std::string Name(const Piece &piece) {
  return "SubBlock" + std::to_string(piece.sub_block) + (piece.specials ? "SpecialsSeed" : "Seed") +
         std::to_string(piece.seed);
}

void PrintTo(const Piece &piece, std::ostream *out) { *out << Name(piece); }

class Programme {
 public:
  explicit Programme(const Piece &piece)
      : piece_(piece),
        random_(1000 * piece.seed + piece.sub_block),
        limiter_(kMost, piece.sub_block, AnyMemory()),
        sources_(kMost + 2) {
    limiter_.Start(kMost, 2 * piece.sub_block);
  }

  testing::AssertionResult PlayBlock() {
    for (unsigned changes = random_.Below(3); changes > 0; --changes) Change();
    const auto count = limiter_.expected.num_channels;
    const size_t frames = limiter_.expected.block_size;
    if (count > 0 && random_.Below(3) == 0) return PlayInPlace(count, frames);
    Channels in = AnyChannels(count, frames, false);
    Channels out = AnyChannels(count, frames, false);
    DropSome(in);
    if (random_.Below(2) == 0) return limiter_.Process(out, in);
    if (random_.Below(4) == 0) return limiter_.ProcessIndirect(out, in, in);
    Channels detect(frames, in.stride());
    const bool interleaved = random_.Below(2) == 0;
    Fill(detect, random_.Below(kMost + 2), interleaved);
    DropSome(detect);
    return limiter_.ProcessIndirect(out, detect, in);
  }

  float gain() const { return limiter_.expected.gain; }

 private:
  static constexpr uint32_t kMost = 4;

  LimiterMemory AnyMemory() {
    return {random_.Below(2) == 0 ? DelayPlace::kApart : DelayPlace::kBehindState,
            random_.Below(64), random_.Below(64), static_cast<uint8_t>(random_.Below(256))};
  }

  testing::AssertionResult PlayInPlace(uint32_t count, size_t frames) {
    Channels audio = AnyChannels(count, frames, true);
    return limiter_.ProcessInPlace(audio);
  }

  Channels AnyChannels(uint32_t count, size_t frames, bool in_place) {
    const bool interleaved = random_.Below(2) == 0 && count > 0;
    const uint64_t stride = interleaved             ? count + (random_.Below(3) == 0)
                            : random_.Below(2) == 0 ? 1
                                                    : 1 + random_.Below(5);
    Channels channels(frames, stride);
    Fill(channels, count, interleaved);
    if (count > 1 && random_.Below(5) == 0) channels.Swap(0, random_.Below(count));
    if (in_place) DropSome(channels);
    return channels;
  }

  // Interleaved where the stride has room for it.
  void Fill(Channels &channels, uint32_t count, bool interleaved) {
    std::vector<std::vector<float>> samples;
    for (uint32_t c = 0; c < count; ++c) {
      std::vector<float> &channel = samples.emplace_back(channels.frames());
      for (float &sample : channel) sample = NextSample(c);
    }
    if (interleaved && count > 0 && count <= channels.stride()) {
      channels.AddInterleaved(samples, AnyOffset());
      return;
    }
    for (const std::vector<float> &channel : samples) channels.Add(channel, AnyOffset());
  }

  int AnyOffset() { return random_.Below(2) == 0 ? 0 : static_cast<int>(random_.Below(8)); }

  float NextSample(uint32_t c) {
    const float sample = sources_[c].Next(random_);
    return piece_.specials && random_.Below(500) == 0 ? KernelSpecial(random_) : sample;
  }

  // While clipping, all channels are there.
  void DropSome(Channels &channels) {
    if (limiter_.expected.hard_clip != 0) return;
    for (size_t c = 0; c < channels.count(); ++c) {
      if (random_.Below(12) == 0) channels.Drop(c);
    }
  }

  float AnyPeak() {
    if (piece_.specials && random_.Below(3) == 0) return KernelSpecial(random_);
    constexpr float kPeaks[] = {1, 1, 0.5f, 0.1f, 2, 0.8912509f};
    return kPeaks[random_.Below(std::size(kPeaks))];
  }

  float AnyBoost() {
    if (piece_.specials && random_.Below(3) == 0) return KernelSpecial(random_);
    return (0.1f + std::abs(random_.Unit())) / 256;
  }

  void Change() {
    const uint32_t n = piece_.sub_block;
    const auto &length = *reference::LengthOf(n);
    switch (random_.Below(piece_.specials ? 11 : 10)) {
      case 0:
        return limiter_.SetPeak(AnyPeak());
      case 1:
        return limiter_.SetBoost(limiter_.expected.boost, AnyBoost());
      case 2: {
        const float boost = AnyBoost();
        return limiter_.SetBoost(boost, boost);
      }
      case 3:
        return limiter_.SetSampleRate(
            reference::kLimiterRates[random_.Below(static_cast<unsigned>(length.rates))]);
      case 4:
        return limiter_.SetSampleRate(random_.Below(200000));
      case 5:
      case 6: {
        const uint32_t frames = n * random_.Below(5);
        return limiter_.SetBlockSize(frames + (random_.Below(4) == 0));
      }
      case 7:
        return limiter_.SetNumChannels(random_.Below(kMost + 2));
      case 8:
        return limiter_.SetHardClip(random_.Below(3) == 0);
      case 9:
        if (random_.Below(4) == 0) limiter_.Reset();
        return limiter_.SetEnable(random_.Below(4) != 0);
      default:
        // A gain that is no number stays until the reset.
        limiter_.Reset();
        return limiter_.SetPeak(1);
    }
  }

  Piece piece_;
  Random random_;
  LimiterPair limiter_;
  std::vector<Source> sources_;
};

class LimiterProgramme : public testing::TestWithParam<Piece> {};

TEST_P(LimiterProgramme, IsPlayedAlike) {
  Programme programme(GetParam());
  int limited = 0;
  constexpr int kBlocks = 2000;
  for (int block = 0; block < kBlocks; ++block) {
    ASSERT_TRUE(programme.PlayBlock()) << "block " << block;
    limited += programme.gain() < 1;
  }
  EXPECT_GT(limited, kBlocks / 4) << "a programme that has little to limit";
}

std::vector<Piece> Pieces() {
  std::vector<Piece> pieces;
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (const uint64_t seed : {1, 2, 3}) pieces.push_back({length.sub_block, seed, false});
    for (const uint64_t seed : {1, 2}) pieces.push_back({length.sub_block, seed, true});
  }
  return pieces;
}

INSTANTIATE_TEST_SUITE_P(All, LimiterProgramme, testing::ValuesIn(Pieces()),
                         [](const auto &piece) { return Name(piece.param); });

// Nothing but audio, seconds of it.
TEST(LimiterStream, IsPlayedAlikeForLong) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 8 * length.sub_block;
    LimiterPair limiter(2, length.sub_block);
    limiter.Start(2, frames);
    Random random(length.sub_block);
    Source sources[2];
    for (uint32_t frame = 0; frame < 400000; frame += frames) {
      Channels audio(frames, 1);
      for (Source &source : sources) {
        std::vector<float> samples(frames);
        for (float &sample : samples) sample = source.Next(random);
        audio.Add(samples, 0);
      }
      ASSERT_TRUE(limiter.ProcessInPlace(audio)) << length.sub_block << ", frame " << frame;
    }
  }
}

}  // namespace
}  // namespace testing_support
