// Counts what goes through the heap, and makes it run dry.
#ifndef MVK_TESTS_ALLOCATION_ALLOCATION_COUNT_H_
#define MVK_TESTS_ALLOCATION_ALLOCATION_COUNT_H_

namespace testing_support {

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
