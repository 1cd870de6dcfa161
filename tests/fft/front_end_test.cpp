// The front end of the Fourier transforms: what it supports and what it keeps in its state.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

#include "fft/fft_kernels.h"
#include "mvk_fft.h"

namespace testing_support {
namespace {

constexpr int32_t kComplex = 0x0f, kReal = 0xf0;

bool IsSupported(uint32_t n, int32_t flags) {
  if (n < 2 || n > 2048 || (flags & ~(kComplex | kReal)) != 0) return false;
  if (reference::IsPowerOfTwo(n)) return true;
  return (flags & kReal) == 0 &&
         Find(CompositeEntryPoints(), n, Direction::kForward, Scaling::kScaled) != nullptr;
}

// For every bit by itself, for the borders of the bits, and for more than there are.
constexpr int32_t kFlags[] = {0,
                              1,
                              2,
                              4,
                              8,
                              15,
                              16,
                              17,
                              32,
                              64,
                              128,
                              240,
                              255,
                              256,
                              257,
                              512,
                              0x1000,
                              -1,
                              -2,
                              -16,
                              -256,
                              std::numeric_limits<int32_t>::min(),
                              std::numeric_limits<int32_t>::max()};

TEST(FftFrontEnd, SupportsWhatItHasTransformsFor) {
  constexpr struct {
    uint32_t n;
    int32_t flags;
    int supported;
  } kCases[] = {
      {1, 1, 0},    {2, 0, 1},    {2048, 1, 1}, {2050, 1, 0},   {3, 1, 0},  {6, 1, 1},
      {960, 15, 1}, {961, 15, 0}, {4096, 1, 0}, {7, 0, 0},      {6, 16, 0}, {6, 255, 0},
      {8, 16, 1},   {8, 256, 0},  {2, 16, 1},   {2048, 255, 1},
  };
  for (const auto &[n, flags, supported] : kCases) {
    EXPECT_EQ(MVK_fft_is_supported(n, flags), supported) << n << " with " << flags;
  }
}

TEST(FftFrontEnd, SupportsTheSameForEveryLength) {
  const auto expect = [](uint32_t n, int32_t flags) {
    const bool supported = IsSupported(n, flags);
    ASSERT_EQ(MVK_fft_is_supported(n, flags), supported ? 1 : 0) << n << " with " << flags;
    ASSERT_EQ(MVK_fft_state_query_mem(n, flags), supported ? 47u : 0u) << n << " with " << flags;
    ASSERT_EQ(MVK_fft_scratch_query_mem(n, flags), 0u) << n << " with " << flags;
  };
  for (const int32_t flags : kFlags) {
    for (uint32_t n = 0; n <= 4200; ++n) expect(n, flags);
    for (const uint32_t n : {8192u, 65536u, 0x10006u, 0x80000000u, 0x80000002u, 0xffffffffu}) {
      expect(n, flags);
    }
  }
}

class StateMemory {
 public:
  // 47 bytes at a chosen distance behind a multiple of 8, between others.
  explicit StateMemory(size_t misalignment) : start_(kBefore + misalignment) {
    std::ranges::fill(bytes_, kFill);
  }
  std::byte *data() { return bytes_.data() + start_; }
  // The bytes that aren't those of the state have stayed as they were.
  bool OthersStand(const void *state) const {
    const auto first = static_cast<size_t>(static_cast<const std::byte *>(state) - bytes_.data());
    for (size_t i = 0; i < bytes_.size(); ++i) {
      if ((i < first || i >= first + 40) && bytes_[i] != kFill) return false;
    }
    return true;
  }
  bool Stands() const {
    return std::ranges::all_of(bytes_, [](std::byte byte) { return byte == kFill; });
  }

 private:
  static constexpr std::byte kFill{0xa5};
  static constexpr size_t kBefore = 16;
  alignas(8) std::array<std::byte, kBefore + 8 + 47 + 16> bytes_;
  size_t start_;
};

TEST(FftFrontEnd, StateIsARecordOfFortyBytes) {
  static_assert(sizeof(mvk_fft_state) == 40);
  static_assert(offsetof(mvk_fft_state, fwd_scl) == 0);
  static_assert(offsetof(mvk_fft_state, inv_scl) == 8);
  static_assert(offsetof(mvk_fft_state, fwd_usc) == 16);
  static_assert(offsetof(mvk_fft_state, inv_usc) == 24);
  static_assert(offsetof(mvk_fft_state, n) == 32);
  static_assert(offsetof(mvk_fft_state, flags) == 36);
  static_assert(MVK_FFT_CLFWD_SCALEDCL == 0x01 && MVK_FFT_CLFWD_UNSCALEDCL == 0x02);
  static_assert(MVK_FFT_CLINV_SCALEDCL == 0x04 && MVK_FFT_CLINV_UNSCALEDCL == 0x08);
  static_assert(MVK_FFT_CLFWD_SCALEDL == 0x10 && MVK_FFT_CLFWD_UNSCALEDL == 0x20);
  static_assert(MVK_FFT_LINV_SCALEDCL == 0x40 && MVK_FFT_LINV_UNSCALEDCL == 0x80);
}

TEST(FftFrontEnd, StateIsAlignedWithinItsMemory) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    StateMemory memory(misalignment);
    mvk_fft_state *state = MVK_fft_init(memory.data(), 16, 255);
    ASSERT_EQ(reinterpret_cast<std::byte *>(state), memory.data() + (8 - misalignment) % 8);
    EXPECT_TRUE(memory.OthersStand(state)) << misalignment;
    MVK_fft_shutdown(state);
    EXPECT_TRUE(memory.OthersStand(state)) << misalignment;
    const std::array<std::byte, 40> zeros{};
    EXPECT_EQ(std::memcmp(state, zeros.data(), zeros.size()), 0) << misalignment;
  }
}

