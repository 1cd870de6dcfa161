// The filters of the hybrid bank.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>

#include "kernels/kernel_samples.h"
#include "mvk_hybrid.h"
#include "reference/hybrid_exact.h"

namespace testing_support {
namespace {

using reference::HybridFilter;
using reference::HybridTap;

TEST(HybridTables, HaveTheseTaps) {
  constexpr float k8Way[] = {-0.0074608293f, -0.0227042101f, -0.0454686582f, -0.0726611391f,
                             -0.0988510847f, 0.1179371029f,  0.125f,         0.1179371029f,
                             0.0988510847f,  0.0726611391f,  0.0454686582f,  0.0227042101f,
                             0.0074608293f};
  constexpr float k4Way[] = {-0.0030515192f, 0.0079486230f,  0.0f,  -0.0431892388f,
                             -0.1254244894f, 0.2122780681f,  0.25f, 0.2122780681f,
                             0.1254244894f,  -0.0431892388f, 0.0f,  0.0079486230f,
                             0.0030515192f};
  constexpr float k2Way[] = {0.0189948753f, -0.0729313940f, 0.3059663177f,
                             0.3059663177f, -0.0729313940f, 0.0189948753f};
  EXPECT_TRUE(SameBits(mvk_hyb_p8_13, k8Way, {"p8_13", ""}));
  EXPECT_TRUE(SameBits(mvk_hyb_p4_13, k4Way, {"p4_13", ""}));
  EXPECT_TRUE(SameBits(mvk_hyb_p2_6, k2Way, {"p2_6", ""}));
}

// But for their signs, and with nothing between the taps of the 2-way filter but the middle.
TEST(HybridTables, AreSymmetricFilters) {
  for (size_t n = 0; n < reference::kHybridTaps; ++n) {
    EXPECT_EQ(std::fabs(mvk_hyb_p8_13[n]), HybridTap(HybridFilter::k8Way, n)) << n;
    EXPECT_EQ(std::fabs(mvk_hyb_p4_13[n]), std::fabs(HybridTap(HybridFilter::k4Way, n))) << n;
    EXPECT_EQ(n % 2 == 1 ? mvk_hyb_p2_6[n / 2] : (n == 6 ? 0.5f : 0.0f),
              HybridTap(HybridFilter::k2Way, n))
        << n;
  }
}

}  // namespace
}  // namespace testing_support
