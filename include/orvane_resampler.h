/*
 * Polyphase resampler by 2 and 4, and the streams it works on.
 *
 * The resampler raises or lowers the sample rate of up to 35 channels by an
 * integer factor with one fixed linear-phase low-pass filter for each factor,
 * evaluated in polyphase form (R. E. Crochiere and L. R. Rabiner, "Multirate
 * Digital Signal Processing", Prentice Hall 1983, chapter 3). A block always
 * has 256 frames on the side of the higher rate. All state lies in one block
 * of memory, the arena, that the caller provides.
 *
 * Calling order:
 *
 *     size = orvane_resampler_query(factor, channels, upsampling);
 *     r = orvane_resampler_init(factor, channels, upsampling, malloc(size));
 *     orvane_resampler_get_processing_block_size(r, &in_frames, &out_frames);
 *     for each block: orvane_resampler_upsample(&out, &in, r);
 *
 * There is nothing to close: the arena stays the caller's, who keeps the
 * pointer to be freed. To start again from silence, init the arena again.
 *
 * A handle serves one thread at a time; handles on separate arenas are
 * independent. Nothing here allocates, locks or fails during processing.
 */
#ifndef ORVANE_RESAMPLER_H
#define ORVANE_RESAMPLER_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* ---- Streams ---------------------------------------------------------- */

/* How a stream stores one sample. An integer sample is a fraction of full
 * scale: 2^15 for 16 bits, 2^31 for 32 bits. */
typedef enum orvane_datatype {
  DT_BYTE_A = 1,      /* 1 byte; can be laid out, not converted */
  DT_BYTE_B = 2,      /* 1 byte; can be laid out, not converted */
  DT_LONG = 3,        /* 4 bytes: float, the engine's own type */
  DT_INT16 = 4,       /* 2 bytes: signed integer */
  DT_INT32 = 5,       /* 4 bytes: signed integer */
  DT_INT32_IN_64 = 6, /* 8 bytes: signed 32-bit integer in the low half of a
                         little-endian 64-bit word */
  DT_FLOAT32 = 7,     /* 4 bytes: float held by the host. The bits are those of
                         DT_LONG, but the resampler stages it by conversion */
  DT_FLOAT64 = 8      /* 8 bytes: double */
} orvane_datatype;

/* One multichannel stream in memory. It owns nothing: the array of channel
 * pointers and the samples are the caller's. Sample i of channel c stands at
 * channel_ptrs[c] + i * stride * (bytes of datatype); no alignment is asked
 * of it. */
typedef struct orvane_stream_desc {
  uint32_t nchannels;  /* number of channels */
  uint64_t stride;     /* samples from one frame to the next: nchannels where
                          the channels are interleaved, 1 where they lie apart */
  int32_t datatype;    /* an orvane_datatype */
  void **channel_ptrs; /* frame 0 of each channel */
} orvane_stream_desc;

/* Moves `frames` frames of each of src->nchannels channels,
 *
 *     dst[c][dst_frame + i] = convert(src[c][src_frame + i]),
 *
 * channels and frames in ascending order. One end must be DT_LONG; any other
 * pair of datatypes leaves dst untouched. With x the float and k the integer:
 *
 *     DT_LONG to DT_LONG, DT_FLOAT32 and back   the 32 bits are copied
 *     DT_LONG to DT_INT16         k = clamp(round(x * 2^15), -2^15, 2^15 - 1)
 *     DT_LONG to DT_INT32         k = 2^31 - 1 where x >= 1,
 *                                 else round(max(x * 2^31, -2^31))
 *     DT_LONG to DT_INT32_IN_64   the same, its sign extended to 64 bits
 *     DT_LONG to DT_FLOAT64       exact
 *     DT_INT16 to DT_LONG         x = k * 2^-15, exact
 *     DT_INT32 to DT_LONG         x = float(k) * 2^-31, rounded to nearest
 *     DT_INT32_IN_64 to DT_LONG   the same; the upper half is ignored
 *     DT_FLOAT64 to DT_LONG       rounded to nearest
 *
 * round() goes by the current rounding mode, by default to nearest with ties
 * to even. A NaN becomes the integer 0.
 *
 * `mode` is accepted and has no effect. src and dst may share memory when a
 * walk forward never writes over what it has yet to read: the destination's
 * frames are no wider and no further apart than the source's. */
MVK_API void orvane_stream_convert(const orvane_stream_desc *src, const orvane_stream_desc *dst,
                                   unsigned src_frame, unsigned dst_frame, unsigned frames,
                                   int mode);

/* ---- Resampler -------------------------------------------------------- */

/* An engine in its arena. */
typedef struct orvane_resampler orvane_resampler;

/* Frames on the high-rate side of one block: 256. */
MVK_API extern const uint64_t RESAMP_PROCESSING_BLK_SIZE;

