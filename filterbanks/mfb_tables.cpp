// Prototypes and twiddles of the MFB banks, in their groups of four samples.
#include "core/tables.h"
#include "filterbanks/prototype.h"
#include "mvk_mfb.h"

using namespace mvk;

namespace {

// tap(j, k), tap j of sample k, at 40 (k / 4) + 4 j + k % 4.
template <int M, class Tap>
consteval table<10 * M> grouped(Tap tap) {
  return make_table<10 * M>([=](int i) { return tap(i % 40 / 4, i / 40 * 4 + i % 4); });
}

constexpr float symmetric(int j, int k) {
  return prototype<5, 64>{p5_p64orv301_half}.p(64 * j + k);
}

// exp(-i pi (p j + offset) / (4 M)) for each pair j.
template <int M>
consteval table<2 * M> twiddles(int p, int offset) {
  return make_table<2 * M>([=](int i) {
    const int angle = p * (i / 8 * 4 + i % 4) + offset;
    return static_cast<float>(i % 8 < 4 ? cos_pi(angle, 4 * M) : -sin_pi(angle, 4 * M));
  });
}

}  // namespace

MVK_EXPORT_TABLE(MVK_MFB_P10KM_P64ORV301, 640, grouped<64>(symmetric));
MVK_EXPORT_TABLE(MVK_MFB_P10KM_P64ORV301_LEGACY, 640,
                 grouped<64>([](int j, int k) { return symmetric(9 - j, k); }));

#define MVK_ASYMMETRIC(name, M, taps) \
  MVK_EXPORT_TABLE(name, 10 * M,      \
                   grouped<M>([](int j, int k) { return static_cast<float>(taps[M * j + k]); }));
MVK_ASYMMETRIC(MVK_MFB_P10KM_P4_319SC, 64, p4_319sc_64)
MVK_ASYMMETRIC(MVK_MFB_P10KM_P4_319SC_128M, 128, p4_319sc_128)
MVK_ASYMMETRIC(MVK_MFB_P10KM_P4_319SC_256M, 256, p4_319sc_256)

MVK_EXPORT_TABLE(MVK_MFB_TWID64O, 128, twiddles<64>(2, 0));
MVK_EXPORT_TABLE(MVK_MFB_TWID64E, 128, twiddles<64>(2, 1));
MVK_EXPORT_TABLE(MVK_MFB_TWID128E, 256, twiddles<128>(2, 1));
MVK_EXPORT_TABLE(MVK_MFB_TWID256E, 512, twiddles<256>(2, 1));
