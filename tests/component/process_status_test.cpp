// When `process` refuses a block, in which order it looks, and what it leaves behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "acli.h"
#include "component/host_block.h"
#include "component/log_capture.h"

namespace testing_support {
namespace {

// A refusal leaves both records and the output's samples as they were, and logs nothing.
void ExpectRefused(HostBlock &block, acli_instance *handle) {
  const auto in_record = BytesOf(block.in_record);
  const auto out_record = BytesOf(block.out_record);
  const auto samples = block.out.bytes;
  int32_t status = 0;
  EXPECT_TRUE(LoggedBy([&] {
                status = ACLI.process(handle, &block.in_record, &block.out_record);
              }).empty());
  EXPECT_EQ(status, ACLI_ERR_INVALID);
  EXPECT_EQ(BytesOf(block.in_record), in_record);
  EXPECT_EQ(BytesOf(block.out_record), out_record);
  EXPECT_EQ(block.out.bytes, samples);
}

// Refuses a block once `spoil` has changed it, takes it unchanged, and refuses it again.
void ExpectRefusedWhen(uint32_t direction, const std::function<void(HostBlock &)> &spoil) {
  const Instance instance(direction);
  for (bool with_engine : {false, true}) {
    SCOPED_TRACE(with_engine ? "with an engine" : "without an engine");
    HostBlock spoilt(kPcm32, direction, 2, 2);
    spoil(spoilt);
    ExpectRefused(spoilt, instance.handle());
    HostBlock block(kPcm32, direction, 2, 2);
    EXPECT_EQ(block.Process(instance), ACLI_OK);
  }
}

TEST(ProcessStatus, NullArgumentsAreRefused) {
  HostBlock block(kFloat, ACLI_DIR_UP, 2, 1);
  ExpectRefused(block, nullptr);
  const Instance instance(ACLI_DIR_UP);
  const auto before = instance.Contents();
  EXPECT_EQ(ACLI.process(instance.handle(), nullptr, &block.out_record), ACLI_ERR_INVALID);
  EXPECT_EQ(ACLI.process(instance.handle(), &block.in_record, nullptr), ACLI_ERR_INVALID);
  EXPECT_EQ(ACLI.process(instance.handle(), nullptr, nullptr), ACLI_ERR_INVALID);
  EXPECT_EQ(ACLI.process(nullptr, nullptr, nullptr), ACLI_ERR_INVALID);
  block.in_record.params = nullptr;
  ExpectRefused(block, instance.handle());
  EXPECT_EQ(instance.Contents()[Instance::kDirection], before[Instance::kDirection]);
}

// The factor is looked at before anything else, even a channel count that can't be served.
TEST(ProcessStatus, AFactorOfZeroLeavesTheInstanceUnchanged) {
  const Instance instance(ACLI_DIR_UP);
  for (bool with_engine : {false, true}) {
    HostBlock block(kFloat, ACLI_DIR_UP, 2, 36);
    const auto before = instance.Contents();
    block.factor = 0;
    ExpectRefused(block, instance.handle());
    block.in_record.params = nullptr;
    ExpectRefused(block, instance.handle());
    EXPECT_EQ(instance.Contents(), before) << with_engine;
    HostBlock good(kFloat, ACLI_DIR_UP, 2, 3);
    EXPECT_EQ(good.Process(instance), ACLI_OK);
  }
}

TEST(ProcessStatus, ChannelsOutside1To35AreRefusedAndLeaveNoEngine) {
  const Instance instance(ACLI_DIR_DOWN);
  for (uint32_t channels : {36u, 0u, 256u, 0x80000001u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(channels);
    HostBlock good(kPcm32, ACLI_DIR_DOWN, 2, 35);
    EXPECT_EQ(good.Process(instance), ACLI_OK);
    EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 1);

    HostBlock block(kFloat, ACLI_DIR_DOWN, 4, 1);
    block.in_record.channels = channels;
    for (int attempt = 0; attempt < 2; ++attempt) {
      ExpectRefused(block, instance.handle());
      EXPECT_EQ(instance.Get<void *>(Instance::kResampler), nullptr);
      EXPECT_EQ(instance.Get<void *>(Instance::kResamplerMemory), nullptr);
      EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 0);
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kFactor), 4u);
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kChannels), channels);
      // The format is stored only once there is an engine.
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kAudioFormat), kPcm32.code);
    }
  }
  HostBlock good(kPcm32, ACLI_DIR_DOWN, 2, 35);
  EXPECT_EQ(good.Process(instance), ACLI_OK);
}

