// One second-order section over many buffers.
#include <gtest/gtest.h>

#include <array>
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
    const int state_at = offset();
    some.s.push_back(some.states.emplace_back(Samples(kUniform, random, 2), state_at).data());
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

// Where nine buffers or states begin, in halves of one.
using Places = std::array<size_t, 9>;
constexpr Places kApart = {0, 2, 4, 6, 8, 10, 12, 14, 16};
constexpr Places kOverlapping[] = {{16, 16, 14, 12, 10, 8, 6, 4, 2},
                                   {16, 14, 12, 10, 8, 6, 5, 3, 1},
                                   {0, 2, 4, 6, 8, 10, 12, 13, 15},
                                   {0, 1, 3, 5, 7, 9, 11, 13, 15},
                                   {2, 4, 6, 8, 10, 12, 14, 16, 1}};

TEST(FilterChannels, ThatOverlapRunInOrderWhicheverWayTheyLie) {
  Random random(3);
  for (const Places &places : kOverlapping) {
    for (const bool share_buffers : {true, false}) {
      const KernelCall call{"Liir2ssv3aLU_inplace", share_buffers ? "buffers" : "states", 9};
      std::vector<float> buffers = Samples(kUniform, random, 9 * kBlockSize);
      std::vector<float> states = Samples(kUniform, random, 9 * 2);
      const std::vector<float> c = Samples(kUniform, random, 5);
      std::vector<float> wanted = buffers, wanted_states = states;
      std::vector<float *> y, s;
      for (size_t i = 0; i < places.size(); ++i) {
        const size_t buffer = (share_buffers ? places : kApart)[i] * kBlockSize / 2;
        const size_t state = (share_buffers ? kApart : places)[i];
        y.push_back(&buffers[buffer]);
        s.push_back(&states[state]);
        const std::vector<float> in(&wanted[buffer], &wanted[buffer] + kBlockSize);
        reference::StateSpace3(&wanted[buffer], in.data(), kBlockSize, c.data(),
                               &wanted_states[state]);
      }
      MVK_blk_Liir2ssv3aLU_inplace(y.data(), c.data(), s.data(), 9);
      EXPECT_TRUE(SameSamples(buffers, wanted, call)) << "from " << places[0];
      EXPECT_TRUE(SameSamples(states, wanted_states, call)) << "from " << places[0];
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
