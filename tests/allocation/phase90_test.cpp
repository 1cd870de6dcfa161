// No call of the phase shifter goes through the heap.
#include <gtest/gtest.h>

#include <vector>

#include "allocation/allocation_count.h"
#include "services/phase90_pair.h"

namespace testing_support {
namespace {

TEST(Phase90Allocation, NoCallAllocates) {
  for (const int length : reference::kPhase90Lengths) {
    LibraryPhase90 shifter(length);
    std::vector<float> samples(static_cast<size_t>(length), 0.5f);
    const HeapUse use = HeapUseOf([&] {
      unsigned state = 0, work = 0, history = 0;
      getRequiredBufferSize_Phase90Hilbert(static_cast<unsigned>(length), &state, &work, &history);
      shifter.Init(length);
      process_Phase90Hilbert(shifter.handle(), samples.data());
      reset_Phase90Hilbert(shifter.handle());
    });
    EXPECT_EQ(use, HeapUse{}) << length;
  }
}

}  // namespace
}  // namespace testing_support
