// Seeded random material for the tests.
#ifndef MVK_TESTS_COMPONENT_RANDOM_SAMPLES_H_
#define MVK_TESTS_COMPONENT_RANDOM_SAMPLES_H_

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

namespace testing_support {

inline constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Values at which a conversion or a sum may go wrong.
inline constexpr float kSpecials[] = {
    0.0f,
    -0.0f,
    1.0f,
    -1.0f,
    2.0f,
    -2.0f,
    0x1.fffffep-1f,
    -0x1.fffffep-1f,
    0x1.000002p+0f,
    -0x1.000002p+0f,
    // Around the limits of 16 bits, whole and half way.
    0x1.fffcp-1f,
    0x1.fffdp-1f,
    0x1.fffep-1f,
    0x1.ffffp-1f,
    -0x1.fffep-1f,
    -0x1.ffffp-1f,
    -0x1.0001p+0f,
    // Ties at 16 and at 32 bits.
    0x1p-16f,
    -0x1p-16f,
    0x3p-16f,
    -0x3p-16f,
    0x5p-16f,
    0x1p-32f,
    -0x1p-32f,
    0x3p-32f,
    -0x3p-32f,
    0x5p-32f,
    // Denormals and the smallest and largest normal numbers.
    0x1p-149f,
    -0x1p-149f,
    0x0.fffffep-126f,
    0x1p-126f,
    -0x1p-126f,
    0x1.fffffep+127f,
    -0x1.fffffep+127f,
    // Where a 32-bit or 64-bit integer ends once scaled.
    0x1p+16f,
    -0x1p+16f,
    0x1p+32f,
    -0x1p+32f,
    0x1p+48f,
    -0x1p+48f,
    kInfinity,
    -kInfinity,
    std::numeric_limits<float>::quiet_NaN(),
};

class Random {
 public:
  explicit Random(uint64_t seed) : engine_(seed) {}

  uint64_t Bits() { return engine_(); }
  uint32_t Bits32() { return static_cast<uint32_t>(engine_() >> 32); }

  // 0 to count - 1.
  unsigned Below(unsigned count) { return static_cast<unsigned>(Bits32() % count); }

  // Uniform in [-1, 1).
  float Unit() { return std::ldexp(static_cast<float>(static_cast<int32_t>(Bits32()) >> 8), -23); }

  // From the denormals up to a magnitude of 2^40, each binade alike.
  float Wide() {
    const int exponent = static_cast<int>(Below(190)) - 149;
    return std::ldexp(Unit(), exponent);
  }

  // Any of kSpecials.
  float Special() { return kSpecials[Below(std::size(kSpecials))]; }

  // Any of these.
  float Mixed() {
    switch (Below(4)) {
      case 0:
        return Special();
      case 1:
        return Wide();
      default:
        return Unit();
    }
  }

  // Finite material of a wide range.
  float Finite() { return Below(4) == 0 ? Wide() : Unit(); }

 private:
  std::mt19937_64 engine_;
};

inline std::vector<float> UnitNoise(Random &random, size_t count) {
  std::vector<float> samples(count);
  for (float &sample : samples) sample = random.Unit();
  return samples;
}

}  // namespace testing_support

#endif
