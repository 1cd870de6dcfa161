// The twiddles of the cosine transforms.
#include "core/tables.h"
#include "mvk_dct.h"

using namespace mvk;

namespace {

// scale * sin(pi (4 k + offset) / (8 n)), and the cosine.
template <int n>
consteval table<n> sines(int offset, double scale = 1) {
  return make_table<n>(
      [=](int k) { return static_cast<float>(scale * sin_pi(4 * k + offset, 8 * n)); });
}
template <int n>
consteval table<n> cosines(int offset, double scale = 1) {
  return make_table<n>(
      [=](int k) { return static_cast<float>(scale * cos_pi(4 * k + offset, 8 * n)); });
}

}  // namespace

#define MVK_TWIDDLES(n)                                                    \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_L##n, n, sines<n>(0));          \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_L##n##_1, n, sines<n>(1, 0.5)); \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_L##n##_2, n, cosines<n>(1, 0.5));
MVK_DCT_LENGTHS(MVK_TWIDDLES)
MVK_TWIDDLES(2)

#define MVK_OTHERS(n)                                                   \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_rev_L##n, n, cosines<n>(0)); \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_1_L##n, n, sines<n>(4));     \
  MVK_EXPORT_TABLE(mvk_dct_twiddle_table16_rev_1_L##n, n, cosines<n>(4));
MVK_DCT_LENGTHS(MVK_OTHERS)
MVK_OTHERS(2)
MVK_OTHERS(640)

// The cosines have two names.
#define MVK_COSINES(n)                                                 \
  extern "C" MVK_API const float mvk_dct_twiddle_table16_L##n##_cos[n] \
      __attribute__((alias("mvk_dct_twiddle_table16_rev_L" #n "_data")));
MVK_DCT_LENGTHS(MVK_COSINES)
MVK_COSINES(640)
