// The limiter's setters and getters.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "limiter/limiter_pair.h"
#include "limiter/limiter_tables.h"

namespace testing_support {
namespace {

// Samples that no setting puts there.
void Soil(LimiterPair &limiter) {
  std::ranges::fill(limiter.library.Delay(), 3.0f);
  std::ranges::fill(limiter.expected.delay, 3.0f);
}

bool IsSoiled(const LimiterPair &limiter) {
  return std::ranges::all_of(limiter.library.Delay(), [](float x) { return x == 3.0f; });
}

bool IsSilent(const LimiterPair &limiter) {
  return std::ranges::all_of(limiter.library.Delay(), [](float x) { return BitsOf(x) == 0; });
}

// Gains and positions as some blocks might have left them.
void Disturb(LimiterPair &limiter) {
  const uint32_t n = limiter.expected.sub_block;
  Channels in(n, 1), out(n, 1);
  in.Add(std::vector<float>(n, 3.0f), 0);
  out.AddSilent(0);
  limiter.Start(1, n);
  limiter.SetBoost(0.01f, 0.02f);
  for (int block = 0; block < 4; ++block) EXPECT_TRUE(limiter.Process(out, in));
  const LimiterRecord record = limiter.library.Record();
  ASSERT_NE(record.gain, 1.0f);
  ASSERT_NE(record.prev_gain, 1.0f);
  ASSERT_NE(record.slow_gain, 1.0f);
  ASSERT_NE(record.fast_gain, 1.0f);
  ASSERT_NE(record.last_peak, 0.0f);
}

TEST(LimiterSettings, AreHandedBack) {
  LimiterPair limiter(2, 64);
  auto *state = limiter.library.handle();
  EXPECT_EQ(orvane_ht_ztlim_get_enable(state), 0);
  EXPECT_EQ(orvane_ht_ztlim_get_peak(state), 1.0f);
  EXPECT_EQ(orvane_ht_ztlim_get_boost(state), 1.0f / 256);
  EXPECT_EQ(orvane_ht_ztlim_get_hard_clip(state), 0);
  EXPECT_EQ(orvane_ht_ztlim_get_sample_rate(state), 0xffffffffu);
  EXPECT_EQ(orvane_ht_ztlim_get_block_size(state), 64u);
  EXPECT_EQ(orvane_ht_ztlim_get_num_channels(state), 0u);
  EXPECT_EQ(orvane_ht_ztlim_get_limiter_gain(state), 1.0f);

  limiter.SetEnable(1);
  limiter.SetPeak(0.25f);
  limiter.SetBoost(0.5f, 0.75f);
  limiter.SetHardClip(1);
  limiter.SetSampleRate(44100);
  limiter.SetBlockSize(192);
  limiter.SetNumChannels(2);
  EXPECT_EQ(orvane_ht_ztlim_get_enable(state), 1);
  EXPECT_EQ(orvane_ht_ztlim_get_peak(state), 0.25f);
  EXPECT_EQ(orvane_ht_ztlim_get_boost(state), 0.75f);
  EXPECT_EQ(orvane_ht_ztlim_get_hard_clip(state), 1);
  EXPECT_EQ(orvane_ht_ztlim_get_sample_rate(state), 44100u);
  EXPECT_EQ(orvane_ht_ztlim_get_block_size(state), 192u);
  EXPECT_EQ(orvane_ht_ztlim_get_num_channels(state), 2u);
  EXPECT_TRUE(SameState(limiter.library, limiter.expected));
}

TEST(LimiterSettings, EachSetsItsOwnFieldsOnly) {
  void (*const kSetters[])(LimiterPair &) = {
      [](LimiterPair &limiter) { limiter.SetEnable(0); },
      [](LimiterPair &limiter) { limiter.SetPeak(0.125f); },
      [](LimiterPair &limiter) { limiter.SetBoost(5, 6); },
      [](LimiterPair &limiter) { limiter.SetHardClip(1); },
      [](LimiterPair &limiter) { limiter.SetSampleRate(176400); },
      [](LimiterPair &limiter) { limiter.SetBlockSize(5 * limiter.expected.sub_block); },
      [](LimiterPair &limiter) { limiter.SetNumChannels(2); },
      [](LimiterPair &limiter) { limiter.Reset(); },
  };
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (size_t i = 0; i < std::size(kSetters); ++i) {
      SCOPED_TRACE(testing::Message() << length.sub_block << ", setter " << i);
      LimiterPair limiter(3, length.sub_block);
      Disturb(limiter);
      kSetters[i](limiter);
      EXPECT_TRUE(SameState(limiter.library, limiter.expected));
    }
  }
}

TEST(LimiterSettings, PeakAndBoostTakeAnyValue) {
  LimiterPair limiter(1, 32);
  auto *state = limiter.library.handle();
  for (float value : kKernelSpecials) {
    orvane_ht_ztlim_set_peak(state, value);
    orvane_ht_ztlim_set_boost(state, -value, value);
    EXPECT_EQ(BitsOf(orvane_ht_ztlim_get_peak(state)), BitsOf(value));
    EXPECT_EQ(BitsOf(orvane_ht_ztlim_get_boost(state)), BitsOf(value));
    EXPECT_EQ(BitsOf(limiter.library.Record().peak), BitsOf(value));
    EXPECT_EQ(BitsOf(limiter.library.Record().boost), BitsOf(value));
    EXPECT_EQ(BitsOf(limiter.library.Record().prev_boost), BitsOf(-value));
  }
}

TEST(LimiterSettings, GainIsTheOverallGain) {
  LimiterPair limiter(1, 64);
  Disturb(limiter);
  EXPECT_EQ(orvane_ht_ztlim_get_limiter_gain(limiter.library.handle()), limiter.expected.gain);
}

// ---- Sample rate ----

TEST(LimiterSampleRate, IsTakenIfTheSubBlockServesIt) {
  for (const ExportedTables &tables : kExportedTables) {
    for (size_t i = 0; i < std::size(reference::kLimiterRates); ++i) {
      const uint32_t rate = reference::kLimiterRates[i];
      SCOPED_TRACE(testing::Message() << tables.length.sub_block << " at " << rate);
      LimiterPair limiter(1, tables.length.sub_block);
      Disturb(limiter);
      auto *state = limiter.library.handle();
      limiter.SetSampleRate(rate);
      EXPECT_TRUE(SameState(limiter.library, limiter.expected));
      const bool served = i < tables.length.rates;
      EXPECT_EQ(orvane_ht_ztlim_get_sample_rate(state), served ? rate : 96000u);
      const auto *coefs = reinterpret_cast<const float *>(tables.coefs[served ? i : 2]);
      EXPECT_EQ(limiter.library.Record().coefs, coefs);
    }
  }
}

TEST(LimiterSampleRate, OfTheShortAndTheLong) {
  const auto set = [](uint32_t sub_block, unsigned rate) {
    LibraryLimiter limiter(1, sub_block);
    return orvane_ht_ztlim_set_sample_rate(limiter.handle(), rate);
  };
  EXPECT_EQ(set(128, 44100), -1);
  EXPECT_EQ(set(64, 44100), 0);
  EXPECT_EQ(set(256, 96000), 0);
  EXPECT_EQ(set(256, 64000), -1);
  EXPECT_EQ(set(128, 48000), 0);
  EXPECT_EQ(set(32, 24000), 0);
  EXPECT_EQ(set(40, 24000), 0);
}

TEST(LimiterSampleRate, OfNoTableIsRefused) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LimiterPair limiter(1, length.sub_block);
    Disturb(limiter);
    for (uint32_t rate : {0u, 1u, 8000u, 16000u, 22050u, 47999u, 48001u, 384000u, 0xffffffffu}) {
      EXPECT_EQ(orvane_ht_ztlim_set_sample_rate(limiter.library.handle(), rate), -1) << rate;
      EXPECT_TRUE(SameState(limiter.library, limiter.expected)) << rate;
    }
  }
}

