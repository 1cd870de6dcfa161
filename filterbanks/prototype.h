// The symmetric prototypes, from their designs for 64 bands.
#pragma once

#include "filterbanks/prototype_data.h"

namespace mvk {

// The prototype p of 2 P M taps from one for 64 bands, whose taps up to the middle are in `half`.
template <int P, int M>
struct prototype {
  const double *half;

  constexpr float designed(int n) const {
    return static_cast<float>(half[n <= 64 * P ? n : 128 * P - n]);
  }

  // p[n], between two taps of the design where M doesn't divide 64.
  constexpr float p(int n) const {
    const int tap = 64 * n / M, rest = 64 * n % M;
    if (rest == 0) return designed(tap);
    const double to_next = static_cast<double>(rest) / M;
    return static_cast<float>((1 - to_next) * designed(tap) + to_next * designed(tap + 1));
  }
};

}  // namespace mvk
