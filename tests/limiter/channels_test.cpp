// Which channels the limiter reads and writes, and where in memory they may lie.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

std::vector<float> Noise(Random &random, size_t count, float level) {
  std::vector<float> samples = UnitNoise(random, count);
  for (float &sample : samples) sample *= level;
  return samples;
}

// Each in a buffer of its own, somewhere.
Channels Some(Random &random, uint32_t count, size_t frames, uint64_t stride, float level = 2) {
  Channels channels(frames, stride);
  for (uint32_t c = 0; c < count; ++c) {
    const int offset = static_cast<int>(random.Below(8));
    channels.Add(Noise(random, frames, level), offset);
  }
  return channels;
}

Channels Interleaved(Random &random, uint32_t count, size_t frames, uint64_t stride) {
  Channels channels(frames, stride);
  std::vector<std::vector<float>> samples;
  for (uint32_t c = 0; c < count; ++c) samples.push_back(Noise(random, frames, 2));
  channels.AddInterleaved(samples, static_cast<int>(random.Below(8)));
  return channels;
}

TEST(LimiterChannels, TakeAnyStrides) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 2 * length.sub_block;
    LimiterPair limiter(3, length.sub_block);
    limiter.Start(3, frames);
    Random random(length.sub_block);
    for (uint64_t in_stride = 1; in_stride <= 5; ++in_stride) {
      for (uint64_t out_stride = 1; out_stride <= 5; ++out_stride) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ", strides " << in_stride << " and " << out_stride);
        Channels in = Some(random, 3, frames, in_stride);
        Channels out = Some(random, 3, frames, out_stride);
        EXPECT_TRUE(limiter.Process(out, in));
        EXPECT_TRUE(limiter.ProcessInPlace(in));
      }
    }
  }
}

TEST(LimiterChannels, TakeAnyAlignment) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = length.sub_block;
    LimiterPair limiter(1, length.sub_block);
    limiter.Start(1, frames);
    Random random(length.sub_block);
    for (int in_offset = 0; in_offset < 8; ++in_offset) {
      for (int out_offset = 0; out_offset < 8; ++out_offset) {
        Channels in(frames, 1), out(frames, 1);
        in.Add(Noise(random, frames, 2), in_offset);
        out.AddSilent(out_offset);
        EXPECT_TRUE(limiter.Process(out, in)) << in_offset << " to " << out_offset;
      }
    }
  }
}

// As one run of samples, with gaps or in another order, to and from any other layout.
TEST(LimiterChannels, LieInterleaved) {
  enum class Other { kInPlace, kInterleaved, kApart, kInterleavedToApart };
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 2 * length.sub_block;
    Random random(length.sub_block);
    for (uint32_t count = 1; count <= 9; ++count) {
      LimiterPair limiter(count, length.sub_block);
      limiter.Start(count, frames);
      for (const uint32_t gap : {0u, 0u, 1u, 3u}) {
        for (const bool reversed : {false, true}) {
          for (const Other other :
               {Other::kInPlace, Other::kInterleaved, Other::kApart, Other::kInterleavedToApart}) {
            SCOPED_TRACE(testing::Message()
                         << count << " channels of " << length.sub_block << ", gap " << gap
                         << (reversed ? ", reversed" : "") << ", other " << int(other));
            Channels a = Interleaved(random, count, frames, count + gap);
            Channels b = other == Other::kInterleaved
                             ? Interleaved(random, count, frames, count + gap)
                             : Some(random, count, frames, 1 + random.Below(3));
            if (reversed) a.Swap(0, count - 1);
            switch (other) {
              case Other::kInPlace:
                EXPECT_TRUE(limiter.ProcessInPlace(a));
                break;
              case Other::kInterleaved:
              case Other::kInterleavedToApart:
                EXPECT_TRUE(limiter.Process(b, a));
                break;
              case Other::kApart:
                EXPECT_TRUE(limiter.Process(a, b));
                break;
            }
          }
        }
      }
    }
  }
}

// Interleaved channels are searched like any others, one after another.
TEST(LimiterChannels, LieInterleavedWithSamplesOfAnyKindToDetect) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    Random random(n);
    for (uint32_t count = 1; count <= 5; ++count) {
      for (int round = 0; round < 24; ++round) {
        SCOPED_TRACE(testing::Message() << count << " channels of " << n << ", round " << round);
        LimiterPair limiter(0, n);
        limiter.Start(0, n);
        // NaNs, or zeros of both signs, among others or on their own.
        std::vector<std::vector<float>> samples;
        for (uint32_t c = 0; c < count; ++c) {
          std::vector<float> channel = Noise(random, n, round % 3 == 0 ? 0.0f : 2.0f);
          for (float &sample : channel) {
            if (round % 2 == 0 && random.Below(n) == 0) sample = kNaN;
          }
          if (random.Below(4) == 0) channel[n - 1] = kNaN;
          samples.push_back(channel);
        }
        Channels none(n, count), detect(n, count);
        detect.AddInterleaved(samples, static_cast<int>(random.Below(8)));
        EXPECT_TRUE(limiter.ProcessIndirect(none, detect, none));
      }
    }
  }
}

