// The rotations of the modulation stage, and the windows' modulation.
#include "core/tables.h"
#include "mvk_qmf.h"

using namespace mvk;

namespace {

// scale * (sin, sign * cos) of pi (p j + offset) / q for each pair j, grouped by fours. The
// sine of 0 is -0.
template <int pairs>
consteval table<2 * pairs> rotations(double scale, int p, int offset, int q, double sign = 1) {
  return make_table<2 * pairs>([=](int i) {
    const int j = i / 8 * 4 + i % 4, numerator = p * j + offset;
    if (i % 8 < 4) return numerator == 0 ? -0.0f : static_cast<float>(scale * sin_pi(numerator, q));
    return static_cast<float>(scale * (sign * cos_pi(numerator, q)));
  });
}

}  // namespace

#define MVK_FULL(M)                                                            \
  MVK_EXPORT_TABLE(mvk_cos_##M##_full, 2 * M, rotations<M>(0.5, 1, 0, 2 * M)); \
  MVK_EXPORT_TABLE(mvk_cos_##M##_full_scl, 2 * M, rotations<M>(0.5 / M, 1, 0, 2 * M));
MVK_COS_FULL_BANDS(MVK_FULL)

#define MVK_HALF_SAMPLE(M) \
  MVK_EXPORT_TABLE(mvk_cos_##M##_full_twiddle, M, rotations<M / 2>(1, 2, 1, 4 * M, -1));
MVK_COS_HALF_SAMPLE_BANDS(MVK_HALF_SAMPLE)

// pi / M (j + 1/2) (1 - M / 64) / 2 = pi (2 j + 1) (64 - M) / (256 M)
#define MVK_ALIGNED(M)                                    \
  MVK_EXPORT_TABLE(mvk_cos_##M##_ast_mini_twiddle, 2 * M, \
                   rotations<M>(1, 2 * (64 - M), 64 - M, 256 * M));
MVK_COS_ALIGNED_BANDS(MVK_ALIGNED)
