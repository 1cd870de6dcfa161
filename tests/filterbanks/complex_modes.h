// The modes of the complex banks' modulation, and what they multiply the bands by.
#ifndef MVK_TESTS_FILTERBANKS_COMPLEX_MODES_H_
#define MVK_TESTS_FILTERBANKS_COMPLEX_MODES_H_

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_fft.h"
#include "reference/modulation_steps.h"

namespace testing_support {

inline constexpr uint32_t kAlign = 8;
inline constexpr uint32_t kHalfSample[] = {1, 2, 3, 4, 7, 9, 16, 64, 0x80000000u, 0xffffffffu};

// All multiples of 8 for which there is a transform.
inline std::vector<uint32_t> BandCounts() {
  std::vector<uint32_t> counts;
  for (uint32_t m = 8; m <= 1024; m += 8) {
    if (MVK_r4_cplx_fwd_pair(m) != nullptr) counts.push_back(m);
  }
  return counts;
}

inline KernelCall CallOf(const char *function, const char *mode, uint32_t bands,
                         std::array<int, 4> offsets = {}) {
  return {function, mode, bands, offsets, ""};
}

struct Mode {
  const char *name;
  uint32_t value;
  const float *rotation;
  bool turns;
};

// Every mode with a table and, where it may, without.
inline std::vector<Mode> Modes(const float *rotation, uint32_t bands) {
  std::vector<Mode> modes = {{"none", 0, nullptr, false},
                             {"none in spite of a table", 0, rotation, false},
                             {"alignment without a table", kAlign, nullptr, false},
                             {"alignment", kAlign, rotation, true}};
  if (bands % 16 == 0) {
    for (const uint32_t mode : kHalfSample) {
      modes.push_back({"half a sample", mode, rotation, true});
    }
  }
  return modes;
}

// The factors of a mode, ones where it doesn't rotate.
inline reference::Factors FactorsOf(uint32_t mode, const float *rotation, uint32_t bands) {
  if (mode == 0 || (mode == kAlign && rotation == nullptr)) return reference::Factors(bands, 1.0);
  return mode == kAlign ? reference::AlignmentFactors(rotation, bands)
                        : reference::HalfSampleFactors(rotation, bands);
}

// Tables of unit pairs, as rotations are, at an address like the exported ones'.
inline GuardedFloats Rotations(Random &random, uint32_t pairs) {
  std::vector<float> table(2 * size_t{pairs});
  for (uint32_t j = 0; j < pairs; ++j) {
    const double angle = 3.14159265 * random.Unit();
    table[j / 4 * 8 + j % 4] = static_cast<float>(std::sin(angle));
    table[j / 4 * 8 + j % 4 + 4] = static_cast<float>(std::cos(angle));
  }
  return GuardedFloats(std::move(table), 0);
}

}  // namespace testing_support

#endif
