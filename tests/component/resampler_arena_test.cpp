// Sizes, the arena and what a handle tells about itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "component/engine_pair.h"
#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

struct Figures {
  unsigned factor;
  int up;
  uint64_t in_frames, out_frames;
  uint32_t latency;
};

constexpr Figures kFigures[] = {
    {1, 1, 256, 256, 0},   {1, 0, 256, 256, 0},  {2, 1, 128, 256, 27},      {2, 0, 256, 128, 13},
    {3, 1, 85, 256, 54},   {3, 0, 256, 85, 13},  {4, 1, 64, 256, 54},       {4, 0, 256, 64, 13},
    {5, 1, 51, 256, 54},   {5, 0, 256, 51, 13},  {256, 1, 1, 256, 54},      {256, 0, 256, 1, 13},
    {300, 1, 0, 256, 54},  {300, 0, 256, 0, 13}, {0, 1, 0, 256, 54},        {0, 0, 256, 0, 13},
    {2, -1, 128, 256, 27}, {4, 2, 64, 256, 54},  {UINT_MAX, 1, 0, 256, 54},
};

std::string Name(const Figures &figures) {
  return "factor " + std::to_string(figures.factor) + ", upsampling " + std::to_string(figures.up);
}

TEST(ResamplerArena, QueryCountsTheBytes) {
  for (const Figures &figures : kFigures) {
    for (unsigned channels = 1; channels <= 35; ++channels) {
      EXPECT_EQ(orvane_resampler_query(figures.factor, static_cast<int>(channels), figures.up),
                20536 + 4 * channels * figures.in_frames)
          << Name(figures) << ", " << channels << " channels";
    }
  }
  EXPECT_EQ(orvane_resampler_query(2, 35, 0), 56376u);
  EXPECT_EQ(orvane_resampler_query(4, 2, 1), 21048u);
}

TEST(ResamplerArena, OtherChannelCountsAreRefused) {
  std::vector<uint8_t> arena(1 << 17, 0xA5);
  const std::vector<uint8_t> before = arena;
  for (int channels : {0, -1, -35, 36, 37, 256, INT_MAX, INT_MIN}) {
    for (const Figures &figures : kFigures) {
      EXPECT_EQ(orvane_resampler_query(figures.factor, channels, figures.up), 0u) << channels;
      EXPECT_EQ(orvane_resampler_init(figures.factor, static_cast<unsigned>(channels), figures.up,
                                      arena.data()),
                nullptr)
          << channels;
    }
  }
  EXPECT_EQ(arena, before);
}

TEST(ResamplerArena, NoMemoryIsRefused) {
  EXPECT_EQ(orvane_resampler_init(2, 2, 1, nullptr), nullptr);
  EXPECT_EQ(orvane_resampler_init(2, 36, 1, nullptr), nullptr);
}

TEST(ResamplerArena, AHandleTellsItsBlockSizesAndLatency) {
  for (const Figures &figures : kFigures) {
    SCOPED_TRACE(Name(figures));
    std::vector<uint8_t> arena(orvane_resampler_query(figures.factor, 3, figures.up));
    auto *handle = orvane_resampler_init(figures.factor, 3, figures.up, arena.data());
    ASSERT_NE(handle, nullptr);
    uint64_t in_frames = 999, out_frames = 999;
    orvane_resampler_get_processing_block_size(handle, &in_frames, &out_frames);
    EXPECT_EQ(in_frames, figures.in_frames);
    EXPECT_EQ(out_frames, figures.out_frames);
    EXPECT_EQ(orvane_resampler_get_output_latency(handle), figures.latency);
  }
}

// What lies in an arena, from its first 32-byte boundary on.
struct Arena {
  uint32_t channels;
  uint32_t factor;
  uint32_t upsampling;
  uint64_t in_block_frames;
  uint64_t out_block_frames;
  float two_phases[35][2][23];
  float four_phases[35][4][23];
  const float *coefficients[6];
  orvane_stream_desc work;
  void *work_channels[35];
};

