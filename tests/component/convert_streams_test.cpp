// Which samples a conversion reads and which it writes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

using Pair = std::pair<int32_t, int32_t>;

std::vector<Pair> PairsThatConvert(bool convertible) {
  std::vector<Pair> pairs;
  for (int32_t source = -1; source <= 10; ++source) {
    for (int32_t destination = -1; destination <= 10; ++destination) {
      if (reference::Convertible(source, destination) == convertible) {
        pairs.emplace_back(source, destination);
      }
    }
  }
  return pairs;
}

std::string Name(const Pair &pair) {
  return "datatype " + std::to_string(pair.first) + " to " + std::to_string(pair.second);
}

// Converts and compares all of the destination's memory with what the reference makes of it.
testing::AssertionResult ConvertsLikeReference(StreamMemory &from, StreamMemory &to,
                                               unsigned from_frame, unsigned to_frame,
                                               unsigned frames, int mode = 0) {
  StreamMemory wanted = to;
  const auto source = from.Describe();
  const auto destination = to.Describe();
  orvane_stream_convert(&source, &destination, from_frame, to_frame, frames, mode);
  reference::Convert(source, wanted.Describe(), from_frame, to_frame, frames);
  return SameBytes(to, wanted);
}

// NaN widened or narrowed keeps no promised payload, so bytes are compared on other values.
float Usable(const Pair &pair, float x) {
  const bool through_double = pair.first == DT_FLOAT64 || pair.second == DT_FLOAT64;
  return through_double && std::isnan(x) ? 0.25f : x;
}

float NextFor(const Pair &pair, Random &random) { return Usable(pair, random.Mixed()); }

TEST(ConvertStreams, ThereAreElevenPairs) {
  EXPECT_EQ(PairsThatConvert(true).size(), 11u);
  EXPECT_EQ(PairsThatConvert(false).size(), 144u - 11u);
}

TEST(ConvertStreams, EveryCountAndMisalignmentOfContiguousSamples) {
  for (const Pair &pair : PairsThatConvert(true)) {
    for (unsigned frames = 0; frames <= 67; ++frames) {
      Random random(frames);
      StreamMemory from(pair.first, 1, Layout::kPlanar, 67 * 8, random.Below(32));
      StreamMemory to(pair.second, 1, Layout::kPlanar, 67 * 8, random.Below(32));
      FillStream(from, 67, random, [&] { return NextFor(pair, random); });
      ASSERT_TRUE(ConvertsLikeReference(from, to, 0, 0, frames))
          << Name(pair) << ", " << frames << " frames";
    }
  }
}

TEST(ConvertStreams, EveryMisalignment) {
  for (const Pair &pair : PairsThatConvert(true)) {
    for (unsigned misalignment = 0; misalignment < 32; ++misalignment) {
      Random random(misalignment);
      StreamMemory from(pair.first, 1, Layout::kPlanar, 45 * 8, misalignment);
      StreamMemory to(pair.second, 1, Layout::kPlanar, 45 * 8, 5 * misalignment % 32);
      FillStream(from, 45, random, [&] { return NextFor(pair, random); });
      ASSERT_TRUE(ConvertsLikeReference(from, to, 0, 0, 45))
          << Name(pair) << ", " << misalignment << " bytes off";
    }
  }
}

TEST(ConvertStreams, SpecialValuesInEveryPositionOfAVector) {
  for (const Pair &pair : PairsThatConvert(true)) {
    for (unsigned shift = 0; shift < 16; ++shift) {
      Random random(shift);
      constexpr unsigned kFrames = static_cast<unsigned>(std::size(kSpecials));
      StreamMemory from(pair.first, 1, Layout::kPlanar, (kFrames + 16) * 8);
      StreamMemory to(pair.second, 1, Layout::kPlanar, (kFrames + 16) * 8);
      unsigned next = 0;
      FillStream(from, shift, random, [] { return 0.5f; });
      for (unsigned i = shift; i < shift + kFrames; ++i) {
        FillSample(from, 0, i, random, [&] { return Usable(pair, kSpecials[next++]); });
      }
      ASSERT_TRUE(ConvertsLikeReference(from, to, 0, 0, shift + kFrames)) << Name(pair);
    }
  }
}

