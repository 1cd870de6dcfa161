// How channels are laid over a flat buffer.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "acli.h"
#include "component/log_capture.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

struct LaidOut {
  int32_t status;
  std::vector<intptr_t> offsets;  // of each channel pointer from the buffer
};

// Lays out `nchannels` channels and checks that nothing but their pointers was written.
LaidOut LayOut(uint32_t nchannels, uint64_t stride, int32_t datatype, uint64_t byte_count) {
  static char buffer[16];
  char untouched = 0;
  std::vector<void *> pointers(nchannels + 2, &untouched);
  orvane_stream_desc desc{nchannels, stride, datatype, pointers.data()};
  const int32_t status = acli_set_channel_ptrs(buffer, &desc, byte_count);
  EXPECT_EQ(desc.nchannels, nchannels);
  EXPECT_EQ(desc.stride, stride);
  EXPECT_EQ(desc.datatype, datatype);
  EXPECT_EQ(desc.channel_ptrs, pointers.data());
  EXPECT_EQ(pointers[nchannels], &untouched);
  EXPECT_EQ(pointers[nchannels + 1], &untouched);

  LaidOut result{status, {}};
  for (uint32_t c = 0; c < nchannels && pointers[c] != &untouched; ++c) {
    result.offsets.push_back(static_cast<intptr_t>(reinterpret_cast<uintptr_t>(pointers[c]) -
                                                   reinterpret_cast<uintptr_t>(buffer)));
  }
  return result;
}

using Offsets = std::vector<intptr_t>;

TEST(ChannelPointers, InterleavedChannelsLieOneSampleApart) {
  const struct {
    int32_t datatype;
    Offsets offsets;
  } cases[] = {
      {DT_BYTE_A, {0, 1, 2}},  {DT_BYTE_B, {0, 1, 2}},   {DT_LONG, {0, 4, 8}},
      {DT_INT16, {0, 2, 4}},   {DT_INT32, {0, 4, 8}},    {DT_INT32_IN_64, {0, 8, 16}},
      {DT_FLOAT32, {0, 4, 8}}, {DT_FLOAT64, {0, 8, 16}},
  };
  for (const auto &[datatype, offsets] : cases) {
    for (uint64_t stride : {3, 4, 100}) {
      SCOPED_TRACE(datatype);
      LaidOut result;
      EXPECT_TRUE(LoggedBy([&] { result = LayOut(3, stride, datatype, 999); }).empty());
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.offsets, offsets);
    }
  }
}

TEST(ChannelPointers, AnUnknownDatatypeIsLoggedOnceAndPutsAllChannelsOnTheStart) {
  for (int32_t datatype : {-1, 0, 9, 255, INT32_MIN, INT32_MAX}) {
    SCOPED_TRACE(datatype);
    LaidOut result;
    const auto logged = LoggedBy([&] { result = LayOut(3, 3, datatype, 999); });
    EXPECT_EQ(logged, std::vector{kDatatypeMessage});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.offsets, (Offsets{0, 0, 0}));
  }
}

TEST(ChannelPointers, ContiguousChannelsShareTheBytesOut) {
  const LaidOut two = LayOut(2, 1, DT_FLOAT32, 1024);
  EXPECT_EQ(two.status, 0);
  EXPECT_EQ(two.offsets, (Offsets{0, 512}));
  const LaidOut three = LayOut(3, 2, DT_INT16, 21);
  EXPECT_EQ(three.status, 0);
  EXPECT_EQ(three.offsets, (Offsets{0, 7, 14}));
  const LaidOut none = LayOut(3, 1, DT_INT16, 0);
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.offsets, (Offsets{0, 0, 0}));
}

TEST(ChannelPointers, ContiguousChannelsMayBeLong) {
  const LaidOut result = LayOut(2, 1, DT_FLOAT32, uint64_t{1} << 34);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.offsets, (Offsets{0, intptr_t{1} << 33}));
}

TEST(ChannelPointers, BytesThatDoNotShareOutFail) {
  for (uint64_t byte_count : {uint64_t{1023}, uint64_t{1}, (uint64_t{1} << 32) + 1}) {
    const LaidOut result = LayOut(2, 1, DT_FLOAT32, byte_count);
    EXPECT_EQ(result.status, -1) << byte_count;
    EXPECT_TRUE(result.offsets.empty()) << byte_count;
  }
}

TEST(ChannelPointers, ContiguousChannelsMayHaveAnyDatatype) {
  for (int32_t datatype : {-1, 0, 4, 9}) {
    LaidOut result;
    EXPECT_TRUE(LoggedBy([&] { result = LayOut(2, 1, datatype, 8); }).empty()) << datatype;
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.offsets, (Offsets{0, 4}));
  }
}

TEST(ChannelPointers, TheLowHalfOfTheStrideDecides) {
  // 2^32 counts as 0, so that the channels lie one after another.
  EXPECT_EQ(LayOut(2, uint64_t{1} << 32, DT_INT16, 64).offsets, (Offsets{0, 32}));
  EXPECT_EQ(LayOut(2, (uint64_t{1} << 32) + 1, DT_INT16, 63).status, -1);
  EXPECT_EQ(LayOut(2, (uint64_t{1} << 32) + 2, DT_INT16, 64).offsets, (Offsets{0, 2}));
}

TEST(ChannelPointers, NoChannelsSucceedAfterTheDatatypeWasLookedAt) {
  for (uint64_t stride : {0, 1}) {
    LaidOut result{-7, {}};
    EXPECT_TRUE(LoggedBy([&] { result = LayOut(0, stride, DT_INT16, 7); }).empty());
    EXPECT_EQ(result.status, 0);
    result.status = -7;
    EXPECT_EQ(LoggedBy([&] { result = LayOut(0, stride, 9, 7); }), std::vector{kDatatypeMessage});
    EXPECT_EQ(result.status, 0);
  }
}

}  // namespace
}  // namespace testing_support
