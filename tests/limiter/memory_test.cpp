// The memory that a limiter asks for, and how it lays it out.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "limiter/limiter_pair.h"
#include "limiter/limiter_tables.h"

namespace testing_support {
namespace {

struct Sizes {
  uint64_t state = 77, delay = 78, total;
};

Sizes Query(unsigned channels, unsigned sub_block) {
  Sizes sizes;
  sizes.total = orvane_ht_ztlim_query_memory(channels, &sizes.state, &sizes.delay, sub_block);
  return sizes;
}

TEST(LimiterQuery, CountsTheBytes) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (unsigned channels = 0; channels <= 40; ++channels) {
      SCOPED_TRACE(testing::Message() << channels << " channels of " << length.sub_block);
      const Sizes sizes = Query(channels, length.sub_block);
      EXPECT_EQ(sizes.state, 190 + 4 * length.hold_length);
      EXPECT_EQ(sizes.delay, 31 + 4 * channels * length.sub_block);
      EXPECT_EQ(sizes.total, sizes.state + sizes.delay);
    }
  }
}

struct QueryFigures {
  unsigned channels, sub_block;
  uint64_t state, delay;
};

TEST(LimiterQuery, Figures) {
  constexpr QueryFigures kFigures[] = {
      {2, 64, 194, 543},
      {2, 40, 198, 351},
      {2, 32, 202, 287},
      {1, 256, 194, 1055},
      {0, 128, 194, 31},
      {2, 48, 159, 415},
      {2, 0, 159, 31},
      {3, 33, 159, 427},
      {1, 512, 159, 2079},
      {0x7fffffff, 256, 194, 31 + 0x7fffffffull * 1024},
      {0xffffffff, 0xffffffff, 159, 31 + 4 * (0xffffffffull * 0xffffffffull)},
  };
  for (const QueryFigures &figures : kFigures) {
    SCOPED_TRACE(testing::Message() << figures.channels << " of " << figures.sub_block);
    const Sizes sizes = Query(figures.channels, figures.sub_block);
    EXPECT_EQ(sizes.state, figures.state);
    EXPECT_EQ(sizes.delay, figures.delay);
    EXPECT_EQ(sizes.total, figures.state + figures.delay);
  }
}

TEST(LimiterQuery, StoresBothPartsOrNone) {
  for (unsigned sub_block : {64u, 48u}) {
    const uint64_t total = Query(2, sub_block).total;
    uint64_t part = 77;
    EXPECT_EQ(orvane_ht_ztlim_query_memory(2, &part, nullptr, sub_block), total);
    EXPECT_EQ(orvane_ht_ztlim_query_memory(2, nullptr, &part, sub_block), total);
    EXPECT_EQ(orvane_ht_ztlim_query_memory(2, nullptr, nullptr, sub_block), total);
    EXPECT_EQ(part, 77u);
  }
}

TEST(LimiterInit, OfAnotherLengthIsRefused) {
  for (unsigned sub_block :
       {0u, 1u, 16u, 31u, 33u, 48u, 63u, 65u, 127u, 255u, 257u, 512u, 0x80000020u, 0xffffffffu}) {
    GuardedBytes memory(4096, 0);
    const std::vector<uint8_t> before = memory.Copy();
    EXPECT_EQ(orvane_ht_ztlim_init(1, sub_block, memory.data(), nullptr), nullptr) << sub_block;
    EXPECT_EQ(orvane_ht_ztlim_init(1, sub_block, memory.data(), memory.data() + 512), nullptr)
        << sub_block;
    EXPECT_EQ(memory.Copy(), before) << sub_block;
  }
}

template <typename T>
bool IsAligned32(const T *p) {
  return reinterpret_cast<uintptr_t>(p) % 32 == 0;
}

const uint8_t *Bytes(const void *p) { return static_cast<const uint8_t *>(p); }

// The parts lie one behind the other, each at a multiple of 32 bytes, within the memory.
void ExpectLaidOut(LibraryLimiter &limiter, const LimiterMemory &memory) {
  const auto *handle = Bytes(limiter.handle());
  const LimiterRecord record = limiter.Record();
  EXPECT_TRUE(IsAligned32(handle));
  EXPECT_EQ(handle - limiter.state_memory().data(), (32 - memory.state_misalignment % 32) % 32);
  EXPECT_TRUE(IsAligned32(record.hold_buffer));
  EXPECT_GE(Bytes(record.hold_buffer), handle + sizeof record);
  EXPECT_LE(Bytes(record.hold_buffer + record.hold_length), limiter.state_memory().end());
  EXPECT_TRUE(IsAligned32(record.delay));
  EXPECT_LE(Bytes(record.delay + limiter.Delay().size()), limiter.delay_memory().end());
  if (memory.place == DelayPlace::kApart) {
    EXPECT_EQ(Bytes(record.delay) - limiter.delay_memory().data(),
              (32 - memory.delay_misalignment % 32) % 32);
  } else {
    EXPECT_GE(Bytes(record.delay), Bytes(record.hold_buffer + record.hold_length));
  }
}

