/*
 * Look-ahead peak limiter.
 *
 * The limiter keeps a multichannel signal below a peak level. It works by
 * sub-blocks of 32 to 256 frames: the signal goes through a delay of one
 * sub-block, and one gain for all channels, computed once a sub-block from the
 * largest magnitude of the audio about to leave and of the audio just arriving,
 * is cross-faded across the sub-block that leaves. The gain is a product of two
 * stages: a fast one that attacks within a sub-block and releases with a
 * half-life of 5 ms, and a slow one that drifts down under sustained limiting
 * with a half-life of 40 ms, so that the fast stage stays about 1.5 dB below
 * unity, and recovers with 160 ms. Instead of limiting it can clip, without delay.
 *
 * With u the slow stage, f the fast one and p the peak of a sub-block, each
 * sub-block does, rounding once for each operation:
 *
 *     q = max(p, p of the sub-block before)
 *     g = q u > peak ? 1 / (q u) * peak : 1            required gain
 *     m = min(g, its last hold_length values)
 *     attack, where g u < gain:  f = g,                       gain = g u
 *     release, otherwise:        f = m + release * (f - m),   gain = max(gain, f u),
 *                                but at most g u
 *     f < 10^(-1.5/20):  u = slow_keep u + slow_follow * f u / 10^(-1.5/20)
 *     otherwise:         u = recover_keep u + recover_step
 *     y[i] = 256 x[i - n] (w[n-1-i] prev_gain prev_boost + w[i] gain boost)
 *
 * with w the window of n frames, which rises from 0 to 1 as a sine squared.
 *
 * Calling order, in memory of the caller's, at any address:
 *
 *     bytes = orvane_ht_ztlim_query_memory(channels, NULL, NULL, 64);
 *     s = orvane_ht_ztlim_init(channels, 64, malloc(bytes), NULL);
 *     orvane_ht_ztlim_set_num_channels(s, channels);
 *     orvane_ht_ztlim_set_sample_rate(s, 48000);
 *     orvane_ht_ztlim_set_block_size(s, 1024);
 *     orvane_ht_ztlim_set_enable(s, 1);
 *     for each block: orvane_ht_ztlim_process(s, out, in, 1, 1);
 *
 * The order binds: without a block size there are no sub-blocks to process, and
 * limiting without a sample rate follows a null pointer. No setter but those
 * that return -1 tests its argument. There is nothing to close.
 *
 * A state serves one thread at a time; states are independent. Nothing here
 * allocates, locks or logs.
 *
 * Literature: U. Zölzer, "Digital Audio Signal Processing", 2nd ed., Wiley 2008,
 * chapter 7, on limiters, look-ahead, attack, hold and release; D. Giannoulis,
 * M. Massberg and J. D. Reiss, "Digital Dynamic Range Compressor Design", J. Audio
 * Eng. Soc. 60(6), 2012, on the gain computer and its ballistics.
 */
#ifndef ORVANE_HT_ZTLIM_H
#define ORVANE_HT_ZTLIM_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* The limiter's state, seen by its pointer only. */
typedef struct orvane_ht_ztlim_state orvane_ht_ztlim_state;

/* ---- Memory ------------------------------------------------------------ */

/* The bytes that `max_channels` channels at sub-blocks of `sub_block` frames
 * take, for any address: 190 + 4 * hold_length for the state and
 * 31 + 4 * max_channels * sub_block for the delay. Returns the sum, and stores
 * the parts where both pointers are given. hold_length is 3 for sub-blocks of 32,
 * 2 for 40, and 1 for 64, 128 and 256; for other lengths, which
 * orvane_ht_ztlim_init refuses, the state's part is 159. */
MVK_API uint64_t orvane_ht_ztlim_query_memory(unsigned max_channels, uint64_t *state_bytes,
                                              uint64_t *delay_bytes, unsigned sub_block);

/* Lays out a state and returns it, which is state_mem rounded up to 32 bytes, or
 * null if `sub_block` is none of 32, 40, 64, 128 and 256. With a null delay_mem,
 * state_mem has room for both parts; else delay_mem has room for the second.
 *
 * Initially the limiter is disabled and doesn't clip, peak is 1, boost is 1/256
 * (unity), no channels are processed, no sample rate is set, the block is one
 * sub-block long, the gains are 1 and the delay is silent. */
MVK_API orvane_ht_ztlim_state *orvane_ht_ztlim_init(unsigned max_channels, unsigned sub_block,
                                                    void *state_mem, void *delay_mem);

/* Back to gains of 1 and a silent delay. Settings, the held gains and the boost
 * that fades stay. */
MVK_API void orvane_ht_ztlim_reset_state(orvane_ht_ztlim_state *state);

/* ---- Settings ---------------------------------------------------------- */

/* Not to be changed during a process call. The getters return what was set. */

/* Non-zero: the limiter works. While it is disabled, process calls do nothing.
 * Enabling a disabled limiter that doesn't clip silences the delay. */
MVK_API void orvane_ht_ztlim_set_enable(orvane_ht_ztlim_state *state, int enable);
MVK_API int orvane_ht_ztlim_get_enable(const orvane_ht_ztlim_state *state);

/* The limit on a sample's magnitude ahead of the boost, linear. Any value. */
MVK_API void orvane_ht_ztlim_set_peak(orvane_ht_ztlim_state *state, float peak);
MVK_API float orvane_ht_ztlim_get_peak(const orvane_ht_ztlim_state *state);

/* The gain behind the limiter in units of 1/256, which is unity. The next
 * sub-block fades from prev_boost to boost: a boost that is to fade in comes with
 * the present one before it, a jump with itself. Clipping applies boost at once. */