TEST(ProcessStatus, MoreFramesThanABlockAreRefused) {
  const struct {
    uint32_t direction, factor, frames;
  } cases[] = {{1, 1, 256}, {1, 2, 256}, {1, 4, 256}, {0, 1, 256}, {0, 2, 128},
               {0, 4, 64},  {0, 3, 85},  {1, 3, 256}, {0, 5, 51}};
  for (const auto &[direction, factor, frames] : cases) {
    for (const Format &format : kFormats) {
      SCOPED_TRACE("direction " + std::to_string(direction) + ", factor " + std::to_string(factor) +
                   ", format " + std::to_string(format.code));
      const Instance instance(direction);
      const uint32_t frame_bytes = 3 * format.bits / 8;
      HostBlock block(format, direction, factor, 3);
      block.out_record.size = 0xFFFFFFFF;
      block.in_record.size = (frames + 1) * frame_bytes;
      ExpectRefused(block, instance.handle());
      // The engine stands all the same, and the format has been taken note of.
      EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 1);
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kAudioFormat), format.code);
      // A part of a frame doesn't count.
      for (uint32_t size :
           {(frames + 1) * frame_bytes - 1, frames * frame_bytes, frame_bytes, 0u}) {
        block.in_record.size = size;
        block.out_record.size = 0xFFFFFFFF;
        EXPECT_EQ(block.Process(instance), ACLI_OK) << size;
        EXPECT_EQ(block.out_record.size, direction == 0 ? size * factor : size / factor);
      }
    }
  }
}

TEST(ProcessStatus, FramesAreCountedByWholeBytesOfASample) {
  const Instance instance(ACLI_DIR_UP);
  const struct {
    uint32_t bits;
    int32_t status;
  } cases[] = {
      {32, 0},
      {39, 0},
      {31, -1},
      {24, -1},
      {8, -1},
      // No whole byte: no frames.
      {7, 0},
      {0, 0},
      {0xFFFFFFFF, 0},
  };
  for (const auto &[bits, status] : cases) {
    HostBlock block(kFloat, ACLI_DIR_UP, 2, 2);
    block.in_record.bits_per_sample = bits;
    EXPECT_EQ(block.Process(instance), status) << bits;
  }
}

// 16 channels of 2^28 + 1 bytes are 2^32 + 16 bytes a frame.
TEST(ProcessStatus, FramesAreCountedIn64Bits) {
  const Instance instance(ACLI_DIR_DOWN);
  HostBlock block(kFloat, ACLI_DIR_DOWN, 2, 16);
  block.in_record.bits_per_sample = ((1u << 28) + 1) << 3;
  EXPECT_EQ(block.Process(instance), ACLI_OK);
}

TEST(ProcessStatus, TheOutputNeedsRoom) {
  const struct {
    Format format;
    uint32_t direction, factor, size;
  } cases[] = {{kPcm32, 0, 2, 2048}, {kPcm16, 0, 2, 1024}, {kFloat, 0, 4, 2048},
               {kPcm32, 1, 2, 1024}, {kPcm16, 1, 4, 256},  {kFloat, 1, 1, 2048},
               {kFloat, 1, 3, 682},  {kFloat, 2, 4, 512}};
  for (const auto &[format, direction, factor, size] : cases) {
    SCOPED_TRACE("direction " + std::to_string(direction) + ", factor " + std::to_string(factor));
    const Instance instance(direction);
    HostBlock block(format, direction, factor, 2);
    block.out_record.size = size - 1;
    ExpectRefused(block, instance.handle());
    block.out_record.size = 0;
    ExpectRefused(block, instance.handle());
    block.out_record.size = size;
    EXPECT_EQ(block.Process(instance), direction < 2 ? ACLI_OK : ACLI_ERR_INVALID);
    EXPECT_EQ(block.out_record.size, size);
  }
}

// 2^31 bytes times 2 are 2^32, more than any output holds.
TEST(ProcessStatus, TheOutputIsSizedIn64Bits) {
  const Instance instance(ACLI_DIR_UP);
  HostBlock block(kFloat, ACLI_DIR_UP, 2, 2);
  block.in_record.size = 0x80000000u;
  block.in_record.bits_per_sample = 0;
  block.out_record.size = 0xFFFFFFFF;
  ExpectRefused(block, instance.handle());
}

TEST(ProcessStatus, NullSamplesAreRefused) {
  for (uint32_t direction : {ACLI_DIR_UP, ACLI_DIR_DOWN}) {
    ExpectRefusedWhen(direction, [](HostBlock &block) { block.in_record.data = nullptr; });
    ExpectRefusedWhen(direction, [](HostBlock &block) { block.out_record.data = nullptr; });
  }
}

// Refusals that come before the format is looked at don't log it; ExpectRefused sees to that.
TEST(ProcessStatus, TheFormatIsLookedAtLast) {
  for (const auto &spoil : std::vector<std::function<void(HostBlock &)>>{
           [](HostBlock &block) { block.factor = 0; },
           [](HostBlock &block) { block.in_record.channels = 36; },
           [](HostBlock &block) { block.in_record.size = 0x10000; },
           [](HostBlock &block) { block.out_record.size = 0; },
           [](HostBlock &block) { block.in_record.data = nullptr; },
           [](HostBlock &block) { block.out_record.data = nullptr; }}) {
    const Instance instance(ACLI_DIR_UP);
    HostBlock block(kFloat, ACLI_DIR_UP, 2, 2);
    block.in_record.audio_format = kUnknown.code;
    spoil(block);
    ExpectRefused(block, instance.handle());
  }
}

