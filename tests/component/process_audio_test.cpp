// What `process` does to audio and to the records.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "acli.h"
#include "component/engine_pair.h"
#include "component/host_block.h"
#include "component/log_capture.h"

namespace testing_support {
namespace {

class ProcessAudio : public testing::TestWithParam<EngineShape> {
 protected:
  uint32_t factor() const { return GetParam().factor; }
  bool up() const { return GetParam().up; }
  uint32_t direction() const { return up() ? ACLI_DIR_UP : ACLI_DIR_DOWN; }
};

INSTANTIATE_TEST_SUITE_P(Shapes, ProcessAudio, testing::ValuesIn(kShapes), ShapeSuffix);

TEST_P(ProcessAudio, EveryFormatAndChannelCountAsTheResamplerDoesIt) {
  for (const Format &format : kFormats) {
    for (uint32_t channels = 1; channels <= 35; channels += channels < 4 ? 1 : 5) {
      SCOPED_TRACE(Name(GetParam()) + ", format " + std::to_string(format.code) + ", " +
                   std::to_string(channels) + " channels");
      const Instance instance(direction());
      reference::Engine expected(factor(), channels, up());
      Random random(channels);
      for (int number = 0; number < 3; ++number) {
        HostBlock block(format, direction(), factor(), channels);
        block.Fill(random);
        ExpectProcessed(block, instance, expected);
      }
    }
  }
}

// The output's size and rate are all that changes in either record, and the input's samples stay.
TEST_P(ProcessAudio, WritesTheSizeAndTheRateAndNothingElse) {
  const Instance instance(direction());
  HostBlock block(kPcm32, direction(), factor(), 2);
  Random random(41);
  block.Fill(random);
  block.in_record.rate = 47;
  block.out_record.size = 0x7FFFFFFF;
  const auto in_record = BytesOf(block.in_record);
  const auto in_samples = block.in.bytes;
  acli_buffer wanted = block.out_record;
  wanted.size = up() ? block.in_record.size * factor() : block.in_record.size / factor();
  wanted.rate = up() ? 47 * factor() : 47 / factor();
  EXPECT_EQ(block.Process(instance), ACLI_OK);
  EXPECT_EQ(BytesOf(block.in_record), in_record);
  EXPECT_EQ(BytesOf(block.out_record), BytesOf(wanted));
  EXPECT_EQ(block.in.bytes, in_samples);
}

TEST_P(ProcessAudio, KeepsItsEngineAndItsRecordWhileNothingChanges) {
  const Instance instance(direction());
  HostBlock block(kPcm32, direction(), factor(), 3);
  ASSERT_EQ(block.Process(instance), ACLI_OK);
  EXPECT_NE(instance.Get<void *>(Instance::kResampler), nullptr);
  EXPECT_NE(instance.Get<void *>(Instance::kResamplerMemory), nullptr);
  EXPECT_EQ(instance.Get<uint8_t>(Instance::kReady), 1);
  EXPECT_EQ(instance.Get<uint64_t>(Instance::kInBlockFrames), up() ? 256 / factor() : 256);
  EXPECT_EQ(instance.Get<uint64_t>(Instance::kOutBlockFrames), up() ? 256 : 256 / factor());
  EXPECT_EQ(instance.Get<uint32_t>(Instance::kFactor), factor());
  EXPECT_EQ(instance.Get<uint32_t>(Instance::kDirection), direction());
  EXPECT_EQ(instance.Get<uint32_t>(Instance::kChannels), 3u);
  EXPECT_EQ(instance.Get<uint32_t>(Instance::kAudioFormat), kPcm32.code);
  for (uint32_t c = 0; c < 3; ++c) {
    EXPECT_EQ(instance.Get<void *>(Instance::kInChannelPointers + 8 * c), block.in.At(c, 0));
    EXPECT_EQ(instance.Get<void *>(Instance::kOutChannelPointers + 8 * c), block.out.At(c, 0));
  }
  const auto before = instance.Contents();
  EXPECT_EQ(block.Process(instance), ACLI_OK);
  EXPECT_EQ(instance.Contents(), before);
}

// However few bytes a host announces, a whole block is read and written; only the size tells less.
TEST_P(ProcessAudio, AShortBlockIsStillAWholeOne) {
  const Instance instance(direction());
  reference::Engine expected(factor(), 2, up());
  Random random(47);
  for (uint32_t size : {8u, 0u, 24u}) {
    HostBlock block(kPcm32, direction(), factor(), 2);
    block.Fill(random);
    block.in_record.size = size;
    ExpectProcessed(block, instance, expected);
    EXPECT_EQ(block.out_record.size, up() ? size * factor() : size / factor());
  }
}

TEST_P(ProcessAudio, KeepsItsHistoryOverAChangeOfFormat) {
  for (uint32_t channels : {1u, 2u}) {
    const Instance instance(direction());
    reference::Engine expected(factor(), channels, up());
    Random random(42);
    for (const Format &format : {kFloat, kPcm32, kPcm16, kFloat, kPcm16, kPcm32}) {
      SCOPED_TRACE("format " + std::to_string(format.code));
      HostBlock block(format, direction(), factor(), channels);
      block.Fill(random);
      ExpectProcessed(block, instance, expected);
      EXPECT_EQ(instance.Get<uint32_t>(Instance::kAudioFormat), format.code);
    }
  }
}

TEST_P(ProcessAudio, StartsFromSilenceWhenTheFactorOrTheChannelsChange) {
  const Instance instance(direction());
  Random random(43);
  const uint32_t other = factor() ^ 6;  // 2 and 4 change places
  const struct {
    uint32_t factor, channels;
  } steps[] = {{factor(), 2}, {factor(), 3}, {factor(), 2}, {other, 2}, {factor(), 2}};
  for (const auto &[step_factor, channels] : steps) {
    reference::Engine expected(step_factor, channels, up());
    for (int number = 0; number < 2; ++number) {
      SCOPED_TRACE("factor " + std::to_string(step_factor) + ", " + std::to_string(channels) +
                   " channels, block " + std::to_string(number));
      HostBlock block(kFloat, direction(), step_factor, channels);
      block.Fill(random);
      ExpectProcessed(block, instance, expected);
    }
  }
}

// The channels are refused once the old engine is gone, which costs the history; a factor is
// refused before that, and a block leaves the engine as it is.
TEST_P(ProcessAudio, RefusalsKeepTheHistoryUnlessTheEngineIsGone) {
  const Instance instance(direction());
  Random random(44);
  reference::Engine expected(factor(), 2, up());
  const auto process = [&] {
    HostBlock block(kFloat, direction(), factor(), 2);
    block.Fill(random);
    ExpectProcessed(block, instance, expected);
  };
  process();
  HostBlock refused(kFloat, direction(), factor(), 2);
  refused.out_record.size = 0;
  EXPECT_EQ(refused.Process(instance), ACLI_ERR_INVALID);
  refused.factor = 0;
  EXPECT_EQ(refused.Process(instance), ACLI_ERR_INVALID);
  process();

  refused.factor = factor();
  refused.in_record.channels = 36;
  EXPECT_EQ(refused.Process(instance), ACLI_ERR_INVALID);
  expected = reference::Engine(factor(), 2, up());
  process();
}

// Succeeds with meaningless samples: the engine filters what it converted last, and all channels
// are written over one another on the start of the output.
TEST_P(ProcessAudio, AnUnknownFormatIsLoggedAndNothingIsConverted) {
  for (uint32_t channels : {1u, 2u}) {
    const Instance instance(direction());
    reference::Engine expected(factor(), channels, up());
    Random random(45);
    for (const Format &format : {kUnknown, kFloat, kUnknown, kUnknown, kPcm32}) {
      HostBlock block(format, direction(), factor(), channels);
      // Bytes, since factor 1 copies a block of an unknown format too; none make a NaN.
      for (uint8_t &byte : block.in.bytes) byte = static_cast<uint8_t>(random.Below(0x40));
      const std::vector<LogEntry> messages =
          format.datatype != -1 ? std::vector<LogEntry>{}
                                : std::vector{kFormatMessage, kDatatypeMessage, kDatatypeMessage};
      EXPECT_EQ(LoggedBy([&] { ExpectProcessed(block, instance, expected); }), messages)
          << "format " << format.code;
      EXPECT_EQ(block.out_record.size,
                up() ? block.in_record.size * factor() : block.in_record.size / factor());
      EXPECT_EQ(block.out_record.rate, up() ? 48000 * factor() : 48000 / factor());
    }
  }
}

TEST(ProcessFormat, OnlyThreeCodesAreKnown) {
  for (uint32_t code : {0u, 3u, 18u, 1u, 2u, 4u, 7u, 17u, 19u, 0x80000000u, 0xFFFFFFFFu}) {
    const bool known = code == 0 || code == 3 || code == 18;
    const Instance instance(ACLI_DIR_UP);
    HostBlock block(kFloat, ACLI_DIR_UP, 2, 2);
    block.in_record.audio_format = code;
    const auto logged = LoggedBy([&] { EXPECT_EQ(block.Process(instance), ACLI_OK); });
    EXPECT_EQ(logged.size(), known ? 0u : 3u) << code;
    EXPECT_EQ(instance.Get<uint32_t>(Instance::kAudioFormat), code);
  }
}

TEST(ProcessFormat, AnotherDirectionLogsAnUnknownFormatToo) {
  const Instance instance(2);
  HostBlock block(kUnknown, 2, 2, 2);
  const auto logged = LoggedBy([&] { EXPECT_EQ(block.Process(instance), ACLI_ERR_INVALID); });
  EXPECT_EQ(logged, (std::vector{kFormatMessage, kDatatypeMessage, kDatatypeMessage}));
}

TEST(ProcessRate, IsScaledIn32Bits) {
  const struct {
    uint32_t direction, factor, in, out;
  } cases[] = {
      {0, 2, 48000, 96000},
      {0, 4, 44100, 176400},
      {0, 1, 7, 7},
      {0, 2, 0x80000001u, 2},
      {0, 4, 0xFFFFFFFFu, 0xFFFFFFFCu},
      {0, 3, 0, 0},
      {1, 4, 47, 11},
      {1, 2, 1, 0},
      {1, 1, 47, 47},
      {1, 2, 0xFFFFFFFFu, 0x7FFFFFFFu},
      {1, 3, 47, 15},
      {1, 300, 48000, 160},
  };
  for (const auto &[direction, factor, in, out] : cases) {
    const Instance instance(direction);
    HostBlock block(kFloat, direction, factor, 1);
    block.in_record.rate = in;
    EXPECT_EQ(block.Process(instance), ACLI_OK);
    EXPECT_EQ(block.out_record.rate, out) << "direction " << direction << ", factor " << factor;
  }
}

TEST(ProcessSize, DoublesAStereoBlockOf32Bits) {
  const Instance instance(ACLI_DIR_UP);
  HostBlock block(kPcm32, ACLI_DIR_UP, 2, 2);
  ASSERT_EQ(block.in_record.size, 1024u);
  EXPECT_EQ(block.Process(instance), ACLI_OK);
  EXPECT_EQ(block.out_record.size, 2048u);
  EXPECT_EQ(block.out_record.rate, 96000u);
}

TEST(ProcessSize, AFactorBeyondTheBlockLeavesNoFramesOnOneSide) {
  const Instance up(ACLI_DIR_UP);
  HostBlock none(kFloat, ACLI_DIR_UP, 300, 2);
  EXPECT_EQ(none.in_record.size, 0u);
  EXPECT_EQ(none.Process(up), ACLI_OK);
  EXPECT_EQ(none.out_record.size, 0u);
  none.in_record.size = 2 * 4;
  EXPECT_EQ(none.Process(up), ACLI_ERR_INVALID);

  const Instance down(ACLI_DIR_DOWN);
  HostBlock block(kFloat, ACLI_DIR_DOWN, 300, 2);
  block.out_record.size = 0x7FFF;
  EXPECT_EQ(block.Process(down), ACLI_OK);
  EXPECT_EQ(block.out_record.size, 2048u / 300);
}

TEST(ProcessInstances, AreIndependent) {
  const Instance up(ACLI_DIR_UP), down(ACLI_DIR_DOWN);
  reference::Engine expected_up(2, 2, true), expected_down(4, 3, false);
  Random random(46);
  for (int number = 0; number < 3; ++number) {
    HostBlock rising(kFloat, ACLI_DIR_UP, 2, 2);
    HostBlock falling(kPcm32, ACLI_DIR_DOWN, 4, 3);
    rising.Fill(random);
    falling.Fill(random);
    ExpectProcessed(rising, up, expected_up);
    ExpectProcessed(falling, down, expected_down);
  }
}

}  // namespace
}  // namespace testing_support
