// What the references of the Fourier transforms have in common, for tests.
#ifndef MVK_TESTS_REFERENCE_FFT_VALUES_H_
#define MVK_TESTS_REFERENCE_FFT_VALUES_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace reference {

enum class Direction { kForward, kInverse };
enum class Scaling { kUnscaled, kScaled };

inline constexpr Direction kDirections[] = {Direction::kForward, Direction::kInverse};
inline constexpr Scaling kScalings[] = {Scaling::kUnscaled, Scaling::kScaled};

struct Complex {
  float re = 0;
  float im = 0;
};

using ComplexArray = std::vector<Complex>;

inline ComplexArray ComplexOf(std::span<const float> floats) {
  ComplexArray values(floats.size() / 2);
  for (size_t i = 0; i < values.size(); ++i) values[i] = {floats[2 * i], floats[2 * i + 1]};
  return values;
}

inline std::vector<float> FloatsOf(const ComplexArray &values) {
  std::vector<float> floats;
  floats.reserve(2 * values.size());
  for (const Complex &value : values) {
    floats.push_back(value.re);
    floats.push_back(value.im);
  }
  return floats;
}

// Real and imaginary parts in each other's place: between a transform and its inverse.
inline ComplexArray Exchanged(const ComplexArray &values) {
  ComplexArray exchanged;
  exchanged.reserve(values.size());
  for (const Complex &value : values) exchanged.push_back({value.im, value.re});
  return exchanged;
}

inline bool IsPowerOfTwo(uint32_t n) { return std::has_single_bit(n); }

inline uint32_t Log2(uint32_t n) { return static_cast<uint32_t>(std::bit_width(n)) - 1; }

// The low `bits` bits of i in the opposite order.
inline uint32_t Reversed(uint32_t i, uint32_t bits) {
  uint32_t reversed = 0;
  for (uint32_t bit = 0; bit < bits; ++bit) reversed |= (i >> bit & 1u) << (bits - 1 - bit);
  return reversed;
}

// What a transform multiplies by: 1, or the float next to 1 / n.
inline float FactorOf(Scaling scaling, uint32_t n) {
  return scaling == Scaling::kScaled ? static_cast<float>(1.0 / n) : 1.0f;
}

}  // namespace reference

#endif
