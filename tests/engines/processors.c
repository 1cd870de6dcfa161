/* The component, the resampler and its conversions, the limiter, the phase shifter, the services.
 */
#include <acli.h>
#include <mvk_services.h>
#include <orvane_ht_ztlim.h>
#include <phase90_hilbert.h>
#include <stdlib.h>

#include "engines.h"

enum { kBlock = 256, kBlocks = 6, kChannels = 2 };

/* ---- Component ---- */

static uint64_t run_component(void) {
  static const uint32_t formats[] = {ACLI_FORMAT_PCM16, ACLI_FORMAT_PCM32, ACLI_FORMAT_FLOAT};
  uint64_t digest = kEmptyDigest;
  char *identity = NULL;
  ACLI.get_identity(1, &identity);
  digest = digest_of(digest, identity, sizeof session_identity);
  ACLI.release_identity(identity);
  for (uint32_t direction = ACLI_DIR_UP; direction <= ACLI_DIR_DOWN; ++direction) {
    noise_source noise = {1};
    const acli_buffer config = {.params = &direction};
    acli_instance *instance = NULL;
    if (ACLI.create(NULL, &config, &instance) != ACLI_OK) abort();
    for (int call = 0; call < 18; ++call) {
      const uint32_t factor = 1u << (call / 6), format = formats[call % 3];
      const uint32_t bits = format == ACLI_FORMAT_PCM16 ? 16 : 32;
      const uint32_t frames = direction == ACLI_DIR_UP ? kBlock / factor : kBlock;
      float samples[kBlock * kChannels], result[kBlock * kChannels];
      fill_with_noise(&noise, samples, kBlock * kChannels);
      const acli_buffer in = {.size = frames * kChannels * bits / 8,
                              .data = samples,
                              .params = &factor,
                              .audio_format = format,
                              .rate = 48000,
                              .channels = kChannels,
                              .bits_per_sample = bits};
      acli_buffer out = {.size = sizeof result, .data = result};
      if (ACLI.process(instance, &in, &out) != ACLI_OK) abort();
      /* 16-bit output is staged as floats and is right for one channel only. */
      if (bits == 32) digest = digest_of(digest, result, out.size);
    }
    ACLI.destroy(instance);
  }
  return digest;
}

/* ---- Resampler ---- */

static uint64_t run_resampler(void) {
  uint64_t digest = kEmptyDigest;
  for (uint32_t factor = 1; factor <= 4; factor *= 2) {
    for (int up = 0; up < 2; ++up) {
      noise_source noise = {factor};
      void *arena = fresh(orvane_resampler_query(factor, kChannels, up));
      orvane_resampler *resampler = orvane_resampler_init(factor, kChannels, up, arena);
      uint64_t in_frames, out_frames;
      orvane_resampler_get_processing_block_size(resampler, &in_frames, &out_frames);
      for (int block = 0; block < kBlocks; ++block) {
        float samples[kChannels][kBlock];
        /* Copying takes both channels at once. */
        float result[kChannels][kBlock];
        void *from[] = {samples[0], samples[1]}, *to[] = {result[0], result[1]};
        fill_with_noise(&noise, samples[0], kChannels * kBlock);
        orvane_stream_desc in = {kChannels, 1, DT_LONG, from}, out = {kChannels, 1, DT_LONG, to};
        if (up) {
          orvane_resampler_upsample(&out, &in, resampler);
        } else {
          orvane_resampler_downsample(&out, &in, resampler);
        }
        for (int c = 0; c < kChannels; ++c) {
          digest = digest_of(digest, result[c], (size_t)out_frames * sizeof(float));
        }
      }
      free(arena);
    }
  }
  return digest;
}

