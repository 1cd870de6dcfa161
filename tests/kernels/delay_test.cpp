// Delay lines against a record of everything that was written to them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/delay_reference.h"

namespace testing_support {
namespace {

using State = mvk_blk_delay_state;

static_assert(offsetof(State, position) == 0);
static_assert(offsetof(State, length) == 4);
static_assert(offsetof(State, buffer) == 8);

struct FormRow {
  const char *name;
  void (*setup)(State *, float *, uint32_t);
  void (*write)(State *, const float *);
  float *(*read)(const State *, float *, uint32_t);
};

constexpr FormRow kForms[] = {
    {"flex", mvk_blk_delay_setup_flex, mvk_blk_delayL_flex, mvk_blk_LdelayU_flex},
    {"strict", MVK_blk_delay_setup_strict, MVK_blk_delayL_strict, MVK_blk_LdelayU_strict},
};

constexpr uint32_t kLongest[] = {0, 1, 5, 31, 32, 33, 63, 64, 65, 96, 100, 200};

constexpr size_t kMirror = kBlockSize;

// A delay line in memory of its own, silent.
struct Line {
  Line(const FormRow &form, uint32_t longest, int offset = 0)
      : storage(std::vector<float>(reference::RingLength(longest) + kMirror, 0.0f), offset) {
    form.setup(&state, storage.data(), longest);
  }
  GuardedFloats storage;
  State state;
};

TEST(DelaySetup, HoldsTheLongestDelayInWholeBlocksAndTheNewestOne) {
  for (const FormRow &form : kForms) {
    for (uint32_t d = 0; d <= 300; ++d) {
      GuardedFloats storage(8, 0);
      State state{7, 7, nullptr};
      form.setup(&state, storage.data(), d);
      EXPECT_EQ(state.position, 0u);
      EXPECT_EQ(state.length, reference::RingLength(d)) << d;
      EXPECT_EQ(state.buffer, storage.data());
      EXPECT_TRUE(storage.Untouched({"delay_setup", form.name, d}));
    }
  }
}

TEST(DelaySetup, OfTheSmallestLines) {
  for (const FormRow &form : kForms) {
    float unread = 0;
    State state;
    form.setup(&state, &unread, 0);
    EXPECT_EQ(state.length, 32u);
    form.setup(&state, &unread, 1);
    EXPECT_EQ(state.length, 64u);
    form.setup(&state, &unread, 32);
    EXPECT_EQ(state.length, 64u);
    form.setup(&state, &unread, 33);
    EXPECT_EQ(state.length, 96u);
  }
}

// Every delay that the line has room for.
void ExpectEveryDelay(const FormRow &form, const Line &line, const reference::Delay &wanted,
                      uint32_t longest, int offset) {
  for (uint32_t d = 0; d <= longest; ++d) {
    const KernelCall call{"LdelayU", form.name, d, {offset}};
    const std::span<const float> block(wanted.Read(d), kBlockSize);
    GuardedFloats y(kBlockSize, offset);
    EXPECT_EQ(form.read(&line.state, y.data(), d), y.data()) << call;
    ASSERT_TRUE(SameBits(y.values(), block, call));
    EXPECT_TRUE(y.GuardsStand(call));

    const State &state = line.state;
    const float *inside = MVK_blk_refLdelayU(&state, d);
    const uint32_t start = (state.position + state.length - d) % state.length;
    EXPECT_EQ(inside, state.buffer + start) << call;
    ASSERT_TRUE(SameBits({inside, kBlockSize}, block, call));
  }
}

TEST(Delay, GivesBackWhatWasWritten) {
  for (const FormRow &form : kForms) {
    for (uint32_t longest : kLongest) {
      Random random(longest);
      Line line(form, longest);
      reference::Delay wanted(longest);
      ExpectEveryDelay(form, line, wanted, longest, 0);
      for (int block = 0; block < 20; ++block) {
        const KernelCall call{"delayL", form.name, longest};
        GuardedFloats x(Samples(kMixed, random, kBlockSize), 0);
        form.write(&line.state, x.data());
        wanted.Write(x.data());
        EXPECT_TRUE(x.Untouched(call));
        EXPECT_TRUE(line.storage.GuardsStand(call));
        EXPECT_EQ(line.state.position, (block + 1) * 32u % line.state.length);
        EXPECT_EQ(line.state.length, reference::RingLength(longest));
        EXPECT_EQ(line.state.buffer, line.storage.data());
        ExpectEveryDelay(form, line, wanted, longest, 0);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Delay, FlexTakesAnyAlignment) {
  const FormRow &form = kForms[0];
  constexpr uint32_t kDelay = 40;
  for (int ring = 0; ring < 8; ++ring) {
    for (int block = 0; block < 8; ++block) {
      Random random(1);
      Line line(form, kDelay, ring);
      reference::Delay wanted(kDelay);
      for (int i = 0; i < 7; ++i) {
        GuardedFloats x(Samples(kUniform, random, kBlockSize), block);
        form.write(&line.state, x.data());
        wanted.Write(x.data());
      }
      ExpectEveryDelay(form, line, wanted, kDelay, block);
      EXPECT_TRUE(line.storage.GuardsStand({"delayL", form.name, kDelay, {ring, block}}));
    }
  }
}

TEST(Delay, WritesOneBlockAndTheFirstOneTwice) {
  for (const FormRow &form : kForms) {
    Line line(form, 96);
    const uint32_t length = line.state.length;
    std::vector<float> wanted = line.storage.given();
    for (int block = 1; block <= 9; ++block) {
      alignas(32) float x[kBlockSize];
      std::fill_n(x, kBlockSize, static_cast<float>(block));
      form.write(&line.state, x);
      const uint32_t at = 32u * static_cast<uint32_t>(block) % length;
      std::copy_n(x, kBlockSize, wanted.begin() + at);
      if (at == 0) std::copy_n(x, kBlockSize, wanted.begin() + length);
      EXPECT_TRUE(SameBits(line.storage.values(), wanted, {"delayL", form.name}))
          << "block " << block;
    }
  }
}

TEST(Delay, OfNoneWrapsWithEveryBlock) {
  for (const FormRow &form : kForms) {
    Line line(form, 0);
    for (int block = 1; block <= 3; ++block) {
      alignas(32) float x[kBlockSize];
      std::fill_n(x, kBlockSize, static_cast<float>(block));
      form.write(&line.state, x);
      EXPECT_EQ(line.state.position, 0u);
      EXPECT_TRUE(SameBits(line.storage.values(),
                           std::vector<float>(2 * kBlockSize, static_cast<float>(block)),
                           {"delayL", form.name}));
    }
  }
}

TEST(Delay, OfOneReadsThroughTheMirror) {
  for (const FormRow &form : kForms) {
    Line line(form, 1);
    alignas(32) float x[2][kBlockSize], y[kBlockSize];
    for (size_t i = 0; i < 2 * kBlockSize; ++i)
      x[i / kBlockSize][i % kBlockSize] = static_cast<float>(i);
    form.write(&line.state, x[0]);
    form.write(&line.state, x[1]);
    ASSERT_EQ(line.state.position, 0u);
    EXPECT_EQ(MVK_blk_refLdelayU(&line.state, 1), line.state.buffer + 63);
    form.read(&line.state, y, 1);
    for (size_t i = 0; i < kBlockSize; ++i) EXPECT_EQ(y[i], static_cast<float>(i + 31)) << i;
  }
}

TEST(Delay, ReadsWhatTheBufferHeldBefore) {
  for (const FormRow &form : kForms) {
    std::vector<float> held(96);
    for (size_t i = 0; i < held.size(); ++i) held[i] = static_cast<float>(i);
    GuardedFloats storage(held, 0);
    State state;
    form.setup(&state, storage.data(), 32);
    alignas(32) float y[kBlockSize];
    form.read(&state, y, 0);
    for (size_t i = 0; i < kBlockSize; ++i) EXPECT_EQ(y[i], held[i]);
    form.read(&state, y, 20);
    for (size_t i = 0; i < kBlockSize; ++i) EXPECT_EQ(y[i], held[i + 44]);
  }
}

TEST(Delay, PositionThatWrapsItsWordStartsTheRingAgain) {
  for (const FormRow &form : kForms) {
    Line line(form, 32);
    line.state.position = 0xffffffe0u;
    alignas(32) float x[kBlockSize];
    std::fill_n(x, kBlockSize, 1.0f);
    form.write(&line.state, x);
    EXPECT_EQ(line.state.position, 0u);
    std::vector<float> wanted(96, 0.0f);
    std::fill_n(wanted.begin(), kBlockSize, 1.0f);
    std::fill_n(wanted.begin() + 64, kBlockSize, 1.0f);
    EXPECT_TRUE(SameBits(line.storage.values(), wanted, {"delayL", form.name}));
    EXPECT_TRUE(line.storage.GuardsStand({"delayL", form.name}));
  }
}

}  // namespace
}  // namespace testing_support
