// What the library is run on for its fingerprints: the same samples in every build.
#ifndef MVK_TESTS_FINGERPRINTS_CORPUS_H_
#define MVK_TESTS_FINGERPRINTS_CORPUS_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kernels/kernel_samples.h"

namespace testing_support {

// Denormals up to 2^40, so that no sum of them overflows.
inline constexpr Material kFinite = {"finite", [](Random &random) {
                                       if (random.Below(4) != 0) return random.Unit();
                                       const int exponent =
                                           static_cast<int>(random.Below(189)) - 148;
                                       return std::ldexp(random.Unit(), exponent);
                                     }};
// Coefficients that most filters are stable with, and what is to be positive.
inline constexpr Material kGentle = {"gentle",
                                     [](Random &random) { return 0.45f * random.Unit(); }};
inline constexpr Material kPositive = {
    "positive", [](Random &random) { return 0.5f + 0.25f * (1 + random.Unit()); }};

// What transforms and whatever has a memory run on, and what single operations do.
inline constexpr Material kSignals[] = {kUniform, kFinite, kFew};
inline constexpr Material kValues[] = {kUniform, kWide, kClose, kFew, kMixed};

// Samples of a material, taken from a store of them at a place that depends on what was taken
// before.
class Corpus {
 public:
  explicit Corpus(const Material &material, uint32_t seed = 1)
      : store_(StoreOf(material)), place_(seed) {}

  std::span<const float> Take(size_t count) {
    place_ = place_ * 1664525 + 1013904223;
    return store_.subspan((place_ >> 8) % (kStored - count), count);
  }
  std::vector<float> Copy(size_t count) {
    const std::span<const float> taken = Take(count);
    return {taken.begin(), taken.end()};
  }
  float Next() { return Take(1)[0]; }

 private:
  static constexpr size_t kStored = 32768;

  static std::span<const float> StoreOf(const Material &material);

  std::span<const float> store_;
  uint32_t place_;
};

}  // namespace testing_support

#endif
