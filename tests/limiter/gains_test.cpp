// The gain of each sub-block: the course it takes, from values worked out by hand or at
// length, and the branches that lead there.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

using reference::kSlowThreshold;

// A limiter of one sub-block a call, fed constant levels.
class Course {
 public:
  explicit Course(uint32_t sub_block, uint32_t rate = 96000) : limiter(0, sub_block) {
    limiter.Start(0, sub_block, rate);
  }

  // What the state holds after one update.
  LimiterRecord Update(float level) {
    const uint32_t n = limiter.expected.sub_block;
    Channels none(n, 1), detect(n, 1);
    detect.Add(std::vector<float>(n, level), 0);
    EXPECT_TRUE(limiter.ProcessIndirect(none, detect, none));
    return limiter.library.Record();
  }
  LimiterRecord Updates(int count, float level) {
    for (int i = 1; i < count; ++i) Update(level);
    return Update(level);
  }

  LimiterPair limiter;
};

// ---- One loud sub-block ----

TEST(LimiterGain, FallsInOneStep) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    SCOPED_TRACE(length.sub_block);
    Course course(length.sub_block);
    LimiterRecord record = course.Update(0);
    EXPECT_EQ(record.gain, 1.0f);
    record = course.Update(2);
    EXPECT_EQ(record.last_peak, 2.0f);
    EXPECT_EQ(record.fast_gain, 0.5f);
    EXPECT_EQ(record.gain, 0.5f);
    EXPECT_EQ(record.prev_gain, 1.0f);
    EXPECT_EQ(course.limiter.library.HoldBuffer()[1 % length.hold_length], 0.5f);
  }
}

// The peak before keeps the required gain low for one more update.
TEST(LimiterGain, HeedsThePeakBefore) {
  Course course(64, 48000);
  const float slow = course.Update(2).slow_gain;
  EXPECT_EQ(BitsOf(slow), BitsOf(0x1.fb41fep-1f));
  const LimiterRecord record = course.Update(0);
  EXPECT_EQ(record.last_peak, 0.0f);
  EXPECT_EQ(record.gain, 0.5f);
  EXPECT_EQ(course.limiter.library.HoldBuffer()[0], 1 / (2 * slow));
}

// With the loud update: one for the peak before, and one for each held gain.
TEST(LimiterGain, HoldsForTheHeldGains) {
  struct Row {
    uint32_t sub_block, rate;
    int updates;
  };
  constexpr Row kRows[] = {
      {32, 24000, 5}, {40, 24000, 4}, {64, 48000, 3}, {128, 96000, 3}, {256, 192000, 3}};
  for (const Row &row : kRows) {
    SCOPED_TRACE(row.sub_block);
    Course course(row.sub_block, row.rate);
    EXPECT_EQ(course.Update(2).gain, 0.5f);
    for (int i = 1; i < row.updates; ++i) EXPECT_EQ(course.Update(0).gain, 0.5f) << i;
    EXPECT_GT(course.Update(0).gain, 0.55f);
  }
}

// The hold buffer fills from its start and wraps, and the release goes to the least of it.
TEST(LimiterGain, ReleasesToTheLeastOfTheHeldGains) {
  Course course(32);
  course.Update(4);  // held gains: 1/4, 1, 1
  EXPECT_EQ(course.limiter.library.Record().hold_index, 1u);
  const float held[] = {0.25f, 1, 1};
  EXPECT_TRUE(SameBits(course.limiter.library.HoldBuffer(), held, {"hold_buffer", ""}));
  for (uint32_t i = 2; i < 10; ++i) EXPECT_EQ(course.Update(0.5f).hold_index, i % 3);
  const float silent[] = {1, 1, 1};
  EXPECT_TRUE(SameBits(course.limiter.library.HoldBuffer(), silent, {"hold_buffer", ""}));
}

// ---- Settling: 48000 Hz at 64 frames, 750 updates a second ----

