// Nothing is read or written before or behind the samples of a block.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"
#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

// Channels that lie a float apart, up against memory that nobody may touch.
struct EdgeChannels {
  EdgeChannels(std::span<const float> values, Edge edge, uint32_t count) : pages(values.size()) {
    float *start = pages.Place(values, edge);
    for (uint32_t c = 0; c < count; ++c) pointers.push_back(start + c);
  }
  EdgePages pages;
  std::vector<float *> pointers;
};

struct Arrangement {
  uint32_t channels;
  uint64_t stride;
};

// One channel at each stride, and all of a run of interleaved samples.
constexpr Arrangement kArrangements[] = {{1, 1}, {1, 2}, {1, 3}, {1, 4}, {1, 5}, {2, 2},
                                         {3, 3}, {4, 4}, {5, 5}, {6, 6}, {8, 8}};

size_t FloatsOf(const Arrangement &arrangement, size_t frames) {
  return (frames - 1) * arrangement.stride + arrangement.channels;
}

void ExpectWithin(uint32_t sub_block, const Arrangement &from, const Arrangement &to, Edge edge,
                  int hard_clip) {
  SCOPED_TRACE(testing::Message() << from.channels << " channels at " << from.stride << " to "
                                  << to.stride << ", sub-blocks of " << sub_block
                                  << (edge == Edge::kBefore ? ", before" : ", behind")
                                  << (hard_clip != 0 ? ", clipping" : ""));
  const uint32_t frames = 2 * sub_block;
  LimiterPair limiter(from.channels, sub_block);
  limiter.SetHardClip(hard_clip);
  limiter.Start(from.channels, frames);
  Random random(sub_block);
  EdgeChannels in(UnitNoise(random, FloatsOf(from, frames)), edge, from.channels);
  EdgeChannels detect(UnitNoise(random, FloatsOf(from, frames)), edge, from.channels);
  in.pages.ForbidStores();
  detect.pages.ForbidStores();
  std::vector<float> wanted(FloatsOf(to, frames), 9.0f);
  EdgeChannels out(wanted, edge, to.channels);
  std::vector<float *> wanted_pointers;
  for (uint32_t c = 0; c < to.channels; ++c) wanted_pointers.push_back(wanted.data() + c);
  limiter.SetPeak(0.5f);
  for (int block = 0; block < 2; ++block) {
    orvane_ht_ztlim_process_indirect(limiter.library.handle(), out.pointers.data(),
                                     detect.pointers.data(), in.pointers.data(), from.stride,
                                     to.stride, from.channels);
    limiter.expected.ProcessIndirect(wanted_pointers.data(), detect.pointers.data(),
                                     in.pointers.data(), from.stride, to.stride, from.channels);
    EXPECT_TRUE(SameBits({out.pointers[0], wanted.size()}, wanted, {"out", ""}));
  }
  EXPECT_TRUE(SameState(limiter.library, limiter.expected));
}

TEST(LimiterEdges, AreKeptByEveryLayout) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    for (const Arrangement &from : kArrangements) {
      for (const Arrangement &to : kArrangements) {
        if (to.channels != from.channels) continue;
        for (const Edge edge : {Edge::kBefore, Edge::kBehind}) {
          for (const int hard_clip : {0, 1}) {
            ExpectWithin(length.sub_block, from, to, edge, hard_clip);
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
