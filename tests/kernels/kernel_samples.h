// What the tests of the kernels run on: samples, buffers between guard words, and
// comparisons to the bit.
#ifndef MVK_TESTS_KERNELS_KERNEL_SAMPLES_H_
#define MVK_TESTS_KERNELS_KERNEL_SAMPLES_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <sstream>
#include <utility>
#include <vector>

#include "component/random_samples.h"

namespace testing_support {

inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kLargest = std::numeric_limits<float>::max();

inline constexpr size_t kBlockSize = 32;

// Values at which a product, a sum or a comparison goes another way. NaNs are
// quiet, with payloads and both signs.
inline constexpr float kKernelSpecials[] = {
    0.0f,
    -0.0f,
    1.0f,
    -1.0f,
    0x1.fffffep-1f,
    0x1p-149f,  // denormals and what lies next to them
    -0x1p-149f,
    0x0.fffffep-126f,
    -0x0.fffffep-126f,
    0x1p-126f,
    -0x1p-126f,
    0x1.8p-75f,   // squares underflow
    -0x1.8p+64f,  // squares overflow
    kLargest,
    -kLargest,
    kInfinity,
    -kInfinity,
    kNaN,
    std::bit_cast<float>(0x7fc12345u),
    std::bit_cast<float>(0xffedcba9u),
};

// Any binade from the denormals to the largest, each alike.
inline float AnyBinade(Random &random) {
  const int exponent = static_cast<int>(random.Below(276)) - 148;
  return std::ldexp(random.Unit(), exponent);
}

inline float KernelSpecial(Random &random) {
  return kKernelSpecials[random.Below(std::size(kKernelSpecials))];
}

// A kind of samples.
struct Material {
  const char *name;
  float (*next)(Random &random);
};

inline constexpr Material kUniform = {"uniform", [](Random &random) { return random.Unit(); }};
// Finite, of all exponents: one of them outweighs the others in most sums.
inline constexpr Material kWide = {"wide", AnyBinade};
// Every addend of a sum counts, and none fits it without rounding.
inline constexpr Material kClose = {"close", [](Random &random) {
                                      const int exponent = static_cast<int>(random.Below(32)) - 16;
                                      return std::ldexp(random.Unit(), exponent);
                                    }};
// Sums that come to a zero of either sign or to next to nothing.
inline constexpr Material kFew = {"few", [](Random &random) {
                                    constexpr float kMagnitudes[] = {0, 0, 1, 0x1p-149f};
                                    const float magnitude = kMagnitudes[random.Below(4)];
                                    return random.Below(2) == 0 ? magnitude : -magnitude;
                                  }};
inline constexpr Material kMixed = {"mixed", [](Random &random) {
                                      return random.Below(4) == 0   ? KernelSpecial(random)
                                             : random.Below(2) == 0 ? AnyBinade(random)
                                                                    : random.Unit();
                                    }};
inline constexpr Material kMaterials[] = {kUniform, kWide, kClose, kFew, kMixed};

inline std::vector<float> Samples(const Material &material, Random &random, size_t count) {
  std::vector<float> samples(count);
  for (float &sample : samples) sample = material.next(random);
  return samples;
}

inline uint32_t BitsOf(float x) { return std::bit_cast<uint32_t>(x); }
inline uint64_t BitsOf(double x) { return std::bit_cast<uint64_t>(x); }

// The same bits, or a NaN both.
template <typename Sample>
bool SameNumber(Sample a, Sample b) {
  return BitsOf(a) == BitsOf(b) || (std::isnan(a) && std::isnan(b));
}

// One call of a kernel, for the message of a comparison that fails.
struct KernelCall {
  const char *kernel;
  const char *form;              // "flex" or "strict"
  size_t count = kBlockSize;     // what was passed as the count
  std::array<int, 4> offsets{};  // of its buffers in floats, as they were passed
  const char *material = "";
};

inline std::ostream &operator<<(std::ostream &out, const KernelCall &call) {
  out << call.kernel << " " << call.form << ", count " << call.count << ", offsets";
  for (int offset : call.offsets) out << " " << offset;
  return out << " " << call.material;
}

template <typename Sample>
testing::AssertionResult Differs(size_t i, Sample got, Sample want, const KernelCall &call) {
  std::ostringstream message;
  message << call << ", index " << i << ": " << got << " for " << want << ", bits " << std::hex
          << BitsOf(got) << " for " << BitsOf(want);
  return testing::AssertionFailure() << message.str();
}

// One result, by its bits or as a NaN.
template <typename Sample>
testing::AssertionResult SameResult(Sample got, Sample want, const KernelCall &call) {
  if (SameNumber(got, want)) return testing::AssertionSuccess();
  return Differs(0, got, want, call);
}

// Samples by their bits, every NaN like every other.
inline testing::AssertionResult SameSamples(std::span<const float> got, std::span<const float> want,
                                            const KernelCall &call) {
  if (got.size() != want.size()) {
    return testing::AssertionFailure() << call << ": " << got.size() << " for " << want.size();
  }
  for (size_t i = 0; i < got.size(); ++i) {
    if (!SameNumber(got[i], want[i])) return Differs(i, got[i], want[i], call);
  }
  return testing::AssertionSuccess();
}

// Samples by their bits, those of NaNs as well: for copies and what stays as it was.
inline testing::AssertionResult SameBits(std::span<const float> got, std::span<const float> want,
                                         const KernelCall &call) {
  if (got.size() != want.size()) {
    return testing::AssertionFailure() << call << ": " << got.size() << " for " << want.size();
  }
  for (size_t i = 0; i < got.size(); ++i) {
    if (BitsOf(got[i]) != BitsOf(want[i])) return Differs(i, got[i], want[i], call);
  }
  return testing::AssertionSuccess();
}

// Floats at a chosen distance behind an address that is a multiple of 32 bytes and
// not of 64, between guard words. The guards are NaNs, which spoil a result that
// they get into.
class GuardedFloats {
 public:
  GuardedFloats(std::vector<float> values, int offset)
      : given_(std::move(values)), storage_(given_.size() + 2 * kGuard + kSlack, kGuardWord) {
    const auto address = reinterpret_cast<uintptr_t>(storage_.data());
    const uintptr_t aligned = ((address + 63) & ~uintptr_t{63}) + 32;
    start_ = (aligned - address) / sizeof(float) + kGuard + static_cast<size_t>(offset);
    Refill();
  }
  GuardedFloats(size_t count, int offset)
      : GuardedFloats(std::vector<float>(count, kNaN), offset) {}
  GuardedFloats(const GuardedFloats &) = delete;
  GuardedFloats &operator=(const GuardedFloats &) = delete;

