// Look-ups of kernels by length, and the tables of entry points.
#include <gtest/gtest.h>

#include <iterator>
#include <vector>

#include "fft/fft_kernels.h"
#include "mvk_fft.h"
#include "reference/fft_values.h"

namespace testing_support {
namespace {

constexpr uint32_t kBeyond = 9000;
constexpr uint32_t kFarLengths[] = {16384,       65536,       0x10000u + 64,
                                    0x80000000u, 0x80000040u, 0xffffffffu};
constexpr uint32_t kCompositeLengths[] = {6,   12,  15,  20,  24,  30,  36,  40,  45,  48,  60,
                                          72,  80,  90,  96,  120, 144, 160, 180, 192, 240, 288,
                                          320, 360, 384, 480, 576, 640, 720, 768, 960};

std::vector<uint32_t> Lengths() {
  std::vector<uint32_t> lengths(std::begin(kFarLengths), std::end(kFarLengths));
  for (uint32_t n = 0; n <= kBeyond; ++n) lengths.push_back(n);
  return lengths;
}

// The kernel that a look-up answers with, or null.
const Kernel *Answer(Family family, uint32_t n, Direction direction, Scaling scaling) {
  if (n == 8192) n = 4096;
  if (family == Family::kRadix8) return Find(Radix8Kernels(), n, direction, scaling);
  if (const Kernel *kernel = Find(PowerOfTwoKernels(), n, direction, scaling)) return kernel;
  return Find(CompositeKernels(), n, direction, scaling);
}

struct PairLookUp {
  const char *name;
  const mvk_fft_pair *(*find)(uint32_t n);
  Family family;
  Direction direction;
};

const PairLookUp kPairLookUps[] = {
    {"MVK_r4_cplx_fwd_pair", MVK_r4_cplx_fwd_pair, Family::kRadix4, Direction::kForward},
    {"MVK_r4_cplx_inv_pair", MVK_r4_cplx_inv_pair, Family::kRadix4, Direction::kInverse},
    {"MVK_r8_cplx_fwd_pair", MVK_r8_cplx_fwd_pair, Family::kRadix8, Direction::kForward},
    {"MVK_r8_cplx_inv_pair", MVK_r8_cplx_inv_pair, Family::kRadix8, Direction::kInverse},
};

TEST(FftDispatch, PairsHoldTheExportedKernels) {
  for (const PairLookUp &look_up : kPairLookUps) {
    size_t found = 0;
    for (const uint32_t n : Lengths()) {
      const mvk_fft_pair *pair = look_up.find(n);
      const Kernel *unscaled = Answer(look_up.family, n, look_up.direction, Scaling::kUnscaled);
      const Kernel *scaled = Answer(look_up.family, n, look_up.direction, Scaling::kScaled);
      EXPECT_EQ(mvk_valid_pair_ptr(pair), unscaled != nullptr) << look_up.name << " " << n;
      ASSERT_EQ(pair != nullptr, unscaled != nullptr) << look_up.name << " " << n;
      if (pair == nullptr) continue;
      ++found;
      EXPECT_EQ(pair->unscaled, unscaled->run) << look_up.name << " " << n;
      EXPECT_EQ(pair->scaled, scaled->run) << look_up.name << " " << n;
      EXPECT_EQ(look_up.find(n), pair) << look_up.name << " " << n;
    }
    // 8192 is one more.
    EXPECT_EQ(found, (look_up.family == Family::kRadix4 ? 43u : 16u) + 1) << look_up.name;
    EXPECT_EQ(look_up.find(8192), look_up.find(4096)) << look_up.name;
    EXPECT_NE(look_up.find(2048), look_up.find(4096)) << look_up.name;
  }
}

TEST(FftDispatch, KernelsAreFoundByLength) {
  const struct {
    const char *name;
    decltype(&MVK_r4_cplx_fwd_unscaled) find;
    Direction direction;
    Scaling scaling;
  } kLookUps[] = {
      {"MVK_r4_cplx_fwd_unscaled", MVK_r4_cplx_fwd_unscaled, Direction::kForward,
       Scaling::kUnscaled},
      {"MVK_r4_cplx_inv_unscaled", MVK_r4_cplx_inv_unscaled, Direction::kInverse,
       Scaling::kUnscaled},
      {"MVK_r4_cplx_fwd_scaled", MVK_r4_cplx_fwd_scaled, Direction::kForward, Scaling::kScaled},
      {"MVK_r4_cplx_inv_scaled", MVK_r4_cplx_inv_scaled, Direction::kInverse, Scaling::kScaled},
  };
  for (const auto &look_up : kLookUps) {
    for (const uint32_t n : Lengths()) {
      const Kernel *kernel = Answer(Family::kRadix4, n, look_up.direction, look_up.scaling);
      const auto found = look_up.find(n);
      ASSERT_EQ(found != nullptr, kernel != nullptr) << look_up.name << " " << n;
      if (kernel != nullptr) {
        EXPECT_EQ(found, kernel->run) << look_up.name << " " << n;
      }
    }
    EXPECT_EQ(look_up.find(8192), look_up.find(4096)) << look_up.name;
  }
  EXPECT_EQ(MVK_r4_cplx_fwd_unscaled(8192), &MVK_r4_fft_4096);
}

TEST(FftDispatch, Radix8HasSomeLengthsOnly) {
  for (const uint32_t n : {32u, 160u, 288u, 480u, 640u}) {
    EXPECT_EQ(MVK_r8_cplx_fwd_pair(n), nullptr) << n;
    EXPECT_EQ(MVK_r8_cplx_inv_pair(n), nullptr) << n;
    EXPECT_NE(MVK_r4_cplx_fwd_pair(n), nullptr) << n;
    EXPECT_NE(MVK_r4_cplx_inv_pair(n), nullptr) << n;
  }
  for (const uint32_t n : {0u, 1u, 3u, 4097u}) EXPECT_EQ(MVK_r4_cplx_fwd_pair(n), nullptr) << n;
}

TEST(FftDispatch, NullPairIsNotValid) { EXPECT_EQ(mvk_valid_pair_ptr(nullptr), 0); }

TEST(FftDispatch, AFoundKernelTransforms) {
  // What a caller of 8192 gets is a transform of 4096 points.
  std::vector<float> src(8192), dst(8192 + 2, 0.0f);
  src[0] = 4096;
  MVK_r4_cplx_fwd_pair(8192)->scaled(dst.data(), src.data(), 8192);
  for (size_t i = 0; i < 8192; ++i) ASSERT_EQ(dst[i], i % 2 == 0 ? 1 : 0) << i;
  EXPECT_EQ(dst[8192], 0);
}

TEST(FftDispatch, CompositeLengthsAreListedInOrder) {
  EXPECT_EQ(mvk_num_of_non_power_two_lengths, 31u);
  ASSERT_EQ(std::size(mvk_non_power_two_lengths), std::size(kCompositeLengths));
  for (size_t i = 0; i < std::size(kCompositeLengths); ++i) {
    EXPECT_EQ(mvk_non_power_two_lengths[i], kCompositeLengths[i]);
  }
}

TEST(FftDispatch, EntryPointsLieByPosition) {
  const struct {
    Direction direction;
    Scaling scaling;
    decltype(mvk_fft_cplx_fwd_scl) &powers;
    decltype(mvk_odd_fft_cplx_fwd_scl) &composites;
  } kTables[] = {
      {Direction::kForward, Scaling::kScaled, mvk_fft_cplx_fwd_scl, mvk_odd_fft_cplx_fwd_scl},
      {Direction::kForward, Scaling::kUnscaled, mvk_fft_cplx_fwd_usc, mvk_odd_fft_cplx_fwd_usc},
      {Direction::kInverse, Scaling::kScaled, mvk_fft_cplx_inv_scl, mvk_odd_fft_cplx_inv_scl},
      {Direction::kInverse, Scaling::kUnscaled, mvk_fft_cplx_inv_usc, mvk_odd_fft_cplx_inv_usc},
  };
  for (const auto &[direction, scaling, powers, composites] : kTables) {
    ASSERT_EQ(std::size(powers), 12u);
    ASSERT_EQ(std::size(composites), 31u);
    EXPECT_EQ(powers[0], nullptr);
    for (uint32_t i = 1; i < 12; ++i) {
      EXPECT_EQ(powers[i], Find(PowerOfTwoEntryPoints(), 1u << i, direction, scaling)->run) << i;
    }
    for (uint32_t i = 0; i < 31; ++i) {
      const uint32_t n = kCompositeLengths[i];
      EXPECT_EQ(composites[i], Find(CompositeEntryPoints(), n, direction, scaling)->run) << n;
    }
  }
}

}  // namespace
}  // namespace testing_support