TEST(FftFrontEnd, HasTheTransformsThatWereAskedFor) {
  for (const uint32_t n : {2u, 8u, 16u, 2048u, 6u, 45u, 360u, 960u}) {
    for (int32_t flags = 0; flags <= 255; ++flags) {
      if (!IsSupported(n, flags)) continue;
      StateMemory memory(1);
      const mvk_fft_state *state = MVK_fft_init(memory.data(), n, flags);
      ASSERT_NE(state, nullptr);
      const auto want = [&](Direction direction, Scaling scaling, int32_t bits) {
        const auto entries =
            reference::IsPowerOfTwo(n) ? PowerOfTwoEntryPoints() : CompositeEntryPoints();
        return (flags & bits) != 0 ? Find(entries, n, direction, scaling)->run : nullptr;
      };
      const auto trace = testing::Message() << n << " with " << flags;
      EXPECT_EQ(state->fwd_scl, want(Direction::kForward, Scaling::kScaled, 0x11)) << trace;
      EXPECT_EQ(state->inv_scl, want(Direction::kInverse, Scaling::kScaled, 0x44)) << trace;
      EXPECT_EQ(state->fwd_usc, want(Direction::kForward, Scaling::kUnscaled, 0x22)) << trace;
      EXPECT_EQ(state->inv_usc, want(Direction::kInverse, Scaling::kUnscaled, 0x88)) << trace;
      EXPECT_EQ(state->n, n) << trace;
      EXPECT_EQ(static_cast<int32_t>(state->flags), flags) << trace;
    }
  }
}

TEST(FftFrontEnd, HasATransformForEveryLength) {
  const auto expect = [](std::span<const EntryPoint> entries) {
    for (const EntryPoint &entry : entries) {
      StateMemory memory(0);
      const mvk_fft_state *state = MVK_fft_init(memory.data(), entry.length, kComplex);
      ASSERT_NE(state, nullptr) << entry.name;
      const bool forward = entry.direction == Direction::kForward;
      const bool scaled = entry.scaling == Scaling::kScaled;
      EXPECT_EQ(forward ? (scaled ? state->fwd_scl : state->fwd_usc)
                        : (scaled ? state->inv_scl : state->inv_usc),
                entry.run)
          << entry.name;
    }
  };
  expect(PowerOfTwoEntryPoints());
  expect(CompositeEntryPoints());
}

TEST(FftFrontEnd, RefusesWhatItDoesNotSupport) {
  EXPECT_EQ(MVK_fft_init(nullptr, 16, 1), nullptr);
  StateMemory memory(3);
  for (const uint32_t n : {0u, 1u, 3u, 7u, 2050u, 4096u}) {
    EXPECT_EQ(MVK_fft_init(memory.data(), n, 1), nullptr) << n;
  }
  EXPECT_EQ(MVK_fft_init(memory.data(), 6, 0x10), nullptr);
  EXPECT_EQ(MVK_fft_init(memory.data(), 8, 0x100), nullptr);
  EXPECT_EQ(MVK_fft_init(memory.data(), 8, -1), nullptr);
  EXPECT_TRUE(memory.Stands());
}

TEST(FftFrontEnd, ReplacesAStateByAnother) {
  StateMemory memory(5);
  MVK_fft_init(memory.data(), 16, 255);
  const mvk_fft_state *state = MVK_fft_init(memory.data(), 6, 1);
  ASSERT_NE(state, nullptr);
  EXPECT_EQ(state->fwd_scl, &mvk_fft_fwd_scl_6);
  EXPECT_EQ(state->inv_scl, nullptr);
  EXPECT_EQ(state->fwd_usc, nullptr);
  EXPECT_EQ(state->inv_usc, nullptr);
  EXPECT_EQ(state->n, 6u);
  EXPECT_EQ(state->flags, 1u);
}

TEST(FftFrontEnd, ShutdownOfNullIsNothing) { MVK_fft_shutdown(nullptr); }

}  // namespace
}  // namespace testing_support
