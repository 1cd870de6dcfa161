// The plain copy of factor 1, and factors without a filter.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "component/engine_pair.h"
#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

struct Copied {
  uint32_t nchannels;
  uint64_t stride;
  int32_t datatype;
};

constexpr Copied kCopied[] = {
    {1, 1, DT_LONG},   {2, 2, DT_FLOAT32}, {2, 1, DT_FLOAT32},     {2, 7, DT_INT32},
    {35, 35, DT_LONG}, {3, 3, DT_INT16},   {3, 3, DT_INT32_IN_64}, {4, 4, -1},
};

// Whatever the datatype, 4 bytes for each sample of the wider of channels and stride.
void ExpectCopy(const Copied &copied, uint64_t frames, uint64_t returned,
                uint64_t (*run)(orvane_stream_desc *, orvane_stream_desc *, orvane_resampler *),
                orvane_resampler *handle) {
  const size_t count = std::max<uint64_t>(copied.nchannels, copied.stride) * frames * 4;
  Random random(count);
  std::vector<uint8_t> from(count + 64);
  for (uint8_t &byte : from) byte = static_cast<uint8_t>(random.Bits());
  std::vector<uint8_t> to(count + 64, 0xA5);
  std::vector<uint8_t> wanted = to;
  std::copy_n(from.begin(), count, wanted.begin());

  // Only the first pointer of each stream counts.
  std::vector<void *> in_pointers(copied.nchannels, nullptr);
  std::vector<void *> out_pointers(copied.nchannels, nullptr);
  in_pointers[0] = from.data();
  out_pointers[0] = to.data();
  orvane_stream_desc in{copied.nchannels, copied.stride, copied.datatype, in_pointers.data()};
  orvane_stream_desc out{1, 1, DT_INT16, out_pointers.data()};
  EXPECT_EQ(run(&out, &in, handle), returned);
  EXPECT_EQ(to, wanted) << copied.nchannels << " channels, stride " << copied.stride
                        << ", datatype " << copied.datatype;
}

TEST(ResamplerCopy, FactorOneCopiesInBothDirections) {
  for (const Copied &copied : kCopied) {
    for (bool up : {true, false}) {
      LibraryEngine engine(1, copied.nchannels, up);
      ExpectCopy(copied, 256, 256, orvane_resampler_passthrough, engine.handle());
      ExpectCopy(copied, 256, 256, up ? orvane_resampler_upsample : orvane_resampler_downsample,
                 engine.handle());
    }
  }
}

TEST(ResamplerCopy, PassthroughCopiesTheInputBlockOfAnyEngine) {
  for (const Copied &copied : kCopied) {
    LibraryEngine up(4, copied.nchannels, true);
    ExpectCopy(copied, 64, 256, orvane_resampler_passthrough, up.handle());
    LibraryEngine down(4, copied.nchannels, false);
    ExpectCopy(copied, 256, 64, orvane_resampler_passthrough, down.handle());
  }
}

TEST(ResamplerCopy, PassthroughReturnsNoFramesForNull) {
  LibraryEngine engine(1, 1, true);
  float samples[256] = {};
  void *pointer = samples;
  orvane_stream_desc stream{1, 1, DT_LONG, &pointer};
  EXPECT_EQ(orvane_resampler_passthrough(&stream, nullptr, engine.handle()), 0u);
  EXPECT_EQ(orvane_resampler_passthrough(&stream, &stream, nullptr), 0u);
  EXPECT_EQ(orvane_resampler_passthrough(nullptr, &stream, engine.handle()), 0u);
}

// Without a filter the output memory keeps what it held, seen as floats and converted in place.
TEST(ResamplerWithoutFilter, ConvertsWhatTheOutputHeld) {
  for (bool up : {true, false}) {
    LibraryEngine engine(3, 1, up);
    const uint64_t out_frames = up ? 256 : 85;
    int32_t from[256] = {};
    void *from_pointer = from;
    std::vector<float> floats(257, 0.5f);
    std::vector<int32_t> wanted(257, 0x3F000000);  // the bits of 0.5f
    std::fill_n(wanted.begin(), out_frames, 1 << 30);
    void *to = floats.data();
    EXPECT_EQ(engine.Run({1, 1, DT_INT32, &to}, {1, 1, DT_INT32, &from_pointer}), out_frames);
    for (size_t i = 0; i < floats.size(); ++i) {
      EXPECT_EQ(reference::Load<int32_t>(&floats[i]), wanted[i])
          << (up ? "up" : "down") << ' ' << i;
    }
  }
}

TEST(ResamplerWithoutFilter, LeavesFloatsAlone) {
  for (int32_t datatype : {DT_LONG, DT_FLOAT32}) {
    LibraryEngine engine(5, 1, true);
    float from[256] = {1, 2, 3};
    float to[256] = {4, 5, 6};
    void *from_pointer = from;
    void *to_pointer = to;
    EXPECT_EQ(engine.Run({1, 1, datatype, &to_pointer}, {1, 1, datatype, &from_pointer}), 256u);
    EXPECT_EQ(to[0], 4.0f);
    EXPECT_EQ(to[2], 6.0f);
    EXPECT_EQ(to[255], 0.0f);
  }
}

}  // namespace
}  // namespace testing_support
