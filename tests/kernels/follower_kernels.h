// The envelope followers, the integrator and the running reciprocal as rows for the tests that run
// over all of them.
#ifndef MVK_TESTS_KERNELS_FOLLOWER_KERNELS_H_
#define MVK_TESTS_KERNELS_FOLLOWER_KERNELS_H_

#include <vector>

#include "kernels/blocks_in_order.h"
#include "mvk_kernels.h"
#include "reference/follower_reference.h"

namespace testing_support {

inline double *Envelope(const StatefulCall &a) { return reinterpret_cast<double *>(a.s); }

inline std::vector<StatefulKernel> Followers() {
  using Call = const StatefulCall &;
  return {
      {
          .name = "Lattack_decay_iir1L",
          .flex =
              [](Call a) { return mvk_blk_Lattack_decay_iir1L_flex(a.y, a.x, a.c, Envelope(a)); },
          .strict =
              [](Call a) { return MVK_blk_Lattack_decay_iir1L_strict(a.y, a.x, a.c, Envelope(a)); },
          .oracle = [](Call a, size_t n) { reference::AttackDecay(a.y, a.x, n, a.c, Envelope(a)); },
          .coefficients = 2,
          .state = 2,
          .wide = 0,
      },
      {
          .name = "Lattack_decay_peak_iir1L",
          .flex =
              [](Call a) {
                return mvk_blk_Lattack_decay_peak_iir1L_flex(a.y, a.x, a.c, Envelope(a));
              },
          .strict =
              [](Call a) {
                return MVK_blk_Lattack_decay_peak_iir1L_strict(a.y, a.x, a.c, Envelope(a));
              },
          .oracle = [](Call a,
                       size_t n) { reference::AttackDecayPeak(a.y, a.x, n, a.c, Envelope(a)); },
          .coefficients = 3,
          .state = 2,
          .wide = 0,
      },
      {
          .name = "LintegrateL",
          .flex = [](Call a) { return mvk_blk_LintegrateL_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_LintegrateL_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::Integrate(a.y, a.x, n, a.c, a.s); },
          .coefficients = 2,
          .state = 1,
      },
      {
          .name = "LnrrecipLU",
          .flex = [](Call a) { return mvk_blk_LnrrecipLU_flex(a.y, a.x, a.u, a.s); },
          .strict = [](Call a) { return MVK_blk_LnrrecipLU_strict(a.y, a.x, a.u, a.s); },
          .oracle = [](Call a, size_t n) { reference::RunningReciprocal(a.y, a.x, n, a.u, a.s); },
          .coefficients = 0,
          .state = 1,
          .u = 2,
          .shifts = true,
          .positive = true,
      },
  };
}

}  // namespace testing_support

#endif
