// Carving of a caller's memory into aligned pieces.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mvk {

constexpr std::uintptr_t align_up(std::uintptr_t address, std::size_t alignment) {
  return (address + alignment - 1) & ~static_cast<std::uintptr_t>(alignment - 1);
}

// Hands out pieces of a block in ascending order. One function that takes its
// pieces from a carver serves for the layout, over the block, and for the size,
// over no block: `end` is then the number of bytes used.
struct carver {
  std::uintptr_t end;

  explicit carver(void *block = nullptr) : end(reinterpret_cast<std::uintptr_t>(block)) {}

  template <class T>
  T *take(std::size_t count, std::size_t alignment = alignof(T)) {
    const std::uintptr_t start = align_up(end, alignment);
    end = start + count * sizeof(T);
    return reinterpret_cast<T *>(start);
  }
};

}  // namespace mvk
