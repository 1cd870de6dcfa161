// Filters of blocks against their recursions, every filter in every way of running it.
#include <gtest/gtest.h>

#include "kernels/blocks_in_order.h"
#include "kernels/filter_kernels.h"

namespace testing_support {
namespace {

TEST(BlockFilter, IsOneRecursionOverAllBlocks) {
  for (const StatefulKernel &filter : Filters()) ExpectOneLongRecursion(filter);
}

TEST(BlockFilter, CountedFirTakesAnyNumberOfTapsFromThreeUp) {
  for (uint32_t taps = 3; taps <= 70; ++taps) ExpectOneLongRecursion(FirOfTaps(taps));
}

TEST(BlockFilter, KeepsItsStateWhenCoefficientsChange) {
  for (const StatefulKernel &filter : Filters()) ExpectStateApartFromCoefficients(filter);
}

TEST(BlockFilter, KeepsNothingBetweenCalls) {
  for (const StatefulKernel &filter : Filters()) ExpectNothingKeptBetweenCalls(filter);
}

TEST(BlockFilter, FlexTakesAnyAlignment) {
  for (const StatefulKernel &filter : Filters()) ExpectAnyAlignment(filter);
}

TEST(BlockFilter, PassesSpecialValuesOn) {
  for (const StatefulKernel &filter : Filters()) ExpectSpecialValuesToPassThrough(filter);
}

TEST(BlockFilter, TouchesNothingOutside) {
  for (const StatefulKernel &filter : Filters()) ExpectNothingTouchedOutside(filter);
}

TEST(BlockFilter, DoesNotCheckShifts) {
  for (const StatefulKernel &filter : Filters()) {
    if (filter.shifts) ExpectUncheckedShifts(filter);
  }
}

TEST(BlockFilter, StaysSilentOnSilence) {
  for (const StatefulKernel &filter : Filters()) ExpectSilenceToStay(filter);
}

}  // namespace
}  // namespace testing_support
