// What the kernels share: twins, element-wise maps and the test of alignment.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "core/simd.h"
#include "mvk_kernels.h"

// What the compiler finds out about a routine needn't be said of its other name.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmissing-attributes"
#endif

// Begins the definition of a kernel whose two forms are one routine,
// mvk_<name>_flex, which MVK_<name>_strict names as well.
#define MVK_KERNEL(result, name, ...)                                                             \
  extern "C" result MVK_##name##_strict __VA_ARGS__ __attribute__((alias("mvk_" #name "_flex"))); \
  extern "C" result mvk_##name##_flex __VA_ARGS__

// A companion that has nothing to do.
#define MVK_KEEP_COEF(name) \
  extern "C" void *MVK_blk_##name##_set_coef(void *coefficients) { return coefficients; }

namespace mvk {

inline constexpr std::size_t block_size = 32;

// y[i] = f(x[i]...) for i below n. Each step reads before it writes, so that y may
// be one of the inputs.
template <class F, class... X>
[[gnu::always_inline]] inline float *map(float *y, std::size_t n, F f, const X *...x) {
  counted(n, [&]<class V>(std::size_t i) { store(y + i, f(load<V>(x + i)...)); });
  return y;
}

// The same for a block of 32.
template <class F, class... X>
[[gnu::always_inline]] inline float *map_block(float *y, F f, const X *...x) {
  return map(y, block_size, f, x...);
}

// 2^-k, unchecked.
constexpr float exp2_bits_right(std::uint32_t k) { return exp2_bits(0u - k); }

// Whether s is a number and not the given zero. With such an s, a comparison does for maxnum or
// minnum: it goes wrong only where equal operands are zeros of which it takes the wrong one, and
// where s is a NaN.
inline bool is_number_but(float zero, float s) {
  return s == s && std::bit_cast<std::uint32_t>(s) != std::bit_cast<std::uint32_t>(zero);
}

// What the strict forms ask for.
inline bool is_aligned(const void *p) { return reinterpret_cast<std::uintptr_t>(p) % 32 == 0; }
inline bool is_whole(std::uint32_t n) { return n % 4 == 0; }

}  // namespace mvk
