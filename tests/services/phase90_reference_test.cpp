// The reference phase shifter against what its sections are.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>

#include "kernels/kernel_samples.h"
#include "reference/phase90_reference.h"

namespace testing_support {
namespace {

TEST(Phase90Reference, ConstantsHaveTheseBits) {
  EXPECT_EQ(BitsOf(reference::kPhase90Scale), 0x3EFF5400u);
  const std::array<uint32_t, 4> forward = {0x3F7EA800, 0x3F7AA800, 0x3F585C00, 0x3E730000};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(BitsOf(reference::kPhase90Forward[i]), forward[i]);
  const std::array<uint32_t, 3> backward = {0x3F7DE400, 0x3F715000, 0x3F1E0400};
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(BitsOf(reference::kPhase90Backward[i]), backward[i]);
  const std::array<uint32_t, 5> inputs = {0x3BAAF559, 0xBE4915DF, 0xBD27A886, 0x3F4CA82B,
                                          0x3E730000};
  const std::array<uint32_t, 5> outputs = {0x3F7BD0A6, 0x3F2DA526, 0x3F248450, 0xBF32FC4B,
                                           0xBE6FC295};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(BitsOf(reference::kPhase90PrimingInputs[i]), inputs[i]) << i;
    EXPECT_EQ(BitsOf(reference::kPhase90PrimingOutputs[i]), outputs[i]) << i;
  }
}

// What the forward sections would give every other sample if silence followed, and where the
// first backward section has got to on coming back through all of it.
struct Silence {
  double input, output;
};
Silence After(std::array<double, 5> pair) {
  std::array<double, 40000> given;
  for (double &sample : given) {
    std::array<double, 5> now{};
    now[1] = reference::kPhase90Forward[0] * pair[1] + pair[0];
    for (size_t s = 2; s < 5; ++s) {
      const double c = reference::kPhase90Forward[s - 1];
      now[s] = c * (pair[s] - now[s - 1]) + pair[s - 1];
    }
    pair = now;
    sample = now[4];
  }
  const double c = reference::kPhase90Backward[0];
  double input = 0, output = 0;
  for (size_t i = given.size(); i-- > 0;) {
    output = c * (output - given[i]) + input;
    input = given[i];
  }
  return {input, output};
}

TEST(Phase90Reference, PrimingIsThatOfSilenceToCome) {
  for (size_t column = 0; column < 5; ++column) {
    std::array<double, 5> pair{};
    pair[reference::kPhase90PrimingOrder[column]] = 1;
    const Silence silence = After(pair);
    // Half a unit of the last place of the largest entries.
    EXPECT_NEAR(reference::kPhase90PrimingInputs[column], silence.input, 0x1p-24) << column;
    EXPECT_NEAR(reference::kPhase90PrimingOutputs[column], silence.output, 0x1p-24) << column;
  }
}

}  // namespace
}  // namespace testing_support
