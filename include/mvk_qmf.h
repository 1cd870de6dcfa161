/*
 * QMF banks: a stream of samples in M subbands, real or complex, and back.
 *
 * A bank is a low-pass prototype p[n] of 2 P M taps, P being 4 or 5, moved to the middle
 * of each band by a cosine or a complex exponential. Per slot it takes M samples and
 * gives M bands, or the reverse. p is symmetric about n = P M, with p[0] = 0, 3 dB down at
 * pi / (2 M), and sum p^2 = M. With g = 1 for P = 5 and -1 for P = 4, x(t - d) the sample d
 * before the last of the slot, and sums over d from 0 to 2 P M - 1:
 *
 *     analysis, real     out[m] = g / (2 M) sum p[d] x(t - d) cos(pi / M (m + 1/2) (d - 3 M / 2))
 *     complex            Y[k] = -g / (2 M) sum p[d] x(t - d) exp(i pi / M (k + 1/2) d)
 *
 *     synthesis, real    y[n] = 4 s p[n] cos(pi / M (k + 1/2) (n - M / 2))   for s in band k
 *     complex            y[n] = 2 p[n] Re(Y exp(i pi / M (k + 1/2) n))       for Y in band k
 *
 * with n counted from the first sample of the slot. A twiddle_mode turns complex bands:
 *
 *     MVK_TWIDDLE_NONE   as above
 *     MVK_TWIDDLE_ALIGN  analysis times exp(i pi / M (k + 1/2) phi), synthesis by its
 *                        conjugate, phi = (1 - M / 64) / 2: in step with a bank of 64
 *     any other          analysis times -exp(-i pi / M (k + 1/2) / 2), synthesis by its
 *                        conjugate; for 32 and 64 bands
 *
 * Analysis and synthesis give the signal back 2 P M - M + 1 samples late, with a relative
 * squared error of 2e-8 (P5_p64orv301), 4.5e-8 (P4) or 1.2e-6 (P5).
 *
 * The S family is the same bank under a short sample's names: short samples are floats.
 *
 * Calling order, in memory of the caller's, at any address:
 *
 *     MVK_qmf_analysisL_query_mem(64, 5, &state, &scratch, &record);
 *     a = mvk_qmf_analysisL_open(64, slots, MVK_TWIDDLE_NONE, 5,
 *                                mvk_qmf_filter_coeff_P5_p64orv301_vec_ana,
 *                                malloc(state), malloc(scratch), malloc(record));
 *     for each block: MVK_CLqmf_analysisL(a, out_slots, in);
 *
 * Complex banks have 8, 16, 32, 48 or 64 bands. Real ones have 4, 8, 16, 32 or 64, and with
 * a prototype and memory of the caller's any power of two up to 1024. At 48 bands only the
 * complex path works: the real one has no transform there and its result isn't defined.
 *
 * Complex values are pairs of floats, real part first. Arrays of samples and bands need a
 * float's alignment, and don't overlap unless said. No argument is tested. Nothing
 * allocates, locks or logs. A record serves one thread at a time.
 *
 * Literature: P. P. Vaidyanathan, "Multirate Systems and Filter Banks", Prentice
 * Hall 1993, chapter 8, on cosine-modulated banks; H. S. Malvar, "Signal Processing
 * with Lapped Transforms", Artech House 1992; J. H. Rothweiler, "Polyphase quadrature
 * filters", ICASSP 1983, on pseudo-QMF banks.
 */
#ifndef MVK_QMF_H
#define MVK_QMF_H

#include <stdint.h>

#include "mvk_export.h"
#include "mvk_fft.h"

MVK_BEGIN_DECLS

/* ---- Records ----------------------------------------------------------- */

/* Windows a slot of samples into the folded streams in `scratch`, and writes it over the
 * oldest block of the history, which becomes the newest. */
typedef void mvk_qmf_ana_window(float *scratch, float **slot_ptr, const float *prototype,
                                const float *cos_table, const float *in, uint32_t bands);

