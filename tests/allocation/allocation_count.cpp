#include "allocation/allocation_count.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>

namespace testing_support {
namespace {

HeapUse *counting = nullptr;
bool dry = false;

}  // namespace

HeapUse HeapUseOf(void (*action)(void *), void *context, Heap heap) {
  HeapUse use;
  counting = &use;
  dry = heap == Heap::kIsDry;
  action(context);
  dry = false;
  counting = nullptr;
  return use;
}

}  // namespace testing_support

// The C library's own allocator stands behind these names.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);
void *__libc_memalign(size_t alignment, size_t size);
void __libc_free(void *memory);
}

namespace {

bool Grant() {
  if (testing_support::counting == nullptr) return true;
  if (testing_support::dry) return false;
  ++testing_support::counting->allocated;
  return true;
}

}  // namespace

extern "C" {

void *malloc(size_t size) noexcept { return Grant() ? __libc_malloc(size) : nullptr; }

void *calloc(size_t count, size_t size) noexcept {
  return Grant() ? __libc_calloc(count, size) : nullptr;
}

void *realloc(void *memory, size_t size) noexcept {
  return Grant() ? __libc_realloc(memory, size) : nullptr;
}

void *aligned_alloc(size_t alignment, size_t size) noexcept {
  return Grant() ? __libc_memalign(alignment, size) : nullptr;
}

void *memalign(size_t alignment, size_t size) noexcept {
  return Grant() ? __libc_memalign(alignment, size) : nullptr;
}

int posix_memalign(void **memory, size_t alignment, size_t size) noexcept {
  *memory = Grant() ? __libc_memalign(alignment, size) : nullptr;
  return *memory == nullptr ? ENOMEM : 0;
}

void free(void *memory) noexcept {
  if (memory != nullptr && testing_support::counting != nullptr) {
    ++testing_support::counting->freed;
  }
  __libc_free(memory);
}

}  // extern "C"