MVK_API void orvane_ht_ztlim_set_boost(orvane_ht_ztlim_state *state, float prev_boost, float boost);
MVK_API float orvane_ht_ztlim_get_boost(const orvane_ht_ztlim_state *state);

/* Non-zero: samples are clipped at the peak, without delay and without a gain.
 * Leaving this while the limiter is enabled silences the delay. */
MVK_API void orvane_ht_ztlim_set_hard_clip(orvane_ht_ztlim_state *state, int hard_clip);
MVK_API int orvane_ht_ztlim_get_hard_clip(const orvane_ht_ztlim_state *state);

/* Hz. Returns 0, or -1 for a rate that isn't served at the state's sub-block (see
 * the time constants below), which changes nothing. A rate that is new sets both
 * stages to 1; `gain` stays. */
MVK_API int orvane_ht_ztlim_set_sample_rate(orvane_ht_ztlim_state *state, unsigned rate);
MVK_API unsigned orvane_ht_ztlim_get_sample_rate(const orvane_ht_ztlim_state *state);

/* Frames of a process call. Returns 0, or -1 if they aren't whole sub-blocks,
 * which changes nothing. 0 is accepted. */
MVK_API int orvane_ht_ztlim_set_block_size(orvane_ht_ztlim_state *state, unsigned frames);
MVK_API unsigned orvane_ht_ztlim_get_block_size(const orvane_ht_ztlim_state *state);

/* Channels of a process call. Returns 0, or -1 if there is no memory for as many,
 * which changes nothing. 0 is accepted. */
MVK_API int orvane_ht_ztlim_set_num_channels(orvane_ht_ztlim_state *state, unsigned channels);
MVK_API unsigned orvane_ht_ztlim_get_num_channels(const orvane_ht_ztlim_state *state);

/* The present gain of the limiter, boost not included. */
MVK_API float orvane_ht_ztlim_get_limiter_gain(const orvane_ht_ztlim_state *state);

/* Frames of delay: the sub-block while limiting, 0 while clipping or disabled. */
MVK_API unsigned orvane_ht_ztlim_get_latency(const orvane_ht_ztlim_state *state);

/* ---- Processing -------------------------------------------------------- */

/* Processes one block. Frame i of channel c stands at in[c][i * in_stride] and
 * goes to out[c][i * out_stride]; strides are in floats. Output may be written
 * over input at the same address and stride; other overlaps are not allowed. No
 * alignment is asked for. While limiting, a channel whose `in` is null is skipped,
 * its delay and its output left as they are; while clipping, none may be null.
 *
 * A NaN clips to the peak. While limiting it goes through to the output; as a
 * peak it is passed over in contiguous channels (all of one whose sub-block is
 * aligned to 32 bytes), and in strided ones it makes the search begin anew. */
MVK_API void orvane_ht_ztlim_process(orvane_ht_ztlim_state *state, float **out, float **in,
                                     uint64_t in_stride, uint64_t out_stride);

/* The same with the gain decided by `detect_channels` channels of their own, read
 * at in_stride. Those whose pointer is null are skipped. */
MVK_API void orvane_ht_ztlim_process_indirect(orvane_ht_ztlim_state *state, float **out,
                                              float **detect, float **in, uint64_t in_stride,
                                              uint64_t out_stride, unsigned detect_channels);

/* ---- Version ----------------------------------------------------------- */

typedef struct orvane_ht_ztlim_version {
  uint32_t major, minor, patch; /* 1, 8, 2 */
  uint32_t reserved[3];         /* 0 */
} orvane_ht_ztlim_version;

/* The version, a constant. */
MVK_API const orvane_ht_ztlim_version *orvane_ht_ztlim_get_version(void);

/* ---- Constants --------------------------------------------------------- */

/* 1/256, the boost of unity. */
MVK_API extern const float orvane_ht_ZTLIM_ONE_OVER_256_S;
MVK_API extern const float orvane_ht_ZTLIM_ONE_OVER_256_L;

/* The cross-fade windows, sin^2(pi (i + 1/2) / (2 N)) rounded to a multiple of
 * 2^-15 and at most 1 - 2^-15. Entries i and N - 1 - i add up to 1, except at the
 * two ends of the longest. */
MVK_API extern const float orvane_ht_a_ztlim_win_32[32];
MVK_API extern const float orvane_ht_a_ztlim_win_40[40];
MVK_API extern const float orvane_ht_a_ztlim_win_64[64];
MVK_API extern const float orvane_ht_a_ztlim_win_128[128];
MVK_API extern const float orvane_ht_a_ztlim_win_256[256];

/* The time constants for one rate of gain updates, each a multiple of 2^-15. */
typedef struct orvane_ht_ztlim_coefs {
  float slow_keep;    /* half-life 40 ms */
  float slow_follow;  /* 1 - slow_keep */
  float recover_keep; /* half-life 160 ms */
  float recover_step; /* 1 - recover_keep */
  float release;      /* half-life 5 ms */
  float release_half; /* half-life 10 ms; not in use */
  float reserved[2];  /* 0 */
} orvane_ht_ztlim_coefs;

/* The time constants at sub-blocks of N frames for the sample rates 192000,
 * 176400, 96000, 88200, 64000, 48000, 44100, 32000 and 24000, null for those that
 * aren't served: all are at 32, 40 and 64 frames, those from 48000 at 128, those
 * from 96000 at 256. Pairs with the same number of updates a second share a record. */
MVK_API extern const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_32[9];
MVK_API extern const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_40[9];
MVK_API extern const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_64[9];
MVK_API extern const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_128[9];
MVK_API extern const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_256[9];

MVK_END_DECLS

#endif