// The figures, to the bit, come from arithmetic in whole numbers.
TEST(LimiterCourse, StagesTradePlacesUnderASustainedLevel) {
  Course course(64, 48000);
  LimiterRecord record;
  for (int update = 1; update <= 1500; ++update) {
    record = course.Update(2);
    // One rounding below, where a required gain comes out a little low.
    ASSERT_TRUE(record.gain == 0.5f || record.gain == 0x1.fffffep-2f) << update;
    if (update == 1) {
      EXPECT_EQ(record.gain, 0.5f);
      EXPECT_EQ(record.fast_gain, 0.5f);
    }
    if (update == 10) {
      EXPECT_EQ(record.fast_gain, 0x1.0d0ecep-1f);  // 0.5255
      EXPECT_EQ(record.slow_gain, 0x1.d42c32p-1f);  // 0.9144
    }
    if (update == 100) {
      EXPECT_EQ(record.fast_gain, 0x1.96027ep-1f);  // 0.7930
      EXPECT_EQ(record.slow_gain, 0x1.3f7d5cp-1f);  // 0.6240
    }
    if (update < 500) continue;
    ASSERT_EQ(record.fast_gain, 0x1.aecbd2p-1f) << update;  // 0.84140
    ASSERT_EQ(record.slow_gain, 0x1.304156p-1f) << update;  // 0.594248
  }
  // The slow stage rests where what an update adds rounds to nothing: slow_follow times the
  // distance from slow * fast / threshold, which has three roundings, is half a unit.
  const double slow = record.slow_gain;
  const double follow = 748 * 0x1p-15;
  EXPECT_NEAR(record.fast_gain, kSlowThreshold, kSlowThreshold / slow * 0x1p-25 / follow + 0x1p-22);
  // The fast stage rests as close to the required gain by 1 - release, and so does the product.
  const double release = 27238 * 0x1p-15;
  EXPECT_NEAR(record.fast_gain * slow, 0.5, slow * 0x1p-25 / (1 - release) + 0x1p-23);
}

TEST(LimiterCourse, RecoversAfterASustainedLevel) {
  Course course(64, 48000);
  const float settled = course.Updates(600, 2).gain;
  struct Row {
    int update;
    float gain;
  };
  constexpr Row kRows[] = {
      {3, 0x1.0824c4p-1f},    // 0.516
      {10, 0x1.2d33c6p-1f},   // 0.588
      {11, 0x1.30398ep-1f},   // 0.594
      {50, 0x1.61b364p-1f},   // 0.691
      {100, 0x1.8976f0p-1f},  // 0.768
      {500, 0x1.f44750p-1f},  // 0.977
  };
  const Row *row = kRows;
  for (int update = 1; update <= 500; ++update) {
    const LimiterRecord record = course.Update(0);
    if (update <= 2) {
      EXPECT_EQ(record.gain, settled) << "held, " << update;
    }
    if (update == row->update) {
      EXPECT_EQ(record.gain, row->gain) << update;
      ++row;
    }
    if (update == 50) {
      EXPECT_EQ(record.fast_gain, 0x1.fffd18p-1f);
    }
  }
  EXPECT_EQ(row, std::end(kRows));
}

TEST(LimiterCourse, ComesBackToUnityAfterAllRates) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (size_t i = 0; i < length.rates; ++i) {
      const uint32_t rate = reference::kLimiterRates[i];
      SCOPED_TRACE(testing::Message() << length.sub_block << " at " << rate);
      Course course(length.sub_block, rate);
      course.Updates(20, 3);
      const float low = course.Updates(20, 1.5f).gain;
      EXPECT_LT(low, 0.75f);
      const float back = course.Updates(40, 0.25f).gain;
      EXPECT_GT(back, low);
      EXPECT_LE(back, 1.0f);
    }
  }
}

TEST(LimiterCourse, StaysAtUnityBelowThePeak) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    Course course(length.sub_block);
    // A level at the peak isn't above it.
    for (float level : {0.1f, 1.0f, 0.0f, 0x1.fffffep-1f, 1.0f}) {
      const LimiterRecord record = course.Updates(3, level);
      EXPECT_EQ(record.gain, 1.0f);
      EXPECT_EQ(record.slow_gain, 1.0f);
      EXPECT_EQ(record.fast_gain, 1.0f);
    }
    EXPECT_LT(course.Update(0x1.000002p+0f).gain, 1.0f);
  }
}

// The slow stage turns at the threshold, and takes the side of recovery there.
TEST(LimiterGain, SlowStageTurnsAtItsThreshold) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const auto slow_stage = [&length](float fast) {
      // A peak of that much under a level of one, with the slow stage at one half.
      Course course(length.sub_block);
      course.limiter.SetPeak(fast);
      const size_t at = offsetof(LimiterRecord, slow_gain);
      const float half = 0.5f;
      std::memcpy(reinterpret_cast<uint8_t *>(course.limiter.library.handle()) + at, &half,
                  sizeof half);
      course.limiter.expected.slow_gain = half;
      const LimiterRecord record = course.Update(2);
      EXPECT_EQ(record.fast_gain, fast);
      return record.slow_gain;
    };
    EXPECT_GT(slow_stage(kSlowThreshold), 0.5f + 0x1p-12f);
    EXPECT_LT(slow_stage(std::nextafter(kSlowThreshold, 0.0f)), 0.5f + 0x1p-20f);
  }
}

