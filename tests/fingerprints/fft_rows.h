// The exported complex transforms as tables.
#ifndef MVK_TESTS_FINGERPRINTS_FFT_ROWS_H_
#define MVK_TESTS_FINGERPRINTS_FFT_ROWS_H_

#include <cstdint>
#include <span>
#include <vector>

#include "mvk_fft.h"

namespace testing_support {

// The four kernels of a length, unscaled before scaled and forward before inverse.
struct FftRow {
  const char *name;
  uint32_t points;
  mvk_fft_kernel *run;
};

std::span<const FftRow> Radix4Rows();
std::span<const FftRow> Radix8Rows();

// Lengths of the quicker family that round alike everywhere: their later passes are of radices 3,
// 5 and 6 only, and those of 4 and 8 are what processors do in different ways.
inline bool RoundsAlike(uint32_t radix8_points) {
  return radix8_points == 144 || radix8_points == 240 || radix8_points == 720;
}

// What a kernel makes of a copy.
inline std::vector<float> Transformed(mvk_fft_kernel *kernel, std::span<const float> x) {
  std::vector<float> src(x.begin(), x.end()), dst(x.size());
  kernel(dst.data(), src.data(), static_cast<uint32_t>(x.size() / 2));
  return dst;
}

}  // namespace testing_support

#endif