TEST(LimiterSampleRate, NoneIsTakenAsThePresentOneUntilOneIsSet) {
  LimiterPair limiter(1, 64);
  EXPECT_EQ(orvane_ht_ztlim_set_sample_rate(limiter.library.handle(), 0xffffffffu), 0);
  EXPECT_TRUE(SameState(limiter.library, limiter.expected));
  EXPECT_EQ(limiter.library.Record().coefs, nullptr);
}

TEST(LimiterSampleRate, AnotherOneSetsTheStagesToOneAndThePresentOneDoesNot) {
  LimiterPair limiter(1, 64);
  Disturb(limiter);
  const LimiterRecord before = limiter.library.Record();
  EXPECT_EQ(orvane_ht_ztlim_set_sample_rate(limiter.library.handle(), 96000), 0);
  LimiterRecord record = limiter.library.Record();
  EXPECT_EQ(record.slow_gain, before.slow_gain);
  EXPECT_EQ(record.fast_gain, before.fast_gain);
  EXPECT_EQ(orvane_ht_ztlim_set_sample_rate(limiter.library.handle(), 48000), 0);
  record = limiter.library.Record();
  EXPECT_EQ(record.slow_gain, 1.0f);
  EXPECT_EQ(record.fast_gain, 1.0f);
  EXPECT_EQ(record.gain, before.gain);
  EXPECT_EQ(record.prev_gain, before.prev_gain);
}