// ---- Any state ----

// A limiter in the middle of any programme.
void PutState(LimiterPair &limiter, const Material &material, Random &random) {
  const auto next = [&] { return material.next(random); };
  reference::Limiter &expected = limiter.expected;
  LimiterRecord record = limiter.library.Record();
  record.last_peak = expected.last_peak = std::abs(next());
  record.slow_gain = expected.slow_gain = std::abs(next());
  record.fast_gain = expected.fast_gain = std::abs(next());
  record.gain = expected.gain =
      random.Below(2) == 0 ? std::abs(next()) : expected.slow_gain * expected.fast_gain;
  record.hold_index = expected.hold_index = random.Below(record.hold_length);
  for (float &held : expected.hold_buffer) held = random.Below(2) == 0 ? 1 : std::abs(next());
  std::memcpy(record.hold_buffer, expected.hold_buffer.data(),
              expected.hold_buffer.size() * sizeof(float));
  std::memcpy(limiter.library.handle(), &record, sizeof record);
}

TEST(LimiterGain, OfAnyState) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    Random random(length.sub_block);
    for (const Material &material : {kUniform, kClose, kMixed}) {
      for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ", " << material.name << ", round " << round);
        Course course(length.sub_block,
                      reference::kLimiterRates[random.Below(static_cast<unsigned>(length.rates))]);
        course.limiter.SetPeak(random.Below(2) == 0 ? std::abs(random.Unit())
                                                    : material.next(random));
        PutState(course.limiter, material, random);
        for (int update = 0; update < 3; ++update) course.Update(material.next(random));
        if (HasFailure()) return;
      }
    }
  }
}

// ---- Peaks out of the ordinary ----

TEST(LimiterGain, OfAnInfinitePeakIsNothingAndRecovers) {
  Course course(64);
  LimiterRecord record = course.Update(kInfinity);
  EXPECT_EQ(record.gain, 0.0f);
  EXPECT_EQ(record.last_peak, kInfinity);
  record = course.Updates(100, 0);
  EXPECT_GT(record.gain, 0.5f);
}

// A NaN compares with nothing: neither as the peak before nor as a required gain.
TEST(LimiterGain, OfANanIsOne) {
  LimiterPair limiter(0, 64);
  limiter.Start(0, 64);
  Channels none(64, 2), detect(64, 2), quiet(64, 2);
  std::vector<float> samples(64, 3.0f);
  samples[63] = kNaN;
  detect.Add(samples, 0);
  quiet.Add(std::vector<float>(64, 0.5f), 0);
  EXPECT_TRUE(limiter.ProcessIndirect(none, detect, none));
  EXPECT_TRUE(std::isnan(limiter.library.Record().last_peak));
  EXPECT_EQ(limiter.library.Record().gain, 1.0f);
  EXPECT_TRUE(limiter.ProcessIndirect(none, quiet, none));
  EXPECT_EQ(limiter.library.Record().gain, 1.0f);
  EXPECT_EQ(limiter.library.Record().last_peak, 0.5f);
}

// The reciprocal is that of a double: of a denormal it's infinite as a float.
TEST(LimiterGain, OfADenormalLevelAboveThePeakGoesByItsReciprocal) {
  Course course(64);
  course.limiter.SetPeak(0x1p-130f);
  const LimiterRecord record = course.Update(0x1p-129f);
  EXPECT_EQ(course.limiter.library.HoldBuffer()[0], kInfinity);
  EXPECT_EQ(record.gain, 1.0f);
}

// The reciprocal is rounded to a float before the product, which the quotient and the product
// in double would round once: 2.5 / 3 is 0x1.aaaaaap-1 to the nearest.
TEST(LimiterGain, IsTheProductOfTheRoundedReciprocal) {
  Course course(64);
  course.limiter.SetPeak(2.5f);
  EXPECT_EQ(course.Update(3).gain, 0x1.aaaaacp-1f);
}

TEST(LimiterGain, KeepsItsValueOverAChangeOfRate) {
  Course course(64, 48000);
  const float low = course.Updates(5, 4).gain;
  course.limiter.SetSampleRate(96000);
  EXPECT_EQ(orvane_ht_ztlim_get_limiter_gain(course.limiter.library.handle()), low);
  course.Updates(50, 0.5f);
  course.limiter.SetSampleRate(24000);
  course.Updates(50, 1.5f);
}

}  // namespace
}  // namespace testing_support
