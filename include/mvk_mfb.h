/*
 * MFB banks: complex subbands of several channels at once, with prototypes of ten taps for
 * each of 64, 128 or 256 bands.
 *
 * Unlike the QMF banks, one record serves all channels; prototype and twiddles come with
 * every call; and analysis halves its input as it enters the history. With M bands, T a
 * prototype in the order of time, c_j[k] = T[j M + k], x(t - d) the sample d before the last of
 * the slot, kappa = (-1)^k, and eps = 0 with the twiddles MVK_MFB_TWID64O, pi / (4 M) with the
 * others (E), each slot of analysis gives, summed over d from 0 to 10 M - 1:
 *
 *     analysis   Y[k] = -kappa i / (2 M) exp(-kappa i eps)
 *                       sum T[10 M - 1 - d] x(t - d) exp(i pi / M (k + 1/2) (d + 1))
 *     _legacy    Y[k] = -1 / (2 M) exp(kappa i eps) sum p[d] x(t - d) exp(i pi / M (k + 1/2) d)
 *
 * the latter with the _LEGACY table of the symmetric prototype p. In synthesis Y in band k of a
 * slot gives, with phi(n) = pi / M (k + 1/2) (n - 5 M) and n from the slot's first sample:
 *
 *     _symmetric              y[n] = 2 T[n]          Re(Y exp(i phi(n) + i kappa eps))
 *     _even_1                 y[n] = 2 T[10 M-1-n]   Re(Y exp(i phi(n) + i kappa eps))
 *     _even_0                 y[n] = 2 T[10 M-1-n]   Re(Y exp(i phi(n) + i kappa (pi/2 + eps)))
 *     _even_3, _even_2        the negatives of _even_1 and _even_0
 *     _legacy                 y[n] = 2 p[n+1]        Re(Y exp(i phi(n+1) + i kappa (pi/2 - eps)))
 *     _legacy_extra_latency   y[n] = 2 p[n]          Re(Y exp(i phi(n) + i kappa (pi/2 + eps)))
 *
 * Chains that give the signal back:
 *
 *     analysis, _symmetric               P64ORV301           9 M samples late
 *     analysis_legacy, _legacy           P64ORV301_LEGACY    9 M
 *     same, _legacy_extra_latency        with twiddles O     9 M + 1
 *     analysis, _even_0                  P4_319SC...         4 M
 *
 * _legacy_extra_latency with twiddles E turns bands by an angle more than the legacy analysis
 * does: that chain has a relative squared error of 3.9e-4.
 *
 * Calling order, in memory of the caller's, at any address:
 *
 *     a = MVK_CLmfb_p10km_analysisL_init(
 *         channels, 0, 64, malloc(MVK_mfb_p10km_analysisL_query_mem(channels, 0, 64)));
 *     scratch = malloc(MVK_mfb_p10km_analysisL_query_scratch(channels, 0, 64));
 *     for each block: MVK_CLmfb_p10km_analysisL(a, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E,
 *                                               scratch, channels, slots, 64, out, in);
 *
 * in[s][c] and out[s][c] point to what slot s has of channel c: M samples, or M complex values,
 * pairs of floats with the real part first. They need a float's alignment and don't overlap.
 * `bands` is that of init and of the tables, a multiple of 4 for which there is a transform.
 * No argument is tested; arguments named `ignored` aren't read. Nothing allocates, locks or
 * logs. A record and a scratch serve one thread at a time.
 *
 * Literature: P. P. Vaidyanathan, "Multirate Systems and Filter Banks", Prentice Hall 1993,
 * chapter 8; G. D. T. Schuller and M. J. T. Smith, "New framework for modulated perfect
 * reconstruction filter banks", IEEE Trans. Signal Processing 44(8), 1996, on low delay.
 */
#ifndef MVK_MFB_H
#define MVK_MFB_H

#include <stdint.h>

#include "mvk_export.h"
#include "mvk_fft.h"

MVK_BEGIN_DECLS

/* ---- Analysis ---------------------------------------------------------- */

typedef struct mvk_mfb_p10km_analysisL_state {
  float **channel_history;  /* of each channel a ring of nine blocks of M samples */
  const mvk_fft_pair *pair; /* forward, of M points, or null */
  uint32_t position;        /* slots so far; modulo 9, the oldest block */
} mvk_mfb_p10km_analysisL_state;

/* Bytes that init takes: (39 + 36 bands) channels + 86. */
MVK_API uint32_t MVK_mfb_p10km_analysisL_query_mem(uint32_t channels, uint32_t ignored,
                                                   uint32_t bands);

/* Bytes of scratch, however many channels and slots: 16 bands + 31. */
MVK_API uint32_t MVK_mfb_p10km_analysisL_query_scratch(uint32_t ignored_channels, uint32_t ignored,
                                                       uint32_t bands);

/* Makes a silent bank in `mem`. Returns its record. */
MVK_API mvk_mfb_p10km_analysisL_state *MVK_CLmfb_p10km_analysisL_init(uint32_t channels,
                                                                      uint32_t ignored,
                                                                      uint32_t bands, void *mem);

/* Silences one channel. */
MVK_API void MVK_mfb_p10km_analysisL_reset_channel(mvk_mfb_p10km_analysisL_state *record,
                                                   uint32_t bands, uint32_t channel);

/* Analyse `slots` slots of `channels` channels. */
MVK_API void MVK_CLmfb_p10km_analysisL(mvk_mfb_p10km_analysisL_state *record,
                                       const float *prototype, const float *twiddle, void *scratch,
                                       uint32_t channels, uint32_t slots, uint32_t bands,
                                       float *const *const *out, const float *const *const *in);
