// Memory of the caller's, watched on both sides.
#ifndef MVK_TESTS_KERNELS_GUARDED_BYTES_H_
#define MVK_TESTS_KERNELS_GUARDED_BYTES_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace testing_support {

// Bytes that start at a chosen distance behind a multiple of 64, between guard bytes.
class GuardedBytes {
 public:
  static constexpr uint8_t kFill = 0xA5;

  GuardedBytes(size_t size, size_t misalignment, uint8_t fill = kFill)
      : size_(size), storage_(size + 2 * kGuard + 128, kGuardByte) {
    const auto address = reinterpret_cast<uintptr_t>(storage_.data());
    start_ = ((address + 63) & ~uintptr_t{63}) - address + kGuard + misalignment;
    std::memset(data(), fill, size);
  }
  // The bytes stay where they are.
  GuardedBytes(GuardedBytes &&) = default;
  GuardedBytes &operator=(GuardedBytes &&) = delete;

  uint8_t *data() { return storage_.data() + start_; }
  const uint8_t *end() const { return storage_.data() + start_ + size_; }
  std::vector<uint8_t> Copy() const { return {end() - size_, end()}; }

  // No byte outside has changed.
  testing::AssertionResult GuardsStand() const {
    for (size_t i = 0; i < storage_.size(); ++i) {
      if (i == start_) i += size_;
      if (i < storage_.size() && storage_[i] != kGuardByte) {
        return testing::AssertionFailure()
               << "wrote outside, at byte "
               << static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(start_) << " of " << size_;
      }
    }
    return testing::AssertionSuccess();
  }

 private:
  static constexpr uint8_t kGuardByte = 0x5C;
  static constexpr size_t kGuard = 128;

  size_t size_;
  std::vector<uint8_t> storage_;
  size_t start_;
};

}  // namespace testing_support

#endif
