// The component's record and its operations: an adapter between a host's
// buffers and the resampler.
#include "acli.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/log.h"

struct acli_instance {
  orvane_resampler *resampler;
  unsigned char *resampler_mem;
  std::uint8_t ready;   // the resampler suits factor and channels
  std::uint8_t bypass;  // copy instead of resampling; no operation sets it
  void *in_channel_ptrs[256];
  void *out_channel_ptrs[256];
  std::uint64_t in_block_frames;
  std::uint64_t out_block_frames;
  std::uint32_t factor;
  std::uint32_t direction;
  std::uint32_t channels;
  std::uint32_t audio_format;
};

namespace {

static_assert(offsetof(acli_buffer, size) == 4);
static_assert(offsetof(acli_buffer, data) == 8);
static_assert(offsetof(acli_buffer, params) == 32);
static_assert(offsetof(acli_buffer, audio_format) == 40);
static_assert(offsetof(acli_buffer, rate) == 44);
static_assert(offsetof(acli_buffer, channels) == 48);
static_assert(offsetof(acli_buffer, bits_per_sample) == 84);
static_assert(sizeof(acli_buffer) == 88);

static_assert(offsetof(acli_component, tag) == 0);
static_assert(offsetof(acli_component, version) == 4);
static_assert(offsetof(acli_component, name) == 8);
static_assert(offsetof(acli_component, implementor) == 16);
static_assert(offsetof(acli_component, get_identity) == 24);
static_assert(offsetof(acli_component, release_identity) == 32);
static_assert(offsetof(acli_component, query_property) == 40);
static_assert(offsetof(acli_component, unsupported_a) == 48);
static_assert(offsetof(acli_component, create) == 56);
static_assert(offsetof(acli_component, unsupported_b) == 64);
static_assert(offsetof(acli_component, process) == 72);
static_assert(offsetof(acli_component, check_instance) == 80);
static_assert(offsetof(acli_component, unsupported_c) == 88);
static_assert(offsetof(acli_component, destroy) == 96);
static_assert(offsetof(acli_component, reserved) == 104);
static_assert(sizeof(acli_component) == 120);

char *get_identity(int what, char **out) {
  char *copy = what == 1 ? strdup(session_identity) : nullptr;
  if (out) *out = copy;
  return copy;
}

std::int32_t release_identity(void *p) {
  std::free(p);
  return ACLI_OK;
}

std::int32_t check_instance(acli_instance *handle) { return handle ? ACLI_OK : ACLI_ERR_INVALID; }

std::int32_t unsupported(acli_instance *handle) {
  return handle ? ACLI_ERR_UNSUPPORTED : ACLI_ERR_INVALID;
}

std::int32_t query_property(acli_instance *handle, unsigned id, void * /*a*/, void * /*b*/,
                            unsigned *selector, void * /*c*/, unsigned *out_a, unsigned *out_b) {
  if (!handle) return ACLI_ERR_INVALID;
  if (id != 3) return ACLI_ERR_UNSUPPORTED;
  if (!selector) return ACLI_ERR_INVALID;
  if (*selector != 0) return ACLI_ERR_UNSUPPORTED;
  if (!out_a || !out_b) return ACLI_ERR_INVALID;
  *out_a = 4;
  *out_b = 0;
  return ACLI_OK;
}

std::int32_t create(void * /*host*/, const acli_buffer *config, acli_instance **out) {
  if (!out) return ACLI_ERR_INVALID;
  auto *instance = static_cast<acli_instance *>(std::calloc(1, sizeof(acli_instance)));
  if (!instance) return ACLI_ERR_INVALID;
  if (config) instance->direction = *config->params;
  *out = instance;
  return ACLI_OK;
}

void release_engine(acli_instance &instance) {
  std::free(instance.resampler_mem);
  instance.resampler_mem = nullptr;
  instance.resampler = nullptr;
}

std::int32_t destroy(acli_instance *instance) {
  if (!instance) return ACLI_ERR_INVALID;
  release_engine(*instance);
  std::free(instance);
  return ACLI_OK;
}

// Replaces the engine by one for the instance's factor and channels, with
// silent history.
std::int32_t rebuild_engine(acli_instance &instance) {
  release_engine(instance);
  const int upsampling = instance.direction == ACLI_DIR_UP;
  const std::uint64_t size =
      orvane_resampler_query(instance.factor, static_cast<int>(instance.channels), upsampling);
  if (size == 0) return ACLI_ERR_INVALID;
  instance.resampler_mem = static_cast<unsigned char *>(std::calloc(1, size));
  if (!instance.resampler_mem) return ACLI_ERR_INVALID;
  instance.resampler =
      orvane_resampler_init(instance.factor, instance.channels, upsampling, instance.resampler_mem);
  if (!instance.resampler) {
    release_engine(instance);
    return ACLI_ERR_INVALID;
  }
  orvane_resampler_get_processing_block_size(instance.resampler, &instance.in_block_frames,
                                             &instance.out_block_frames);
  return ACLI_OK;
}

// Makes the engine suit the stream. Only a change touches the heap.
std::int32_t prepare(acli_instance &instance, std::uint32_t factor, std::uint32_t channels) {
  const bool same = channels == instance.channels && factor == instance.factor;
  if (same && instance.ready) return ACLI_OK;
  if (!same) {
    instance.channels = channels;
    instance.factor = factor;
    instance.ready = 0;
  }
  if (!instance.bypass)
    if (const std::int32_t status = rebuild_engine(instance)) return status;
  instance.ready = 1;
  return ACLI_OK;
}

std::int32_t datatype_of(std::uint32_t audio_format) {
  switch (audio_format) {
    case ACLI_FORMAT_PCM16:
      return DT_INT16;
    case ACLI_FORMAT_PCM32:
      return DT_INT32;
    case ACLI_FORMAT_FLOAT:
      return DT_FLOAT32;
    default:
      mvk::log_error("ERROR: audio format not supported\n");
      return -1;
  }
}

std::int32_t resample(acli_instance &instance, const acli_buffer &in, const acli_buffer &out,
                      std::uint64_t out_bytes) {
  if (!instance.resampler) return ACLI_ERR_INVALID;
  const std::int32_t datatype = datatype_of(in.audio_format);
  orvane_stream_desc input{instance.channels, instance.channels, datatype,
                           instance.in_channel_ptrs};
  orvane_stream_desc output{instance.channels, instance.channels, datatype,
                            instance.out_channel_ptrs};
  if (acli_set_channel_ptrs(in.data, &input, in.size) ||
      acli_set_channel_ptrs(out.data, &output, out_bytes))
    return ACLI_ERR_INVALID;
  if (instance.direction == ACLI_DIR_DOWN)
    orvane_resampler_downsample(&output, &input, instance.resampler);
  else if (instance.direction == ACLI_DIR_UP)
    orvane_resampler_upsample(&output, &input, instance.resampler);
  return ACLI_OK;
}

std::int32_t process(acli_instance *instance, const acli_buffer *in, acli_buffer *out) {
  if (!instance || !in || !in->params || *in->params == 0) return ACLI_ERR_INVALID;
  const std::uint32_t factor = *in->params;
  if (const std::int32_t status = prepare(*instance, factor, in->channels)) return status;
  instance->audio_format = in->audio_format;

  const std::uint64_t frame_bytes = std::uint64_t{in->bits_per_sample >> 3} * in->channels;
  const std::uint64_t frames = frame_bytes ? in->size / frame_bytes : 0;
  if (frames > instance->in_block_frames) return ACLI_ERR_INVALID;

  const bool up = instance->direction == ACLI_DIR_UP;
  const std::uint64_t out_bytes = up ? std::uint64_t{factor} * in->size : in->size / factor;
  if (!out || out->size < out_bytes) return ACLI_ERR_INVALID;
  if (!in->data || !out->data) return ACLI_ERR_INVALID;

  if (instance->bypass)
    std::memcpy(out->data, in->data, in->size);
  else if (const std::int32_t status = resample(*instance, *in, *out, out_bytes))
    return status;

  out->size = static_cast<std::uint32_t>(out_bytes);
  switch (instance->direction) {
    case ACLI_DIR_UP:
      out->rate = in->rate * factor;
      return ACLI_OK;
    case ACLI_DIR_DOWN:
      out->rate = in->rate / factor;
      return ACLI_OK;
    default:
      return ACLI_ERR_INVALID;
  }
}

}  // namespace

const acli_component ACLI = {
    .tag = 0x41434C54,
    .version = 0x00000100,
    .name = "AudioResampler",
    .implementor = "NXR",
    .get_identity = get_identity,
    .release_identity = release_identity,
    .query_property = query_property,
    .unsupported_a = unsupported,
    .create = create,
    .unsupported_b = unsupported,
    .process = process,
    .check_instance = check_instance,
    .unsupported_c = unsupported,
    .destroy = destroy,
    .reserved = {},
};

char session_identity[10] = "Resampler";