/* Windows the modulated slot in `scratch` into M samples, and moves the delay line on. */
typedef void mvk_qmf_syn_window(float *out, float *history, const float *prototype,
                                const float *cos_table, const float *scratch, uint32_t bands);

/* Fields are there to be read: calls write them. */
typedef struct mvk_qmf_analysisL_state {
  uint32_t bands;          /* M */
  const float *prototype;  /* a _vec_ana table */
  uint32_t order;          /* P */
  uint32_t slots;          /* per call of a process function */
  uint32_t slot_increment; /* floats from one slot of MVK_Lqmf_analysisL to the next */
  float *history;          /* 2 P - 1 blocks of M samples */
  float **slot_ptr;        /* the blocks, the newest first */
  uint32_t history_length; /* (2 P - 1) M */
  uint32_t twiddle_mode;
  const float *cos_table;        /* mvk_cos_<M>_full_scl */
  const float *rotation;         /* of the bands, or null */
  const mvk_fft_pair *pair_full; /* of M points, or null */
  const mvk_fft_pair *pair_half; /* of M / 2 points, or null */
  const float *dct_twiddle;      /* mvk_dct_twiddle_table16_L<M>, or null */
  float *scratch;                /* 4 M floats */
  mvk_qmf_ana_window *window_real;
  mvk_qmf_ana_window *window_complex;
} mvk_qmf_analysisL_state;

typedef struct mvk_qmf_analysisS_state {
  uint32_t bands;
  const float *prototype;
  uint32_t order : 8; /* with `slots` in one word, so that the record fits its 112 bytes */
 uint32_t slots : 24;
  uint32_t slot_increment;
  float *history;
  float **slot_ptr;
  uint32_t history_length;
  uint32_t twiddle_mode;
  const float *cos_table;
  const float *rotation;
  const mvk_fft_pair *pair_full;
  const mvk_fft_pair *pair_half;
  const float *dct_twiddle;
  float *scratch;
  mvk_qmf_ana_window *window_real;
  mvk_qmf_ana_window *window_complex;
} mvk_qmf_analysisS_state;

typedef struct mvk_qmf_synthesisL_state {
  uint32_t bands;          /* M */
  const float *prototype;  /* a _vec_syn table */
  uint32_t order;          /* P */
  uint32_t slots;          /* per call of a process function */
  uint32_t slot_increment; /* floats from one slot of MVK_Lqmf_synthesisL to the next */
  float *history;          /* a transposed delay line of 2 P - 1 stages by M samples */
  uint32_t history_length; /* (2 P - 1) M */
  uint32_t twiddle_mode;
  const float *rotation;         /* of the bands, or null */
  const float *cos_table;        /* mvk_cos_<M>_full */
  const mvk_fft_pair *pair_full; /* of M points, or null */
  const mvk_fft_pair *pair_half; /* of M / 2 points, or null */
  const float *dct_twiddle;      /* mvk_dct_twiddle_table16_L<M>, or null */
  float *scratch;                /* 4 M floats */
  mvk_qmf_syn_window *window_real;
  mvk_qmf_syn_window *window_complex;
  mvk_qmf_syn_window *window_complex_head1bit;
} mvk_qmf_synthesisL_state;

/* The L record without its last field. */
typedef struct mvk_qmf_synthesisS_state {
  uint32_t bands;
  const float *prototype;
  uint32_t order;
  uint32_t slots;
  uint32_t slot_increment;
  float *history;
  uint32_t history_length;
  uint32_t twiddle_mode;
  const float *rotation;
  const float *cos_table;
  const mvk_fft_pair *pair_full;
  const mvk_fft_pair *pair_half;
  const float *dct_twiddle;
  float *scratch;
  mvk_qmf_syn_window *window_real;
  mvk_qmf_syn_window *window_complex;
} mvk_qmf_synthesisS_state;

/* ---- Analysis ---------------------------------------------------------- */

