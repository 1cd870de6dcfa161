// Envelope followers, integrator and running reciprocal against their recursions.
#include <gtest/gtest.h>

#include "kernels/blocks_in_order.h"
#include "kernels/follower_kernels.h"

namespace testing_support {
namespace {

TEST(BlockFollower, IsOneRecursionOverAllBlocks) {
  for (const StatefulKernel &follower : Followers()) ExpectOneLongRecursion(follower);
}

TEST(BlockFollower, KeepsItsStateWhenCoefficientsChange) {
  for (const StatefulKernel &follower : Followers()) ExpectStateApartFromCoefficients(follower);
}

TEST(BlockFollower, KeepsNothingBetweenCalls) {
  for (const StatefulKernel &follower : Followers()) ExpectNothingKeptBetweenCalls(follower);
}

TEST(BlockFollower, FlexTakesAnyAlignment) {
  for (const StatefulKernel &follower : Followers()) ExpectAnyAlignment(follower);
}

TEST(BlockFollower, PassesSpecialValuesOn) {
  for (const StatefulKernel &follower : Followers()) ExpectSpecialValuesToPassThrough(follower);
}

TEST(BlockFollower, TouchesNothingOutside) {
  for (const StatefulKernel &follower : Followers()) ExpectNothingTouchedOutside(follower);
}

TEST(BlockFollower, DoesNotCheckShifts) {
  for (const StatefulKernel &follower : Followers()) {
    if (follower.shifts) ExpectUncheckedShifts(follower);
  }
}

}  // namespace
}  // namespace testing_support
