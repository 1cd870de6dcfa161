/*
 * Discrete cosine transforms of types II and III by a complex transform of half
 * the length, and the rotations of a type IV.
 *
 * For a length N:
 *
 *     type II    y[k] = sum over m of x[m] cos(pi (2 m + 1) k / (2 N))
 *     type III   y[m] = x[0] + sum over k > 0 of x[k] cos(pi (2 m + 1) k / (2 N))
 *
 * The type III gives x[0] full weight, and so is no exact inverse of the type II:
 * from a type II's result y, scaled, it makes x[m] / 2 + y[0] / (2 N). Scaled
 * transforms are these sums times 1 / N.
 *
 * Lengths are 2 and those multiples of 4 for whose half there is a transform in
 * mvk_fft.h and for which there is a table below: 4, 8, 12, 16, 24, 32, 48, 60, 64,
 * 72, 96, 120, 128, 144, 180, 192, 240, 256, 288, 320, 360, 384, 480, 512, 576, 720,
 * 768, 960 and 1024. Others give no meaningful result, and nothing is checked.
 *
 * Nothing allocates or keeps a state; no array needs more than a float's alignment.
 *
 * Literature: J. Makhoul, "A fast cosine transform in one and two dimensions", IEEE
 * Trans. ASSP 28(1), 1980; K. R. Rao and P. Yip, "Discrete Cosine Transform",
 * Academic Press 1990; H. S. Malvar, "Signal Processing with Lapped Transforms",
 * Artech House 1992, on type IV.
 */
#ifndef MVK_DCT_H
#define MVK_DCT_H

#include <stdint.h>

#include "mvk_export.h"
#include "mvk_fft.h"

MVK_BEGIN_DECLS

/* ---- Types II and III -------------------------------------------------- */

/* From `in` to `out`, n floats each, which must not overlap; `in` is overwritten.
 * `twiddle` is mvk_dct_twiddle_table16_L<n>. `pair` is the forward pair of length
 * n / 2 of either family; with null, the kernel of MVK_r4 is looked up at every call,
 * and if there is none the rest is done without it. */
MVK_API void mvk_dctII_scaled(const mvk_fft_pair *pair, const float *twiddle, float *out, float *in,
                              uint32_t n);
MVK_API void mvk_dctII_unscaled(const mvk_fft_pair *pair, const float *twiddle, float *out,
                                float *in, uint32_t n);
MVK_API void mvk_dctIII_scaled(const mvk_fft_pair *pair, const float *twiddle, float *out,
                               float *in, uint32_t n);

/* The same in place, for n up to 2048, which isn't checked: 8 KiB of the stack are the
 * other array. */
MVK_API void _mvk_ldct2_scaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                                    uint32_t n);
MVK_API void _mvk_ldct2_unscaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                                      uint32_t n);
MVK_API void _mvk_ldct3_scaled_iplu(const mvk_fft_pair *pair, const float *twiddle, float *data,
                                    uint32_t n);

/* ---- Type IV ----------------------------------------------------------- */

/* The rotations before and after a complex transform of n points that make up a
 * type IV of 2 n samples; the transform between them is the caller's. `in` and
 * `out` are separate arrays of 2 n floats, c and s of n, for instance
 * mvk_dct_twiddle_table16_L<n>_1 and _2. For i from 0 to n - 1, with one rounded
 * product and one fused one:
 *
 *     pre:   a = in[2 i], b = in[2 n - 1 - 2 i]
 *            out[2 i] = s[i] a + c[i] b,        out[2 i + 1] = s[i] b - c[i] a
 *     post:  r = in[2 i], m = in[2 i + 1], g = 1, 2, 4 or 2^shift
 *            out[2 i] = g (s[i] r + c[i] m),    out[2 n - 1 - 2 i] = g (c[i] r - s[i] m)
 *
 * except that for n not a multiple of 4 the post-rotation doesn't turn pair 0:
 * out[0] = g r and out[2 n - 1] = -g m. */
MVK_API void mvk_dct4_premodulation(float *out, const float *in, const float *c, const float *s,
                                    uint32_t n);
MVK_API void mvk_dct4_postmodulation_shl0(float *out, const float *in, const float *c,
                                          const float *s, uint32_t n);
MVK_API void mvk_dct4_postmodulation_shl1(float *out, const float *in, const float *c,
                                          const float *s, uint32_t n);
MVK_API void mvk_dct4_postmodulation_shl2(float *out, const float *in, const float *c,
                                          const float *s, uint32_t n);
MVK_API void mvk_dct4_postmodulation_shl(float *out, const float *in, const float *c,
                                         const float *s, int32_t shift, uint32_t n);

/* ---- Tables ------------------------------------------------------------ */

/* Lengths n of the tables: of all forms, of all but _L<n>, _1 and _2 (640), and of all
 * but _cos (2). */
/* clang-format off */
#define MVK_DCT_LENGTHS(DO) \
  DO(4) DO(8) DO(12) DO(15) DO(16) DO(24) DO(30) DO(32) DO(36) DO(45) DO(48) DO(60) DO(64) \
  DO(72) DO(90) DO(96) DO(120) DO(128) DO(144) DO(180) DO(192) DO(240) DO(256) DO(288) \
  DO(320) DO(360) DO(384) DO(480) DO(512) DO(576) DO(720) DO(768) DO(960) DO(1024)
/* clang-format on */

/* For k from 0 to n - 1, rounded to single precision:
 *
 *     mvk_dct_twiddle_table16_L<n>        sin(pi k / (2 n))
 *     mvk_dct_twiddle_table16_L<n>_1      sin(pi (4 k + 1) / (8 n)) / 2
 *     mvk_dct_twiddle_table16_L<n>_2      cos(pi (4 k + 1) / (8 n)) / 2
 *     mvk_dct_twiddle_table16_rev_L<n>    cos(pi k / (2 n))
 *     mvk_dct_twiddle_table16_1_L<n>      sin(pi (k + 1) / (2 n))
 *     mvk_dct_twiddle_table16_rev_1_L<n>  cos(pi (k + 1) / (2 n))
 *     mvk_dct_twiddle_table16_L<n>_cos    cos(pi k / (2 n)) */
#define MVK_DCT_DECLARE_TWIDDLES(n)                               \
  MVK_API extern const float mvk_dct_twiddle_table16_L##n[n];     \
  MVK_API extern const float mvk_dct_twiddle_table16_L##n##_1[n]; \
  MVK_API extern const float mvk_dct_twiddle_table16_L##n##_2[n];
#define MVK_DCT_DECLARE_OTHERS(n)                                 \
  MVK_API extern const float mvk_dct_twiddle_table16_rev_L##n[n]; \
  MVK_API extern const float mvk_dct_twiddle_table16_1_L##n[n];   \
  MVK_API extern const float mvk_dct_twiddle_table16_rev_1_L##n[n];
#define MVK_DCT_DECLARE_COSINES(n) MVK_API extern const float mvk_dct_twiddle_table16_L##n##_cos[n];
MVK_DCT_LENGTHS(MVK_DCT_DECLARE_TWIDDLES)
MVK_DCT_DECLARE_TWIDDLES(2)
MVK_DCT_LENGTHS(MVK_DCT_DECLARE_OTHERS)
MVK_DCT_DECLARE_OTHERS(2)
MVK_DCT_DECLARE_OTHERS(640)
MVK_DCT_LENGTHS(MVK_DCT_DECLARE_COSINES)
MVK_DCT_DECLARE_COSINES(640)

MVK_END_DECLS

#endif