MVK_API void MVK_CLmfb_p10km_analysisL_legacy(mvk_mfb_p10km_analysisL_state *record,
                                              const float *prototype, const float *twiddle,
                                              void *scratch, uint32_t channels, uint32_t slots,
                                              uint32_t bands, float *const *const *out,
                                              const float *const *const *in);

/* The legacy analysis up to its transform F, whose bins are then turned by post_twiddle, M floats
 * w. With F[j] = r + i s, for m below M / 4 and a, b, c, d = w[4 m] to w[4 m + 3]:
 *
 *     Y[2 m]     = (s a - r b, s b + r a)   of F[m]
 *     Y[2 m + 1] = (s c + r d, s d - r c)   of F[M - 1 - m]
 *
 * and with a, b, c, d = w[M - 4 - 4 m] to w[M - 1 - 4 m]:
 *
 *     Y[M / 2 + 2 m]     = (r c - s d, -s c - r d)   of F[M / 4 + m]
 *     Y[M / 2 + 2 m + 1] = (-s b - r a, r b - s a)   of F[3 M / 4 - 1 - m] */
MVK_API void MVK_CLmfb_p10km_analysisL_legacy_twiddle(mvk_mfb_p10km_analysisL_state *record,
                                                      const float *prototype, const float *twiddle,
                                                      const float *post_twiddle, void *scratch,
                                                      uint32_t channels, uint32_t slots,
                                                      uint32_t bands, float *const *const *out,
                                                      const float *const *const *in);

/* Do nothing. */
MVK_API void MVK_load_mfb_p10km_analysisL_filter_state(mvk_mfb_p10km_analysisL_state *record,
                                                       const float *src);
MVK_API void MVK_unload_mfb_p10km_analysisL_filter_state(
    const mvk_mfb_p10km_analysisL_state *record, float *dst);
MVK_API void MVK_CLmfb_p10km_analysisL_close(mvk_mfb_p10km_analysisL_state *record);

/* ---- Synthesis --------------------------------------------------------- */

typedef struct mvk_mfb_p10km_synthesisCL_state {
  float **channel_history;  /* of each channel a transposed delay line, nine stages by M samples */
  const mvk_fft_pair *pair; /* forward, of M points, or null */
} mvk_mfb_p10km_synthesisCL_state;

/* (39 + 36 bands) channels + 78, and 16 bands + 31. */
MVK_API uint32_t MVK_mfb_p10km_synthesisCL_query_mem(uint32_t channels, uint32_t ignored,
                                                     uint32_t bands);
MVK_API uint32_t MVK_mfb_p10km_synthesisCL_query_scratch(uint32_t ignored_channels,
                                                         uint32_t ignored, uint32_t bands);

/* Makes a silent bank in `mem`. Returns its record. */
MVK_API mvk_mfb_p10km_synthesisCL_state *MVK_Lmfb_p10km_synthesisCL_init(uint32_t channels,
                                                                         uint32_t ignored,
                                                                         uint32_t bands, void *mem);

/* Synthesise `slots` slots of `channels` channels; what each answers is told above. */
/* clang-format off */
#define MVK_MFB_SYNTHESES(DO) \
  DO(symmetric) DO(legacy) DO(legacy_extra_latency) DO(even_0) DO(even_1) DO(even_2) DO(even_3)
/* clang-format on */
#define MVK_MFB_DECLARE_SYNTHESIS(name)                                                           \
  MVK_API void MVK_Lmfb_p10km_synthesisCL_##name(                                                 \
      mvk_mfb_p10km_synthesisCL_state *record, const float *prototype, const float *twiddle,      \
      void *scratch, uint32_t channels, uint32_t slots, uint32_t bands, float *const *const *out, \
      const float *const *const *in);
MVK_MFB_SYNTHESES(MVK_MFB_DECLARE_SYNTHESIS)

/* Does nothing: there is nothing to release. */
MVK_API void MVK_Lmfb_p10km_synthesisCL_close(mvk_mfb_p10km_synthesisCL_state *record);

/* ---- Tables ------------------------------------------------------------ */

/* Prototypes: c_j[k] at 40 (k / 4) + 4 j + k % 4.
 *
 *     P64ORV301          64 bands    the QMF prototype P5_p64orv301, no signs folded in
 *     P64ORV301_LEGACY   64          the same with the order of taps reversed, c_(9-j)
 *     P4_319SC           64          asymmetric, low delay: largest tap 0.939412 at 465
 *     P4_319SC_128M      128         the same shape; 0.939452 at 930
 *     P4_319SC_256M      256         the same shape; 0.939460 at 1860
 *
 * How they were designed is told in docs/prototypes.md. */
MVK_API extern const float MVK_MFB_P10KM_P64ORV301[640];
MVK_API extern const float MVK_MFB_P10KM_P64ORV301_LEGACY[640];
MVK_API extern const float MVK_MFB_P10KM_P4_319SC[640];
MVK_API extern const float MVK_MFB_P10KM_P4_319SC_128M[1280];
MVK_API extern const float MVK_MFB_P10KM_P4_319SC_256M[2560];

/* Twiddles: pairs c1 + i c2 = exp(-i a_j), c1 at 8 (j / 4) + j % 4 and c2 four floats behind it,
 * with a_j = pi j / (2 M) in the O table and pi (2 j + 1) / (4 M) in the E tables. */
MVK_API extern const float MVK_MFB_TWID64O[128];
MVK_API extern const float MVK_MFB_TWID64E[128];
MVK_API extern const float MVK_MFB_TWID128E[256];
MVK_API extern const float MVK_MFB_TWID256E[512];

MVK_END_DECLS

#endif
