#include "component.h"

#include <string>

#include "messages.h"

namespace mvk {
namespace {

constexpr std::size_t kBlock = 256;  // frames at the higher rate

}  // namespace

std::size_t block_frames_in(Conversion conversion) {
  return conversion.direction == ACLI_DIR_UP ? kBlock / conversion.factor : kBlock;
}

std::size_t block_frames_out(Conversion conversion) {
  return conversion.direction == ACLI_DIR_UP ? kBlock : kBlock / conversion.factor;
}

std::size_t latency(Conversion conversion) {
  if (conversion.direction == ACLI_DIR_DOWN) return 13;
  return conversion.factor == 2 ? 27 : 55;
}

Resampler::Resampler(const acli_component &component, Conversion conversion, int rate, int channels)
    : component_(component),
      conversion_(conversion),
      rate_(static_cast<uint32_t>(rate)),
      channels_(static_cast<uint32_t>(channels)) {
  const uint32_t direction = conversion.direction;
  acli_buffer config{};
  config.params = &direction;
  if (component_.create(nullptr, &config, &instance_) != ACLI_OK) {
    fail("the component can't make an instance; is there enough memory?");
  }
}

Resampler::~Resampler() { component_.destroy(instance_); }

void Resampler::process(const float *in, float *out) {
  // The component reads its input through a pointer that could write.
  process(ACLI_FORMAT_FLOAT, sizeof *in, const_cast<float *>(in), out);
}

void Resampler::process(const short *in, short *out) {
  process(ACLI_FORMAT_PCM16, sizeof *in, const_cast<short *>(in), out);
}

void Resampler::process(acli_format format, std::size_t bytes_per_sample, void *in, void *out) {
  const std::size_t frame_in = bytes_per_sample * channels_;
  const std::size_t frame_out = sizeof(float) * channels_;
  acli_buffer source{};
  source.size = static_cast<uint32_t>(block_frames_in(conversion_) * frame_in);
  source.data = in;
  source.params = &conversion_.factor;
  source.audio_format = format;
  source.rate = rate_;
  source.channels = channels_;
  source.bits_per_sample = static_cast<uint32_t>(8 * bytes_per_sample);
  acli_buffer result{};
  result.size = static_cast<uint32_t>(block_frames_out(conversion_) * frame_out);
  result.data = out;
  if (component_.process(instance_, &source, &result) != ACLI_OK) {
    fail("the component refused a block of " + std::to_string(channels_) + " channels");
  }
}

}  // namespace mvk