TEST(ConvertStreams, ChannelsStridesAndOffsets) {
  Random random(5);
  for (const Pair &pair : PairsThatConvert(true)) {
    for (Layout from_layout : kLayouts) {
      for (Layout to_layout : kLayouts) {
        for (uint32_t channels : {1u, 2u, 5u, 35u}) {
          const unsigned from_frame = random.Below(20);
          const unsigned to_frame = random.Below(20);
          const unsigned frames = random.Below(30);
          const auto room = [&](Layout layout) { return 50 * StrideOf(layout, channels) * 8; };
          StreamMemory from(pair.first, channels, from_layout, room(from_layout));
          StreamMemory to(pair.second, channels, to_layout, room(to_layout), random.Below(8));
          FillStream(from, 50, random, [&] { return NextFor(pair, random); });
          ASSERT_TRUE(ConvertsLikeReference(from, to, from_frame, to_frame, frames))
              << Name(pair) << ", " << channels << " channels, " << Name(from_layout) << " to "
              << Name(to_layout) << ", frames " << from_frame << " to " << to_frame << ", "
              << frames << " of them";
        }
      }
    }
  }
}

TEST(ConvertStreams, OffsetsShiftEachStreamByItsOwnStride) {
  float from[12] = {};
  from[3 * 2] = 0.5f;  // frame 3 at stride 2
  int16_t to[12] = {};
  void *from_pointer = from;
  void *to_pointer = to;
  const orvane_stream_desc source{1, 2, DT_LONG, &from_pointer};
  const orvane_stream_desc destination{1, 5, DT_INT16, &to_pointer};
  orvane_stream_convert(&source, &destination, 3, 2, 1, 0);
  for (int k = 0; k < 12; ++k) EXPECT_EQ(to[k], k == 10 ? 16384 : 0) << k;
}

TEST(ConvertStreams, OtherPairsWriteNothing) {
  Random random(6);
  for (const Pair &pair : PairsThatConvert(false)) {
    StreamMemory from(pair.first, 2, Layout::kInterleaved, 40 * 2 * 8);
    StreamMemory to(pair.second, 2, Layout::kInterleaved, 40 * 2 * 8);
    for (uint8_t &byte : from.bytes) byte = static_cast<uint8_t>(random.Bits());
    const StreamMemory before = to;
    const auto source = from.Describe();
    const auto destination = to.Describe();
    orvane_stream_convert(&source, &destination, 0, 0, 40, 0);
    EXPECT_EQ(to.bytes, before.bytes) << Name(pair);
  }
}

TEST(ConvertStreams, NoFramesOrNoChannelsWriteNothing) {
  for (const Pair &pair : PairsThatConvert(true)) {
    StreamMemory from(pair.first, 2, Layout::kInterleaved, 40 * 2 * 8);
    StreamMemory to(pair.second, 2, Layout::kInterleaved, 40 * 2 * 8);
    const StreamMemory before = to;
    auto source = from.Describe();
    const auto destination = to.Describe();
    orvane_stream_convert(&source, &destination, 0, 0, 0, 0);
    source.nchannels = 0;
    orvane_stream_convert(&source, &destination, 0, 0, 40, 0);
    EXPECT_EQ(to.bytes, before.bytes) << Name(pair);
  }
}

TEST(ConvertStreams, TheSourceCountsTheChannels) {
  for (uint32_t claimed : {0u, 1u, 9u}) {
    float from[3] = {0.25f, 0.5f, 0.75f};
    int16_t to[3] = {};
    void *from_pointers[] = {from, from + 1, from + 2};
    void *to_pointers[] = {to, to + 1, to + 2};
    const orvane_stream_desc source{2, 3, DT_LONG, from_pointers};
    const orvane_stream_desc destination{claimed, 3, DT_INT16, to_pointers};
    orvane_stream_convert(&source, &destination, 0, 0, 1, 0);
    EXPECT_EQ(to[0], 8192);
    EXPECT_EQ(to[1], 16384);
    EXPECT_EQ(to[2], 0);
  }
}

TEST(ConvertStreams, TheModeHasNoEffect) {
  Random random(7);
  for (const Pair &pair : PairsThatConvert(true)) {
    StreamMemory from(pair.first, 3, Layout::kPadded, 40 * 6 * 8);
    FillStream(from, 40, random, [&] { return NextFor(pair, random); });
    for (int mode : {std::numeric_limits<int>::min(), -1, 1, 2, std::numeric_limits<int>::max()}) {
      StreamMemory to(pair.second, 3, Layout::kInterleaved, 40 * 3 * 8);
      EXPECT_TRUE(ConvertsLikeReference(from, to, 0, 0, 40, mode)) << Name(pair) << ' ' << mode;
    }
  }
}