/* The sizes in bytes of the three pieces of memory, slack for their alignment included.
 * The L query returns *record_bytes, 127. It answers for fewer than 65 bands; for 65 and
 * more its answer is that of 32, and the caller reckons:
 *
 *     state    23 + 4 (2 P - 1) M + 8 (2 P)
 *     scratch  31 + 16 M
 *
 * The S query returns 1024. It answers for 64 bands, and for any other count as for 32: at
 * 48 bands that is less than the bank needs, which takes 64 bands' memory. Orders that are
 * multiples of 4 count as 4, others as 5. */
MVK_API uint32_t MVK_qmf_analysisL_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                             uint32_t *scratch_bytes, uint32_t *record_bytes);
MVK_API uint32_t MVK_qmf_analysisS_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                             uint32_t *scratch_bytes, uint32_t *record_bytes);

/* Makes a bank that waits for `slots` slots in each call of a process function, its history
 * silent. `prototype` is a _vec_ana table of order P and as many bands. Returns the record,
 * which lies in record_mem. An order other than 5 gets the windows of order 4. */
MVK_API mvk_qmf_analysisL_state *mvk_qmf_analysisL_open(uint32_t bands, uint32_t slots,
                                                        uint32_t twiddle_mode, uint32_t order,
                                                        const float *prototype, void *state_mem,
                                                        void *scratch_mem, void *record_mem);
MVK_API mvk_qmf_analysisS_state *mvk_qmf_analysisS_open(uint32_t bands, uint32_t slots,
                                                        uint32_t twiddle_mode, uint32_t order,
                                                        const float *prototype, void *state_mem,
                                                        void *scratch_mem, void *record_mem);

/* Makes another bank of a record, in the same memory, which must be large enough. The
 * history isn't cleared: MVK_qmf_analysisL_init follows. Returns 0. */
MVK_API int mvk_qmf_analysisL_reconfig(mvk_qmf_analysisL_state *record, uint32_t bands,
                                       uint32_t slots, uint32_t twiddle_mode, uint32_t order,
                                       const float *prototype);

/* Silences the history. */
MVK_API void MVK_qmf_analysisL_init(mvk_qmf_analysisL_state *record);
MVK_API void MVK_qmf_analysisS_init(mvk_qmf_analysisS_state *record);

/* The distance in floats between slots of real bands; M after opening. */
MVK_API void MVK_qmf_analysisL_set_slot_increment(mvk_qmf_analysisL_state *record,
                                                  uint32_t increment);
MVK_API void MVK_qmf_analysisS_set_slot_increment(mvk_qmf_analysisS_state *record,
                                                  uint32_t increment);

/* Floats in the history: at most, and of a number of bands. order_flag is 0 for order 4. */
MVK_API uint32_t MVK_qmf_analysisL_get_max_filter_state_length(uint32_t order_flag);
MVK_API uint32_t MVK_qmf_analysisL_get_filter_state_length(uint32_t order_flag, uint32_t bands);

/* Copy the history from and to 9 M floats, the oldest block first. They act for order 5
 * only, and do nothing for any other. */
MVK_API void MVK_load_CLqmf_analysisL_filter_stateL(mvk_qmf_analysisL_state *record,
                                                    const float *src);
MVK_API void MVK_Lunload_CLqmf_analysisL_filter_state(const mvk_qmf_analysisL_state *record,
                                                      float *dst);

/* `slots` slots of real bands from slots * M samples; slot s goes to out + s * slot_increment. */
MVK_API void MVK_Lqmf_analysisL(mvk_qmf_analysisL_state *record, float *out, const float *in);
MVK_API void MVK_Lqmf_analysisS(mvk_qmf_analysisS_state *record, float *out, const float *in);

/* `slots` slots of complex bands; out_slots points to M pairs for each. */
MVK_API void MVK_CLqmf_analysisL(mvk_qmf_analysisL_state *record, float *const *out_slots,
                                 const float *in);
