// Hard clipping: sample by sample and in blocks.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

// A clipper of blocks of `frames`.
LimiterPair Clipper(uint32_t channels, uint32_t sub_block, uint32_t frames) {
  LimiterPair limiter(channels, sub_block);
  limiter.SetHardClip(1);
  limiter.Start(channels, frames);
  return limiter;
}

// What becomes of one channel.
std::vector<float> Clip(LimiterPair &limiter, const std::vector<float> &samples,
                        uint64_t in_stride = 1, uint64_t out_stride = 1) {
  Channels in(samples.size(), in_stride), out(samples.size(), out_stride);
  in.Add(samples, 0);
  out.AddSilent(0);
  EXPECT_TRUE(limiter.Process(out, in));
  return out.Samples(0);
}

// By value and by hand: what the specials of a clipper come to.
TEST(LimiterClip, HoldsSamplesWithinThePeak) {
  struct Row {
    float x, peak, boost, wanted;
  };
  constexpr float kUnity = 1.0f / 256;
  constexpr Row kRows[] = {
      {2, 1, kUnity, 1},
      {-2, 1, kUnity, -1},
      {0.5f, 1, kUnity, 0.5f},
      {-0.5f, 1, kUnity, -0.5f},
      {1, 1, kUnity, 1},
      {-1, 1, kUnity, -1},
      {0x1.000002p+0f, 1, kUnity, 1},
      {0x1.fffffep-1f, 1, kUnity, 0x1.fffffep-1f},
      {kInfinity, 1, kUnity, 1},
      {-kInfinity, 1, kUnity, -1},
      {kNaN, 1, kUnity, 1},
      {kNaN, 0.25f, kUnity, 0.25f},
      {2, 1, 1, 256},
      {-2, 0.5f, 2 * kUnity, -1},
      {0.75f, 1, -kUnity, -0.75f},
      {0.75f, 1, 0, 0},
      {-0.0f, 1, kUnity, -0.0f},
      {3, kInfinity, kUnity, 3},
      {0x1p-149f, 1, 1, 0x1p-141f},
      // Between limits of 0 and -0.
      {1, 0, kUnity, 0.0f},
      {-1, 0, kUnity, -0.0f},
      // The lower limit is above the upper one, and has the last word.
      {2, -1, kUnity, 1},
      {0, -1, kUnity, 1},
      {-2, -1, kUnity, 1},
  };
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter = Clipper(1, n, n);
    for (const Row &row : kRows) {
      for (const uint64_t stride : {1, 2}) {
        SCOPED_TRACE(testing::Message() << n << ", stride " << stride << ": " << row.x
                                        << " at peak " << row.peak << ", boost " << row.boost);
        limiter.SetPeak(row.peak);
        limiter.SetBoost(0, row.boost);
        const std::vector<float> wanted(n, row.wanted);
        EXPECT_TRUE(SameBits(Clip(limiter, std::vector<float>(n, row.x), stride, stride), wanted,
                             {"clip", ""}));
      }
    }
  }
}

// Sample by sample the boost comes first; a block multiplies by the product of both gains.
TEST(LimiterClip, ScalesInTwoStepsByTheSampleAndInOneByTheBlock) {
  const auto clip = [](uint32_t sub_block, uint64_t stride, float x, float boost) {
    LimiterPair limiter = Clipper(1, sub_block, sub_block);
    limiter.SetPeak(kLargest);
    limiter.SetBoost(0, boost);
    return Clip(limiter, std::vector<float>(sub_block, x), stride, stride)[0];
  };
  // Underflow in between.
  for (const uint32_t sub_block : {32u, 64u, 128u, 256u}) {
    EXPECT_EQ(clip(sub_block, 1, 0x1p-140f, 0x1p-12f), 0x1p-144f);
    EXPECT_EQ(clip(sub_block, 2, 0x1p-140f, 0x1p-12f), 0);
    // Overflow of the gains, while the product would fit.
    EXPECT_EQ(clip(sub_block, 1, 0x1p-20f, 0x1p+120f), kInfinity);
    EXPECT_EQ(clip(sub_block, 2, 0x1p-20f, 0x1p+120f), 0x1p+108f);
  }
  EXPECT_EQ(clip(40, 1, 0x1p-140f, 0x1p-12f), 0);
  EXPECT_EQ(clip(40, 1, 0x1p-20f, 0x1p+120f), 0x1p+108f);
}

constexpr float kPeaks[] = {1, 0.5f, 0x1p-140f, 0, -0.0f, -0.25f, kInfinity, kNaN};
constexpr float kBoosts[] = {1.0f / 256, 0.3f / 256, 1,    -0.1f,    0x1p-130f,
                             0,          kLargest,   kNaN, kInfinity};