// ---- Streams that share memory ----

// The destination is the source's own memory, each stream by its own frame offset.
testing::AssertionResult ConvertsInPlace(const Pair &pair, Layout layout, uint32_t channels,
                                         unsigned from_frame, unsigned to_frame, uint64_t seed) {
  constexpr unsigned kFrames = 67;
  Random random(seed);
  const size_t room = (kFrames + 40) * StrideOf(layout, channels) * 8;
  StreamMemory shared(pair.first, channels, layout, room, random.Below(8));
  FillStream(shared, kFrames + 40, random, [&] { return random.Finite(); });
  StreamMemory wanted = shared;

  const auto converted = [&](orvane_stream_desc stream) {
    stream.datatype = pair.second;
    return stream;
  };
  const auto source = shared.Describe();
  const auto destination = converted(source);
  orvane_stream_convert(&source, &destination, from_frame, to_frame, kFrames, 0);
  const auto wanted_source = wanted.Describe();
  reference::Convert(wanted_source, converted(wanted_source), from_frame, to_frame, kFrames);
  return SameBytes(shared, wanted);
}

TEST(ConvertStreams, InPlaceWhereTheResultIsNoWider) {
  for (const Pair &pair : PairsThatConvert(true)) {
    if (reference::Width(pair.second) > reference::Width(pair.first)) continue;
    for (Layout layout : kLayouts) {
      for (uint32_t channels : {1u, 2u, 7u}) {
        EXPECT_TRUE(ConvertsInPlace(pair, layout, channels, 0, 0, channels))
            << Name(pair) << ", " << channels << " channels, " << Name(layout);
      }
    }
  }
}

TEST(ConvertStreams, InPlaceTowardsTheFront) {
  for (const Pair &pair : PairsThatConvert(true)) {
    if (reference::Width(pair.second) > reference::Width(pair.first)) continue;
    for (Layout layout : kLayouts) {
      for (unsigned back = 1; back <= 40; ++back) {
        EXPECT_TRUE(ConvertsInPlace(pair, layout, 1, back, 0, back))
            << Name(pair) << ", " << Name(layout) << ", " << back << " frames back";
      }
    }
  }
}

// Interleaved channels of 2 bytes lie 2 bytes apart, so that the floats of one channel overlap
// those of the next: each channel meets what the ones before it have left.
TEST(ConvertStreams, OverlappingChannelsAreConvertedOneAfterAnother) {
  for (uint32_t channels = 2; channels <= 35; ++channels) {
    Random random(channels);
    std::vector<uint8_t> bytes(256 * channels * 4 + 64);
    for (size_t k = 0; k + 4 <= bytes.size(); k += 4) {
      reference::Store(bytes.data() + k, random.Unit());
    }
    std::vector<uint8_t> wanted = bytes;
    const auto convert = [&](std::vector<uint8_t> &memory, auto routine) {
      std::vector<void *> pointers;
      for (uint32_t c = 0; c < channels; ++c) pointers.push_back(memory.data() + 2 * c);
      const orvane_stream_desc source{channels, channels, DT_LONG, pointers.data()};
      const orvane_stream_desc destination{channels, channels, DT_INT16, pointers.data()};
      routine(source, destination);
    };
    convert(bytes, [](const auto &source, const auto &destination) {
      orvane_stream_convert(&source, &destination, 0, 0, 256, 0);
    });
    convert(wanted, [](const auto &source, const auto &destination) {
      reference::Convert(source, destination, 0, 0, 256);
    });
    EXPECT_EQ(bytes, wanted) << channels << " channels";
  }
}

// A conversion that writes over the channel count ends by the new one.
TEST(ConvertStreams, TheChannelCountIsReadAgainForEachChannel) {
  uint32_t from[3] = {7, 2, 9};
  uint32_t to[3] = {};
  void *from_pointers[] = {from, from + 1, from + 2};
  orvane_stream_desc source{3, 1, DT_LONG, from_pointers};
  void *to_pointers[] = {to, &source.nchannels, to + 2};
  const orvane_stream_desc destination{3, 1, DT_LONG, to_pointers};
  orvane_stream_convert(&source, &destination, 0, 0, 1, 0);
  EXPECT_EQ(to[0], 7u);
  EXPECT_EQ(source.nchannels, 2u);
  EXPECT_EQ(to[2], 0u);
}

}  // namespace
}  // namespace testing_support