MVK_API void MVK_CLqmf_analysisS(mvk_qmf_analysisS_state *record, float *const *out_slots,
                                 const float *in);

/* P M - M / 2: the samples from an impulse to the middle of its response. */
MVK_API uint32_t MVK_qmf_analysisL_get_delay(const mvk_qmf_analysisL_state *record);
MVK_API uint32_t MVK_qmf_analysisS_get_delay(const mvk_qmf_analysisS_state *record);

/* Do nothing: there is nothing to release. */
MVK_API void MVK_qmf_analysisL_close(mvk_qmf_analysisL_state *record);
MVK_API void MVK_qmf_analysisS_close(mvk_qmf_analysisS_state *record);

/* ---- Synthesis --------------------------------------------------------- */

/* As for analysis; from 65 bands the state takes 31 + 4 (2 P - 1) M bytes. */
MVK_API uint32_t MVK_qmf_synthesisL_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                              uint32_t *scratch_bytes, uint32_t *record_bytes);
MVK_API uint32_t MVK_qmf_synthesisS_query_mem(uint32_t bands, uint32_t order, uint32_t *state_bytes,
                                              uint32_t *scratch_bytes, uint32_t *record_bytes);

/* As for analysis, with a _vec_syn table. Real synthesis has no transform for 4 bands. */
MVK_API mvk_qmf_synthesisL_state *mvk_qmf_synthesisL_open(uint32_t bands, uint32_t slots,
                                                          uint32_t twiddle_mode, uint32_t order,
                                                          const float *prototype, void *state_mem,
                                                          void *scratch_mem, void *record_mem);
MVK_API mvk_qmf_synthesisS_state *mvk_qmf_synthesisS_open(uint32_t bands, uint32_t slots,
                                                          uint32_t twiddle_mode, uint32_t order,
                                                          const float *prototype, void *state_mem,
                                                          void *scratch_mem, void *record_mem);

/* Silences the delay line. */
MVK_API void MVK_qmf_synthesisL_init(mvk_qmf_synthesisL_state *record);
MVK_API void MVK_qmf_synthesisS_init(mvk_qmf_synthesisS_state *record);

/* The distance in floats between slots of real bands; M after opening. */
MVK_API void MVK_qmf_synthesisL_set_slot_increment(mvk_qmf_synthesisL_state *record,
                                                   uint32_t increment);
MVK_API void MVK_qmf_synthesisS_set_slot_increment(mvk_qmf_synthesisS_state *record,
                                                   uint32_t increment);

/* slots * M samples from `slots` slots of real bands, slot s at in + s * slot_increment. */
MVK_API void MVK_Lqmf_synthesisL(mvk_qmf_synthesisL_state *record, float *out, const float *in);
MVK_API void MVK_Sqmf_synthesisL(mvk_qmf_synthesisS_state *record, float *out, const float *in);

/* The same from complex bands; in_slots points to M pairs for each slot. */
MVK_API void MVK_Lqmf_synthesisCL(mvk_qmf_synthesisL_state *record, float *out,
                                  const float *const *in_slots);
MVK_API void MVK_Sqmf_synthesisCL(mvk_qmf_synthesisS_state *record, float *out,
                                  const float *const *in_slots);

/* The same at half the level: one bit of headroom. */
MVK_API void MVK_Lqmf_synthesisCL_Head1Bit(mvk_qmf_synthesisL_state *record, float *out,
                                           const float *const *in_slots);

/* P M + 1 - M / 2. */
MVK_API uint32_t MVK_qmf_synthesisL_get_delay(const mvk_qmf_synthesisL_state *record);
MVK_API uint32_t MVK_qmf_synthesisS_get_delay(const mvk_qmf_synthesisS_state *record);

/* Copies the delay line between records of the same bands and order. */
MVK_API void MVK_qmf_synthesisL_copy_states(mvk_qmf_synthesisL_state *dst_record,
                                            const mvk_qmf_synthesisL_state *src_record);
