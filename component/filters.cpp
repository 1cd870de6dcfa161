// The resampler's prototype filters and their phases.
#include "core/tables.h"
#include "orvane_resampler.h"

namespace {

using mvk::make_table;
using mvk::q15;
using mvk::table;

// The first half of each prototype and its centre, in units of 2^-15.
constexpr int half_2x[21] = {8,   15,   -23,  -113, -119, 63,    201,   -31,  -351,  -87,  531,
                             323, -726, -743, 914,  1494, -1071, -3096, 1175, 10299, 15172};
constexpr int half_4x[41] = {0,     -2,    -8,   -19,  -37,  -58,  -73,  -72, -47, 0,   55,
                             96,    97,    47,   -42,  -133, -177, -136, -9,  156, 278, 277,
                             122,   -139,  -389, -485, -333, 46,   498,  790, 714, 203, -589,
                             -1311, -1526, -897, 650,  2847, 5142, 6875, 7520};

// Tap t of the symmetric filter whose first half ends at its centre.
template <int Half>
constexpr float tap(const int (&half)[Half], int t) {
  constexpr int last = 2 * (Half - 1);
  if (t > last) return 0;
  return q15(half[t < Half ? t : last - t]);
}

template <int Half>
consteval table<2 * Half - 1> prototype(const int (&half)[Half]) {
  return make_table<2 * Half - 1>([&](int t) { return tap(half, t); });
}

// Every factor-th tap from tap `phase` on, filled up with zeros.
template <int Half>
consteval table<24> phase_of(const int (&half)[Half], int factor, int phase) {
  return make_table<24>([&](int k) { return tap(half, factor * k + phase); });
}

}  // namespace

MVK_EXPORT_TABLE(orvane_resampler_2x_filt, 41, prototype(half_2x));
MVK_EXPORT_TABLE(orvane_resampler_4x_filt, 81, prototype(half_4x));
MVK_EXPORT_TABLE(orvane_resampler_2x_ph0_vec, 24, phase_of(half_2x, 2, 0));
MVK_EXPORT_TABLE(orvane_resampler_2x_ph1_vec, 24, phase_of(half_2x, 2, 1));
MVK_EXPORT_TABLE(orvane_resampler_4x_ph0_vec, 24, phase_of(half_4x, 4, 0));
MVK_EXPORT_TABLE(orvane_resampler_4x_ph1_vec, 24, phase_of(half_4x, 4, 1));
MVK_EXPORT_TABLE(orvane_resampler_4x_ph2_vec, 24, phase_of(half_4x, 4, 2));
MVK_EXPORT_TABLE(orvane_resampler_4x_ph3_vec, 24, phase_of(half_4x, 4, 3));