TEST(ResamplerArena, TheHandleIsTheFirstAlignedAddressAndHoldsTheParts) {
  const float *const phases[] = {orvane_resampler_2x_ph0_vec, orvane_resampler_2x_ph1_vec,
                                 orvane_resampler_4x_ph0_vec, orvane_resampler_4x_ph1_vec,
                                 orvane_resampler_4x_ph2_vec, orvane_resampler_4x_ph3_vec};
  for (unsigned misalignment = 0; misalignment < 64; ++misalignment) {
    alignas(64) static uint8_t memory[64 + 20536 + 4 * 7 * 256];
    std::memset(memory, 0xA5, sizeof memory);
    auto *handle = orvane_resampler_init(4, 7, 0, memory + misalignment);
    ASSERT_EQ(reinterpret_cast<uint8_t *>(handle), memory + (misalignment + 31) / 32 * 32);
    const auto arena = reference::Load<Arena>(handle);
    EXPECT_EQ(arena.channels, 7u);
    EXPECT_EQ(arena.factor, 4u);
    EXPECT_EQ(arena.upsampling, 0u);
    EXPECT_EQ(arena.in_block_frames, 256u);
    EXPECT_EQ(arena.out_block_frames, 64u);
    for (const auto &channel : arena.two_phases) {
      for (const auto &run : channel) EXPECT_EQ(std::count(run, run + 23, 0.0f), 23);
    }
    for (const auto &channel : arena.four_phases) {
      for (const auto &run : channel) EXPECT_EQ(std::count(run, run + 23, 0.0f), 23);
    }
    for (size_t p = 0; p < 6; ++p) {
      EXPECT_EQ(reinterpret_cast<uintptr_t>(arena.coefficients[p]) % 32, 0u) << "phase " << p;
      EXPECT_EQ(std::memcmp(arena.coefficients[p], phases[p], 96), 0) << "phase " << p;
    }
    EXPECT_EQ(arena.work.nchannels, 7u);
    EXPECT_EQ(arena.work.stride, 7u);
    EXPECT_EQ(arena.work.datatype, DT_LONG);
    EXPECT_EQ(reinterpret_cast<uint8_t *>(arena.work.channel_ptrs),
              reinterpret_cast<uint8_t *>(handle) + offsetof(Arena, work_channels));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(arena.work_channels[0]) % 32, 0u);
    for (size_t c = 0; c < 7; ++c) {
      EXPECT_EQ(arena.work_channels[c], static_cast<float *>(arena.work_channels[0]) + c);
    }
  }
}

// Going up, a channel remembers its last 23 samples, going down the last 23 of each phase.
TEST(ResamplerArena, HistoryHoldsTheLastSamplesOfEachPhase) {
  Random random(10);
  for (const EngineShape &shape : kFilters) {
    SCOPED_TRACE(testing_support::Name(shape));
    EnginePair pair(shape.factor, 3, shape.up);
    StreamMemory in(DT_LONG, 3, Layout::kInterleaved, 256 * 3 * 4);
    StreamMemory out = in;
    FillStream(in, 256, random, [&] { return random.Unit(); });
    pair.Run(out, in);

    const auto arena = reference::Load<Arena>(pair.library.handle());
    const unsigned phases = shape.up ? 1 : shape.factor;
    for (uint32_t c = 0; c < 35; ++c) {
      for (unsigned p = 0; p < 4; ++p) {
        const float *runs[] = {p < 2 ? arena.two_phases[c][p] : nullptr, arena.four_phases[c][p]};
        for (unsigned region = 0; region < 2; ++region) {
          if (runs[region] == nullptr) continue;
          const bool used = c < 3 && p < phases && (region == 1) == (phases == 4);
          for (unsigned k = 0; k < 23; ++k) {
            const uint64_t frame = pair.expected.InFrames() - phases * (23 - k) + p;
            EXPECT_EQ(runs[region][k], used ? reference::Load<float>(in.At(c, frame)) : 0.0f)
                << "channel " << c << ", phase " << p << ", sample " << k;
          }
        }
      }
    }
  }
}

class ArenaAtEveryAddress : public testing::TestWithParam<Figures> {};

INSTANTIATE_TEST_SUITE_P(Figures, ArenaAtEveryAddress, testing::ValuesIn(kFigures),
                         [](const testing::TestParamInfo<Figures> &figures) {
                           return "Factor" + std::to_string(figures.param.factor) +
                                  (figures.param.up == 0 ? "Down" : "Up") +
                                  std::to_string(figures.index);
                         });

