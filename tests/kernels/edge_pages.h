// Floats up against memory that nobody may touch: a kernel that reads or writes one
// of them too many is stopped by the processor.
#ifndef MVK_TESTS_KERNELS_EDGE_PAGES_H_
#define MVK_TESTS_KERNELS_EDGE_PAGES_H_

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

namespace testing_support {

enum class Edge { kBefore, kBehind };

class EdgePages {
 public:
  // Room for up to `floats`.
  explicit EdgePages(size_t floats) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    inside_ = (floats * sizeof(float) + page - 1) / page * page;
    size_ = inside_ + 2 * page;
    void *pages = mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::runtime_error("no pages");
    base_ = static_cast<std::byte *>(pages);
    Allow(PROT_READ | PROT_WRITE);
  }
  ~EdgePages() { munmap(base_, size_); }
  EdgePages(const EdgePages &) = delete;
  EdgePages &operator=(const EdgePages &) = delete;

  // Lays the values directly behind the pages that may not be touched, or before them.
  float *Place(std::span<const float> values, Edge edge) {
    std::byte *start = base_ + (size_ - inside_) / 2;
    if (edge == Edge::kBehind) start += inside_ - values.size_bytes();
    auto *floats = reinterpret_cast<float *>(start);
    std::copy(values.begin(), values.end(), floats);
    return floats;
  }

  void ForbidStores() { Allow(PROT_READ); }

 private:
  void Allow(int protection) {
    if (mprotect(base_ + (size_ - inside_) / 2, inside_, protection) != 0) {
      throw std::runtime_error("no protection");
    }
  }

  std::byte *base_;
  size_t inside_;  // bytes that may be touched
  size_t size_;
};

}  // namespace testing_support

#endif