  float *data() { return storage_.data() + start_; }
  size_t size() const { return given_.size(); }
  std::span<const float> values() const { return {storage_.data() + start_, given_.size()}; }

  // What the buffer was given when it was made.
  const std::vector<float> &given() const { return given_; }

  // Brings that back.
  void Refill() { std::copy(given_.begin(), given_.end(), data()); }

  // No word outside of the floats has changed.
  testing::AssertionResult GuardsStand(const KernelCall &call) const {
    for (size_t i = 0; i < storage_.size(); ++i) {
      if (i == start_) i += given_.size();
      if (i < storage_.size() && BitsOf(storage_[i]) != BitsOf(kGuardWord)) {
        return testing::AssertionFailure()
               << call << ": wrote outside, at index "
               << static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(start_);
      }
    }
    return testing::AssertionSuccess();
  }

  // Nothing has changed, neither inside nor outside.
  testing::AssertionResult Untouched(const KernelCall &call) const {
    if (testing::AssertionResult same = SameBits(values(), given_, call); !same) return same;
    return GuardsStand(call);
  }

 private:
  static constexpr float kGuardWord = std::bit_cast<float>(0x7fcafe77u);
  static constexpr size_t kGuard = 16;
  static constexpr size_t kSlack = 16 + 8 + 8;  // for the alignment and for the offset

  std::vector<float> given_;
  std::vector<float> storage_;
  size_t start_;
};

}  // namespace testing_support

#endif
