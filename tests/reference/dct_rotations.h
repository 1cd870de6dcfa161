// The rotations of a DCT-IV, for tests.
#ifndef MVK_TESTS_REFERENCE_DCT_ROTATIONS_H_
#define MVK_TESTS_REFERENCE_DCT_ROTATIONS_H_

#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

namespace reference {

// A sum of two products, one rounded and one fused with the sum: the results of either choice.
using EitherRounding = std::array<float, 2>;

inline EitherRounding SumOfProducts(float a, float x, float b, float y) {
  return {std::fma(a, x, b * y), std::fma(b, y, a * x)};
}

inline std::vector<EitherRounding> PreRotated(std::span<const float> in, std::span<const float> c,
                                              std::span<const float> s) {
  const size_t n = in.size() / 2;
  std::vector<EitherRounding> out(2 * n);
  for (size_t i = 0; i < n; ++i) {
    const float a = in[2 * i], b = in[2 * n - 1 - 2 * i];
    out[2 * i] = SumOfProducts(s[i], a, c[i], b);
    out[2 * i + 1] = SumOfProducts(s[i], b, -c[i], a);
  }
  return out;
}

// The first pair is rotated only if the number of pairs is a multiple of four.
inline std::vector<EitherRounding> PostRotated(std::span<const float> in, std::span<const float> c,
                                               std::span<const float> s, float gain) {
  const size_t n = in.size() / 2;
  std::vector<EitherRounding> out(2 * n);
  for (size_t i = 0; i < n; ++i) {
    const float r = in[2 * i], m = in[2 * i + 1];
    EitherRounding &first = out[2 * i], &second = out[2 * n - 1 - 2 * i];
    if (i == 0 && n % 4 != 0) {
      first = {r, r};
      second = {-m, -m};
    } else {
      first = SumOfProducts(s[i], r, c[i], m);
      second = SumOfProducts(c[i], r, -s[i], m);
    }
    for (float &value : first) value *= gain;
    for (float &value : second) value *= gain;
  }
  return out;
}

}  // namespace reference

#endif
