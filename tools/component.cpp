#include "component.h"

#include <dlfcn.h>

#include "messages.h"

namespace mvk {
namespace {

constexpr uint32_t kTag = 0x41434C54;  // "TLCA" in memory
constexpr uint32_t kVersion = 0x00000100;
constexpr std::size_t kBlock = 256;  // frames at the higher rate

}  // namespace

Library::Library(const std::string &path)
    : name_(path.empty() ? "libmavokresampler.so" : path),
      // A name without a folder is looked for along the program's run path.
      handle_(dlopen(name_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    fail("can't load the library: " + std::string(dlerror()) +
         "; name its file with --library PATH");
  }
}

void *Library::find_symbol(const char *name) const {
  void *address = dlsym(handle_, name);
  if (address == nullptr) {
    fail(name_ + " doesn't export " + name + "; name the right library with --library PATH");
  }
  return address;
}

const acli_component &Library::component() const {
  const acli_component &record = *find<const acli_component>("ACLI");
  if (record.tag != kTag || record.version != kVersion) {
    fail(name_ + " isn't a component of version 1.0; name the right library with --library PATH");
  }
  if (record.create == nullptr || record.process == nullptr || record.destroy == nullptr ||
      record.get_identity == nullptr || record.release_identity == nullptr) {
    fail(name_ + " lacks an operation; name the right library with --library PATH");
  }
  return record;
}

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
