// What a phase shifter asks for, and what its calls leave in the memory that it is given.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "services/phase90_pair.h"

namespace testing_support {
namespace {

// The record is a contract with programs that are compiled against it.
static_assert(sizeof(Phase90Hilbert_state) == 104);
static_assert(alignof(Phase90Hilbert_state) == 8);
static_assert(offsetof(Phase90Hilbert_state, back_a) == 0);
static_assert(offsetof(Phase90Hilbert_state, back_b) == 16);
static_assert(offsetof(Phase90Hilbert_state, fwd) == 32);
static_assert(offsetof(Phase90Hilbert_state, frame_length) == 72);
static_assert(sizeof(Phase90Hilbert_state::frame_length) == 2);
static_assert(offsetof(Phase90Hilbert_state, boundary) == 76);
static_assert(offsetof(Phase90Hilbert_state, inv_length) == 80);
static_assert(offsetof(Phase90Hilbert_state, history) == 88);
static_assert(offsetof(Phase90Hilbert_state, work) == 96);

// Among them some that are a length in their lower 16 bits only.
constexpr unsigned kOtherLengths[] = {
    0,    1,      256,    511,     513,     1000,    1023,       1025, 1536,  2047,   2049,
    4096, 0x8200, 0xfe00, 0x10200, 0x10400, 0x10800, 0x80000200, ~0u,  -512u, -1024u, -2048u};

struct Sizes {
  unsigned state = 77, work = 78, history = 79;
  bool operator==(const Sizes &) const = default;
};

TEST(Phase90Sizes, AreThoseOfTheLength) {
  constexpr struct {
    unsigned length;
    Sizes sizes;
  } kFigures[] = {{512, {104, 7168, 5120}}, {1024, {104, 9216, 5120}}, {2048, {104, 13312, 5120}}};
  for (const auto &[length, wanted] : kFigures) {
    Sizes got;
    EXPECT_EQ(getRequiredBufferSize_Phase90Hilbert(length, &got.state, &got.work, &got.history), 0);
    EXPECT_EQ(got, wanted) << length;
  }
}

TEST(Phase90Sizes, AreZeroForAnotherLength) {
  for (const unsigned length : kOtherLengths) {
    Sizes got;
    EXPECT_EQ(getRequiredBufferSize_Phase90Hilbert(length, &got.state, &got.work, &got.history), 2)
        << length;
    EXPECT_EQ(got, (Sizes{0, 0, 0})) << length;
  }
}

TEST(Phase90Init, OfAnotherLengthTouchesNothing) {
  for (const unsigned length : kOtherLengths) {
    GuardedFloats state(kPhase90StateFloats, 0), work(2048 + 1280, 0), history(1280, 0);
    Phase90Hilbert_state other;
    Phase90Hilbert_state *out = &other;
    EXPECT_EQ(init_Phase90Hilbert(&out, length, state.data(), work.data(), history.data()), 2)
        << length;
    EXPECT_EQ(out, &other) << length;
    EXPECT_TRUE(state.Untouched({"state", "init", length}));
    EXPECT_TRUE(work.Untouched({"work", "init", length}));
    EXPECT_TRUE(history.Untouched({"history", "init", length}));
  }
}

void ExpectZeros(std::span<const float> floats, const char *name) {
  EXPECT_TRUE(SameBits(floats, std::vector<float>(floats.size()), {name, "at rest"}));
}

void ExpectAtRest(const LibraryPhase90 &shifter, int length) {
  const Phase90Hilbert_state record = shifter.Record();
  ExpectZeros(record.back_a, "back_a");
  ExpectZeros(record.back_b, "back_b");
  ExpectZeros(record.fwd, "fwd");
  ExpectZeros({&record.boundary, 1}, "boundary");
  ExpectZeros(shifter.history().values(), "history");
  EXPECT_EQ(record.frame_length, length);
  const float reciprocal = length == 512    ? 0.001953125f
                           : length == 1024 ? 0.0009765625f
                                            : 0.00048828125f;
  EXPECT_EQ(record.inv_length, reciprocal);
  EXPECT_EQ(record.history, shifter.history().values().data());
  EXPECT_EQ(record.work, shifter.work().values().data());
  EXPECT_TRUE(shifter.GuardsStand());
}

TEST(Phase90Init, PutsAtRestWhateverTheMemoryHeld) {
  for (const int length : reference::kPhase90Lengths) {
    LibraryPhase90 shifter(length);  // its memory holds NaNs
    ExpectAtRest(shifter, length);
    EXPECT_TRUE(shifter.work().Untouched({"work", "init"}));
  }
}

TEST(Phase90Init, TakesTheBuffersWhereTheyLie) {
  for (const int length : reference::kPhase90Lengths) {
    for (int offset = 0; offset < 16; ++offset) {
      const Phase90Place place{2 * offset % 8, offset, 3 * offset % 16};
      LibraryPhase90 shifter(length, place);
      ExpectAtRest(shifter, length);
    }
  }
}

// A frame that leaves no field at rest.
std::vector<float> Loud(int length) {
  Random random(static_cast<uint64_t>(length));
  return UnitNoise(random, static_cast<size_t>(length));
}

TEST(Phase90Reset, PutsAtRestAndLeavesTheWorkBuffer) {
  for (const int length : reference::kPhase90Lengths) {
    LibraryPhase90 shifter(length);
    for (int frame = 0; frame < 3; ++frame) {
      std::vector<float> samples = Loud(length);
      process_Phase90Hilbert(shifter.handle(), samples.data());
    }
    const std::span<const float> work = shifter.work().values();
    const std::vector<float> before(work.begin(), work.end());
    EXPECT_EQ(reset_Phase90Hilbert(shifter.handle()), 0);
    ExpectAtRest(shifter, length);
    EXPECT_TRUE(SameBits(work, before, {"work", "reset"}));
  }
}

TEST(Phase90Reset, GivesWhatInitGives) {
  for (const int length : reference::kPhase90Lengths) {
    for (const float spoiler : {0.5f, kLargest, kInfinity, kNaN}) {
      SCOPED_TRACE(testing::Message() << length << ", after " << spoiler);
      LibraryPhase90 used(length), fresh(length);
      std::vector<float> spoilt = Loud(length);
      spoilt[7] = spoilt[400] = spoiler;
      for (int frame = 0; frame < 3; ++frame) process_Phase90Hilbert(used.handle(), spoilt.data());
      reset_Phase90Hilbert(used.handle());
      for (size_t frame = 0; frame < 4; ++frame) {
        std::vector<float> a = Loud(length), b = a;
        process_Phase90Hilbert(used.handle(), a.data());
        process_Phase90Hilbert(fresh.handle(), b.data());
        ASSERT_TRUE(SameBits(a, b, {"phase90", "frame", frame}));
      }
    }
  }
}

TEST(Phase90Init, OfAUsedStateTakesAnotherLength) {
  LibraryPhase90 shifter(2048);
  std::vector<float> samples = Loud(2048);
  process_Phase90Hilbert(shifter.handle(), samples.data());
  EXPECT_EQ(shifter.Init(512), 0);
  ExpectAtRest(shifter, 512);
}

}  // namespace
}  // namespace testing_support
