// Reductions of vectors to one number.
#include <gtest/gtest.h>

#include "kernels/reduction_rows.h"
#include "mvk_kernels.h"
#include "reference/reduction_reference.h"

namespace testing_support {
namespace {

using Call = const ReductionCall &;

template <typename Number>
double Widened(Number x) {
  return static_cast<double>(x);
}

// Strict forms take any count; those that are one computation with the flex form are
// held to the same.
const Reduction kReductions[] = {
    {
        .name = "vec_Labs_maxLU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_Labs_maxLU_flex(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::Peak(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_Labs_maxLU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_Labs_maxLU_strict(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::PeakOfGroups(c.a, c.n)); },
        .reads = Reads::kAtLeastGroup,
        .aligned = true,
    },
    {
        .name = "vec_Sabs_maxSU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_Sabs_maxSU_flex(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::Peak(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_Sabs_maxSU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_Sabs_maxSU_strict(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::Peak(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_UnormLU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_UnormLU_flex(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::Headroom(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_UnormLU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_UnormLU_strict(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::Headroom(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_UnormSU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_UnormSU_flex(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::HeadroomWithoutNans(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_UnormSU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_UnormSU_strict(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::HeadroomWithoutNans(c.a, c.n)); },
        .reads = Reads::kAtLeastOne,
    },
    {
        .name = "vec_LdotLLU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_LdotLLU_flex(c.a, c.b, c.n)); },
        .oracle = [](Call c) { return Widened(reference::DotInPairs(c.a, c.b, c.n)); },
        .reads = Reads::kExactly,
        .two = true,
    },
    {
        .name = "vec_LdotLLU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_LdotLLU_strict(c.a, c.b, c.n)); },
        .oracle = [](Call c) { return Widened(reference::DotInLanes(c.a, c.b, c.n)); },
        .reads = Reads::kGroups,
        .aligned = true,
        .two = true,
    },
    {
        .name = "vec_NdotLLU flex",
        .kernel = [](Call c) { return mvk_vec_NdotLLU_flex(c.a, c.b, c.n); },
        .oracle = [](Call c) { return reference::WideDot(c.a, c.b, c.n); },
        .reads = Reads::kAtLeastOne,
        .two = true,
    },
    {
        .name = "vec_NdotLLU strict",
        .kernel = [](Call c) { return MVK_vec_NdotLLU_strict(c.a, c.b, c.n); },
        .oracle = [](Call c) { return reference::WideDot(c.a, c.b, c.n); },
        .reads = Reads::kAtLeastOne,
        .aligned = true,
        .two = true,
    },
    {
        .name = "vec_Lmean_sqrLU flex",
        .kernel = [](Call c) { return Widened(mvk_vec_Lmean_sqrLU_flex(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::MeanOfSquares(c.a, c.n)); },
        .reads = Reads::kExactly,
    },
    {
        .name = "vec_Lmean_sqrLU strict",
        .kernel = [](Call c) { return Widened(MVK_vec_Lmean_sqrLU_strict(c.a, c.n)); },
        .oracle = [](Call c) { return Widened(reference::MeanOfSquaresOfGroups(c.a, c.n)); },
        .reads = Reads::kGroups,
        .aligned = true,
    },
    {
        .name = "vec_Lsum_sqrLUU flex",
        .kernel =
            [](Call c) { return Widened(mvk_vec_Lsum_sqrLUU_flex(c.a, c.unsigned_k(), c.n)); },
        .oracle =
            [](Call c) {
              return Widened(reference::SumOfSquares(c.a, c.n) *
                             reference::PowerOfTwo(0u - c.unsigned_k()));
            },
        .reads = Reads::kExactly,
    },
    {
        .name = "vec_Lsum_sqrLUU strict",
        .kernel =
            [](Call c) { return Widened(MVK_vec_Lsum_sqrLUU_strict(c.a, c.unsigned_k(), c.n)); },
        .oracle =
            [](Call c) {
              return Widened(reference::SumOfSquaresOfGroups(c.a, c.n) *
                             reference::PowerOfTwo(0u - c.unsigned_k()));
            },
        .reads = Reads::kGroups,
        .aligned = true,
    },
};

TEST(Reductions, TakeAnyCountAtAnyAlignment) {
  for (const Reduction &reduction : kReductions) ExpectAnyCountAtAnyAlignment(reduction);
}

TEST(Reductions, AddUpInTheOrderOfTheirDefinition) {
  for (const Reduction &reduction : kReductions) ExpectAnySamples(reduction);
}

TEST(Reductions, TakeSpecialValuesAtEachPlace) {
  for (const Reduction &reduction : kReductions) ExpectSpecialValuesAtEachPlace(reduction);
}

TEST(Reductions, BuildShiftsWithoutACheck) {
  for (const Reduction &reduction : kReductions) ExpectAnyShift(reduction);
}

TEST(Reductions, ReadNothingOutside) {
  for (const Reduction &reduction : kReductions) ExpectNothingReadOutside(reduction);
}

}  // namespace
}  // namespace testing_support