// ---- Block size and channels ----

TEST(LimiterBlockSize, IsAWholeNumberOfSubBlocks) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LimiterPair limiter(1, length.sub_block);
    for (uint32_t frames = 0; frames <= 4 * length.sub_block; ++frames) {
      limiter.SetBlockSize(frames);
      ASSERT_TRUE(SameState(limiter.library, limiter.expected)) << frames;
      ASSERT_EQ(orvane_ht_ztlim_get_block_size(limiter.library.handle()),
                frames / length.sub_block * length.sub_block);
    }
  }
}

TEST(LimiterBlockSize, Figures) {
  LibraryLimiter of_64(1, 64), of_32(1, 32);
  EXPECT_EQ(orvane_ht_ztlim_set_block_size(of_64.handle(), 96), -1);
  EXPECT_EQ(of_64.Record().block_size, 64u);
  EXPECT_EQ(of_64.Record().num_sub_blocks, 0xA5A5A5A5u) << "left as it was";
  EXPECT_EQ(orvane_ht_ztlim_set_block_size(of_32.handle(), 96), 0);
  EXPECT_EQ(of_32.Record().block_size, 96u);
  EXPECT_EQ(of_32.Record().num_sub_blocks, 3u);
  EXPECT_EQ(orvane_ht_ztlim_set_block_size(of_32.handle(), 0xffffffe0u), 0);
  EXPECT_EQ(of_32.Record().num_sub_blocks, 0x7ffffffu);
  EXPECT_EQ(orvane_ht_ztlim_set_block_size(of_32.handle(), 0xffffffffu), -1);
  EXPECT_EQ(orvane_ht_ztlim_set_block_size(of_32.handle(), 0), 0);
  EXPECT_EQ(of_32.Record().block_size, 0u);
  EXPECT_EQ(of_32.Record().num_sub_blocks, 0u);
}

TEST(LimiterNumChannels, AreAsManyAsThereIsMemoryFor) {
  for (uint32_t channels : {0u, 1u, 2u, 9u}) {
    LimiterPair limiter(channels, 32);
    auto *state = limiter.library.handle();
    for (uint32_t taken = 0; taken <= channels; ++taken) {
      EXPECT_EQ(orvane_ht_ztlim_set_num_channels(state, taken), 0);
      EXPECT_EQ(orvane_ht_ztlim_get_num_channels(state), taken);
    }
    for (uint32_t refused : {channels + 1, channels + 100, 0x80000000u, 0xffffffffu}) {
      EXPECT_EQ(orvane_ht_ztlim_set_num_channels(state, refused), -1);
      EXPECT_EQ(orvane_ht_ztlim_get_num_channels(state), channels);
    }
    EXPECT_EQ(limiter.library.Record().max_channels, channels);
  }
}

// ---- Modes ----

TEST(LimiterLatency, IsASubBlockWhileLimiting) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LibraryLimiter limiter(1, length.sub_block);
    auto *state = limiter.handle();
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), 0u);
    orvane_ht_ztlim_set_enable(state, 1);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), length.sub_block);
    orvane_ht_ztlim_set_hard_clip(state, 1);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), 0u);
    orvane_ht_ztlim_set_enable(state, 0);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), 0u);
    orvane_ht_ztlim_set_hard_clip(state, 0);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), 0u);
    orvane_ht_ztlim_set_enable(state, -1);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), length.sub_block);
    orvane_ht_ztlim_set_hard_clip(state, 2);
    EXPECT_EQ(orvane_ht_ztlim_get_latency(state), 0u);
  }
}

