// Blocks of every datatype and layout, compared bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "component/engine_pair.h"
#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

constexpr int kBlocks = 3;

class ResamplerStreams : public testing::TestWithParam<EngineShape> {
 protected:
  unsigned factor() const { return GetParam().factor; }
  bool up() const { return GetParam().up; }
};

INSTANTIATE_TEST_SUITE_P(Shapes, ResamplerStreams, testing::ValuesIn(kShapes), ShapeSuffix);

TEST_P(ResamplerStreams, EveryChannelCountOfInterleavedFloats) {
  for (unsigned channels = 1; channels <= 35; ++channels) {
    Random random(channels);
    EnginePair pair(factor(), channels, up());
    for (int block = 0; block < kBlocks; ++block) {
      StreamMemory in(DT_LONG, channels, Layout::kInterleaved, 256 * channels * 4);
      StreamMemory out(DT_LONG, channels, Layout::kInterleaved, 256 * channels * 4);
      FillStream(in, 256, random, [&] { return random.Finite(); });
      const StreamMemory wanted = pair.Run(out, in);
      ASSERT_TRUE(SameBytes(out, wanted))
          << Name(GetParam()) << ", " << channels << " channels, block " << block;
    }
  }
}

TEST_P(ResamplerStreams, InfinitiesNaNsDenormalsAndSigns) {
  Random random(31);
  for (unsigned channels : {1u, 2u, 3u, 4u, 5u, 8u}) {
    for (Layout layout : kLayouts) {
      EnginePair pair(factor(), channels, up());
      for (int block = 0; block < kBlocks; ++block) {
        const size_t room = 256 * StrideOf(layout, channels) * 4;
        StreamMemory in(DT_LONG, channels, layout, room);
        StreamMemory out(DT_LONG, channels, layout, room);
        FillStream(in, 256, random,
                   [&] { return random.Below(40) == 0 ? random.Special() : random.Wide(); });
        const StreamMemory wanted = pair.Run(out, in);
        ASSERT_TRUE(SameFloats(out, wanted, pair.expected.OutFrames()))
            << Name(GetParam()) << ", " << channels << " channels, " << Name(layout) << ", block "
            << block;
      }
    }
  }
}

constexpr int32_t kDatatypes[] = {DT_LONG,        DT_INT16,   DT_INT32,
                                  DT_INT32_IN_64, DT_FLOAT32, DT_FLOAT64};

struct StreamShape {
  int32_t datatype;
  Layout layout;
};

std::string Name(const StreamShape &shape) {
  return "datatype " + std::to_string(shape.datatype) + ' ' + testing_support::Name(shape.layout);
}

// Every kind of input against every kind of output, with channel counts and addresses drawn at
// random. A channel's room fits any stride that the engine may step by.
TEST_P(ResamplerStreams, EveryDatatypeAndLayout) {
  Random random(32 + factor());
  constexpr unsigned kChannels[] = {1, 1, 2, 2, 3, 4, 5, 6, 8};
  for (int32_t in_type : kDatatypes) {
    for (int32_t out_type : kDatatypes) {
      for (Layout in_layout : kLayouts) {
        for (Layout out_layout : kLayouts) {
          const unsigned channels = kChannels[random.Below(std::size(kChannels))];
          EnginePair pair(factor(), channels, up());
          const size_t room = 256 * (channels + 3) * 8;
          for (int block = 0; block < 2; ++block) {
            StreamMemory in(in_type, channels, in_layout, room, random.Below(16));
            StreamMemory out(out_type, channels, out_layout, room, random.Below(16));
            FillStream(in, 256, random, [&] { return random.Finite(); });
            const StreamMemory wanted = pair.Run(out, in);
            ASSERT_TRUE(SameBytes(out, wanted))
                << testing_support::Name(GetParam()) << ", " << channels << " channels, "
                << Name(StreamShape{in_type, in_layout}) << " to "
                << Name(StreamShape{out_type, out_layout}) << ", block " << block;
          }
        }
      }
    }
  }
}

// All channel counts of interleaved 16-bit audio, whose floats overlap on their way out.
TEST_P(ResamplerStreams, Interleaved16BitChannelsOverlapInTheOutput) {
  for (unsigned channels = 1; channels <= 35; ++channels) {
    Random random(channels);
    EnginePair pair(factor(), channels, up());
    for (int block = 0; block < 2; ++block) {
      StreamMemory in(DT_INT16, channels, Layout::kInterleaved, 256 * channels * 4);
      StreamMemory out(DT_INT16, channels, Layout::kInterleaved, 256 * channels * 4);
      FillStream(in, 256, random, [] { return 0.0f; });
      const StreamMemory wanted = pair.Run(out, in);
      ASSERT_TRUE(SameBytes(out, wanted))
          << Name(GetParam()) << ", " << channels << " channels, block " << block;
    }
  }
}

