// The exported filters.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>

#include "component/stream_memory.h"
#include "orvane_resampler.h"
#include "reference/prototype_taps.h"

namespace testing_support {
namespace {

struct Phase {
  unsigned factor;
  unsigned phase;
  const float (&slots)[24];
  int taps;
};

const Phase kPhases[] = {
    {2, 0, orvane_resampler_2x_ph0_vec, 21}, {2, 1, orvane_resampler_2x_ph1_vec, 20},
    {4, 0, orvane_resampler_4x_ph0_vec, 21}, {4, 1, orvane_resampler_4x_ph1_vec, 20},
    {4, 2, orvane_resampler_4x_ph2_vec, 20}, {4, 3, orvane_resampler_4x_ph3_vec, 20},
};

const float *Prototype(unsigned factor) {
  return factor == 2 ? orvane_resampler_2x_filt : orvane_resampler_4x_filt;
}

TEST(FilterTables, PrototypesAreTheirTapsOver32768) {
  for (unsigned factor : {2u, 4u}) {
    for (int t = 0; t < reference::TapCount(factor); ++t) {
      EXPECT_TRUE(
          SameFloat(Prototype(factor)[t], static_cast<float>(reference::Tap(factor, t)) / 32768.0f))
          << "factor " << factor << ", tap " << t;
    }
  }
  EXPECT_EQ(std::size(orvane_resampler_2x_filt), 41u);
  EXPECT_EQ(std::size(orvane_resampler_4x_filt), 81u);
}

TEST(FilterTables, PrototypesAreSymmetric) {
  for (int t = 0; t <= 40; ++t) {
    EXPECT_EQ(orvane_resampler_2x_filt[t], orvane_resampler_2x_filt[40 - t]) << t;
  }
  for (int t = 0; t <= 80; ++t) {
    EXPECT_EQ(orvane_resampler_4x_filt[t], orvane_resampler_4x_filt[80 - t]) << t;
  }
}

TEST(FilterTables, PrototypesSumToALittleBelowOne) {
  const auto sum = [](const float *taps, int count) {
    double total = 0;
    for (int t = 0; t < count; ++t) total += taps[t];
    return total * 32768;
  };
  EXPECT_EQ(sum(orvane_resampler_2x_filt, 41), 32498);
  EXPECT_EQ(sum(orvane_resampler_4x_filt, 81), 32342);
}

TEST(FilterTables, PhasesTakeEveryNthTapAndEndInZeros) {
  for (const auto &[factor, phase, slots, taps] : kPhases) {
    for (int k = 0; k < 24; ++k) {
      const int t = static_cast<int>(factor) * k + static_cast<int>(phase);
      const float wanted = k < taps ? Prototype(factor)[t] : 0.0f;
      EXPECT_TRUE(SameFloat(slots[k], wanted))
          << "factor " << factor << ", phase " << phase << ", slot " << k;
    }
  }
}

TEST(FilterTables, PhasesMirrorOneAnother) {
  for (int k = 0; k < 20; ++k) {
    EXPECT_EQ(orvane_resampler_4x_ph1_vec[k], orvane_resampler_4x_ph3_vec[19 - k]) << k;
    EXPECT_EQ(orvane_resampler_2x_ph1_vec[k], orvane_resampler_2x_ph1_vec[19 - k]) << k;
    EXPECT_EQ(orvane_resampler_4x_ph2_vec[k], orvane_resampler_4x_ph2_vec[19 - k]) << k;
  }
}

TEST(FilterTables, PhasesAreAlignedTo32Bytes) {
  for (const Phase &phase : kPhases) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(&phase.slots[0]) % 32, 0u)
        << "factor " << phase.factor << ", phase " << phase.phase;
    EXPECT_EQ(sizeof phase.slots, 96u);
  }
}

TEST(FilterTables, ABlockHas256FramesAtTheHigherRate) {
  EXPECT_EQ(RESAMP_PROCESSING_BLK_SIZE, 256u);
}

}  // namespace
}  // namespace testing_support
