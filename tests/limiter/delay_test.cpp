// What the limiter does to the samples: the delay, the fades and the boost.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "limiter/limiter_pair.h"
#include "limiter/limiter_tables.h"

namespace testing_support {
namespace {

// One channel through the limiter, a block.
std::vector<float> Limit(LimiterPair &limiter, const std::vector<float> &samples,
                         uint64_t stride = 1) {
  Channels in(samples.size(), stride), out(samples.size(), stride);
  in.Add(samples, 0);
  out.Add(std::vector<float>(samples.size(), 9.0f), 0);
  EXPECT_TRUE(limiter.Process(out, in));
  return out.Samples(0);
}

// Samples whose products with a window are exact: whole numbers of few bits.
std::vector<float> CoarseSamples(Random &random, size_t count) {
  std::vector<float> samples(count);
  for (float &sample : samples) {
    sample = (static_cast<float>(random.Below(255)) - 127) * 0x1p-7f;
  }
  return samples;
}

// What is left of unity at frame i, on a way that ends in `end` times the beginning.
float Faded(const ExportedTables &tables, size_t i, float end) {
  return tables.window[tables.length.sub_block - 1 - i] + tables.window[i] * end;
}

TEST(LimiterDelay, PassesWhatIsBelowThePeakASubBlockLater) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    for (const uint64_t stride : {1, 2}) {
      SCOPED_TRACE(testing::Message() << n << ", stride " << stride);
      LimiterPair limiter(1, n);
      limiter.Start(1, 4 * n);
      Random random(n);
      const std::vector<float> x = CoarseSamples(random, 4 * n);
      const std::vector<float> y = Limit(limiter, x, stride);
      for (size_t i = 0; i < 4 * n; ++i) {
        const float delayed = i < n ? 0 : x[i - n];
        EXPECT_EQ(y[i], delayed * Faded(tables, i % n, 1)) << i;
      }
      EXPECT_EQ(limiter.library.Record().gain, 1.0f);
    }
  }
}

// Two roundings, of the rising part and of the sum.
TEST(LimiterDelay, PassesAnySamplesUpToRounding) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    Random random(n);
    const std::vector<float> x = UnitNoise(random, n);
    Limit(limiter, x);
    const std::vector<float> y = Limit(limiter, std::vector<float>(n));
    for (size_t i = 0; i < n; ++i) {
      const float wanted = x[i] * Faded(tables, i, 1);
      EXPECT_NEAR(y[i], wanted, std::abs(wanted) * 0x1p-22f) << n << ", " << i;
    }
  }
}

TEST(LimiterDelay, StartsFromSilence) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    const std::vector<float> loud(n, 0.75f), silent(n);
    const auto expect_silent_start = [&] {
      EXPECT_EQ(Limit(limiter, loud), silent);
      EXPECT_NE(Limit(limiter, loud), silent);
    };
    expect_silent_start();
    limiter.Reset();
    expect_silent_start();
    limiter.SetEnable(0);
    limiter.SetEnable(1);
    expect_silent_start();
    limiter.SetHardClip(1);
    EXPECT_EQ(Limit(limiter, loud), loud);
    limiter.SetHardClip(0);
    expect_silent_start();
  }
}

TEST(LimiterDelay, DisabledLeavesTheOutputAlone) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter(1, n);
    const std::vector<float> loud(n, 2.0f), untouched(n, 9.0f);
    EXPECT_EQ(Limit(limiter, loud), untouched);
    limiter.Start(1, n);
    for (const int hard_clip : {0, 1}) {
      limiter.SetHardClip(hard_clip);
      limiter.SetEnable(1);
      EXPECT_NE(Limit(limiter, loud), untouched);
      limiter.SetEnable(0);
      EXPECT_EQ(Limit(limiter, loud), untouched);
      EXPECT_EQ(Limit(limiter, loud, 2), untouched);
    }
  }
}

