// Other resamplers, as far as they are installed, behind one shape:
//
//     T(rate_change, channels)
//     push(in, frames, out, room)   takes all of the interleaved frames in and
//                                   returns the frames given out
//
// None runs threads of its own. Whatever isn't taken in at once is an error.
#pragma once

#include <cstddef>
#include <stdexcept>

#include "bench/rates.h"

namespace bench {

// Any rates with the right ratio.
inline constexpr unsigned low_rate = 48000;
inline unsigned in_rate(rate_change c) { return c.up ? low_rate : low_rate * c.factor; }
inline unsigned out_rate(rate_change c) { return c.up ? low_rate * c.factor : low_rate; }

inline void expect(bool condition, const char *fault) {
  if (!condition) throw std::runtime_error(fault);
}

}  // namespace bench

#ifdef MVK_BENCH_SOXR
#include <soxr.h>

namespace bench {

template <unsigned long recipe>
class soxr_stream {
 public:
  soxr_stream(rate_change change, unsigned channels) {
    const soxr_quality_spec_t quality = soxr_quality_spec(recipe, 0);
    soxr_ = soxr_create(in_rate(change), out_rate(change), channels, nullptr, nullptr, &quality,
                        nullptr);
    expect(soxr_, "soxr_create failed");
  }
  soxr_stream(const soxr_stream &) = delete;
  ~soxr_stream() { soxr_delete(soxr_); }

  std::size_t push(const float *in, std::size_t frames, float *out, std::size_t room) {
    std::size_t taken = 0, given = 0;
    expect(!soxr_process(soxr_, in, frames, &taken, out, room, &given) && taken == frames,
           "soxr_process failed");
    return given;
  }

 private:
  soxr_t soxr_;
};

}  // namespace bench
#endif

#ifdef MVK_BENCH_SPEEXDSP
#include <speex/speex_resampler.h>

namespace bench {

class speex_stream {
 public:
  speex_stream(rate_change change, unsigned channels)
      : speex_(speex_resampler_init(channels, in_rate(change), out_rate(change), 3, nullptr)) {
    expect(speex_, "speex_resampler_init failed");
  }
  speex_stream(const speex_stream &) = delete;
  ~speex_stream() { speex_resampler_destroy(speex_); }

  std::size_t push(const float *in, std::size_t frames, float *out, std::size_t room) {
    spx_uint32_t taken = static_cast<spx_uint32_t>(frames), given = static_cast<spx_uint32_t>(room);
    expect(speex_resampler_process_interleaved_float(speex_, in, &taken, out, &given) ==
                   RESAMPLER_ERR_SUCCESS &&
               taken == frames,
           "speex_resampler_process_interleaved_float failed");
    return given;
  }

 private:
  SpeexResamplerState *speex_;
};

}  // namespace bench
#endif

#ifdef MVK_BENCH_ZITA
#include <zita-resampler/resampler.h>

namespace bench {

class zita_stream {
 public:
  zita_stream(rate_change change, unsigned channels) {
    expect(zita_.setup(in_rate(change), out_rate(change), channels, 16) == 0,
           "Resampler::setup failed");
  }

  std::size_t push(const float *in, std::size_t frames, float *out, std::size_t room) {
    zita_.inp_count = static_cast<unsigned>(frames);
    zita_.inp_data = const_cast<float *>(in);
    zita_.out_count = static_cast<unsigned>(room);
    zita_.out_data = out;
    expect(zita_.process() == 0 && zita_.inp_count == 0, "Resampler::process failed");
    return room - zita_.out_count;
  }

 private:
  Resampler zita_;
};

}  // namespace bench
#endif
