// The sub-bands of the hybrid bank by the sums that define them, in double precision, for tests.
#ifndef MVK_TESTS_REFERENCE_HYBRID_EXACT_H_
#define MVK_TESTS_REFERENCE_HYBRID_EXACT_H_

#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <ostream>
#include <span>
#include <vector>

#include "reference/fft_exact.h"

namespace reference {

inline constexpr size_t kHybridTaps = 13, kHybridDelay = 6, kHybridBands = 3;

enum class HybridFilter { k8Way, k4Way, k2Way };

// Tap n, symmetric about tap 6.
inline double HybridTap(HybridFilter filter, size_t n) {
  // Single precision, as the tables hold them.
  constexpr float k8Way[] = {0.125f,        0.1179371029f, 0.0988510847f, 0.0726611391f,
                             0.0454686582f, 0.0227042101f, 0.0074608293f};
  constexpr float k4Way[] = {0.25f, 0.2122780681f,  0.1254244894f, 0.0431892388f,
                             0,     -0.0079486230f, -0.0030515192f};
  constexpr float k2Way[] = {0.5f, 0.3059663177f, 0, -0.0729313940f, 0, 0.0189948753f, 0};
  const size_t distance = n < kHybridDelay ? kHybridDelay - n : n - kHybridDelay;
  switch (filter) {
    case HybridFilter::k8Way:
      return double{k8Way[distance]};
    case HybridFilter::k4Way:
      return double{k4Way[distance]};
    default:
      return double{k2Way[distance]};
  }
}

// One sub-band.
struct HybridSubBand {
  size_t band;
  HybridFilter filter;
  int eighths;               // of pi, its middle in radians a sample
  bool with_mirror = false;  // the sub-band at minus that is added
  bool is_conjugate = false;

  // What it has of a 1 in its band, n samples later.
  WideComplex Response(size_t n) const {
    if (n >= kHybridTaps) return 0;
    const double angle = std::numbers::pi / 8 * eighths *
                         (static_cast<double>(n) - static_cast<double>(kHybridDelay));
    const double tap = HybridTap(filter, n);
    return with_mirror ? WideComplex(2 * tap * std::cos(angle)) : std::polar(1.0, angle) * tap;
  }
};

struct HybridMode {
  const char *name;
  uint32_t flags;
  std::vector<HybridSubBand> sub_bands;
};
/* As a parameter of a test. */
inline void PrintTo(const HybridMode &mode, std::ostream *out) { *out << mode.name; }

inline const std::vector<HybridMode> &HybridModes() {
  constexpr auto k8 = HybridFilter::k8Way, k4 = HybridFilter::k4Way, k2 = HybridFilter::k2Way;
  static const std::vector<HybridSubBand> kFew = {
      {0, k8, 1},  {0, k8, 3}, {0, k8, 5, true}, {0, k8, 7, true}, {0, k8, -3},
      {0, k8, -1}, {1, k2, 0}, {1, k2, 8},       {2, k2, 0},       {2, k2, 8}};
  static const std::vector<HybridMode> kModes = {
      {"Mode0", 0, kFew},
      {"Mode0Reordered", 4, kFew},
      {"Mode1",
       1,
       {{0, k8, 1},
        {0, k8, 3},
        {0, k8, 5},
        {0, k8, 7},
        {0, k8, -7},
        {0, k8, -5},
        {0, k8, -3},
        {0, k8, -1},
        {1, k4, 2},
        {1, k4, 6},
        {1, k4, -6},
        {1, k4, -2},
        {2, k4, 2},
        {2, k4, 6},
        {2, k4, -6},
        {2, k4, -2}}},
      {"Mode1Reordered",
       5,
       {{0, k8, 1},
        {0, k8, -1, false, true},
        {0, k8, 3},
        {0, k8, -3, false, true},
        {0, k8, 5},
        {1, k4, 6},
        {0, k8, 7},
        {0, k8, -7},
        {1, k4, -6},
        {0, k8, -5},
        {1, k4, -2},
        {2, k4, -2},
        {1, k4, 2},
        {2, k4, 2},
        {2, k4, 6},
        {2, k4, -6}}},
  };
  return kModes;
}

struct HybridValue {
  WideComplex value;
  double bound;  // of its error
};

// What a sub-band has of its band's samples, the newest last.
inline HybridValue ExactHybrid(const HybridSubBand &sub_band, std::span<const WideComplex> x) {
  HybridValue sum{0, 0};
  for (size_t n = 0; n < kHybridTaps && n < x.size(); ++n) {
    const WideComplex product = Product(x[x.size() - 1 - n], sub_band.Response(n));
    const double tap = std::fabs(HybridTap(sub_band.filter, n));
    sum.value += product;
    sum.bound += (sub_band.with_mirror ? 2 : 1) * tap * std::abs(x[x.size() - 1 - n]);
  }
  if (sub_band.is_conjugate) sum.value = std::conj(sum.value);
  // Of a sample's parts: the product with its tap, up to two sums of samples a period apart, four
  // roundings in the turns of the first stage, three sums of the transform with a product between
  // them, and the sum with the mirror.
  sum.bound *= 12 * 0x1p-24 * std::numbers::sqrt2;
  return sum;
}

}  // namespace reference

#endif