// The queried bytes suffice at any address, and nothing outside them is touched.
TEST_P(ArenaAtEveryAddress, HoldsTheEngineWithinTheQueriedSize) {
  constexpr size_t kGuard = 128;
  const auto [factor, up, in_frames, out_frames, latency] = GetParam();
  Random random(factor);
  for (unsigned channels : {1u, 2u, 35u}) {
    const uint64_t size = orvane_resampler_query(factor, static_cast<int>(channels), up);
    StreamMemory in(DT_INT32, channels, Layout::kInterleaved, 256 * channels * 4);
    FillStream(in, 256, random, [] { return 0.0f; });
    const StreamMemory blank(DT_INT32, channels, Layout::kInterleaved, 256 * channels * 4);
    for (unsigned misalignment = 0; misalignment < 64; misalignment += channels == 1 ? 1 : 9) {
      SCOPED_TRACE(std::to_string(channels) + " channels, " + std::to_string(misalignment) +
                   " bytes off");
      std::vector<uint8_t> memory(kGuard + 64 + size + kGuard, 0xA5);
      const size_t aligned = 64 - reinterpret_cast<uintptr_t>(memory.data()) % 64;
      const size_t begin = kGuard - 64 + aligned + misalignment;
      auto *handle = orvane_resampler_init(factor, channels, up, memory.data() + begin);
      ASSERT_NE(handle, nullptr);

      StreamMemory out = blank;
      auto out_stream = out.Describe();
      auto in_stream = in.Describe();
      const auto run = up != 0 ? orvane_resampler_upsample : orvane_resampler_downsample;
      ASSERT_EQ(run(&out_stream, &in_stream, handle), out_frames);
      StreamMemory wanted = blank;
      // All factors beyond 256 are alike.
      reference::Engine engine(std::min(factor, 300u), channels, up != 0);
      reference::Run(engine, wanted.Describe(), in_stream);
      ASSERT_TRUE(SameBytes(out, wanted));
      for (size_t b = 0; b < memory.size(); ++b) {
        if (b == begin) b += size;
        ASSERT_EQ(memory[b], 0xA5) << "byte " << static_cast<std::ptrdiff_t>(b - begin);
      }
    }
  }
}

TEST(ResamplerArena, AnotherInitStartsFromSilence) {
  Random random(8);
  for (const EngineShape &shape : kFilters) {
    SCOPED_TRACE(testing_support::Name(shape));
    std::vector<uint8_t> arena(orvane_resampler_query(shape.factor, 2, shape.up));
    StreamMemory in(DT_LONG, 2, Layout::kInterleaved, 256 * 2 * 4);
    FillStream(in, 256, random, [&] { return random.Unit(); });
    const StreamMemory blank(DT_LONG, 2, Layout::kInterleaved, 256 * 2 * 4);
    const auto run = [&](orvane_resampler *handle) {
      StreamMemory out = blank;
      auto out_stream = out.Describe();
      auto in_stream = in.Describe();
      (shape.up ? orvane_resampler_upsample : orvane_resampler_downsample)(&out_stream, &in_stream,
                                                                           handle);
      return out.bytes;
    };
    auto *handle = orvane_resampler_init(shape.factor, 2, shape.up, arena.data());
    const auto first = run(handle);
    EXPECT_NE(run(handle), first);
    handle = orvane_resampler_init(shape.factor, 2, shape.up, arena.data());
    EXPECT_EQ(run(handle), first);
  }
}

TEST(ResamplerArena, EnginesOnSeparateArenasAreIndependent) {
  Random random(9);
  EnginePair first(2, 1, true);
  EnginePair second(2, 1, true);
  for (int block = 0; block < 4; ++block) {
    for (EnginePair *pair : {&first, &second}) {
      StreamMemory in(DT_LONG, 1, Layout::kPlanar, 128 * 4);
      FillStream(in, 128, random, [&] { return random.Unit(); });
      StreamMemory out(DT_LONG, 1, Layout::kPlanar, 256 * 4);
      const StreamMemory wanted = pair->Run(out, in);
      EXPECT_TRUE(SameBytes(out, wanted)) << "block " << block;
    }
  }
}

}  // namespace
}  // namespace testing_support
