#include "quantise.h"

#include <cmath>
#include <limits>

namespace mvk {
namespace {

template <typename Integer>
uint64_t quantise_to(std::span<const float> samples, int bits, Integer *result) {
  // Double holds every product and bound exactly, also those of 32 bits.
  const double full_scale = std::ldexp(1.0, bits - 1);
  const Integer unit =
      static_cast<Integer>(Integer{1} << (std::numeric_limits<Integer>::digits + 1 - bits));
  uint64_t beyond = 0;
  for (float x : samples) {
    double value = std::isnan(x) ? 0.0 : std::nearbyint(x * full_scale);
    if (value > full_scale - 1.0) {
      value = full_scale - 1.0;
      ++beyond;
    } else if (value < -full_scale) {
      value = -full_scale;
      ++beyond;
    }
    *result++ = static_cast<Integer>(static_cast<Integer>(value) * unit);
  }
  return beyond;
}

}  // namespace

uint64_t quantise(std::span<const float> samples, int bits, short *result) {
  return quantise_to(samples, bits, result);
}

uint64_t quantise(std::span<const float> samples, int bits, int *result) {
  return quantise_to(samples, bits, result);
}

}  // namespace mvk
