// The exported transforms as tables, one file for each family.
#ifndef MVK_TESTS_FFT_FFT_KERNELS_H_
#define MVK_TESTS_FFT_FFT_KERNELS_H_

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "kernels/kernel_samples.h"
#include "reference/fft_values.h"

#define MVK_POWERS_OF_TWO_UP_TO_2048(DO) \
  DO(2) DO(4) DO(8) DO(16) DO(32) DO(64) DO(128) DO(256) DO(512) DO(1024) DO(2048)
#define MVK_COMPOSITES_UP_TO_72(DO) \
  DO(6) DO(12) DO(15) DO(20) DO(24) DO(30) DO(36) DO(40) DO(45) DO(48) DO(60) DO(72)
#define MVK_COMPOSITES_UP_TO_320(DO) \
  DO(80) DO(90) DO(96) DO(120) DO(144) DO(160) DO(180) DO(192) DO(240) DO(288) DO(320)
#define MVK_COMPOSITES_UP_TO_960(DO) DO(360) DO(384) DO(480) DO(576) DO(640) DO(720) DO(768) DO(960)
#define MVK_COMPOSITE_LENGTHS(DO) \
  MVK_COMPOSITES_UP_TO_72(DO) MVK_COMPOSITES_UP_TO_320(DO) MVK_COMPOSITES_UP_TO_960(DO)

namespace testing_support {

using reference::ComplexArray;
using reference::ComplexOf;
using reference::Direction;
using reference::FloatsOf;
using reference::Scaling;

enum class Family { kRadix4, kRadix8 };

struct Kernel {
  const char *name;
  Family family;
  uint32_t length;
  Direction direction;
  Scaling scaling;
  void (*run)(float *dst, float *src, uint32_t n);
};

struct EntryPoint {
  const char *name;
  uint32_t length;
  Direction direction;
  Scaling scaling;
  void (*run)(float *dst, float *src, float *scratch);
};

std::span<const Kernel> PowerOfTwoKernels();
std::span<const Kernel> CompositeKernels();
std::span<const Kernel> Radix8Kernels();
std::span<const EntryPoint> PowerOfTwoEntryPoints();
std::span<const EntryPoint> CompositeEntryPoints();

// The one of these in a table, or null.
template <typename Form>
const Form *Find(std::span<const Form> forms, uint32_t length, Direction direction,
                 Scaling scaling) {
  for (const Form &form : forms) {
    if (form.length == length && form.direction == direction && form.scaling == scaling) {
      return &form;
    }
  }
  return nullptr;
}

inline bool RunsInPlace(const Kernel &kernel) {
  constexpr uint32_t kLengths[] = {2, 4, 6, 8, 16};
  return kernel.family == Family::kRadix4 && std::ranges::count(kLengths, kernel.length) != 0;
}

inline bool LeavesItsSource(const Kernel &kernel) {
  constexpr uint32_t kRadix4[] = {2, 4, 6, 8, 12, 15, 16, 20, 24, 30, 40};
  if (kernel.family == Family::kRadix8) return kernel.length == 64;
  return std::ranges::count(kRadix4, kernel.length) != 0;
}

// From one array to another, with a copy of the input for the kernel to work in.
inline ComplexArray ResultOf(const Kernel &kernel, const ComplexArray &x) {
  std::vector<float> src = FloatsOf(x), dst(src.size(), kNaN);
  kernel.run(dst.data(), src.data(), kernel.length);
  return ComplexOf(dst);
}

inline ComplexArray ResultOf(const EntryPoint &entry, const ComplexArray &x) {
  std::vector<float> src = FloatsOf(x), dst(src.size(), kNaN), scratch(src.size(), kNaN);
  entry.run(dst.data(), src.data(), scratch.data());
  return ComplexOf(dst);
}

inline ComplexArray ComplexSamples(const Material &material, Random &random, uint32_t n) {
  return ComplexOf(Samples(material, random, 2 * size_t{n}));
}

// Zeros and ones of either sign, most of them zeros.
inline constexpr Material kSignedZeros = {"signed zeros", [](Random &random) {
                                            const float x = random.Below(4) == 0 ? 1.0f : 0.0f;
                                            return random.Below(2) == 0 ? x : -x;
                                          }};

inline constexpr reference::Complex kZero = {0.0f, 0.0f};

template <typename Form>
KernelCall CallOf(const Form &form, const char *material, std::array<int, 4> offsets = {}) {
  return {form.name, "", form.length, offsets, material};
}

}  // namespace testing_support

#endif
