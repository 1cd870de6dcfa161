/* The resampling component, called as an audio host calls it. */
#ifndef MVK_TOOLS_COMPONENT_H
#define MVK_TOOLS_COMPONENT_H

#include <cstddef>
#include <cstdint>

#include "acli.h"

namespace mvk {

/* One change of rate. */
struct Conversion {
  acli_direction direction;
  uint32_t factor;  // 2 or 4
};

/* Frames of a whole block. */
std::size_t block_frames_in(Conversion conversion);
std::size_t block_frames_out(Conversion conversion);

/* Output frames by which the component delays the audio: where the filter's
 * centre lies. Going up by 4 that is one more than the library tells. */
std::size_t latency(Conversion conversion);

/* An instance of the component, fed with whole blocks of interleaved audio. */
class Resampler {
 public:
  Resampler(const acli_component &component, Conversion conversion, int rate, int channels);
  ~Resampler();
  Resampler(const Resampler &) = delete;
  Resampler &operator=(const Resampler &) = delete;

  /* `out` has room for a block of 4-byte samples whatever the type. */
  void process(const float *in, float *out);
  void process(const short *in, short *out);

 private:
  void process(acli_format format, std::size_t bytes_per_sample, void *in, void *out);

  const acli_component &component_;
  Conversion conversion_;
  uint32_t rate_;
  uint32_t channels_;
  acli_instance *instance_ = nullptr;
};

}  // namespace mvk

#endif
