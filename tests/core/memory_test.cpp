// Carving of a caller's memory, and samples at a distance.
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

#include "core/carve.h"
#include "core/strided.h"

namespace {

struct pieces {
  float *window;
  double *sum;
  char *flag;
};

pieces lay_out(mvk::carver &from) {
  pieces p;
  p.flag = from.take<char>(3);
  p.window = from.take<float>(10, 32);
  p.sum = from.take<double>(1);
  return p;
}

TEST(Carver, SumsTheSizeOverNoBlock) {
  mvk::carver size;
  lay_out(size);
  EXPECT_EQ(size.end, 32u + 40u + 8u);
}

TEST(Carver, AlignsItsPiecesWithinTheSizePlusSlack) {
  mvk::carver size;
  lay_out(size);
  alignas(64) std::array<char, 256> memory;
  for (std::size_t offset = 0; offset < 64; ++offset) {
    mvk::carver arena(memory.data() + offset);
    const pieces p = lay_out(arena);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p.window) % 32, 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p.sum) % alignof(double), 0u);
    EXPECT_EQ(p.flag, memory.data() + offset);
    EXPECT_GE(reinterpret_cast<char *>(p.window), p.flag + 3);
    EXPECT_GE(reinterpret_cast<char *>(p.sum), reinterpret_cast<char *>(p.window + 10));
    EXPECT_LE(arena.end, reinterpret_cast<std::uintptr_t>(memory.data()) + offset + size.end + 31);
  }
}

TEST(AlignUp, KeepsWhatIsAligned) {
  EXPECT_EQ(mvk::align_up(0, 32), 0u);
  EXPECT_EQ(mvk::align_up(1, 32), 32u);
  EXPECT_EQ(mvk::align_up(32, 32), 32u);
  EXPECT_EQ(mvk::align_up(33, 8), 40u);
}

TEST(Strided, AreAnArrayWhereTheyTouchAndAreAligned) {
  alignas(8) std::array<char, 64> memory;
  char *const start = memory.data();
  EXPECT_TRUE(mvk::is_array_of<float>({start, 4}));
  EXPECT_TRUE(mvk::is_array_of<float>({start + 4, 4}));
  EXPECT_FALSE(mvk::is_array_of<float>({start, 8}));
  EXPECT_FALSE(mvk::is_array_of<float>({start, 0}));
  EXPECT_FALSE(mvk::is_array_of<float>({start + 2, 4}));
  EXPECT_TRUE(mvk::is_array_of<double>({start, 8}));
  EXPECT_FALSE(mvk::is_array_of<double>({start + 4, 8}));
  EXPECT_EQ(static_cast<void *>(mvk::as_array_of<float>({start + 4, 4})), start + 4);
}

TEST(Strided, GatherAndScatterAtAnyStepAndAddress) {
  for (const std::size_t step : {4u, 5u, 8u, 12u})
    for (std::size_t offset = 0; offset < 4; ++offset) {
      std::vector<char> memory(offset + 20 * step, '#');
      std::array<float, 17> from, back{};
      std::iota(from.begin(), from.end(), 0.5f);
      mvk::scatter(memory.data() + offset, step, from.data(), from.size());
      mvk::gather(back.data(), memory.data() + offset, step, back.size());
      EXPECT_EQ(back, from);
      const std::size_t end = offset + 16 * step + 4;
      for (std::size_t i = 0; i < memory.size(); ++i) {
        const bool touched = i >= offset && i < end && (i - offset) % step < 4;
        if (touched) continue;
        ASSERT_EQ(memory[i], '#') << "step " << step << ", byte " << i;
      }
    }
}

}  // namespace