TEST_P(ResamplerStreams, FloatInputLeavesTheOutputAsFloats) {
  Random random(33);
  EnginePair to_floats(factor(), 2, up());
  EnginePair to_others(factor(), 2, up());
  for (int datatype : {int{DT_INT32}, int{DT_FLOAT32}, int{DT_BYTE_A}, 9, -1}) {
    StreamMemory in(DT_LONG, 2, Layout::kInterleaved, 256 * 2 * 4);
    FillStream(in, 256, random, [&] { return random.Unit(); });
    StreamMemory floats(DT_LONG, 2, Layout::kInterleaved, 256 * 2 * 4);
    StreamMemory others = floats;
    to_floats.Run(floats, in);
    auto out_stream = others.Describe();
    out_stream.datatype = datatype;
    to_others.library.Run(out_stream, in.Describe());
    EXPECT_EQ(others.bytes, floats.bytes) << "datatype " << datatype;
  }
}

// Input that no conversion serves leaves the work buffer as it was, so that the last block is
// filtered once more; the output isn't converted either.
TEST_P(ResamplerStreams, InputThatCannotBeConvertedRepeatsTheWorkBuffer) {
  Random random(34);
  EnginePair pair(factor(), 2, up());
  StreamMemory in(DT_FLOAT32, 2, Layout::kInterleaved, 256 * 2 * 4);
  FillStream(in, 256, random, [&] { return random.Unit(); });
  for (int datatype : {int{DT_FLOAT32}, int{DT_BYTE_A}, 9, -1}) {
    if (factor() == 1 && datatype != DT_FLOAT32) continue;
    StreamMemory out(DT_FLOAT32, 2, Layout::kInterleaved, 256 * 2 * 4);
    StreamMemory wanted = out;
    auto in_stream = in.Describe();
    in_stream.datatype = datatype;
    pair.library.Run(out.Describe(), in_stream);
    reference::Run(pair.expected, wanted.Describe(), in_stream);
    EXPECT_TRUE(SameBytes(out, wanted)) << "datatype " << datatype;
  }
}

TEST_P(ResamplerStreams, ChannelsThatLieApartMayBeResampledInPlace) {
  Random random(35);
  for (int32_t datatype : {DT_LONG, DT_FLOAT32, DT_INT32}) {
    EnginePair pair(factor(), 5, up());
    for (int block = 0; block < kBlocks; ++block) {
      StreamMemory shared(datatype, 5, Layout::kPlanar, 256 * 5 * 4);
      FillStream(shared, 256, random, [&] { return random.Unit(); });
      StreamMemory wanted = shared;
      const auto stream = shared.Describe();
      pair.library.Run(stream, stream);
      const auto wanted_stream = wanted.Describe();
      reference::Run(pair.expected, wanted_stream, wanted_stream);
      EXPECT_TRUE(SameBytes(shared, wanted)) << "datatype " << datatype << ", block " << block;
    }
  }
}

TEST_P(ResamplerStreams, NullStreamsReturnNoFramesAndDoNothing) {
  Random random(36);
  EnginePair pair(factor(), 1, up());
  const auto run = up() ? orvane_resampler_upsample : orvane_resampler_downsample;
  for (int block = 0; block < 2; ++block) {
    StreamMemory in(DT_LONG, 1, Layout::kPlanar, 256 * 4);
    StreamMemory out(DT_LONG, 1, Layout::kPlanar, 256 * 4);
    FillStream(in, 256, random, [&] { return random.Unit(); });
    const StreamMemory wanted = pair.Run(out, in);
    EXPECT_TRUE(SameBytes(out, wanted)) << "block " << block;

    auto in_stream = in.Describe();
    auto out_stream = out.Describe();
    const auto before = out.bytes;
    EXPECT_EQ(run(nullptr, &in_stream, pair.library.handle()), 0u);
    EXPECT_EQ(run(&out_stream, nullptr, pair.library.handle()), 0u);
    EXPECT_EQ(run(nullptr, nullptr, pair.library.handle()), 0u);
    EXPECT_EQ(out.bytes, before);
  }
}