TEST(ProcessStatus, AReadyInstanceWithoutAnEngineIsRefused) {
  Instance instance(ACLI_DIR_UP);
  HostBlock block(kFloat, ACLI_DIR_UP, 2, 2);
  ASSERT_EQ(block.Process(instance), ACLI_OK);
  auto *engine = instance.Get<void *>(Instance::kResampler);
  instance.Set<void *>(Instance::kResampler, nullptr);
  block.in_record.audio_format = kUnknown.code;
  ExpectRefused(block, instance.handle());
  block.in_record.audio_format = kFloat.code;
  instance.Set(Instance::kResampler, engine);
  EXPECT_EQ(block.Process(instance), ACLI_OK);
}

// Any direction but up and down: sized like down, not filtered, and refused after all.
TEST(ProcessStatus, AnotherDirectionSetsTheSizeAndFails) {
  for (uint32_t direction : {2u, 0xFFFFFFFFu}) {
    const Instance instance(direction);
    for (uint32_t factor : {1u, 2u, 4u}) {
      HostBlock block(kFloat, direction, factor, 2);
      Random random(factor);
      block.Fill(random);
      const StreamMemory before = block.out;
      auto wanted = block.out_record;
      wanted.size = 256 * 2 * 4 / factor;
      block.out_record.size = 0x7FFF;
      EXPECT_EQ(block.Process(instance), ACLI_ERR_INVALID);
      EXPECT_EQ(BytesOf(block.out_record), BytesOf(wanted));
      EXPECT_TRUE(SameBytes(block.out, before));
      EXPECT_EQ(instance.Get<uint64_t>(Instance::kInBlockFrames), 256u);
      EXPECT_EQ(instance.Get<uint64_t>(Instance::kOutBlockFrames), 256u / factor);
    }
    // Down's limit of a block counts.
    HostBlock block(kFloat, direction, 2, 2);
    block.in_record.size = 257 * 2 * 4;
    ExpectRefused(block, instance.handle());
  }
}

// ---- Bypass, which only a hand on the record can set ----

TEST(ProcessBypass, CopiesTheInputWithoutAnEngine) {
  for (const auto &[direction, wanted_size, wanted_rate] :
       {std::tuple{0u, 2048u, 96000u}, {1u, 1024u, 24000u}}) {
    Instance instance(direction);
    instance.Set<uint8_t>(Instance::kBypass, 1);
    instance.Set<uint64_t>(Instance::kInBlockFrames, 256);
    HostBlock block(kUnknown, direction, 2, 2);
    Random random(direction);
    for (uint8_t &byte : block.in.bytes) byte = static_cast<uint8_t>(random.Bits());
    block.in_record.size = direction == 0 ? 1024 : 2048;
    block.out_record.size = 0x7FFF;
    StreamMemory wanted = block.out;
    std::copy_n(block.in.At(0, 0), block.in_record.size, wanted.At(0, 0));

    int32_t status = -7;
    EXPECT_TRUE(LoggedBy([&] { status = block.Process(instance); }).empty());
    EXPECT_EQ(status, ACLI_OK);
    EXPECT_EQ(block.out.bytes, wanted.bytes);
    EXPECT_EQ(block.out_record.size, wanted_size);
    EXPECT_EQ(block.out_record.rate, wanted_rate);
    EXPECT_EQ(instance.Get<void *>(Instance::kResampler), nullptr);
    EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 1);
    EXPECT_EQ(instance.Get<uint32_t>(Instance::kFactor), 2u);
    EXPECT_EQ(instance.Get<uint32_t>(Instance::kChannels), 2u);

    // The checks before the copy stand.
    block.out_record.size = wanted_size - 1;
    ExpectRefused(block, instance.handle());
    block.out_record.size = wanted_size;
    block.in_record.data = nullptr;
    ExpectRefused(block, instance.handle());
  }
}

TEST(ProcessBypass, IsNeverSetByAnOperation) {
  const Instance instance(ACLI_DIR_UP);
  EXPECT_EQ(instance.Get<uint8_t>(Instance::kBypass), 0);
  for (uint32_t factor : {1u, 2u, 3u}) {
    HostBlock block(kFloat, ACLI_DIR_UP, factor, 2);
    EXPECT_EQ(block.Process(instance), ACLI_OK);
    EXPECT_EQ(instance.Get<uint8_t>(Instance::kBypass), 0);
  }
}

}  // namespace
}  // namespace testing_support
