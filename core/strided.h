// Samples at a distance, at any address, to and from contiguous memory. The loops
// are unrolled so that their counting doesn't bound them.
#pragma once

#include <cstddef>
#include <cstring>

namespace mvk {

// dst[i] = the T at src + i * step bytes.
template <class T>
inline void gather(T *dst, const void *src, std::size_t step, std::size_t n) {
  if (step == sizeof(T)) {
    std::memcpy(dst, src, n * sizeof(T));
    return;
  }
  const char *from = static_cast<const char *>(src);
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
