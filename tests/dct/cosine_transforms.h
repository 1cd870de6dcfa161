// The cosine transforms as a table, with their lengths, twiddles and results.
#ifndef MVK_TESTS_DCT_COSINE_TRANSFORMS_H_
#define MVK_TESTS_DCT_COSINE_TRANSFORMS_H_

#include <cstdint>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_dct.h"
#include "mvk_fft.h"
#include "reference/dct_exact.h"
#include "reference/fft_values.h"

namespace testing_support {

struct CosineTransform {
  const char *name;
  int type;
  reference::Scaling scaling;
  void (*run)(const mvk_fft_pair *pair, const float *twiddle, float *out, float *in, uint32_t n);
  void (*run_in_place)(const mvk_fft_pair *pair, const float *twiddle, float *data, uint32_t n);
};

inline const CosineTransform kDct2Scaled = {"dctII_scaled", 2, reference::Scaling::kScaled,
                                            mvk_dctII_scaled, _mvk_ldct2_scaled_iplu};
inline const CosineTransform kDct2Unscaled = {"dctII_unscaled", 2, reference::Scaling::kUnscaled,
                                              mvk_dctII_unscaled, _mvk_ldct2_unscaled_iplu};
inline const CosineTransform kDct3Scaled = {"dctIII_scaled", 3, reference::Scaling::kScaled,
                                            mvk_dctIII_scaled, _mvk_ldct3_scaled_iplu};
inline const CosineTransform kCosineTransforms[] = {kDct2Scaled, kDct2Unscaled, kDct3Scaled};

// Lengths with a table and a Fourier transform of half of them.
inline constexpr uint32_t kCosineLengths[] = {2,   4,   8,   12,  16,  24,  32,  48,  60,  64,
                                              72,  96,  120, 128, 144, 180, 192, 240, 256, 288,
                                              320, 360, 384, 480, 512, 576, 720, 768, 960, 1024};

// Lengths that run as well once the caller has a table.
inline constexpr uint32_t kLengthsWithoutTable[] = {40, 80, 160, 640, 1280, 1440, 1920, 2048};

// Lengths without a Fourier transform of half of them, some with a table.
inline constexpr uint32_t kLengthsWithoutTransform[] = {20, 28, 36, 44, 52,  56,
                                                        68, 76, 84, 88, 100, 104};

// sin(pi k / (2 n)), as the exported tables have it.
inline std::vector<float> SinesFor(uint32_t n) {
  std::vector<float> sines;
  for (uint32_t k = 0; k < n; ++k) {
    sines.push_back(static_cast<float>(reference::SineOfTurn<long double>(k, 4 * uint64_t{n})));
  }
  return sines;
}

inline reference::WideReals ExactResult(const CosineTransform &transform,
                                        const std::vector<float> &x) {
  if (transform.type == 3) return reference::ExactDct3<reference::Wide>(x);
  reference::WideReals result = reference::ExactDct2<reference::Wide>(x);
  if (transform.scaling == reference::Scaling::kScaled) {
    for (reference::Wide &value : result) value /= static_cast<reference::Wide>(x.size());
  }
  return result;
}

// From one array to another, with a copy of the input for the transform to work in.
inline std::vector<float> ResultOf(const CosineTransform &transform, const mvk_fft_pair *pair,
                                   const float *twiddle, std::vector<float> x) {
  std::vector<float> out(x.size(), kNaN);
  transform.run(pair, twiddle, out.data(), x.data(), static_cast<uint32_t>(x.size()));
  return out;
}

}  // namespace testing_support

#endif
