// The prototypes of the QMF banks in their three arrangements, from the designs for 64 bands.
#include "core/tables.h"
#include "filterbanks/prototype.h"
#include "mvk_qmf.h"

using namespace mvk;

namespace {

// The arrangements of the prototype of P and M.
template <int P, int M>
struct arranged : prototype<P, M> {
  using prototype<P, M>::p;

  // Block signs. A zero stays +0.
  constexpr float sign(int n, float x) const {
    const bool negative = P == 5 ? n / (2 * M) % 2 == 1 : (n + M) / (2 * M) % 2 == 0;
    return negative ? 0 - x : x;
  }

  constexpr float analysis(int n) const { return sign(n, p(n + 1)); }
  constexpr float synthesis(int n) const { return sign(n, p(n)); }

  // P columns by row; what follows row M - 1 is beyond the blocks.
  constexpr float columns(int i) const {
    const int r = i / P, e = i % P, n = r + 2 * M * e;
    if (r < M) return synthesis(n);
    if (P == 5) return r == M ? synthesis(n) : 0;
    if (r == M) return 0 - synthesis(n);
    return e == P - 1 ? 0 : 0 - synthesis(2 * M * (e + 1));
  }
};

// Taps up to the middle at 64 bands, by the suffix of their names.
constexpr auto &P4 = p4_half;
constexpr auto &P5 = p5_half;
constexpr auto &P5_p64orv301 = p5_p64orv301_half;

}  // namespace

#define MVK_PROTOTYPE(name, design, P, M, rows)                                           \
  MVK_EXPORT_TABLE(mvk_qmf_filter_coeff_##name, P *rows, make_table<P * rows>([](int i) { \
                     return arranged<P, M>{{design}}.columns(i);                          \
                   }));                                                                   \
  MVK_EXPORT_TABLE(                                                                       \
      mvk_qmf_filter_coeff_##name##_vec_ana, 2 * P * M,                                   \
      make_table<2 * P * M>([](int i) { return arranged<P, M>{{design}}.analysis(i); })); \
  MVK_EXPORT_TABLE(                                                                       \
      mvk_qmf_filter_coeff_##name##_vec_syn, 2 * P * M,                                   \
      make_table<2 * P * M>([](int i) { return arranged<P, M>{{design}}.synthesis(i); }));
MVK_QMF_PROTOTYPES(MVK_PROTOTYPE)