// The gain falls across the sub-block ahead of the loud one, and is there when it leaves.
TEST(LimiterFade, GoesAheadOfALoudSample) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    SCOPED_TRACE(n);
    LimiterPair limiter(1, n);
    // The next required gain, of a slow stage below one, mustn't round to less than a half.
    limiter.Start(1, n, n == 256 ? 192000 : 96000);
    const std::vector<float> quiet(n, 0.5f);
    std::vector<float> loud = quiet;
    loud[n / 2] = -2;
    EXPECT_EQ(Limit(limiter, quiet), std::vector<float>(n));
    std::vector<float> y = Limit(limiter, loud);
    for (size_t i = 0; i < n; ++i) EXPECT_EQ(y[i], 0.5f * Faded(tables, i, 0.5f)) << i;
    y = Limit(limiter, quiet);
    ASSERT_EQ(limiter.library.Record().gain, 0.5f);
    for (size_t i = 0; i < n; ++i) EXPECT_EQ(y[i], loud[i] * 0.5f * Faded(tables, i, 1)) << i;
    EXPECT_EQ(y[n / 2], -1.0f);
  }
}

TEST(LimiterFade, TakesANewBoostAcrossOneSubBlock) {
  for (const ExportedTables &tables : kExportedTables) {
    const uint32_t n = tables.length.sub_block;
    for (const bool fades : {true, false}) {
      SCOPED_TRACE(testing::Message() << n << (fades ? ", fade" : ", jump"));
      LimiterPair limiter(1, n);
      limiter.Start(1, 2 * n);
      const std::vector<float> x(2 * n, 0.5f);
      Limit(limiter, x);
      limiter.SetBoost(fades ? 1.0f / 256 : 3.0f / 256, 3.0f / 256);
      const std::vector<float> y = Limit(limiter, x);
      for (size_t i = 0; i < n; ++i) {
        const float wanted = fades ? 0.5f * Faded(tables, i, 3) : 1.5f * Faded(tables, i, 1);
        EXPECT_EQ(y[i], wanted) << i;
        EXPECT_EQ(y[n + i], 1.5f * Faded(tables, i, 1)) << i;
      }
      EXPECT_EQ(limiter.library.Record().prev_boost, 3.0f / 256);
    }
  }
}

// Nothing is processed, not even the boost.
TEST(LimiterBlock, OfNoFramesChangesNothing) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    const std::vector<float> x(n, 0.5f);
    Limit(limiter, x);
    limiter.SetBoost(1, 2);
    limiter.SetBlockSize(0);
    EXPECT_EQ(Limit(limiter, x), std::vector<float>(n, 9.0f));
    EXPECT_EQ(limiter.library.Record().prev_boost, 1.0f);
  }
}

TEST(LimiterBlock, OfSeveralSubBlocksIsAsManyBlocksOfOne) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    Random random(n);
    std::vector<float> x = UnitNoise(random, 6 * n);
    for (float &sample : x) sample *= 3;
    LimiterPair whole(1, n), parts(1, n);
    whole.Start(1, 6 * n);
    parts.Start(1, n);
    const std::vector<float> y = Limit(whole, x);
    for (uint32_t s = 0; s < 6; ++s) {
      const auto at = static_cast<ptrdiff_t>(s * n);
      const std::vector<float> part = Limit(parts, {x.begin() + at, x.begin() + at + n});
      EXPECT_TRUE(std::equal(part.begin(), part.end(), y.begin() + at)) << n << ", " << s;
    }
  }
}

// A NaN or an infinity comes out where it went in, a sub-block later, and touches no other
// sample.
TEST(LimiterDelay, KeepsANanToItsPlace) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t n = length.sub_block;
    LimiterPair limiter(1, n);
    limiter.Start(1, n);
    std::vector<float> x(n, 0.5f);
    x[n / 2] = kNaN;
    Limit(limiter, x);
    const std::vector<float> y = Limit(limiter, std::vector<float>(n));
    for (size_t i = 0; i < n; ++i) EXPECT_EQ(std::isnan(y[i]), i == n / 2) << i;
    for (float sample : Limit(limiter, x)) EXPECT_EQ(sample, 0.0f);
  }
}

}  // namespace
}  // namespace testing_support
