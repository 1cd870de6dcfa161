// A host's calls of the component, with any figures in its records and memory of exactly the size
// that a host lends.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "acli.h"
#include "require.h"

namespace {

constexpr uint32_t kFrames = 256;  // of a block, at the higher rate

template <typename Number, size_t N>
Number LikelyOrAny(FuzzedDataProvider &data, const Number (&likely)[N]) {
  return data.ConsumeBool() ? data.PickValueInArray(likely) : data.ConsumeIntegral<Number>();
}

struct Memory {
  explicit Memory(size_t bytes) : size(bytes), data(new uint8_t[bytes]()) {}
  size_t size;
  std::unique_ptr<uint8_t[]> data;
};

// What a host has behind `in`: a whole block, and where it is copied four bytes a sample.
size_t InputBytes(uint32_t direction, uint32_t factor, uint32_t channels, uint32_t format) {
  const uint32_t frames = direction == ACLI_DIR_UP ? kFrames / factor : kFrames;
  const size_t width = format == ACLI_FORMAT_PCM16 && factor != 1 ? 2 : 4;
  return frames * channels * width;
}

void Process(acli_instance *instance, uint32_t direction, FuzzedDataProvider &data) {
  const uint32_t factor = LikelyOrAny(data, {0U, 1U, 2U, 3U, 4U, 256U, 257U});
  const uint32_t channels = LikelyOrAny(data, {0U, 1U, 2U, 6U, 35U, 36U});
  acli_buffer in, out;
  std::memset(&in, 0xA5, sizeof in);
  std::memset(&out, 0x5A, sizeof out);
  in.params = data.ConsumeIntegralInRange(0, 31) == 0 ? nullptr : &factor;
  in.audio_format =
      LikelyOrAny<uint32_t>(data, {ACLI_FORMAT_PCM16, ACLI_FORMAT_PCM32, ACLI_FORMAT_FLOAT, 1U});
  in.channels = channels;
  in.rate = LikelyOrAny(data, {0U, 48000U, std::numeric_limits<uint32_t>::max()});
  in.bits_per_sample = LikelyOrAny(data, {0U, 7U, 16U, 32U});

  // Refused before memory is looked at, or served from whole blocks.
  const bool served = factor != 0 && channels >= 1 && channels <= 35;
  Memory source(served ? InputBytes(direction, factor, channels, in.audio_format) : 0);
  Memory result(served ? size_t{kFrames} * channels * 4 : 0);
  const std::vector<uint8_t> samples = data.ConsumeBytes<uint8_t>(source.size);
  if (!samples.empty()) std::memcpy(source.data.get(), samples.data(), samples.size());

  in.size =
      data.ConsumeBool() ? static_cast<uint32_t>(source.size) : data.ConsumeIntegral<uint32_t>();
  in.data = source.data.get();
  out.size =
      data.ConsumeBool() ? static_cast<uint32_t>(result.size) : data.ConsumeIntegral<uint32_t>();
  out.data = result.data.get();

  const acli_buffer before = out;
  const int32_t status = ACLI.process(instance, &in, &out);
  const bool up = direction == ACLI_DIR_UP;
  if (status == ACLI_OK) {
    Require(served && in.params != nullptr && direction <= ACLI_DIR_DOWN,
            "refuses what it can't serve");
    const uint64_t frame_bytes = uint64_t{in.bits_per_sample / 8} * channels;
    Require(frame_bytes == 0 || in.size / frame_bytes <= (up ? kFrames / factor : kFrames),
            "takes no more than a block");
    Require(out.size == (up ? in.size * factor : in.size / factor), "tells the bytes it produced");
    Require(out.rate == (up ? in.rate * factor : in.rate / factor), "scales the rate");
  } else {
    Require(status == ACLI_ERR_INVALID, "refuses as invalid");
    Require(direction > ACLI_DIR_DOWN || std::memcmp(&before, &out, sizeof out) == 0,
            "leaves a refused output as it was");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  const uint32_t direction = LikelyOrAny<uint32_t>(data, {ACLI_DIR_UP, ACLI_DIR_DOWN});
  acli_buffer config{};
  config.params = &direction;
  acli_instance *instance = nullptr;
  Require(ACLI.create(nullptr, &config, &instance) == ACLI_OK, "makes an instance");
  while (data.remaining_bytes() > 0) Process(instance, direction, data);
  Require(ACLI.destroy(instance) == ACLI_OK, "frees an instance");
  return 0;
}
