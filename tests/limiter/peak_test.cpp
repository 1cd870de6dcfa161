// The peak search of a sub-block, seen through the peak that the state keeps, and what
// decides which search it is.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

constexpr uint64_t kStrides[] = {1, 2, 3, 4, 5};

// A limiter that detects on some channels and processes none.
LimiterPair Detector(uint32_t sub_block) {
  LimiterPair limiter(0, sub_block);
  limiter.Start(0, sub_block);
  return limiter;
}

// The peak of one sub-block of `detect`.
float PeakOf(LimiterPair &limiter, Channels &detect) {
  Channels none(detect.frames(), detect.stride());
  EXPECT_TRUE(limiter.ProcessIndirect(none, detect, none));
  return limiter.library.Record().last_peak;
}

// Of one channel, silent but for some samples.
struct Sample {
  uint32_t at;
  float value;
};

float PeakOf(uint32_t n, uint64_t stride, int offset, std::initializer_list<Sample> samples) {
  LimiterPair limiter = Detector(n);
  std::vector<float> values(n);
  for (const Sample &sample : samples) values[sample.at] = sample.value;
  Channels detect(n, stride);
  detect.Add(values, offset);
  return PeakOf(limiter, detect);
}

TEST(LimiterPeak, IsTheLargestMagnitudeAtAnyPlace) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const uint64_t stride : {1, 2}) {
      for (uint32_t at = 0; at < n; ++at) {
        EXPECT_EQ(PeakOf(n, stride, 0, {{at, 3.0f}}), 3.0f) << n << ", at " << at;
        EXPECT_EQ(PeakOf(n, stride, 1, {{at, -3.0f}, {(at + 1) % n, 2.5f}}), 3.0f)
            << n << ", at " << at;
      }
    }
  }
}

TEST(LimiterPeak, OfSpecialSamples) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const uint64_t stride : kStrides) {
      for (const int offset : {0, 3}) {
        EXPECT_EQ(PeakOf(n, stride, offset, {}), 0.0f);
        EXPECT_EQ(PeakOf(n, stride, offset, {{3, -kInfinity}}), kInfinity);
        EXPECT_EQ(PeakOf(n, stride, offset, {{3, -0x1p-149f}}), 0x1p-149f);
        EXPECT_EQ(PeakOf(n, stride, offset, {{3, kLargest}}), kLargest);
      }
    }
  }
}

// A strided search starts anew behind a NaN. Contiguous samples are searched in groups if
// they are aligned, and then a NaN hides its whole channel; otherwise only itself.
TEST(LimiterPeak, OfANanDependsOnStrideAndAlignment) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    SCOPED_TRACE(n);
    for (int offset = 0; offset < 8; ++offset) {
      const bool aligned = offset == 0;
      EXPECT_EQ(PeakOf(n, 1, offset, {{1, 4.0f}, {5, kNaN}, {9, 3.0f}}), aligned ? 0.0f : 4.0f);
      EXPECT_EQ(PeakOf(n, 1, offset, {{1, 3.0f}, {5, kNaN}, {9, 4.0f}}), aligned ? 0.0f : 4.0f);
      EXPECT_EQ(PeakOf(n, 1, offset, {{0, kNaN}, {9, 4.0f}}), aligned ? 0.0f : 4.0f);
      EXPECT_EQ(PeakOf(n, 1, offset, {{1, 4.0f}, {n - 1, kNaN}}), aligned ? 0.0f : 4.0f);
      for (uint64_t stride = 2; stride <= 5; ++stride) {
        EXPECT_EQ(PeakOf(n, stride, offset, {{1, 4.0f}, {5, kNaN}, {9, 3.0f}}), 3.0f);
        EXPECT_EQ(PeakOf(n, stride, offset, {{1, 4.0f}, {5, kNaN}}), 0.0f);
        EXPECT_EQ(PeakOf(n, stride, offset, {{0, kNaN}, {9, 4.0f}}), 4.0f);
        EXPECT_TRUE(std::isnan(PeakOf(n, stride, offset, {{1, 4.0f}, {n - 1, kNaN}})));
      }
    }
  }
}

TEST(LimiterPeak, OfNothingButNansIsNoPeakInAContiguousChannel) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const int offset : {0, 1}) {
      LimiterPair limiter = Detector(n);
      Channels detect(n, 1);
      detect.Add(std::vector<float>(n, 0.5f), offset);
      detect.Add(std::vector<float>(n, kNaN), offset);
      EXPECT_EQ(PeakOf(limiter, detect), 0.5f);
    }
  }
}

TEST(LimiterPeak, OfNegativeZerosHasTheSignOfTheSearch) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const uint64_t stride : kStrides) {
      LimiterPair limiter = Detector(n);
      Channels detect(n, stride);
      detect.Add(std::vector<float>(n, -0.0f), 0);
      EXPECT_EQ(BitsOf(PeakOf(limiter, detect)), BitsOf(stride == 1 ? 0.0f : -0.0f))
          << n << ", stride " << stride;
    }
  }
}

// Several channels of any samples, each searched as its own alignment says.
TEST(LimiterPeak, OfAnySamplesInSeveralChannels) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    Random random(n);
    for (const uint64_t stride : kStrides) {
      LimiterPair limiter = Detector(n);
      for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(testing::Message() << n << ", stride " << stride << ", round " << round);
        Channels detect(n, stride);
        const unsigned channels = random.Below(6);
        for (unsigned c = 0; c < channels; ++c) {
          std::vector<float> samples = Samples(kUniform, random, n);
          for (unsigned specials = random.Below(4); specials > 0; --specials) {
            samples[random.Below(n)] = random.Below(2) == 0 ? kNaN : KernelSpecial(random);
          }
          const int offset = static_cast<int>(random.Below(8));
          detect.Add(samples, random.Below(2) == 0 ? 0 : offset);
          if (random.Below(5) == 0) detect.Drop(c);
        }
        PeakOf(limiter, detect);
        // A gain that is no number never recovers.
        if (round % 8 == 7) limiter.Reset();
      }
    }
  }
}

TEST(LimiterPeak, OfNoChannelsIsNothing) {
  LimiterPair limiter = Detector(64);
  Channels loud(64, 1), none(64, 1);
  loud.Add(std::vector<float>(64, 2.0f), 0);
  EXPECT_EQ(PeakOf(limiter, loud), 2.0f);
  EXPECT_EQ(PeakOf(limiter, none), 0.0f);
}

// Of each sub-block in turn, and of no frame outside it.
TEST(LimiterPeak, IsThatOfTheSubBlockAlone) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    for (const uint64_t stride : kStrides) {
      for (uint32_t s = 0; s < 3; ++s) {
        LimiterPair limiter(0, n);
        limiter.Start(0, 3 * n);
        std::vector<float> samples(3 * n + 1, 0.5f);
        samples[s * n] = 2;
        samples[s * n + n - 1] = -2;
        samples[3 * n] = 4;
        Channels none(3 * n + 1, stride), detect(3 * n + 1, stride);
        detect.Add(samples, 0);
        EXPECT_TRUE(limiter.ProcessIndirect(none, detect, none));
        EXPECT_EQ(limiter.library.Record().last_peak, s == 2 ? 2.0f : 0.5f)
            << n << ", stride " << stride << ", sub-block " << s;
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
