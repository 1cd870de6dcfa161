// Counts what goes through the heap, and makes it run dry.
#ifndef MVK_TESTS_COMPONENT_ALLOCATION_COUNT_H_
#define MVK_TESTS_COMPONENT_ALLOCATION_COUNT_H_

namespace testing_support {

// Sanitizers bring an allocator of their own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kAllocationsAreCounted = false;
#else
inline constexpr bool kAllocationsAreCounted = true;
#endif

struct HeapUse {
  int allocated = 0;
  int freed = 0;

  bool operator==(const HeapUse &) const = default;
};

enum class Heap { kSupplies, kIsDry };

// Runs `action`, which must not fail a test or print, on a heap that supplies or that is dry.
HeapUse HeapUseOf(void (*action)(void *), void *context, Heap heap);

template <typename Action>
HeapUse HeapUseOf(Action action, Heap heap = Heap::kSupplies) {
  return HeapUseOf([](void *context) { (*static_cast<Action *>(context))(); }, &action, heap);
}

}  // namespace testing_support

#endif