TEST(LimiterChannels, ThatAreNullAreSkipped) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 2 * length.sub_block;
    Random random(length.sub_block);
    for (const uint64_t stride : {1, 2, 4}) {
      LimiterPair limiter(4, length.sub_block);
      limiter.Start(4, frames);
      for (unsigned dropped = 0; dropped < 16; ++dropped) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ", stride " << stride << ", dropped " << dropped);
        // One channel decides the gain.
        Channels in = stride == 4 ? Interleaved(random, 4, frames, 4)
                                  : Some(random, 4, frames, stride, 0.5f + float(dropped));
        Channels out = Some(random, 4, frames, 3 - stride / 2);
        const std::vector<float> delay(limiter.library.Delay().begin(),
                                       limiter.library.Delay().end());
        for (unsigned c = 0; c < 4; ++c) {
          if (dropped >> c & 1) in.Drop(c);
        }
        const Channels before = out;
        EXPECT_TRUE(limiter.Process(out, in));
        for (unsigned c = 0; c < 4; ++c) {
          const KernelCall call{"channel", "", c};
          const size_t n = length.sub_block;
          const std::span<const float> now = limiter.library.Delay().subspan(c * n, n);
          const bool same_delay = bool{SameBits(now, {delay.data() + c * n, n}, call)};
          const bool same_out = bool{SameBits(out.Samples(c), before.Samples(c), call)};
          EXPECT_EQ(same_delay, (dropped >> c & 1) != 0) << c;
          EXPECT_EQ(same_out, (dropped >> c & 1) != 0) << c;
        }
      }
    }
  }
}

// Their delay waits for them.
TEST(LimiterChannels, BeyondTheNumberOfChannelsAreLeftAlone) {
  LimiterPair limiter(3, 32);
  limiter.Start(3, 32);
  Random random(1);
  Channels in = Some(random, 3, 32, 1), out = Some(random, 3, 32, 1);
  EXPECT_TRUE(limiter.Process(out, in));
  const std::vector<float> delay(limiter.library.Delay().begin(), limiter.library.Delay().end());
  limiter.SetNumChannels(1);
  Channels next = Some(random, 3, 32, 1), left = Some(random, 3, 32, 1);
  const Channels before = left;
  EXPECT_TRUE(limiter.Process(left, next));
  for (size_t c = 1; c < 3; ++c) {
    EXPECT_EQ(left.Samples(c), before.Samples(c));
    EXPECT_TRUE(SameBits(limiter.library.Delay().subspan(c * 32, 32), {delay.data() + c * 32, 32},
                         {"delay", "", c}));
  }
  EXPECT_NE(left.Samples(0), before.Samples(0));
}

// ---- Detection ----

TEST(LimiterDetection, OfOtherChannelsDecidesTheGain) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 3 * length.sub_block;
    Random random(length.sub_block);
    for (uint64_t stride = 1; stride <= 5; ++stride) {
      LimiterPair limiter(2, length.sub_block);
      limiter.Start(2, frames);
      for (uint32_t detectors = 0; detectors <= 6; ++detectors) {
        SCOPED_TRACE(testing::Message() << length.sub_block << ", stride " << stride << ", "
                                        << detectors << " to detect on");
        Channels in = Some(random, 2, frames, stride);
        Channels out = Some(random, 2, frames, 1 + random.Below(2));
        Channels detect = Some(random, detectors, frames, stride, 0.25f * float(detectors));
        for (uint32_t c = 0; c < detectors; ++c) {
          if (random.Below(4) == 0) detect.Drop(c);
        }
        EXPECT_TRUE(limiter.ProcessIndirect(out, detect, in));
        Channels interleaved = Interleaved(random, static_cast<uint32_t>(stride), frames, stride);
        EXPECT_TRUE(limiter.ProcessIndirect(out, interleaved, in));
      }
    }
  }
}

TEST(LimiterDetection, OfSilenceLimitsNothing) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    Channels in(n, 1), out(n, 1), detect(n, 1);
    in.Add(std::vector<float>(n, 4.0f), 0);
    out.AddSilent(0);
    detect.AddSilent(0);
    for (int block = 0; block < 3; ++block) EXPECT_TRUE(limiter.ProcessIndirect(out, detect, in));
    EXPECT_EQ(limiter.library.Record().gain, 1.0f);
    EXPECT_EQ(out.At(0, n / 2), 4.0f);
  }
}

// A null input is no null detector: the gain goes on, and so it does without any channels.
TEST(LimiterDetection, GoesOnWithoutInput) {
  LimiterPair limiter(1, 64);
  limiter.Start(1, 64);
  Channels in(64, 1), out(64, 1), detect(64, 1);
  in.AddSilent(0);
  out.AddSilent(0);
  detect.Add(std::vector<float>(64, 4.0f), 0);
  in.Drop(0);
  EXPECT_TRUE(limiter.ProcessIndirect(out, detect, in));
  EXPECT_EQ(limiter.library.Record().gain, 0.25f);
  limiter.SetNumChannels(0);
  EXPECT_TRUE(limiter.ProcessIndirect(out, detect, in));
  EXPECT_TRUE(limiter.Process(out, in));
  EXPECT_EQ(limiter.library.Record().last_peak, 0.0f);
}

TEST(LimiterDetection, MayGoByTheInputItselfInPlace) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 4 * length.sub_block;
    Random random(length.sub_block);
    for (const uint64_t stride : {1, 2, 3}) {
      LimiterPair limiter(2, length.sub_block);
      limiter.Start(2, frames);
      Channels audio = Some(random, 2, frames, stride);
      for (int block = 0; block < 3; ++block) {
        EXPECT_TRUE(limiter.ProcessIndirect(audio, audio, audio));
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