/* Bytes of arena for an engine: 20536 + 4 * channels * B, where B, the input
 * frames of a block, is 256 / factor going up (0 for a factor of 0) and 256
 * going down. It includes the slack for an arena at any address. 0 if channels
 * isn't within 1 to 35. */
MVK_API uint64_t orvane_resampler_query(unsigned factor, int channels, int upsampling);

/* Builds an engine with silent history in `mem`, which has at least the bytes
 * that orvane_resampler_query gave for the same values, at any address.
 * Returns the handle, or null if mem is null or channels isn't within 1 to 35.
 *
 *     upsampling != 0:  blocks of 256 / factor frames in, 256 out
 *     upsampling == 0:  blocks of 256 frames in, 256 / factor out
 *
 * Factors 2 and 4 filter and 1 copies. Another factor is taken, but has no
 * filter. */
MVK_API orvane_resampler *orvane_resampler_init(unsigned factor, unsigned channels, int upsampling,
                                                void *mem);

/* Frames that one call consumes and produces. */
MVK_API void orvane_resampler_get_processing_block_size(const orvane_resampler *handle,
                                                        uint64_t *in_frames, uint64_t *out_frames);

/* Latency in frames of the output: 0 for factor 1, 13 for any other factor
 * going down, 27 going up by 2 and 54 going up by any further factor. (The
 * filter's centre is exact at 13 and 27. Going up by 4 it lies at 55.) */
MVK_API uint32_t orvane_resampler_get_output_latency(const orvane_resampler *handle);

/* One block of all channels to the higher rate; with F the factor, x the
 * stream so far and h the prototype of that factor (zero outside its taps):
 *
 *     F = 2:  y[n] = 2 * sum over m of h[2 m - n + 47] * x[m]
 *     F = 4:  y[n] = 4 * sum over m of h[4 m - n + 95] * x[m]
 *
 * `out` comes first. Input of another type than DT_LONG is converted on its
 * way in and the output on its way out, by orvane_stream_convert; input of
 * type DT_LONG gives float output whatever out->datatype says. The output is
 * staged in its own memory as floats, which must have room for them: 4 bytes a
 * sample at out->stride. The conversion in place is right for samples of 4
 * bytes and for 16-bit samples of one channel; interleaved 16-bit channels
 * overlap in it, and 8-byte samples overrun it, so that their output is
 * meaningless.
 *
 * in and out may share memory where the channels lie apart.
 *
 * Each sample is a dot product in four lanes: lane l takes the taps 4 v + l in
 * ascending v by fused multiply-add from +0, and the result is
 * (lane 0 + lane 1) + (lane 2 + lane 3), which the gain of F multiplies.
 *
 * Returns the output frames of a block, or 0 if out or in is null. The handle
 * must have been made for upsampling. */
MVK_API uint64_t orvane_resampler_upsample(orvane_stream_desc *out, orvane_stream_desc *in,
                                           orvane_resampler *handle);

/* One block of all channels to the lower rate:
 *
 *     F = 2:  y[j] = sum over t of h[t] * x[2 j + t - 46]
 *     F = 4:  y[j] = sum over t of h[t] * x[4 j + t - 92]
 *
 * Types, memory and rounding as for orvane_resampler_upsample; the lanes go on
 * through the phases of a sample in ascending order. Output frames stand
 * in->stride samples apart (the number of channels apart if the input was
 * converted), whatever out->stride says. */
MVK_API uint64_t orvane_resampler_downsample(orvane_stream_desc *out, orvane_stream_desc *in,
                                             orvane_resampler *handle);

/* What both of them do for factor 1: copies
 * max(in->nchannels, in->stride) * in_frames * 4 bytes, whatever the datatype,
 * from the first channel pointer of `in` to that of `out`. Returns the output
 * frames of a block, or 0 if out, in or handle is null. */
MVK_API uint64_t orvane_resampler_passthrough(orvane_stream_desc *out, orvane_stream_desc *in,
                                              orvane_resampler *handle);

/* ---- Filters ---------------------------------------------------------- */

/* The symmetric low-pass prototypes for factors 2 and 4. Every tap is a
 * multiple of 2^-15. They sum to 32498 / 32768 and 32342 / 32768. */
MVK_API extern const float orvane_resampler_2x_filt[41];
MVK_API extern const float orvane_resampler_4x_filt[81];

/* Their phases, slot k of phase p holding tap F k + p, filled up with zeros and
 * aligned to 32 bytes. */
MVK_API extern const float orvane_resampler_2x_ph0_vec[24];
MVK_API extern const float orvane_resampler_2x_ph1_vec[24];
MVK_API extern const float orvane_resampler_4x_ph0_vec[24];
MVK_API extern const float orvane_resampler_4x_ph1_vec[24];
MVK_API extern const float orvane_resampler_4x_ph2_vec[24];
MVK_API extern const float orvane_resampler_4x_ph3_vec[24];

MVK_END_DECLS

#endif
