// The filters of blocks as rows for the tests that run over all of them.
#ifndef MVK_TESTS_KERNELS_FILTER_KERNELS_H_
#define MVK_TESTS_KERNELS_FILTER_KERNELS_H_

#include <string>
#include <vector>

#include "kernels/blocks_in_order.h"
#include "mvk_kernels.h"
#include "reference/filter_reference.h"

namespace testing_support {

using Call = const StatefulCall &;

inline StatefulKernel FirOfTaps(uint32_t taps) {
  return {
      .name = "LfirUL of " + std::to_string(taps) + " taps",
      .flex = [](Call a) { return mvk_blk_LfirUL_flex(a.y, a.x, a.u, a.c, a.s); },
      .strict = [](Call a) { return MVK_blk_LfirUL_strict(a.y, a.x, a.u, a.c, a.s); },
      .oracle = [](Call a, size_t n) { reference::FirOfTaps(a.u, a.y, a.x, n, a.c, a.s); },
      .coefficients = taps,
      .state = taps - 1,
      .u = taps,
  };
}

inline std::vector<StatefulKernel> ShortFirs() {
  return {
      {
          .name = "Lfir2L",
          .flex = [](Call a) { return mvk_blk_Lfir2L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Lfir2L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::Fir2(a.y, a.x, n, a.c, a.s); },
          .coefficients = 2,
          .state = 1,
      },
      {
          .name = "Lfir3L",
          .flex = [](Call a) { return mvk_blk_Lfir3L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Lfir3L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::Fir3(a.y, a.x, n, a.c, a.s); },
          .coefficients = 3,
          .state = 2,
      },
  };
}

inline mvk_blk_iir1x_state *WideState(Call a) {
  return reinterpret_cast<mvk_blk_iir1x_state *>(a.s);
}

inline std::vector<StatefulKernel> FirstOrderFilters() {
  return {
      {
          .name = "Liir1L",
          .flex = [](Call a) { return mvk_blk_Liir1L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir1L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::Iir1(a.y, a.x, n, a.c, a.s); },
          .coefficients = 3,
          .state = 2,
      },
      {
          .name = "Liir1_shlLU",
          .flex = [](Call a) { return mvk_blk_Liir1_shlLU_flex(a.y, a.x, a.c, a.s, a.u); },
          .strict = [](Call a) { return MVK_blk_Liir1_shlLU_strict(a.y, a.x, a.c, a.s, a.u); },
          .oracle = [](Call a, size_t n) { reference::Iir1Shifted(a.y, a.x, n, a.c, a.s, a.u); },
          .coefficients = 3,
          .state = 2,
          .u = 3,
          .shifts = true,
      },
      {
          .name = "Liir1_shl_addLL",
          .flex = [](Call a) { return mvk_blk_Liir1_shl_addLL_flex(a.y, a.x, a.addend, a.c, a.s); },
          .strict =
              [](Call a) { return MVK_blk_Liir1_shl_addLL_strict(a.y, a.x, a.addend, a.c, a.s); },
          .oracle = [](Call a,
                       size_t n) { reference::Iir1DoubledPlus(a.y, a.x, a.addend, n, a.c, a.s); },
          .coefficients = 3,
          .state = 2,
          .adds = true,
      },
      {
          .name = "Liir1xL",
          .flex = [](Call a) { return mvk_blk_Liir1xL_flex(a.y, a.x, a.c, WideState(a)); },
          .strict = [](Call a) { return MVK_blk_Liir1xL_strict(a.y, a.x, a.c, WideState(a)); },
          .oracle = [](Call a, size_t n) { reference::Iir1Wide(a.y, a.x, n, a.c, a.s); },
          .coefficients = 3,
          .state = 4,
          .wide = 2,
      },
  };
}

inline std::vector<StatefulKernel> SecondOrderFilters() {
  return {
      {
          .name = "Liir2df1L",
          .flex = [](Call a) { return mvk_blk_Liir2df1L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2df1L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::Iir2Direct(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 4,
      },
      {
          .name = "Liir2ssv1L",
          .flex = [](Call a) { return mvk_blk_Liir2ssv1L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv1L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpace1(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
      },
      {
          .name = "Liir2ssv1efL",
          .flex = [](Call a) { return mvk_blk_Liir2ssv1efL_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv1efL_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpace1(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
      },
      {
          .name = "Liir2ssv2L",
          .flex = [](Call a) { return mvk_blk_Liir2ssv2L_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv2L_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpace2(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
      },
      {
          .name = "Liir2ssv2L_inplace",
          .flex = [](Call a) { return mvk_blk_Liir2ssv2L_inplace_flex(a.y, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv2L_inplace_strict(a.y, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpace2(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
          .in_place = InPlace::kAlways,
      },
      {
          .name = "Liir2ssv2_shlLU",
          .flex = [](Call a) { return mvk_blk_Liir2ssv2_shlLU_flex(a.y, a.x, a.c, a.s, a.u); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv2_shlLU_strict(a.y, a.x, a.c, a.s, a.u); },
          .oracle = [](Call a,
                       size_t n) { reference::StateSpace2Shifted(a.y, a.x, n, a.c, a.s, a.u); },
          .coefficients = 5,
          .state = 2,
          .u = 3,
          .shifts = true,
      },
      {
          .name = "Liir2ssv3L_inplace",
          .flex = [](Call a) { return mvk_blk_Liir2ssv3L_inplace_flex(a.y, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv3L_inplace_strict(a.y, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpace3(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
          .in_place = InPlace::kAlways,
      },
      {
          .name = "Liir2ssv1_dsmpL",
          .flex = [](Call a) { return mvk_blk_Liir2ssv1_dsmpL_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv1_dsmpL_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpaceDown(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
          .inputs = 64,
      },
      {
          .name = "Liir2ssv1_usmpL",
          .flex = [](Call a) { return mvk_blk_Liir2ssv1_usmpL_flex(a.y, a.x, a.c, a.s); },
          .strict = [](Call a) { return MVK_blk_Liir2ssv1_usmpL_strict(a.y, a.x, a.c, a.s); },
          .oracle = [](Call a, size_t n) { reference::StateSpaceUp(a.y, a.x, n, a.c, a.s); },
          .coefficients = 5,
          .state = 2,
          .in_place = InPlace::kNever,
          .outputs = 64,
      },
  };
}

// Every filter, and the counted one at numbers of taps on either side of what vectors hold.
inline std::vector<StatefulKernel> Filters() {
  std::vector<StatefulKernel> all = ShortFirs();
  for (uint32_t taps : {3u, 4u, 5u, 6u, 7u, 8u, 9u, 12u, 17u, 33u, 34u}) {
    all.push_back(FirOfTaps(taps));
  }
  for (const auto &more : {FirstOrderFilters(), SecondOrderFilters()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

}  // namespace testing_support

#endif
