// Clearing a delay line, all at once and in slices.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

using State = mvk_blk_delay_state;

struct FormRow {
  const char *name;
  float *(*clear)(State *, float *, uint32_t);
  int offsets;    // of the buffer, from 0
  uint32_t step;  // between counts
};

constexpr FormRow kForms[] = {{"flex", mvk_blk_delay_clear_flex, 8, 1},
                              {"strict", MVK_blk_delay_clear_strict, 1, 8}};

constexpr uint32_t kLength = 64;
constexpr uint32_t kStorage = kLength + 32;

// A line full of NaNs.
struct Line {
  explicit Line(int offset) : storage(kStorage, offset), state{32, kLength, storage.data()} {}

  // Whether exactly the samples from `first` up to `end` are clear.
  testing::AssertionResult IsClear(uint32_t first, uint32_t end, const KernelCall &call) const {
    std::vector<float> wanted = storage.given();
    std::fill(wanted.begin() + first, wanted.begin() + end, 0.0f);
    if (testing::AssertionResult same = SameBits(storage.values(), wanted, call); !same) {
      return same;
    }
    return storage.GuardsStand(call);
  }

  GuardedFloats storage;
  State state;
};

TEST(DelayClear, ClearsBackwardsFromTheEndOfTheStorage) {
  for (const FormRow &form : kForms) {
    for (int offset = 0; offset < form.offsets; ++offset) {
      for (uint32_t n = 0; n <= kStorage; n += form.step) {
        const KernelCall call{"delay_clear", form.name, n, {offset}};
        Line line(offset);
        EXPECT_EQ(form.clear(&line.state, nullptr, n), line.storage.data() + kStorage - n) << call;
        EXPECT_TRUE(line.IsClear(kStorage - n, kStorage, call));
        EXPECT_EQ(line.state.position, 32u);
        EXPECT_EQ(line.state.length, kLength);
        EXPECT_EQ(line.state.buffer, line.storage.data());
      }
    }
  }
}

TEST(DelayClear, ClearsBackwardsFromAnyEnd) {
  for (const FormRow &form : kForms) {
    for (uint32_t end = 0; end <= kStorage; end += form.step) {
      for (uint32_t n = 0; n <= kStorage + 8; n += form.step) {
        const KernelCall call{"delay_clear", form.name, n};
        Line line(0);
        float *left = form.clear(&line.state, line.storage.data() + end, n);
        if (n <= end) {
          EXPECT_EQ(left, line.storage.data() + end - n) << call << ", end " << end;
          ASSERT_TRUE(line.IsClear(end - n, end, call)) << "end " << end;
        } else {
          EXPECT_EQ(left, nullptr) << call << ", end " << end;
          ASSERT_TRUE(line.IsClear(0, end, call)) << "end " << end;
        }
      }
    }
  }
}

TEST(DelayClear, GoesOnInSlicesUntilAllIsClear) {
  for (const FormRow &form : kForms) {
    for (uint32_t n = form.step; n <= kStorage; n += form.step) {
      const KernelCall call{"delay_clear", form.name, n};
      Line line(0);
      float *end = form.clear(&line.state, nullptr, n);
      uint32_t calls = 1;
      for (; end != nullptr && calls < 200; ++calls) end = form.clear(&line.state, end, n);
      EXPECT_EQ(end, nullptr) << call;
      // The call that ends at the buffer's start doesn't know that it is the last.
      EXPECT_EQ(calls, kStorage / n + 1) << call;
      EXPECT_TRUE(line.IsClear(0, kStorage, call));
    }
  }
}

TEST(DelayClear, EndsAtOnceBeforeTheBuffer) {
  for (const FormRow &form : kForms) {
    for (uint32_t n : {0u, 8u, 64u}) {
      const KernelCall call{"delay_clear", form.name, n};
      Line line(0);
      // A line that lies within the storage, and an end that doesn't reach it.
      line.state = {0, 32, line.storage.data() + 32};
      EXPECT_EQ(form.clear(&line.state, line.storage.data() + 16, n), nullptr) << call;
      EXPECT_TRUE(line.storage.Untouched(call));
    }
  }
}

TEST(DelayClear, OfMoreThanThereIsClearsAll) {
  for (const FormRow &form : kForms) {
    for (uint32_t n : {kStorage + 32, 1u << 20, 0xfffffff8u}) {
      const KernelCall call{"delay_clear", form.name, n};
      Line line(0);
      EXPECT_EQ(form.clear(&line.state, nullptr, n), nullptr) << call;
      EXPECT_TRUE(line.IsClear(0, kStorage, call));
    }
  }
}

}  // namespace
}  // namespace testing_support