TEST(LimiterClip, TakesAnySamplesAtAnyAlignmentInOneStream) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 3 * length.sub_block;
    LimiterPair limiter = Clipper(1, length.sub_block, frames);
    Random random(length.sub_block);
    for (int in_offset = 0; in_offset < 8; ++in_offset) {
      for (int out_offset = 0; out_offset < 8; ++out_offset) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ", from " << in_offset << " to " << out_offset);
        limiter.SetPeak(kPeaks[random.Below(std::size(kPeaks))]);
        limiter.SetBoost(3, kBoosts[random.Below(std::size(kBoosts))]);
        Channels in(frames, 1), out(frames, 1);
        in.Add(Samples(kMixed, random, frames), in_offset);
        out.AddSilent(out_offset);
        EXPECT_TRUE(limiter.Process(out, in));
        EXPECT_TRUE(limiter.ProcessInPlace(in));
      }
    }
  }
}

TEST(LimiterClip, TakesEachPeakAndBoost) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LimiterPair limiter = Clipper(1, length.sub_block, length.sub_block);
    Random random(length.sub_block);
    for (const float peak : kPeaks) {
      for (const float boost : kBoosts) {
        for (const uint64_t stride : {1, 3}) {
          SCOPED_TRACE(testing::Message() << length.sub_block << ", stride " << stride << ", peak "
                                          << peak << ", boost " << boost);
          limiter.SetPeak(peak);
          limiter.SetBoost(3, boost);
          Clip(limiter, Samples(kMixed, random, length.sub_block), stride);
        }
      }
    }
  }
}

TEST(LimiterClip, TakesAnyStrides) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 2 * length.sub_block;
    LimiterPair limiter = Clipper(3, length.sub_block, frames);
    limiter.SetPeak(0.5f);
    limiter.SetBoost(1, 0.003f);
    Random random(length.sub_block);
    for (uint64_t in_stride = 1; in_stride <= 5; ++in_stride) {
      for (uint64_t out_stride = 1; out_stride <= 5; ++out_stride) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ", strides " << in_stride << " and " << out_stride);
        Channels in(frames, in_stride), out(frames, out_stride);
        for (int c = 0; c < 3; ++c) {
          const int in_offset = static_cast<int>(random.Below(8));
          in.Add(Samples(kMixed, random, frames), in_offset);
          out.AddSilent(static_cast<int>(random.Below(8)));
        }
        EXPECT_TRUE(limiter.Process(out, in));
        EXPECT_TRUE(limiter.ProcessInPlace(in));
      }
    }
  }
}

// The block size is all that a clipper goes by.
TEST(LimiterClip, NeedsNoSampleRate) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LimiterPair limiter(1, length.sub_block);
    limiter.SetNumChannels(1);
    limiter.SetHardClip(1);
    limiter.SetEnable(1);
    EXPECT_EQ(Clip(limiter, std::vector<float>(length.sub_block, 2.0f)),
              std::vector<float>(length.sub_block, 1.0f));
  }
}

TEST(LimiterClip, LeavesOtherChannelsAndLaterFramesAlone) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const uint32_t frames : {0u, n, 5 * n}) {
      for (const uint64_t stride : {1, 2}) {
        SCOPED_TRACE(testing::Message() << frames << " frames of " << n << ", stride " << stride);
        LimiterPair limiter = Clipper(2, n, frames);
        limiter.SetNumChannels(1);
        Channels in(frames + 1, stride), out(frames + 1, stride);
        for (int c = 0; c < 2; ++c) {
          in.Add(std::vector<float>(frames + 1, 0.5f), 0);
          out.Add(std::vector<float>(frames + 1, 7.0f), 0);
        }
        EXPECT_TRUE(limiter.Process(out, in));
        EXPECT_EQ(out.At(0, frames), 7.0f);
        EXPECT_EQ(out.Samples(1), std::vector<float>(frames + 1, 7.0f));
      }
    }
  }
}

// The signal that detection would go by plays no part, and nothing else moves.
TEST(LimiterClip, LeavesTheStateAloneAndReadsNoDetection) {
  for (const uint32_t n : {32u, 40u}) {
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    Channels in(n, 1), out(n, 1);
    in.Add(std::vector<float>(n, 3.0f), 0);
    out.AddSilent(0);
    for (int block = 0; block < 3; ++block) EXPECT_TRUE(limiter.Process(out, in));
    limiter.SetBoost(0.25f, 0.125f);
    limiter.SetHardClip(1);
    const std::vector<uint8_t> before = limiter.library.state_memory().Copy();
    EXPECT_TRUE(limiter.Process(out, in));
    float *none[] = {nullptr, nullptr};
    orvane_ht_ztlim_process_indirect(limiter.library.handle(), out.pointers(), none, in.pointers(),
                                     1, 1, 2);
    orvane_ht_ztlim_process_indirect(limiter.library.handle(), out.pointers(), nullptr,
                                     in.pointers(), 1, 1, 2);
    EXPECT_EQ(limiter.library.state_memory().Copy(), before);
    EXPECT_EQ(out.Samples(0), std::vector<float>(n, 32.0f)) << "the new boost at once";
  }
}

}  // namespace
}  // namespace testing_support