static uint64_t run_conversions(void) {
  static const struct {
    int32_t datatype;
    size_t width;
  } types[] = {{DT_LONG, 4},        {DT_INT16, 2},   {DT_INT32, 4},
               {DT_INT32_IN_64, 8}, {DT_FLOAT32, 4}, {DT_FLOAT64, 8}};
  uint64_t digest = kEmptyDigest;
  noise_source noise = {1};
  for (size_t type = 0; type < sizeof types / sizeof *types; ++type) {
    float samples[kBlock], back[kBlock];
    double stored[kBlock]; /* of the greatest width */
    void *from[] = {samples}, *between[] = {stored}, *to[] = {back};
    fill_with_noise(&noise, samples, kBlock);
    const orvane_stream_desc in = {1, 1, DT_LONG, from};
    const orvane_stream_desc middle = {1, 1, types[type].datatype, between};
    const orvane_stream_desc out = {1, 1, DT_LONG, to};
    orvane_stream_convert(&in, &middle, 0, 0, kBlock, 0);
    orvane_stream_convert(&middle, &out, 0, 0, kBlock, 0);
    digest = digest_of(digest, stored, kBlock * types[type].width);
    digest = digest_of(digest, back, sizeof back);
  }
  return digest;
}

/* ---- Limiter ---- */

static uint64_t run_limiter(void) {
  static const unsigned lengths[] = {32, 40, 64, 128, 256};
  uint64_t digest = kEmptyDigest;
  for (size_t i = 0; i < sizeof lengths / sizeof *lengths; ++i) {
    const unsigned sub_block = lengths[i], frames = 2 * lengths[i];
    noise_source noise = {sub_block};
    void *memory = fresh(orvane_ht_ztlim_query_memory(kChannels, NULL, NULL, sub_block));
    orvane_ht_ztlim_state *limiter = orvane_ht_ztlim_init(kChannels, sub_block, memory, NULL);
    orvane_ht_ztlim_set_num_channels(limiter, kChannels);
    orvane_ht_ztlim_set_sample_rate(limiter, 96000);
    orvane_ht_ztlim_set_block_size(limiter, frames);
    orvane_ht_ztlim_set_peak(limiter, 0.25f);
    orvane_ht_ztlim_set_enable(limiter, 1);
    for (int block = 0; block < kBlocks; ++block) {
      float samples[kChannels][2 * 256], result[kChannels][2 * 256];
      float *in[] = {samples[0], samples[1]}, *out[] = {result[0], result[1]};
      fill_with_noise(&noise, samples[0], kChannels * 2 * 256);
      orvane_ht_ztlim_set_hard_clip(limiter, block == kBlocks - 1);
      if (block % 2 == 0) {
        orvane_ht_ztlim_process(limiter, out, in, 1, 1);
      } else {
        orvane_ht_ztlim_process_indirect(limiter, out, in, in, 1, 1, kChannels);
      }
      for (int c = 0; c < kChannels; ++c) {
        digest = digest_of(digest, result[c], frames * sizeof(float));
      }
      const float gain = orvane_ht_ztlim_get_limiter_gain(limiter);
      digest = digest_of(digest, &gain, sizeof gain);
    }
    free(memory);
  }
  return digest;
}

/* ---- Phase shifter and services ---- */

static uint64_t run_phase_shifter(void) {
  uint64_t digest = kEmptyDigest;
  for (unsigned length = 512; length <= 2048; length *= 2) {
    noise_source noise = {length};
    unsigned state_bytes, work_bytes, history_bytes;
    getRequiredBufferSize_Phase90Hilbert(length, &state_bytes, &work_bytes, &history_bytes);
    void *state = fresh(state_bytes), *work = fresh(work_bytes), *history = fresh(history_bytes);
    Phase90Hilbert_state *shifter = NULL;
    init_Phase90Hilbert(&shifter, length, state, work, history);
    for (int block = 0; block < kBlocks; ++block) {
      float samples[2048];
      fill_with_noise(&noise, samples, length);
      process_Phase90Hilbert(shifter, samples);
      digest = digest_of(digest, samples, length * sizeof(float));
    }
    free(state), free(work), free(history);
  }
  return digest;
}

static uint64_t run_services(void) {
  uint64_t digest = kEmptyDigest;
  for (uint32_t v = 0; v < 32768; v += 127) {
    const float power = MVK_Lpow05I16((uint16_t)v);
    const double quotient = MVK_time_div(MVK_time_add(v, 5), 7);
    digest = digest_of(digest_of(digest, &power, sizeof power), &quotient, sizeof quotient);
  }
  return digest;
}

const engine processors[] = {{"component", run_component},
                             {"resampler", run_resampler},
                             {"conversions", run_conversions},
                             {"limiter", run_limiter},
                             {"phase shifter", run_phase_shifter},
                             {"services", run_services},
                             {NULL, NULL}};
