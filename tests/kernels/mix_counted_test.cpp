// Mixes of any number of blocks.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kernels/mix_cases.h"
#include "mvk_kernels.h"
#include "reference/mix_reference.h"

namespace testing_support {
namespace {

using Call = const BlockCall &;

// Calls a kernel that takes its inputs as variable arguments.
template <typename Kernel, size_t... j>
float *Spread(std::index_sequence<j...>, Kernel kernel, const float *const *x) {
  return kernel(x[j]...);
}

std::string Name(const char *kernel, uint32_t n) {
  return std::string(kernel) + " of " + std::to_string(n);
}

template <uint32_t n>
BlockKernel CountedMix() {
  using Blocks = std::make_index_sequence<n>;
  return {
      .name = Name("LmixnL", n),
      .flex =
          [](Call a) {
            return Spread(
                Blocks(), [&](auto... x) { return MVK_blk_LmixnL(a.y, a.g, n, x...); }, a.x);
          },
      .strict =
          [](Call a) {
            return Spread(
                Blocks(), [&](auto... x) { return MVK_blk_LmixnL_strict(a.y, a.g, n, x...); }, a.x);
          },
      .oracle = [](const float *x, const float *g,
                   uint32_t) { return reference::CountedMix(n, x, g); },
      .inputs = n,
      .parameters = n,
  };
}

template <uint32_t n>
BlockKernel RunningMix() {
  using Blocks = std::make_index_sequence<n>;
  return {
      .name = Name("Lmix_shlUnL", n),
      .flex =
          [](Call a) {
            return Spread(
                Blocks(), [&](auto... x) { return MVK_blk_Lmix_shlUnL(a.y, a.g, a.k, n, x...); },
                a.x);
          },
      .strict =
          [](Call a) {
            return Spread(
                Blocks(),
                [&](auto... x) { return MVK_blk_Lmix_shlUnL_strict(a.y, a.g, a.k, n, x...); }, a.x);
          },
      .oracle = [](const float *x, const float *g,
                   uint32_t k) { return reference::RunningMix(n, x, g, k); },
      .inputs = n,
      .parameters = n,
      .shifts = true,
  };
}

template <uint32_t n>
BlockKernel AdjacentMix() {
  return {
      .name = Name("Lmix_shlaL", n),
      .flex = [](Call a) { return MVK_blk_Lmix_shlaL(a.y, a.g, n, a.x[0], a.k); },
      .strict = [](Call a) { return MVK_blk_Lmix_shlaL_strict(a.y, a.g, n, a.x[0], a.k); },
      .oracle = [](const float *x, const float *g,
                   uint32_t k) { return reference::AdjacentMix(n, x, g, k); },
      .inputs = n,
      .parameters = n,
      .shifts = true,
      .adjacent = true,
  };
}

template <uint32_t... n>
std::vector<BlockKernel> CountedMixes(std::integer_sequence<uint32_t, n...>) {
  return {CountedMix<n + 1>()..., RunningMix<n + 1>()..., AdjacentMix<n + 1>()...};
}

// Up to three groups behind a head of one.
std::vector<BlockKernel> CountedMixes() {
  return CountedMixes(std::make_integer_sequence<uint32_t, 13>());
}

TEST(CountedBlockMix, IsItsDefinition) {
  for (const BlockKernel &kernel : CountedMixes()) ExpectDefinition(kernel);
}

TEST(CountedBlockMix, MayReplaceAnyInput) {
  for (const BlockKernel &kernel : CountedMixes()) ExpectInPlace(kernel);
}

TEST(CountedBlockMix, TakesAnyAlignment) {
  for (const BlockKernel &kernel : CountedMixes()) ExpectAnyAlignment(kernel);
}

TEST(CountedBlockMix, TakesSpecialValuesInAnyPlace) {
  // A head of each length, alone and with a group.
  for (const auto &kernels : {std::vector{CountedMix<3>(), RunningMix<3>(), AdjacentMix<3>()},
                              std::vector{CountedMix<5>(), RunningMix<5>(), AdjacentMix<5>()}}) {
    for (const BlockKernel &kernel : kernels) ExpectSpecialValues(kernel);
  }
}

TEST(CountedBlockMix, TouchesNothingOutside) {
  for (const BlockKernel &kernel : CountedMixes()) ExpectNothingTouchedOutside(kernel);
}

TEST(CountedBlockMix, DoesNotCheckShifts) {
  for (const BlockKernel &kernel :
       {RunningMix<1>(), RunningMix<2>(), AdjacentMix<1>(), AdjacentMix<2>(), AdjacentMix<3>(),
        AdjacentMix<4>(), AdjacentMix<5>(), AdjacentMix<9>()}) {
    ExpectUncheckedShifts(kernel);
  }
}

TEST(CountedBlockMix, TakesManyInputs) {
  for (const BlockKernel &kernel : {CountedMix<40>(), RunningMix<40>(), AdjacentMix<40>()}) {
    ExpectDefinition(kernel);
  }
}

}  // namespace
}  // namespace testing_support
