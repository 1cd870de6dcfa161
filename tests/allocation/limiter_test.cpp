// No call on a limiter that is laid out goes through the heap.
#include <gtest/gtest.h>

#include <cstdint>

#include "allocation/allocation_count.h"
#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

TEST(LimiterAllocation, ProcessingNeverAllocates) {
  for (const reference::LimiterLength &length : reference::kLimiterLengths) {
    const uint32_t frames = 4 * length.sub_block;
    LimiterPair limiter(2, length.sub_block);
    limiter.Start(2, frames);
    auto *state = limiter.library.handle();
    for (uint64_t in_stride = 1; in_stride <= 5; ++in_stride) {
      for (uint64_t out_stride = 1; out_stride <= 5; ++out_stride) {
        Channels in(frames, in_stride), out(frames, out_stride);
        for (int c = 0; c < 2; ++c) {
          in.AddSilent(c);
          out.AddSilent(c);
        }
        const HeapUse use = HeapUseOf([&] {
          for (const int hard_clip : {0, 1}) {
            orvane_ht_ztlim_set_hard_clip(state, hard_clip);
            orvane_ht_ztlim_process(state, out.pointers(), in.pointers(), in_stride, out_stride);
            orvane_ht_ztlim_process_indirect(state, out.pointers(), in.pointers(), in.pointers(),
                                             in_stride, out_stride, 1);
          }
        });
        EXPECT_EQ(use, HeapUse{}) << length.sub_block << ", " << in_stride << ", " << out_stride;
      }
    }
  }
}

TEST(LimiterAllocation, SettingUpNeverAllocates) {
  GuardedBytes memory(4096, 0);
  const HeapUse use = HeapUseOf([&] {
    orvane_ht_ztlim_query_memory(2, nullptr, nullptr, 64);
    auto *state = orvane_ht_ztlim_init(2, 64, memory.data(), nullptr);
    orvane_ht_ztlim_set_num_channels(state, 2);
    orvane_ht_ztlim_set_sample_rate(state, 48000);
    orvane_ht_ztlim_set_block_size(state, 256);
    orvane_ht_ztlim_set_peak(state, 0.5f);
    orvane_ht_ztlim_set_boost(state, 1, 1);
    orvane_ht_ztlim_set_hard_clip(state, 1);
    orvane_ht_ztlim_set_enable(state, 1);
    orvane_ht_ztlim_set_hard_clip(state, 0);
    orvane_ht_ztlim_reset_state(state);
  });
  EXPECT_EQ(use, HeapUse{});
}

}  // namespace
}  // namespace testing_support