MVK_API void MVK_qmf_synthesisS_copy_states(mvk_qmf_synthesisS_state *dst_record,
                                            const mvk_qmf_synthesisS_state *src_record);

/* Do nothing: there is nothing to release. */
MVK_API void MVK_qmf_synthesisL_close(mvk_qmf_synthesisL_state *record);
MVK_API void MVK_qmf_synthesisS_close(mvk_qmf_synthesisS_state *record);

/* ---- Prototypes -------------------------------------------------------- */

/* Three families, designed at 64 bands (docs/prototypes.md); the others are decimations,
 * p_M[i] = p_64[64 i / M], and the one of 48 bands is interpolated between neighbours.
 *
 *     name                M in the table   P   p[P M]     worst side lobe above 1.5 pi / M
 *     P4, P4_32           64, 32           4   0.866940   -70.5 dB
 *     P5, P5_32           64, 32           5   0.853739   -80.2 dB
 *     P5_p64orv301, _48,  64, 48, 32,      5   0.860848   -73.4 dB
 *       _32, _16, _8      16, 8
 *
 * in three arrangements, with s(n) the sign (-1)^floor(n / (2 M)) for P = 5 and
 * -(-1)^floor((n + M) / (2 M)) for P = 4:
 *
 *     ..._vec_ana[n] = s(n) p[n + 1]   for analysis, 2 P M floats
 *     ..._vec_syn[n] = s(n) p[n]       for synthesis, 2 P M floats
 *     ...[P r + e]   = ..._vec_syn[r + 2 M e]   in columns, for r = 0 to M and e below P
 *
 * The columns of P = 4 have row M with the opposite sign, and a row M + 1 of
 * -..._vec_syn[2 M (e + 1)], beyond the end zero. Those of P = 5 end with a row of P zeros,
 * but for the ones of 32 bands. */
/* clang-format off */
#define MVK_QMF_PROTOTYPES(DO) /* suffix, suffix at 64 bands, P, M, rows of the columns */ \
  DO(P4, P4, 4, 64, 66) DO(P4_32, P4, 4, 32, 34) \
  DO(P5, P5, 5, 64, 66) DO(P5_32, P5, 5, 32, 33) \
  DO(P5_p64orv301, P5_p64orv301, 5, 64, 66) DO(P5_p64orv301_48, P5_p64orv301, 5, 48, 50) \
  DO(P5_p64orv301_32, P5_p64orv301, 5, 32, 33) DO(P5_p64orv301_16, P5_p64orv301, 5, 16, 18) \
  DO(P5_p64orv301_8, P5_p64orv301, 5, 8, 10)
/* clang-format on */
#define MVK_QMF_DECLARE_PROTOTYPE(name, design, P, M, rows)                    \
  MVK_API extern const float mvk_qmf_filter_coeff_##name[P * rows];            \
  MVK_API extern const float mvk_qmf_filter_coeff_##name##_vec_ana[2 * P * M]; \
  MVK_API extern const float mvk_qmf_filter_coeff_##name##_vec_syn[2 * P * M];
MVK_QMF_PROTOTYPES(MVK_QMF_DECLARE_PROTOTYPE)

/* ---- Modulation -------------------------------------------------------- */

/* What stands between a slot of bands and its windowed and folded samples. */

/* ---- Real banks of M bands --------------------------------------------- */

/* M is a length of mvk_dct.h, at least 4; dct_twiddle is mvk_dct_twiddle_table16_L<M>
 * and pair_half the forward pair of M / 2 points, or null (see there). */

/* For band m, with r over the 2 M floats of src, of which src[M / 2] isn't read:
 *
 *     out[m] = 1 / (2 M) sum src[r] cos(pi / M (m + 1/2) (r - 3 M / 2))
 *
 * work has room for M floats, and may be out. */
MVK_API void mvk_forwardModulationReal(const float *src, float *out, uint32_t M,
                                       const mvk_fft_pair *pair_half, const float *dct_twiddle,
                                       float *work);

