// One second-order section over many buffers.
#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/filter_reference.h"

namespace testing_support {
namespace {

using Kernel = float **(*)(float **, const float *, float **, uint32_t);

// Buffers and states somewhere in memory, and the arrays that point to them.
struct Channels {
  std::deque<GuardedFloats> buffers;
  std::deque<GuardedFloats> states;
  std::vector<float *> y;
  std::vector<float *> s;
};

Channels Some(size_t n, Random &random, bool aligned) {
  const auto offset = [&] { return aligned ? 0 : static_cast<int>(random.Below(8)); };
  Channels some;
  for (size_t i = 0; i < n; ++i) {
    // Every other buffer is aligned, so that both paths are taken in one call.
    const int at = i % 2 == 0 ? 0 : offset();
    some.y.push_back(some.buffers.emplace_back(Samples(kUniform, random, kBlockSize), at).data());
    some.s.push_back(some.states.emplace_back(Samples(kUniform, random, 2), offset()).data());
  }
  return some;
}

void ExpectEachFiltered(Kernel kernel, const char *form, bool aligned) {
  Random random(1);
  for (uint32_t n = 0; n <= 17; ++n) {
    const KernelCall call{"Liir2ssv3aLU_inplace", form, n};
    Channels channels = Some(n, random, aligned);
    GuardedFloats c(Samples(kUniform, random, 5), aligned ? 0 : static_cast<int>(n % 8));
    const std::vector<float *> y = channels.y, s = channels.s;
    EXPECT_EQ(kernel(channels.y.data(), c.data(), channels.s.data(), n), channels.y.data());
    EXPECT_EQ(channels.y, y);
    EXPECT_EQ(channels.s, s);
    EXPECT_TRUE(c.Untouched(call));
    for (size_t i = 0; i < n; ++i) {
      std::vector<float> wanted(kBlockSize);
      std::vector<float> state = channels.states[i].given();
      reference::StateSpace3(wanted.data(), channels.buffers[i].given().data(), kBlockSize,
                             c.data(), state.data());
      EXPECT_TRUE(SameSamples(channels.buffers[i].values(), wanted, call)) << "channel " << i;
      EXPECT_TRUE(SameSamples(channels.states[i].values(), state, call)) << "state " << i;
      EXPECT_TRUE(channels.buffers[i].GuardsStand(call));
      EXPECT_TRUE(channels.states[i].GuardsStand(call));
    }
  }
}

TEST(FilterChannels, AreEachFilteredWhereverTheyLie) {
  ExpectEachFiltered(MVK_blk_Liir2ssv3aLU_inplace, "of any alignment", false);
}

TEST(FilterChannels, AreEachFilteredIfAligned) {
  ExpectEachFiltered(MVK_blk_Liir2ssv3aLU_inplace, "aligned", true);
  ExpectEachFiltered(MVK_blk_Liir2ssv3aLU_inplace_strict, "strict", true);
}

// Sections one behind the other: they share a buffer, or stretches of a stream
// share a state.
TEST(FilterChannels, ThatShareABufferOrAStateRunInOrder) {
  Random random(2);
  for (uint32_t n = 1; n <= 17; ++n) {
    for (const bool share_buffer : {true, false}) {
      const KernelCall call{"Liir2ssv3aLU_inplace", share_buffer ? "one buffer" : "one state", n};
      Channels channels = Some(n, random, false);
      GuardedFloats c(Samples(kUniform, random, 5), 0);
      std::vector<std::vector<float>> wanted, states;
      for (uint32_t i = 0; i < n; ++i) {
        const uint32_t at = i == n - 1 ? 0 : i;  // the last one shares the first one's
        wanted.push_back(channels.buffers[i].given());
        states.push_back(channels.states[i].given());
        (share_buffer ? channels.y : channels.s)[i] = (share_buffer ? channels.y : channels.s)[at];
      }
      for (uint32_t i = 0; i < n; ++i) {
        const uint32_t at = i == n - 1 ? 0 : i;
        std::vector<float> &buffer = wanted[share_buffer ? at : i];
        const std::vector<float> in = buffer;
        reference::StateSpace3(buffer.data(), in.data(), kBlockSize, c.data(),
                               states[share_buffer ? i : at].data());
      }
      MVK_blk_Liir2ssv3aLU_inplace(channels.y.data(), c.data(), channels.s.data(), n);
      for (uint32_t i = 0; i < n; ++i) {
        EXPECT_TRUE(SameSamples(channels.buffers[i].values(), wanted[i], call)) << "channel " << i;
        EXPECT_TRUE(SameSamples(channels.states[i].values(), states[i], call)) << "state " << i;
      }
    }
  }
}

TEST(FilterChannels, OfNoneTouchNothing) {
  for (Kernel kernel : {MVK_blk_Liir2ssv3aLU_inplace, MVK_blk_Liir2ssv3aLU_inplace_strict}) {
    float *y = nullptr;
    EXPECT_EQ(kernel(&y, nullptr, nullptr, 0), &y);
    EXPECT_EQ(y, nullptr);
  }
}

}  // namespace
}  // namespace testing_support
