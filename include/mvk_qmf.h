/*
 * The modulation stage of the QMF banks: between a block of windowed and folded
 * samples and one slot of subband samples, through a cosine transform for real
 * banks and a Fourier transform for complex ones.
 *
 * Complex values are pairs of floats, real part first. Arrays need a float's
 * alignment, and don't overlap unless said. Nothing allocates or keeps a state.
 *
 * Literature: P. P. Vaidyanathan, "Multirate Systems and Filter Banks", Prentice
 * Hall 1993, chapter 8, on cosine-modulated banks; H. S. Malvar, "Signal Processing
 * with Lapped Transforms", Artech House 1992.
 */
#ifndef MVK_QMF_H
#define MVK_QMF_H

#include <stdint.h>

#include "mvk_export.h"
#include "mvk_fft.h"

MVK_BEGIN_DECLS

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
