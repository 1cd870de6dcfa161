/*
 * The loadable component: a resampler by 2 and 4 for an audio host.
 *
 * A host loads the library, finds ACLI, and works through its slots:
 *
 *     acli_instance *r;
 *     uint32_t direction = ACLI_DIR_UP, factor = 2;
 *     acli_buffer config = {.params = &direction};
 *     ACLI.create(host, &config, &r);
 *     for each block:
 *         acli_buffer in = {.size = bytes, .data = samples, .params = &factor,
 *                           .audio_format = ACLI_FORMAT_FLOAT, .rate = 48000,
 *                           .channels = 2, .bits_per_sample = 32};
 *         acli_buffer out = {.size = capacity, .data = result};
 *         ACLI.process(r, &in, &out);
 *     ACLI.destroy(r);
 *
 * An instance belongs to one thread at a time; instances share nothing.
 */
#ifndef ACLI_H
#define ACLI_H

#include <stdint.h>

#include "mvk_export.h"
#include "orvane_resampler.h"

MVK_BEGIN_DECLS

/* What every slot but get_identity returns. */
typedef enum acli_status {
  ACLI_OK = 0,
  ACLI_ERR_INVALID = -1,    /* null handle or argument, out of memory, a buffer
                               that doesn't fit, a stream that can't be laid out */
  ACLI_ERR_UNSUPPORTED = -2 /* a request that the component doesn't serve */
} acli_status;

/* The rate goes up or down, as given to create. */
typedef enum acli_direction { ACLI_DIR_UP = 0, ACLI_DIR_DOWN = 1 } acli_direction;

/* Sample formats of a host's buffer. 16-bit audio is right for one channel
 * only; see orvane_resampler_upsample. */
typedef enum acli_format {
  ACLI_FORMAT_PCM16 = 0, /* DT_INT16 */
  ACLI_FORMAT_PCM32 = 3, /* DT_INT32 */
  ACLI_FORMAT_FLOAT = 18 /* DT_FLOAT32 */
} acli_format;

/* A host's buffer: 88 bytes or more, of which only the named fields are read
 * or written. */
typedef struct acli_buffer {
  uint32_t host_0;
  uint32_t size; /* bytes: of audio in `data` (input); the room in `data`, on
                    return the bytes produced (output) */
  void *data;    /* interleaved samples */
  uint64_t host_16[2];
  const uint32_t *params; /* the factor (process, input) or the direction
                             (create); not read in an output */
  uint32_t audio_format;  /* acli_format; input only */
  uint32_t rate;          /* any figure (input); that figure scaled by the factor
                             (output, on return) */
  uint32_t channels;      /* 1 to 35; input only */
  uint32_t host_52[8];
  uint32_t bits_per_sample; /* width of a sample; input only */
} acli_buffer;

/* One resampler of a host. */
typedef struct acli_instance acli_instance;

/* The component's record: 120 bytes, laid out as hosts expect it. */
typedef struct acli_component {
  uint32_t tag;            /* "TLCA" in memory: 0x41434C54 */
  uint32_t version;        /* 0x00000100 */
  const char *name;        /* "AudioResampler" */
  const char *implementor; /* "NXR" */

  /* Returns a fresh copy of session_identity and stores it through out if what
   * is 1; null for any other what. */
  char *(*get_identity)(int what, char **out);

  /* Frees what get_identity gave, or nothing if p is null. Always ACLI_OK. */
  int32_t (*release_identity)(void *p);

  /* Answers property 3, selector 0, with *out_a = 4 and *out_b = 0.
   * ACLI_ERR_INVALID for a null handle, ACLI_ERR_UNSUPPORTED for another id,
   * ACLI_ERR_INVALID for a null selector, ACLI_ERR_UNSUPPORTED for another
   * selector, ACLI_ERR_INVALID for a null result pointer, looked at in this
   * order. */
  int32_t (*query_property)(acli_instance *handle, unsigned id, void *a, void *b,
                            unsigned *selector, void *c, unsigned *out_a, unsigned *out_b);

  /* Refused: ACLI_ERR_UNSUPPORTED, or ACLI_ERR_INVALID for a null handle. */
  int32_t (*unsupported_a)(acli_instance *handle);

  /* Makes an instance, with the direction that config->params points to, or
   * upwards if config is null. `host` is ignored. ACLI_ERR_INVALID, with *out
   * untouched, if out is null or there is no memory. */
  int32_t (*create)(void *host, const acli_buffer *config, acli_instance **out);

  int32_t (*unsupported_b)(acli_instance *handle);

  /* Resamples one block.
   *
   * `in` holds one whole block of interleaved audio and points to the factor:
   * 256 / factor frames going up, 256 going down. More is refused. Fewer is
   * not: the engine reads a whole block, so a host pads its last one. `out`
   * has room for 256 frames going up and 256 / factor going down, of 4 bytes a
   * sample whatever the format.
   *
   * The filter's history goes on from call to call, until the factor or the
   * number of channels changes: then the engine is built anew from silence.
   * Only that touches the heap.
   *
   * On success out->size holds the bytes produced, in->size times or divided
   * by the factor, and out->rate is in->rate times or divided by the factor.
   * ACLI_ERR_INVALID, with `out` untouched, for a null pointer, a factor of 0,
   * channels outside 1 to 35, too many frames or too little room. An unknown
   * audio_format is logged and gives ACLI_OK with meaningless samples, and a
   * direction other than up and down ACLI_ERR_INVALID with out->size set. */
  int32_t (*process)(acli_instance *handle, const acli_buffer *in, acli_buffer *out);

  /* ACLI_OK, or ACLI_ERR_INVALID for a null handle. */
  int32_t (*check_instance)(acli_instance *handle);

  int32_t (*unsupported_c)(acli_instance *handle);

  /* Frees an instance. ACLI_ERR_INVALID for a null handle. */
  int32_t (*destroy)(acli_instance *handle);

  uint8_t reserved[16]; /* zero */
} acli_component;

/* What a host binds to. */
MVK_API extern const acli_component ACLI;

/* The component's short name, "Resampler". */
MVK_API extern char session_identity[10];

/* Fills desc->channel_ptrs for a flat buffer:
 *
 *     channel_ptrs[c] = buffer + c * step
 *
 * where step is the width of desc->datatype if the channels are interleaved
 * (nchannels <= stride, whose low 32 bits count), and byte_count / nchannels if
 * they lie one after another (nchannels > stride). Returns 0, or -1 if
 * byte_count doesn't divide among channels that lie one after another. An
 * unknown datatype of interleaved channels is logged and gives a step of 0. */
MVK_API int32_t acli_set_channel_ptrs(void *buffer, orvane_stream_desc *desc, uint64_t byte_count);

MVK_END_DECLS

#endif
