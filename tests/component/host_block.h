// An audio host's side of the component: instances and blocks of audio.
#ifndef MVK_TESTS_COMPONENT_HOST_BLOCK_H_
#define MVK_TESTS_COMPONENT_HOST_BLOCK_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "acli.h"
#include "component/random_samples.h"
#include "component/stream_memory.h"
#include "reference/resampler_reference.h"

namespace testing_support {

struct Format {
  uint32_t code;
  int32_t datatype;
  uint32_t bits;
};

inline constexpr Format kPcm16{ACLI_FORMAT_PCM16, DT_INT16, 16};
inline constexpr Format kPcm32{ACLI_FORMAT_PCM32, DT_INT32, 32};
inline constexpr Format kFloat{ACLI_FORMAT_FLOAT, DT_FLOAT32, 32};
inline constexpr Format kUnknown{1, -1, 32};
inline constexpr Format kFormats[] = {kPcm16, kPcm32, kFloat};

// An instance that ends with its scope.
class Instance {
 public:
  explicit Instance(uint32_t direction) {
    acli_buffer config;
    std::memset(&config, 0xA5, sizeof config);
    config.params = &direction;
    EXPECT_EQ(ACLI.create(nullptr, &config, &handle_), ACLI_OK);
  }
  ~Instance() { ACLI.destroy(handle_); }
  Instance(const Instance &) = delete;
  Instance &operator=(const Instance &) = delete;

  acli_instance *handle() const { return handle_; }

  // Its record: pointers and numbers in their natural places.
  static constexpr size_t kResampler = 0;
  static constexpr size_t kResamplerMemory = 8;
  static constexpr size_t kReady = 16;
  static constexpr size_t kBypass = 17;
  static constexpr size_t kInChannelPointers = 24;
  static constexpr size_t kOutChannelPointers = 2072;
  static constexpr size_t kInBlockFrames = 4120;
  static constexpr size_t kOutBlockFrames = 4128;
  static constexpr size_t kFactor = 4136;
  static constexpr size_t kDirection = 4140;
  static constexpr size_t kChannels = 4144;
  static constexpr size_t kAudioFormat = 4148;
  static constexpr size_t kSize = 4152;

  template <typename T>
  T Get(size_t offset) const {
    return reference::Load<T>(Bytes() + offset);
  }
  template <typename T>
  void Set(size_t offset, T value) {
    reference::Store(Bytes() + offset, value);
  }
  std::vector<uint8_t> Contents() const { return {Bytes(), Bytes() + kSize}; }

 private:
  uint8_t *Bytes() const { return reinterpret_cast<uint8_t *>(handle_); }

  acli_instance *handle_ = nullptr;
};

// One block of audio and the two records that present it. Fields that the host keeps for itself
// hold a pattern.
struct HostBlock {
  HostBlock(const Format &format, uint32_t direction, uint32_t rate_factor, uint32_t channels)
      : factor(rate_factor),
        in(format.datatype, channels, Layout::kInterleaved, size_t{256} * channels * 4),
        out(format.datatype, channels, Layout::kInterleaved, size_t{256} * channels * 4) {
    const bool up = direction == ACLI_DIR_UP;
    const uint32_t in_frames = up ? 256 / factor : 256;
    std::memset(&in_record, 0xA5, sizeof in_record);
    std::memset(&out_record, 0x5A, sizeof out_record);
    in_record.size = in_frames * channels * (format.bits / 8);
    in_record.audio_format = format.code;
    in_record.rate = 48000;
    in_record.channels = channels;
    in_record.bits_per_sample = format.bits;
    out_record.size = 256 * channels * 4;
    in_record.params = &factor;
    in_record.data = in.At(0, 0);
    out_record.data = out.At(0, 0);
  }

  HostBlock(const HostBlock &) = delete;
  HostBlock &operator=(const HostBlock &) = delete;

  void Fill(Random &random) {
    FillStream(in, 256, random, [&] { return random.Unit(); });
  }

  int32_t Process(const Instance &instance) {
    return ACLI.process(instance.handle(), &in_record, &out_record);
  }

  uint32_t factor;
  StreamMemory in;
  StreamMemory out;
  acli_buffer in_record;
  acli_buffer out_record;
};

inline std::vector<uint8_t> BytesOf(const acli_buffer &record) {
  std::vector<uint8_t> bytes(sizeof record);
  std::memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

// A new instance that goes up, which has made an engine for a block or hasn't.
inline acli_instance *NewInstance(bool with_engine) {
  acli_instance *handle = nullptr;
  EXPECT_EQ(ACLI.create(nullptr, nullptr, &handle), ACLI_OK);
  if (with_engine) {
    HostBlock block(kFloat, ACLI_DIR_UP, 2, 1);
    EXPECT_EQ(ACLI.process(handle, &block.in_record, &block.out_record), ACLI_OK);
  }
  return handle;
}

// Processes the block, expecting success and what the reference makes of it.
inline void ExpectProcessed(HostBlock &block, const Instance &instance,
                            reference::Engine &expected) {
  StreamMemory wanted = block.out;
  ASSERT_EQ(block.Process(instance), ACLI_OK);
  reference::Run(expected, wanted.Describe(), block.in.Describe());
  EXPECT_TRUE(SameBytes(block.out, wanted));
}

}  // namespace testing_support

#endif