// Both streams are as the caller left them.
TEST_P(ResamplerStreams, DescriptorsAndInputAreNotWritten) {
  Random random(37);
  EnginePair pair(factor(), 3, up());
  StreamMemory in(DT_INT32, 3, Layout::kInterleaved, 256 * 3 * 4);
  StreamMemory out(DT_INT32, 3, Layout::kInterleaved, 256 * 3 * 4);
  FillStream(in, 256, random, [] { return 0.0f; });
  const auto before = in.bytes;
  auto in_stream = in.Describe();
  auto out_stream = out.Describe();
  const auto in_pointers = in.pointers;
  const auto out_pointers = out.pointers;
  (up() ? orvane_resampler_upsample : orvane_resampler_downsample)(&out_stream, &in_stream,
                                                                   pair.library.handle());
  EXPECT_EQ(in.bytes, before);
  EXPECT_EQ(in.pointers, in_pointers);
  EXPECT_EQ(out.pointers, out_pointers);
  for (const auto *stream : {&in_stream, &out_stream}) {
    EXPECT_EQ(stream->nchannels, 3u);
    EXPECT_EQ(stream->stride, 3u);
    EXPECT_EQ(stream->datatype, DT_INT32);
  }
  EXPECT_EQ(in_stream.channel_ptrs, in.pointers.data());
  EXPECT_EQ(out_stream.channel_ptrs, out.pointers.data());
}

// What samples of 8 bytes hold that were made in place has no meaning, but they and the floats they
// were made from are all that is written.
TEST(ResamplerOverrun, OutputOf8BytesStaysWithinItsSamplesAndFloats) {
  for (const EngineShape &shape : kFilters) {
    for (int32_t out_type : {DT_INT32_IN_64, DT_FLOAT64}) {
      for (Layout layout : kLayouts) {
        constexpr unsigned kChannels = 3;
        Random random(38);
        LibraryEngine engine(shape.factor, kChannels, shape.up);
        StreamMemory in(DT_FLOAT32, kChannels, Layout::kInterleaved, 256 * kChannels * 4);
        StreamMemory out(out_type, kChannels, layout, 256 * (kChannels + 3) * 8);
        FillStream(in, 256, random, [&] { return random.Unit(); });
        const uint64_t frames = engine.Run(out.Describe(), in.Describe());

        std::vector<bool> may_change(out.bytes.size(), false);
        const auto allow = [&](size_t from, size_t width) {
          std::fill_n(may_change.begin() + static_cast<std::ptrdiff_t>(from), width, true);
        };
        for (uint32_t c = 0; c < kChannels; ++c) {
          for (uint64_t i = 0; i < frames; ++i) {
            allow(out.Offset(c, i), 8);
            allow(out.Offset(c, 0) + i * (shape.up ? out.stride : kChannels) * 4, 4);
          }
        }
        for (size_t b = 0; b < out.bytes.size(); ++b) {
          ASSERT_TRUE(may_change[b] || out.bytes[b] == StreamMemory::kFill)
              << Name(shape) << ", " << Name(StreamShape{out_type, layout}) << ", byte " << b;
        }
      }
    }
  }
}

// Output frames going down stand as far apart as those of the kernel's input.
TEST(ResamplerStride, DownsamplingStepsByTheStrideOfItsInput) {
  for (unsigned factor : {2u, 4u}) {
    const unsigned frames = 256 / factor;
    std::vector<float> x(256 * 3, 1.0f);
    std::vector<float> y(256 * 3, -7.0f);
    void *from = x.data();
    void *to = y.data();
    LibraryEngine engine(factor, 1, false);
    engine.Run({1, 5, DT_LONG, &to}, {1, 3, DT_LONG, &from});
    for (size_t k = 0; k < y.size(); ++k) {
      EXPECT_EQ(y[k] != -7.0f, k % 3 == 0 && k < frames * 3) << "factor " << factor << ", " << k;
    }
  }
}

TEST(ResamplerStride, UpsamplingStepsByTheStrideOfEachStream) {
  for (unsigned factor : {2u, 4u}) {
    std::vector<float> x(256 * 3, 0.0f);
    for (size_t i = 0; i < 256 / factor; ++i) x[3 * i] = 1.0f;
    std::vector<float> y(256 * 5, -7.0f);
    void *from = x.data();
    void *to = y.data();
    LibraryEngine engine(factor, 1, true);
    engine.Run({1, 5, DT_LONG, &to}, {1, 3, DT_LONG, &from});
    for (size_t k = 0; k < y.size(); ++k)
      EXPECT_EQ(y[k] != -7.0f, k % 5 == 0) << factor << ' ' << k;
    EXPECT_GT(y[5 * 255], 0.98f);
  }
}

}  // namespace
}  // namespace testing_support