// Some blocks, through all of the delay.
void ExpectWorks(LimiterPair &limiter, uint32_t channels) {
  const uint32_t n = limiter.expected.sub_block;
  Random random(n);
  limiter.Start(channels, 2 * n);
  for (int block = 0; block < 2; ++block) {
    Channels in(2 * n, 1), out(2 * n, 1);
    for (uint32_t c = 0; c < channels; ++c) {
      in.Add(UnitNoise(random, 2 * n), 0);
      out.AddSilent(0);
    }
    EXPECT_TRUE(limiter.Process(out, in));
    limiter.SetPeak(0.5f);
  }
  limiter.Reset();
  EXPECT_TRUE(SameState(limiter.library, limiter.expected));
}

void ExpectFits(uint32_t channels, uint32_t sub_block, const LimiterMemory &memory) {
  SCOPED_TRACE(testing::Message() << channels << " channels of " << sub_block << ", misaligned by "
                                  << memory.state_misalignment << " and "
                                  << memory.delay_misalignment);
  LimiterPair limiter(channels, sub_block, memory);
  ASSERT_NE(limiter.library.handle(), nullptr);
  ExpectLaidOut(limiter.library, memory);
  EXPECT_TRUE(SameState(limiter.library, limiter.expected));
  ExpectWorks(limiter, channels);
}

TEST(LimiterInit, FitsInOneMemoryAtAnyAddress) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (size_t misalignment = 0; misalignment < 64; ++misalignment) {
      ExpectFits(3, length.sub_block, {DelayPlace::kBehindState, misalignment});
    }
  }
}

TEST(LimiterInit, FitsInTwoMemoriesAtAnyAddresses) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (size_t misalignment = 0; misalignment < 32; ++misalignment) {
      ExpectFits(2, length.sub_block, {DelayPlace::kApart, misalignment, 7 * misalignment % 64});
      ExpectFits(2, length.sub_block, {DelayPlace::kApart, 1, misalignment});
    }
  }
}

TEST(LimiterInit, FitsForAnyNumberOfChannels) {
  for (uint32_t channels : {0u, 1u, 2u, 7u, 32u}) {
    for (const reference::LimiterLength &length : reference::kLimiterLengths) {
      ExpectFits(channels, length.sub_block, {DelayPlace::kBehindState, 1});
      ExpectFits(channels, length.sub_block, {DelayPlace::kApart, 31, 1});
    }
  }
}

TEST(LimiterInit, SetsTheDefaultsWhateverTheMemoryHeld) {
  for (const ExportedTables &tables : kExportedTables) {
    for (uint8_t fill : {0x00, 0xA5, 0xFF}) {
      for (DelayPlace place : {DelayPlace::kBehindState, DelayPlace::kApart}) {
        SCOPED_TRACE(testing::Message()
                     << tables.length.sub_block << ", filled with " << int{fill});
        LibraryLimiter limiter(3, tables.length.sub_block, {place, 5, 6, fill});
        const LimiterRecord record = limiter.Record();
        EXPECT_EQ(record.enable, 0u);
        EXPECT_EQ(record.peak, 1.0f);
        EXPECT_EQ(record.boost, 1.0f / 256);
        EXPECT_EQ(record.hard_clip, 0u);
        EXPECT_EQ(record.num_channels, 0u);
        EXPECT_EQ(record.max_channels, 3u);
        EXPECT_EQ(record.sample_rate, 0xffffffffu);
        EXPECT_EQ(record.block_size, tables.length.sub_block);
        EXPECT_EQ(record.coefs, nullptr);
        EXPECT_EQ(record.window, tables.window.data());
        EXPECT_EQ(record.sub_block, tables.length.sub_block);
        EXPECT_EQ(BitsOf(record.last_peak), 0u);
        EXPECT_EQ(record.prev_gain, 1.0f);
        EXPECT_EQ(record.hold_index, 0u);
        EXPECT_EQ(record.hold_length, tables.length.hold_length);
        EXPECT_EQ(record.slow_gain, 1.0f);
        EXPECT_EQ(record.gain, 1.0f);
        EXPECT_EQ(record.fast_gain, 1.0f);
        EXPECT_EQ(record.num_sub_blocks, fill * 0x01010101u) << "left as it was";
        EXPECT_EQ(record.prev_boost, 1.0f / 256);
        for (float held : limiter.HoldBuffer()) EXPECT_EQ(held, 1.0f);
        for (float delayed : limiter.Delay()) EXPECT_EQ(BitsOf(delayed), 0u);
        EXPECT_TRUE(limiter.GuardsStand());
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
