// Samples at a distance, at any address, to and from contiguous memory. The loops
// are unrolled so that their counting doesn't bound them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/loop.h"

namespace mvk {

// Samples `step` bytes apart, the first one at `start`.
struct strided {
  char *start;
  std::size_t step;
};

// They are an array of T, neither apart nor unaligned.
template <class T>
inline bool is_array_of(strided samples) {
  return samples.step == sizeof(T) &&
         reinterpret_cast<std::uintptr_t>(samples.start) % alignof(T) == 0;
}
template <class T>
inline T *as_array_of(strided samples) {
  return reinterpret_cast<T *>(samples.start);
}

// n of `a`, gaps included, share no memory with m of `b`.
inline bool are_apart(strided a, std::size_t n, strided b, std::size_t m) {
  const auto from = reinterpret_cast<std::uintptr_t>(a.start);
  const auto to = reinterpret_cast<std::uintptr_t>(b.start);
  return to + m * b.step <= from || from + n * a.step <= to;
}

// Lane k = the float at p + k * step bytes.
template <class V>
inline V load_strided(const char *p, std::size_t step) {
  if constexpr (lanes<V> == 8) {
    return both(load_strided<f32x4>(p, step), load_strided<f32x4>(p + 4 * step, step));
  } else {
    float x[lanes<V>];
    for (int k = 0; k < lanes<V>; ++k) std::memcpy(x + k, p + k * step, sizeof *x);
    if constexpr (lanes<V> == 4)
      return {x[0], x[1], x[2], x[3]};
    else
      return x[0];
  }
}

// dst[i] = the T at src + i * step bytes.
template <class T>
inline void gather(T *dst, const void *src, std::size_t step, std::size_t n) {
  if (step == sizeof(T)) {
    std::memcpy(dst, src, n * sizeof(T));
    return;
  }
  const char *from = static_cast<const char *>(src);
  // Floats go by whole vectors, since memory written in parts is slow to be read whole.
  if constexpr (std::is_same_v<T, float>) {
    counted(
        n, [&]<class V>(std::size_t i) { store(dst + i, load_strided<V>(from + i * step, step)); });
    return;
  }
#pragma GCC unroll 8
  for (std::size_t i = 0; i < n; ++i, from += step) std::memcpy(dst + i, from, sizeof(T));
}

// The T at dst + i * step bytes = src[i].
template <class T>
inline void scatter(void *dst, std::size_t step, const T *src, std::size_t n) {
  if (step == sizeof(T)) {
    std::memcpy(dst, src, n * sizeof(T));
    return;
  }
  char *to = static_cast<char *>(dst);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < n; ++i, to += step) std::memcpy(to, src + i, sizeof(T));
}

}  // namespace mvk