// The delay is silenced on the way into limiting and on no other.
TEST(LimiterModes, WaysIntoLimitingSilenceTheDelay) {
  struct Switch {
    int enable, hard_clip;  // before
    int set_enable;         // or the hard clipping
    int value;
    bool silences;
  };
  constexpr Switch kSwitches[] = {
      {0, 0, 1, 1, true},  {0, 0, 1, 0, false}, {0, 0, 0, 1, false}, {0, 0, 0, 0, false},
      {0, 1, 1, 1, false}, {0, 1, 1, 0, false}, {0, 1, 0, 1, false}, {0, 1, 0, 0, false},
      {1, 0, 1, 1, false}, {1, 0, 1, 0, false}, {1, 0, 0, 1, false}, {1, 0, 0, 0, false},
      {1, 1, 1, 1, false}, {1, 1, 1, 0, false}, {1, 1, 0, 1, false}, {1, 1, 0, 0, true},
  };
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (const Switch &s : kSwitches) {
      // Another number than one means the same.
      for (const int non_zero : {1, 2, -1}) {
        SCOPED_TRACE(testing::Message()
                     << length.sub_block << ": enabled " << s.enable << ", clipping " << s.hard_clip
                     << ", sets " << (s.set_enable ? "enable" : "hard_clip") << " to " << s.value);
        LimiterPair limiter(3, length.sub_block);
        Disturb(limiter);  // one channel of the three
        limiter.SetEnable(s.enable);
        limiter.SetHardClip(s.hard_clip);
        Soil(limiter);
        auto *state = limiter.library.handle();
        (s.set_enable ? orvane_ht_ztlim_set_enable : orvane_ht_ztlim_set_hard_clip)(
            state, s.value * non_zero);
        EXPECT_TRUE(s.silences ? IsSilent(limiter) : IsSoiled(limiter));
        EXPECT_EQ(orvane_ht_ztlim_get_enable(state) != 0, (s.set_enable ? s.value : s.enable) != 0);
        EXPECT_EQ(orvane_ht_ztlim_get_hard_clip(state) != 0,
                  (s.set_enable ? s.hard_clip : s.value) != 0);
      }
    }
  }
}

TEST(LimiterModes, SwitchesKeepTheGains) {
  LimiterPair limiter(1, 40);
  Disturb(limiter);
  for (int round = 0; round < 2; ++round) {
    limiter.SetEnable(0);
    limiter.SetEnable(1);
    limiter.SetHardClip(1);
    limiter.SetHardClip(0);
    EXPECT_TRUE(SameState(limiter.library, limiter.expected));
  }
}

TEST(LimiterReset, LeavesTheHeldGainsAndTheFadingBoost) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    LimiterPair limiter(3, length.sub_block);
    Disturb(limiter);
    Soil(limiter);
    limiter.SetBoost(0.125f, 0.25f);
    std::ranges::fill(limiter.library.HoldBuffer(), 0.75f);
    orvane_ht_ztlim_reset_state(limiter.library.handle());
    const LimiterRecord record = limiter.library.Record();
    EXPECT_EQ(record.fast_gain, 1.0f);
    EXPECT_EQ(record.slow_gain, 1.0f);
    EXPECT_EQ(record.gain, 1.0f);
    EXPECT_EQ(record.prev_gain, 1.0f);
    EXPECT_EQ(BitsOf(record.last_peak), 0u);
    EXPECT_EQ(record.hold_index, 0u);
    EXPECT_TRUE(IsSilent(limiter));
    EXPECT_EQ(record.prev_boost, 0.125f);
    EXPECT_EQ(record.boost, 0.25f);
    for (float held : limiter.library.HoldBuffer()) EXPECT_EQ(held, 0.75f);
    EXPECT_EQ(record.sample_rate, 96000u);
    EXPECT_EQ(record.enable, 1u);
    EXPECT_TRUE(limiter.library.GuardsStand());
  }
}

}  // namespace
}  // namespace testing_support
