// Mixes of one to four blocks, with and without a shift, and the arithmetic and limits of blocks.
#include <gtest/gtest.h>

#include <bit>
#include <vector>

#include "kernels/mix_cases.h"
#include "mvk_kernels.h"
#include "reference/mix_reference.h"

namespace testing_support {
namespace {

using Call = const BlockCall &;

// Both forms of a kernel, called with the arguments that `a` is unpacked to.
#define BOTH_FORMS(kernel, ...)                                                         \
  .name = #kernel, .flex = [](Call a) { return mvk_blk_##kernel##_flex(__VA_ARGS__); }, \
  .strict = [](Call a) { return MVK_blk_##kernel##_strict(__VA_ARGS__); }

// What a sample becomes by `expression` of the samples x, the parameters g and the shift k.
#define IS(expression)                                                           \
  .oracle = []([[maybe_unused]] const float *x, [[maybe_unused]] const float *g, \
               [[maybe_unused]] uint32_t k) -> float { return expression; }

std::vector<BlockKernel> Mixes() {
  using namespace reference;
  return {
      {BOTH_FORMS(LmixL, a.y, a.g, a.x[0]), IS(MixOf1(x, g)), .inputs = 1, .parameters = 1},
      {BOTH_FORMS(LmixLL, a.y, a.g, a.x[0], a.x[1]), IS(MixOf2(x, g)), .inputs = 2,
       .parameters = 2},
      {BOTH_FORMS(LmixLLL, a.y, a.g, a.x[0], a.x[1], a.x[2]), IS(MixOf3(x, g)), .inputs = 3,
       .parameters = 3},
      {BOTH_FORMS(LmixLLLL, a.y, a.g, a.x[0], a.x[1], a.x[2], a.x[3]), IS(MixOf4(x, g)),
       .inputs = 4, .parameters = 4},
      {BOTH_FORMS(Lmix_shlUL, a.y, a.g, a.k, a.x[0]), IS(ShiftedMixOf(1, x, g, k)), .inputs = 1,
       .parameters = 1, .shifts = true},
      {BOTH_FORMS(Lmix_shlULL, a.y, a.g, a.k, a.x[0], a.x[1]), IS(ShiftedMixOf(2, x, g, k)),
       .inputs = 2, .parameters = 2, .shifts = true},
      {BOTH_FORMS(Lmix_shlULLL, a.y, a.g, a.k, a.x[0], a.x[1], a.x[2]),
       IS(ShiftedMixOf(3, x, g, k)), .inputs = 3, .parameters = 3, .shifts = true},
      {BOTH_FORMS(Lmix_shlULLLL, a.y, a.g, a.k, a.x[0], a.x[1], a.x[2], a.x[3]),
       IS(ShiftedMixOf(4, x, g, k)), .inputs = 4, .parameters = 4, .shifts = true},
  };
}

std::vector<BlockKernel> Arithmetic() {
  using namespace reference;
  return {
      {BOTH_FORMS(Lmpy_shlLLU, a.y, a.x[0], a.x[1], a.k), IS(WideShiftedProduct(x[0], x[1], k)),
       .inputs = 2, .shifts = true},
      {BOTH_FORMS(Lmpy_shlLSU, a.y, a.x[0], a.x[1], a.k), IS(ShiftedProduct(x[0], x[1], k)),
       .inputs = 2, .shifts = true},
      {BOTH_FORMS(Lconst, a.y, a.g[0]), IS(g[0]), .inputs = 0, .parameters = 1, .copies = true},
      {BOTH_FORMS(LabsL, a.y, a.x[0]),
       IS(std::bit_cast<float>(std::bit_cast<uint32_t>(x[0]) & 0x7fffffffu)), .inputs = 1,
       .copies = true},
      {BOTH_FORMS(LclipL, a.y, a.g, a.x[0]), IS(Clipped(x[0], g)), .inputs = 1, .parameters = 2},
      {BOTH_FORMS(LcmpLL, a.y, a.g, a.x[0], a.x[1]), IS(x[0] > x[1] ? g[0] : g[1]), .inputs = 2,
       .parameters = 2, .copies = true},
      {BOTH_FORMS(LmaxLL, a.y, a.x[0], a.x[1]), IS(Maxnum(x[0], x[1])), .inputs = 2},
      {BOTH_FORMS(LmaxLLL, a.y, a.x[0], a.x[1], a.x[2]), IS(Maxnum(Maxnum(x[1], x[2]), x[0])),
       .inputs = 3},
      {BOTH_FORMS(LminLL, a.y, a.x[0], a.x[1]), IS(Minnum(x[0], x[1])), .inputs = 2},
      {BOTH_FORMS(LminLLL, a.y, a.x[0], a.x[1], a.x[2]), IS(Minnum(Minnum(x[1], x[2]), x[0])),
       .inputs = 3},
      {BOTH_FORMS(LsaddLL, a.y, a.x[0], a.x[1]), IS(x[0] + x[1]), .inputs = 2},
      {BOTH_FORMS(LsubLL, a.y, a.x[0], a.x[1]), IS(x[0] - x[1]), .inputs = 2},
  };
}

#undef BOTH_FORMS
#undef IS

template <typename Check>
void ForEach(Check check) {
  for (const auto &kernels : {Mixes(), Arithmetic()}) {
    for (const BlockKernel &kernel : kernels) check(kernel);
  }
}

TEST(BlockMix, IsItsDefinition) { ForEach(ExpectDefinition); }

TEST(BlockMix, MayReplaceAnyInput) { ForEach(ExpectInPlace); }

TEST(BlockMix, FlexTakesAnyAlignment) {
  ForEach([](const BlockKernel &kernel) { ExpectAnyAlignment(kernel); });
}

TEST(BlockMix, TakesSpecialValuesInAnyPlace) { ForEach(ExpectSpecialValues); }

TEST(BlockMix, TouchesNothingOutside) { ForEach(ExpectNothingTouchedOutside); }

TEST(BlockMix, DoesNotCheckShifts) {
  ForEach([](const BlockKernel &kernel) {
    if (kernel.shifts) ExpectUncheckedShifts(kernel);
  });
}

}  // namespace
}  // namespace testing_support
