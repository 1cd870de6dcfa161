// What the component takes from the heap, and what it does when there is none.
#include <gtest/gtest.h>

#include <cstdint>

#include "acli.h"
#include "allocation/allocation_count.h"
#include "component/host_block.h"

namespace testing_support {
namespace {

TEST(ComponentAllocation, ComesWithAnInstanceAndWithEachOfItsEngines) {
  acli_instance *handle = nullptr;
  EXPECT_EQ(HeapUseOf([&] { ACLI.create(nullptr, nullptr, &handle); }), (HeapUse{1, 0}));
  HostBlock pcm16(kPcm16, ACLI_DIR_UP, 2, 2), pcm32(kPcm32, ACLI_DIR_UP, 2, 2),
      floats(kFloat, ACLI_DIR_UP, 2, 2), other_factor(kFloat, ACLI_DIR_UP, 4, 2),
      other_channels(kFloat, ACLI_DIR_UP, 4, 35);
  const auto use = [&](HostBlock &block) {
    int32_t status = -7;
    const HeapUse counted =
        HeapUseOf([&] { status = ACLI.process(handle, &block.in_record, &block.out_record); });
    EXPECT_EQ(status, ACLI_OK);
    return counted;
  };
  EXPECT_EQ(use(floats), (HeapUse{1, 0}));
  for (HostBlock *block : {&floats, &pcm32, &pcm16, &floats}) {
    EXPECT_EQ(use(*block), (HeapUse{0, 0}));
  }
  EXPECT_EQ(use(other_factor), (HeapUse{1, 1}));
  EXPECT_EQ(use(other_factor), (HeapUse{0, 0}));
  EXPECT_EQ(use(other_channels), (HeapUse{1, 1}));
  EXPECT_EQ(use(other_channels), (HeapUse{0, 0}));
  EXPECT_EQ(HeapUseOf([&] { ACLI.destroy(handle); }), (HeapUse{0, 2}));
}

TEST(ComponentAllocation, GoesBackWithTheInstance) {
  for (bool with_engine : {false, true}) {
    acli_instance *handle = NewInstance(with_engine);
    EXPECT_EQ(HeapUseOf([&] { ACLI.destroy(handle); }), (HeapUse{0, with_engine ? 2 : 1}));
  }
}

TEST(ComponentWithoutMemory, CreateLeavesTheHandleAlone) {
  char untouched = 0;
  auto *handle = reinterpret_cast<acli_instance *>(&untouched);
  int32_t status = 0;
  HeapUseOf([&] { status = ACLI.create(nullptr, nullptr, &handle); }, Heap::kIsDry);
  EXPECT_EQ(status, ACLI_ERR_INVALID);
  EXPECT_EQ(handle, reinterpret_cast<acli_instance *>(&untouched));
}

TEST(ComponentWithoutMemory, ProcessFailsAndTriesAgain) {
  const Instance instance(ACLI_DIR_UP);
  for (bool with_engine : {false, true}) {
    HostBlock block(kFloat, ACLI_DIR_UP, with_engine ? 4 : 2, 2);
    for (int attempt = 0; attempt < 2; ++attempt) {
      int32_t status = 0;
      const HeapUse use = HeapUseOf([&] { status = block.Process(instance); }, Heap::kIsDry);
      EXPECT_EQ(status, ACLI_ERR_INVALID);
      EXPECT_EQ(use, (HeapUse{0, with_engine && attempt == 0 ? 1 : 0}));
      EXPECT_EQ(instance.Get<void *>(Instance::kResampler), nullptr);
      EXPECT_EQ(instance.Get<void *>(Instance::kResamplerMemory), nullptr);
      EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 0);
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kFactor), block.factor);
    }
    EXPECT_EQ(block.Process(instance), ACLI_OK);
  }
}

}  // namespace
}  // namespace testing_support