/* For n from 0 to 2 M - 1, with j over the M bands in data:
 *
 *     v[n] = 2 sum data[j] cos(pi / M (j + 1/2) (n - M / 2))
 *
 * The first M go to data, the others to work. */
MVK_API void mvk_inverseModulationReal(float *data, float *work, uint32_t M,
                                       const mvk_fft_pair *pair_half, const float *dct_twiddle);

/* ---- Complex banks of M bands ------------------------------------------ */

/* How bands are rotated: not at all; by the table that aligns them with a bank of
 * 64 bands (null for 64 itself: no rotation); any other value by half a sample. */
enum { MVK_TWIDDLE_NONE = 0, MVK_TWIDDLE_ALIGN = 8 };

/* With F the unscaled forward transform of the M pairs of src, and c1, c2 pair j of
 * `rotation`:
 *
 *     Y[2 m] = conj F[m],  Y[2 m + 1] = F[M - 1 - m]   for m below M / 2
 *     aligned:       out[j] = (c2 + i c1) Y[j]
 *     half a sample: out[j] = (c2 + i c1) Y[j],
 *                    out[M - 1 - j] = -i (c2 - i c1) Y[M - 1 - j]   for j below M / 2
 *
 * M is a multiple of 8, and of 16 for half a sample. fft_out has room for M pairs; src
 * is overwritten. pair is the forward pair of M points; with null, MVK_r4's kernel is
 * looked up. */
MVK_API void mvk_forwardModulationComplex(float *src, float *out, float *fft_out, uint32_t M,
                                          uint32_t twiddle_mode, const float *rotation,
                                          const mvk_fft_pair *pair);

/* The way back: src is turned by the inverse rotations, brought to the order of
 * the transform's inputs in fft_in, and transformed forward into out, unscaled. */
MVK_API void mvk_inverseModulationComplex(const float *src, float *out, float *fft_in, uint32_t M,
                                          uint32_t twiddle_mode, const float *rotation,
                                          const mvk_fft_pair *pair);

/* ---- Tables ------------------------------------------------------------ */

/* Pairs (c1, c2) by fours: of pair j, c1 stands at 8 (j / 4) + j % 4 and c2 four
 * floats behind it.
 *
 *     mvk_cos_<M>_full               M pairs     sin(pi j / (2 M)) / 2, its cosine / 2
 *     mvk_cos_<M>_full_scl           M pairs     the same over M
 *     mvk_cos_<M>_full_twiddle       M/2 pairs   sin(pi (2 j + 1) / (4 M)), -cos of it
 *     mvk_cos_<M>_ast_mini_twiddle   M pairs     sin and cos of pi / M (j + 1/2) phi with
 *                                                phi = (1 - M / 64) / 2
 *
 * The sine of 0 is stored as -0. */
#define MVK_COS_FULL_BANDS(DO) DO(8) DO(16) DO(32) DO(48) DO(64)
#define MVK_COS_HALF_SAMPLE_BANDS(DO) DO(32) DO(64)
#define MVK_COS_ALIGNED_BANDS(DO) DO(8) DO(16) DO(32) DO(48)

#define MVK_COS_DECLARE_FULL(M)                         \
  MVK_API extern const float mvk_cos_##M##_full[2 * M]; \
  MVK_API extern const float mvk_cos_##M##_full_scl[2 * M];
#define MVK_COS_DECLARE_HALF_SAMPLE(M) MVK_API extern const float mvk_cos_##M##_full_twiddle[M];
#define MVK_COS_DECLARE_ALIGNED(M) MVK_API extern const float mvk_cos_##M##_ast_mini_twiddle[2 * M];
MVK_COS_FULL_BANDS(MVK_COS_DECLARE_FULL)
MVK_COS_HALF_SAMPLE_BANDS(MVK_COS_DECLARE_HALF_SAMPLE)
MVK_COS_ALIGNED_BANDS(MVK_COS_DECLARE_ALIGNED)

MVK_END_DECLS

#endif
