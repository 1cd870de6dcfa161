/*
 * Numeric kernels over blocks of 32 samples and over counted vectors.
 *
 * Names spell their arguments. After the prefix (and blk_, vec_ or cvec_ for
 * blocks, counted real vectors and one counted complex kernel) come the letters
 * of the result, the verb, and the operands in the order of the arguments:
 *
 *     L   a binary32 sample, scalar or array     U  uint32_t: count or shift
 *     S   a gain, coefficient or mask: binary32  I  int32_t: shift either way
 *     BL  a block of 32 samples                  N  a binary64 result
 *     CL  complex samples, pairs (re, im)        VL, VS  real samples, one for
 *     CS  complex gains                              each complex one
 *
 * A digit repeats the letter behind it: 8S is an array of eight gains. Result
 * pointers come first and the count n last; complex counts are of pairs. Filters
 * take result, input, coefficients, state and then a shift; mixes take their
 * gains right after the result.
 *
 * Every kernel exists twice. mvk_..._flex takes pointers at any float's address
 * and any count. MVK_..._strict may assume buffers aligned to 32 bytes and counts
 * that are multiples of 4. The two give the same bits wherever both may be
 * called, except where it is said. Kernels return their result pointer unless
 * said otherwise; none allocates, fails or keeps a pointer (except a delay line,
 * which keeps its buffer). All are reentrant.
 *
 * Notation. Each of these is rounded once, and the order written is the order of
 * rounding; * + - / round one at a time in binary32 unless binary64 is named:
 *
 *     fma(a, b, c)  = a * b + c
 *     fms(a, b, c)  = c - a * b
 *     fnms(a, b, c) = a * b - c
 *     maxnum, minnum: IEEE 754-2008 maxNum and minNum; a number beats a NaN, and
 *                     +0 is greater than -0
 *     max, min:       the same, but a NaN in either operand gives a NaN
 *
 * A shift by k is a product with 2^k, the float whose bits are (k + 127) << 23 in
 * 32 bits. k is not checked, except in vec_LshlLIU and its like: k = -127 gives
 * 0, k = 128 infinity, and beyond that the pattern wraps into a wrong value,
 * sign bit included (k = 130 gives -2^-126).
 *
 * Results may be written over inputs at the same address unless said otherwise;
 * other overlaps are not allowed, except for the masks.
 *
 * Literature: IEEE 754-2008, clauses 5.3.1 and 5.4.1, on maxNum and
 * fusedMultiplyAdd; U. Zölzer (ed.), "DAFX", Wiley 2011, on delay lines and
 * envelope followers; G. F. Franklin, J. D. Powell and M. Workman, "Digital
 * Control of Dynamic Systems", Addison-Wesley 1998, on state-space sections.
 */
#ifndef MVK_KERNELS_H
#define MVK_KERNELS_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* Declares mvk_<name>_flex and MVK_<name>_strict. */
#define MVK_TWINS(result, name, ...)            \
  MVK_API result mvk_##name##_flex __VA_ARGS__; \
  MVK_API result MVK_##name##_strict __VA_ARGS__

/* Declares a companion that a caller who brings a coefficient record into
 * working form would call. Records are in working form as they are filled: it
 * returns its argument and does nothing else. */
#define MVK_SET_COEF(name) MVK_API void *MVK_blk_##name##_set_coef(void *coefficients)

/* ---- Blocks: i from 0 to 31 -------------------------------------------- */

/* y[i] = maxnum(x[i], s) in the flex form, max(x[i], s) in the strict form: they
 * differ for NaN samples, which give s and NaN. */
MVK_TWINS(float *, BLmaxBLL, (float *y, const float *x, float s));
MVK_TWINS(float *, BLmaxBLL_inplace, (float *y, float s));

/* y[i] = y[i] * s */
MVK_TWINS(float *, BLmpyBLS_inplace, (float *y, float s));

/* y[i] = x[i] * (s * 2^k) */
MVK_TWINS(float *, BLmpy_scaleBLSU, (float *y, const float *x, float s, uint32_t k));
MVK_TWINS(float *, BLmpy_scaleBLSU_inplace, (float *y, float s, uint32_t k));

/* y[i] = x[i] * (s * 2^k), the outer product formed in binary64 */
MVK_TWINS(float *, BLmpy_scale_xBLSU, (float *y, const float *x, float s, uint32_t k));

/* y[i] = x[i] + s */
MVK_TWINS(float *, BLsaddBLL, (float *y, const float *x, float s));

/* ---- Reductions -------------------------------------------------------- */

/* The largest magnitude, as maxnum(-smallest, largest). Blocks of -0 give +0.
 *
 * flex: over x[0] to x[n - 1], and x[0] also if n is 0. NaNs are skipped; only
 * NaNs give a NaN.
 * strict: over the count rounded up to a multiple of 4, at least 4. A NaN gives
 * a NaN. */
MVK_TWINS(float, vec_Labs_maxLU, (const float *x, uint32_t n));

/* The same; both forms are vec_Labs_maxLU's flex form. */
MVK_TWINS(float, vec_Sabs_maxSU, (const float *x, uint32_t n));

/* Left shifts until the largest magnitude m reaches [0.5, 1), from 0 to 60: with
 * e the biased exponent of m, max(126 - e, 0) but at most 60, and 60 for zeros
 * and denormals. Infinity and NaN give 0. Both forms take m from
 * vec_Labs_maxLU's strict form if x is aligned to 32 bytes and n a multiple of 4,
 * and else from its flex form. */
MVK_TWINS(uint32_t, vec_UnormLU, (const float *x, uint32_t n));

/* The same over vec_Sabs_maxSU. */
MVK_TWINS(uint32_t, vec_UnormSU, (const float *x, uint32_t n));

/* Dot product, sum over i of a[i] * b[i]. The forms round differently.
 *
 * strict: four lanes from 0, element i fused into lane i mod 4, added up as
 * (lane 0 + lane 1) + (lane 2 + lane 3); the count is rounded up to a multiple
 * of 4.
 * flex: an odd count starts with s0 = a[0] * b[0], an even one with s0 = 0. The
 * next pair gives s0 = fma(a, b, s0) and s1 = a * b. If fewer than 8 elements
 * were even, the further pairs are fused into s0 and s1; else the lanes (s0, s1,
 * 0, 0) take the next elements in fours, s0 = lane 0 + lane 2 and s1 = lane 1 +
 * lane 3, and a pair that is left is fused into them. The result is s0 + s1.
 * n = 0 gives 0. */
MVK_TWINS(float, vec_LdotLLU, (const float *a, const float *b, uint32_t n));

/* Dot product in binary64, every element widened. acc = a[0] * b[0], also if n
 * is 0. Up to n = 4 the other elements are fused into acc in order. Beyond, two
 * lanes v from 0 take the elements from 1 on in fours (i, i+1, i+2, i+3) as
 *
 *     v = v + fma(a[i..i+1], b[i..i+1], a[i+2..i+3] * b[i+2..i+3]),
 *
 * acc = acc + (v[0] + v[1]), and the last (n - 1) mod 4 are fused into acc in
 * order. */
MVK_TWINS(double, vec_NdotLLU, (const float *a, const float *b, uint32_t n));

/* Mean of the squares, sum * float(1.0 / n) with n as a signed count. The sum has
 * four lanes from 0, element i fused into lane i mod 4, added up as (lane 0 +
 * lane 1) + (lane 2 + lane 3). flex: the lanes take the full fours, the last
 * n mod 4 squares are fused into the sum in order; n below 4 is one such sum from
 * 0, and n = 0 gives 0. strict: the count is rounded up to a multiple of 4; n = 0
 * gives NaN. */
MVK_TWINS(float, vec_Lmean_sqrLU, (const float *x, uint32_t n));

/* Sum of the squares, the same sum * 2^-k. n = 0 gives 0. */
MVK_TWINS(float, vec_Lsum_sqrLUU, (const float *x, uint32_t k, uint32_t n));

/* ---- Mixes, limits and arithmetic of blocks ------------------------------ */

/* y = a * g0
 * y = fma(a, g0, b * g1)
 * y = fma(c, g2, fma(a, g0, b * g1))
 * y = fma(d, g3, fma(c, g2, fma(a, g0, b * g1))) */
MVK_TWINS(float *, blk_LmixL, (float *y, const float *g, const float *a));
MVK_TWINS(float *, blk_LmixLL, (float *y, const float *g, const float *a, const float *b));
MVK_TWINS(float *, blk_LmixLLL,
          (float *y, const float *g, const float *a, const float *b, const float *c));
MVK_TWINS(float *, blk_LmixLLLL,
          (float *y, const float *g, const float *a, const float *b, const float *c,
           const float *d));

/* y = a * (g0 * 2^k) for one input; for more, the sum above, then * 2^k. */
MVK_TWINS(float *, blk_Lmix_shlUL, (float *y, const float *g, uint32_t k, const float *a));
MVK_TWINS(float *, blk_Lmix_shlULL,
          (float *y, const float *g, uint32_t k, const float *a, const float *b));
MVK_TWINS(float *, blk_Lmix_shlULLL,
          (float *y, const float *g, uint32_t k, const float *a, const float *b, const float *c));
MVK_TWINS(float *, blk_Lmix_shlULLLL,
          (float *y, const float *g, uint32_t k, const float *a, const float *b, const float *c,
           const float *d));

/* Mix of n >= 1 blocks, given as n pointers (const float *). The first
 * (n - 1) mod 4 + 1 are mixed as above. Each further group p, q, r, u with gains
 * G0 to G3 joins as
 *
 *     y = fma(u, G3, fma(r, G2, fma(p, G0, q * G1) + y)). */
MVK_API float *MVK_blk_LmixnL(float *y, const float *g, uint32_t n, ...);
MVK_API float *MVK_blk_LmixnL_strict(float *y, const float *g, uint32_t n, ...);

/* Mix of n >= 1 blocks, given as n pointers, with G[i] = 2^k * g[i]:
 * y = p0 * G0, and for each further block y = fma(p[i], G[i], y). */
MVK_API float *MVK_blk_Lmix_shlUnL(float *y, const float *g, uint32_t k, uint32_t n, ...);
MVK_API float *MVK_blk_Lmix_shlUnL_strict(float *y, const float *g, uint32_t k, uint32_t n, ...);

/* Mix of n >= 1 blocks that lie one behind the other from `blocks` on. The first
 * h = (n - 1) mod 4 + 1 give
 *
 *     h = 1:  y = a0 * (g0 * 2^k)
 *     h = 2:  y = fma(a0, g0, a1 * g1) * 2^k
 *     h = 3:  y = fma(a0, g0, fma(a1, g1, a2 * g2)) * 2^k
 *     h = 4:  y = fma(a3, g3, fma(a0, g0, fma(a1, g1, a2 * g2))) * 2^k
 *
 * and each further group from block m on joins as y = fma(t, 2^k, y), where
 *
 *     t = fma(a[m+3], g[m+3], fma(a[m+2], g[m+2], fma(a[m], g[m], a[m+1] * g[m+1]))).
 */
MVK_API float *MVK_blk_Lmix_shlaL(float *y, const float *g, uint32_t n, const float *blocks,
                                  uint32_t k);
MVK_API float *MVK_blk_Lmix_shlaL_strict(float *y, const float *g, uint32_t n, const float *blocks,
                                         uint32_t k);

/* y = (a * b) * 2^k, both products in binary64, rounded once to binary32 */
MVK_TWINS(float *, blk_Lmpy_shlLLU, (float *y, const float *a, const float *b, uint32_t k));

/* y = (b * a) * 2^k in binary32 */
MVK_TWINS(float *, blk_Lmpy_shlLSU, (float *y, const float *a, const float *b, uint32_t k));

/* Mid and side: p = fma(p, 0.5, q * 0.5), q = fma(p, 0.5, -(q * 0.5)). Returns p. */
MVK_TWINS(float *, blk_LLshuffleLL_inplace, (float *p, float *q));

/* Its inverse, without a scale: p = p + q, q = p - q. Returns p. */
MVK_TWINS(float *, blk_LLdeshuffleLL_inplace, (float *p, float *q));

/* Where a crossfade stands in its table. */
typedef struct mvk_blk_crossfade_state {
  uint32_t position; /* p: a multiple of what the blocks have advanced */
  uint32_t length;   /* N: entries of the table */
} mvk_blk_crossfade_state;

/* Sets p = 0 and N = length. The second argument is ignored. */
MVK_API void MVK_blk_Lcrossfade_gainLS_setup(mvk_blk_crossfade_state *state,
                                             const void *coefficients, uint32_t length);
MVK_SET_COEF(Lcrossfade_gainLS);

/* A gain from s to t along a rising table: with j = p + i,
 *
 *     y[i] = fma(table[N-1-j], s, t * table[j]) * x[i]
 *
 * Then p = p + 32, less N if that isn't below N. The block must lie within the
 * table: p + 31 < N. */
MVK_TWINS(float *, blk_Lcrossfade_gainLS,
          (float *y, mvk_blk_crossfade_state *state, const float *x, const float *table, float s,
           float t));

/* y = v */
MVK_TWINS(float *, blk_Lconst, (float *y, float v));
/* y = |a|, the sign bit cleared */
MVK_TWINS(float *, blk_LabsL, (float *y, const float *a));
/* y = minnum(maxnum(a, limits[0]), limits[1]): the lower limit first */
MVK_TWINS(float *, blk_LclipL, (float *y, const float *limits, const float *a));
/* y = choice[0] where a > b, else choice[1], also for a NaN */
MVK_TWINS(float *, blk_LcmpLL, (float *y, const float *choice, const float *a, const float *b));
/* y = maxnum(a, b), y = maxnum(maxnum(b, c), a), and likewise minnum */
MVK_TWINS(float *, blk_LmaxLL, (float *y, const float *a, const float *b));
MVK_TWINS(float *, blk_LmaxLLL, (float *y, const float *a, const float *b, const float *c));
MVK_TWINS(float *, blk_LminLL, (float *y, const float *a, const float *b));
MVK_TWINS(float *, blk_LminLLL, (float *y, const float *a, const float *b, const float *c));
/* y = a + b, y = a - b */
MVK_TWINS(float *, blk_LsaddLL, (float *y, const float *a, const float *b));
MVK_TWINS(float *, blk_LsubLL, (float *y, const float *a, const float *b));

/* ---- Filters of blocks --------------------------------------------------- */

/* Each takes one block a call and goes on where the last one ended. c holds the
 * coefficients c0, c1, ..., s the state. A setup clears the state; coefficients
 * may change between blocks without it. Results may be written over the input
 * except by Liir2ssv1_usmpL, whose result runs ahead of it. */

/* y[n] = fma(c0, x[n], c1 * x[n-1]); s: x[n-1] */
MVK_API void MVK_blk_Lfir2L_setup(float *s);
MVK_SET_COEF(Lfir2L);
MVK_TWINS(float *, blk_Lfir2L, (float *y, const float *x, const float *c, float *s));

/* y[n] = fma(c0, x[n], fma(c1, x[n-1], c2 * x[n-2])); s: x[n-1], x[n-2] */
MVK_API void MVK_blk_Lfir3L_setup(float *s);
MVK_SET_COEF(Lfir3L);
MVK_TWINS(float *, blk_Lfir3L, (float *y, const float *x, const float *c, float *s));

/* Any number of taps from 3 up. s: the last taps - 1 inputs, oldest first, which
 * setup clears (none for one tap). With N = taps and x[n-k] the input k samples
 * back:
 *
 *     acc = c(N-1) * x[n-N+1]
 *     acc = acc + fma(c(k), x[n-k], c(k-1) * x[n-k+1])   k = N-2, N-4, ... >= 3
 *     acc = fma(c2, x[n-2], acc)                         if N is even
 *
 *     even n:  y[n] = fma(c1, x[n-1], fma(x[n], c0, acc))
 *     odd n:   y[n] = acc + fma(x[n-1], c1, x[n] * c0)
 */
MVK_API void MVK_blk_LfirUL_setup(float *s, uint32_t taps);
MVK_SET_COEF(LfirUL);
MVK_TWINS(float *, blk_LfirUL, (float *y, const float *x, uint32_t taps, const float *c, float *s));

/* First order. s: x[n-1], w[n-1]
 *
 *     w[n] = fma(c0, x[n], fma(c1, x[n-1], c2 * w[n-1]))
 *
 *     Liir1L:         y[n] = w[n]
 *     Liir1_shlLU:    y[n] = 2^k * w[n]
 *     Liir1_shl_addLL: y[n] = fma(w[n], 2, b[n]), b the addend's block
 */
MVK_API void MVK_blk_Liir1L_setup(float *s);
MVK_SET_COEF(Liir1L);
MVK_TWINS(float *, blk_Liir1L, (float *y, const float *x, const float *c, float *s));
MVK_TWINS(float *, blk_Liir1_shlLU,
          (float *y, const float *x, const float *c, float *s, uint32_t k));
MVK_TWINS(float *, blk_Liir1_shl_addLL,
          (float *y, const float *x, const float *b, const float *c, float *s));

/* State of the first-order filter in binary64. */
typedef struct mvk_blk_iir1x_state {
  float s0; /* x[n-1] */
  double w; /* w[n-1] */
} mvk_blk_iir1x_state;

/* First order in binary64, inputs and coefficients widened:
 * w[n] = fma(x[n], c0, fma(w[n-1], c2, x[n-1] * c1)), y[n] = w[n] narrowed. */
MVK_API void MVK_blk_Liir1xL_setup(mvk_blk_iir1x_state *s);
MVK_SET_COEF(Liir1xL);
MVK_TWINS(float *, blk_Liir1xL, (float *y, const float *x, const float *c, mvk_blk_iir1x_state *s));

/* Second order, direct form. c3 is half of y[n-1]'s coefficient, d = c3 + c3:
 *
 *     y[n] = fma(c0, x[n], fma(d, y[n-1], fma(c1, x[n-1], fma(c2, x[n-2], c4 * y[n-2]))))
 *
 * s: x[n-1], x[n-2], y[n-1], y[n-2] */
MVK_API void MVK_blk_Liir2df1L_setup(float *s);
MVK_SET_COEF(Liir2df1L);
MVK_TWINS(float *, blk_Liir2df1L, (float *y, const float *x, const float *c, float *s));

/* Second order, state space. s: s0, s1. The output comes from the state before
 * the sample; then the state moves on:
 *
 *     ssv1   t = fms(c0, x, s0 + s1), y = t + t
 *            s0' = fma(c3, s0, fnms(c1, x, c4 * s1))
 *            s1' = fma(c2, x, fma(c3, s1, c4 * s0))
 *     ssv2   t = fms(c0, x, s0), y = t + t
 *            s0' = fma(c1, x, fma(c3, s0, s1))
 *            s1' = fma(c2, x, fma(c3, s1, c4 * s0))
 *     ssv3   as ssv2, but s0' = fma(c1, x, fma(c3, s0, s1 * 0.0625)): s1 is carried
 *            16 times larger, and c2 and c4 have to match
 *
 * ssv1ef is ssv1 under a name of its own; ssv2_shl has y = fms(c0, x, s0) *
 * 2^(k+1) in place of the doubling. */
MVK_API void MVK_blk_Liir2ssL_setup(float *s);
MVK_SET_COEF(Liir2ssL);
MVK_API void MVK_blk_Liir2ssefL_setup(float *s);
MVK_SET_COEF(Liir2ssefL);
MVK_TWINS(float *, blk_Liir2ssv1L, (float *y, const float *x, const float *c, float *s));
MVK_TWINS(float *, blk_Liir2ssv1efL, (float *y, const float *x, const float *c, float *s));
MVK_TWINS(float *, blk_Liir2ssv2L, (float *y, const float *x, const float *c, float *s));
MVK_TWINS(float *, blk_Liir2ssv2L_inplace, (float *y, const float *c, float *s));
MVK_TWINS(float *, blk_Liir2ssv2_shlLU,
          (float *y, const float *x, const float *c, float *s, uint32_t k));
MVK_TWINS(float *, blk_Liir2ssv3L_inplace, (float *y, const float *c, float *s));

/* Changing the rate by two, with the output of ssv1 and, m = -c4,
 *
 *     s0' = fma(c1, x, fma(c3, s0, m * s1))
 *     s1' = fma(c2, x, fma(c3, s1, c4 * s0))
 *
 * dsmp reads 64 samples and writes the outputs of those of even index. usmp
 * reads 32 samples and writes 64: for each input its output, and then, as the
 * state moves on with a zero input, (s0 + s1) + (s0 + s1) and the updates
 * fma(c3, s0, m * s1) and fma(c3, s1, c4 * s0). */
MVK_TWINS(float *, blk_Liir2ssv1_dsmpL, (float *y, const float *x, const float *c, float *s));
MVK_TWINS(float *, blk_Liir2ssv1_usmpL, (float *y, const float *x, const float *c, float *s));

/* ssv3 in place over n buffers in order, each with a state and all with the one
 * coefficient record. Returns the array of buffers. */
MVK_API float **MVK_blk_Liir2ssv3aLU_inplace(float **y, const float *c, float **s, uint32_t n);
MVK_API float **MVK_blk_Liir2ssv3aLU_inplace_strict(float **y, const float *c, float **s,
                                                    uint32_t n);

/* ---- Delay lines and followers ------------------------------------------- */

/* A ring of blocks in a caller's buffer of length + 32 samples, the last 32 of
 * which repeat the first, so that a block that crosses the end is contiguous. */
typedef struct mvk_blk_delay_state {
  uint32_t position; /* first sample of the newest block */
  uint32_t length;   /* samples in the ring, a multiple of 32 */
  float *buffer;
} mvk_blk_delay_state;

/* length = (d rounded up to a multiple of 32) + 32, position = 0. Keeps the
 * buffer and leaves its contents alone; clear them by blk_delay_clear. */
MVK_API void mvk_blk_delay_setup_flex(mvk_blk_delay_state *state, float *buffer, uint32_t d);
MVK_API void MVK_blk_delay_setup_strict(mvk_blk_delay_state *state, float *buffer, uint32_t d);

/* Writes one block: position moves on by 32, to 0 at the ring's end, and what is
 * written to 0 is repeated behind the end. */
MVK_TWINS(void, blk_delayL, (mvk_blk_delay_state * state, const float *x));

/* Copies the block that lies d samples before the newest, 0 <= d <= setup's d. */
MVK_TWINS(float *, blk_LdelayU, (const mvk_blk_delay_state *state, float *y, uint32_t d));

/* Where that block lies in the ring. */
MVK_API float *MVK_blk_refLdelayU(const mvk_blk_delay_state *state, uint32_t d);

/* Clears the n samples before `end`, or before the end of the storage if that is
 * null, and returns their start: the next call's `end`. If they would begin
 * before the buffer, clears up to there and returns null: all is clear. */
MVK_TWINS(float *, blk_delay_clear, (mvk_blk_delay_state * state, float *end, uint32_t n));

/* Envelope with attack and decay. State e, coefficients widened to binary64 (1 - c
 * formed in binary32 first):
 *
 *     u = fma(x, c1, e * (1 - c1)), v = fma(x, c0, e * (1 - c0))
 *     e = maxnum(u, v), y = e narrowed
 *
 * The faster smoother wins as the input rises and the slower as it falls. */
MVK_API void MVK_blk_Lattack_decay_iir1L_setup(double *e);
MVK_SET_COEF(Lattack_decay_iir1L);
MVK_TWINS(float *, blk_Lattack_decay_iir1L, (float *y, const float *x, const float *c, double *e));

/* The same with a floor: e = maxnum(maxnum(u, v), x * c2). */
MVK_API void MVK_blk_Lattack_decay_peak_iir1L_setup(double *e);
MVK_SET_COEF(Lattack_decay_peak_iir1L);
MVK_TWINS(float *, blk_Lattack_decay_peak_iir1L,
          (float *y, const float *x, const float *c, double *e));

/* Integrator within limits, the upper one first: s = minnum(maxnum(s + x[i],
 * limits[1]), limits[0]), y[i] = s. */
MVK_API void MVK_blk_LintegrateL_setup(float *s);
MVK_SET_COEF(LintegrateL);
MVK_TWINS(float *, blk_LintegrateL, (float *y, const float *x, const float *limits, float *s));

/* Running reciprocal of a slowly varying input, r towards 2^-k / x, by one step
 * of Newton and Raphson a sample:
 *
 *     e = fms(2^(k-1), minnum(r * x, 2^(1-k) * 0.75), 1)
 *     r = r * (e + e), y = r
 *
 * setup sets r = 2^-k. */
MVK_API void MVK_blk_LnrrecipLU_setup(float *r, uint32_t k);
MVK_SET_COEF(LnrrecipLU);
MVK_TWINS(float *, blk_LnrrecipLU, (float *y, const float *x, uint32_t k, float *r));

/* ---- Counted real vectors: i from 0 to n - 1 ------------------------------ */

/* y[i] = x[i] * 2^k, k clamped to -60 to 60. In place, k = 0 stores nothing. */
MVK_TWINS(float *, vec_LshlLIU, (float *y, const float *x, int32_t k, uint32_t n));
MVK_TWINS(float *, vec_LshlLIU_inplace, (float *y, int32_t k, uint32_t n));
MVK_TWINS(float *, vec_SshlSIU_inplace, (float *y, int32_t k, uint32_t n));

/* y[i] = x[i] * s */
MVK_TWINS(float *, vec_LmpyLSU, (float *y, const float *x, float s, uint32_t n));
MVK_TWINS(float *, vec_LmpyLSU_inplace, (float *y, float s, uint32_t n));

/* y[i] = x[i] * m[i], and with the mask backwards y[i] = x[i] * m[n-1-i]. A result
 * that begins less than 16 bytes from an input is computed one element after the
 * other; further overlaps give what four elements at a time give. */
MVK_TWINS(float *, vec_LmaskLSU, (float *y, const float *x, const float *m, uint32_t n));
MVK_TWINS(float *, vec_Lmask_rev_coefLSU, (float *y, const float *x, const float *m, uint32_t n));

/* y[i] = v */
MVK_TWINS(float *, vec_LsetLU, (float *y, float v, uint32_t n));

/* 0 if tolerance < |a[i] - b[i]| for some i, else 1. NaNs count as equal. */
MVK_TWINS(int32_t, vec_IeqLLU, (const float *a, const float *b, uint32_t n, float tolerance));

/* ---- Complex vectors: n pairs, each a = (a0, a1) --------------------------- */

/* y = a + b, y = a - b, y = x, y = 0 */
MVK_TWINS(float *, CLaddCLCLU, (float *y, const float *a, const float *b, uint32_t n));
MVK_TWINS(float *, CLsubCLCLU, (float *y, const float *a, const float *b, uint32_t n));
MVK_TWINS(float *, CLcopyCLU, (float *y, const float *x, uint32_t n));
MVK_TWINS(float *, CLzeroCLU, (float *y, uint32_t n));

/* y = a * b: y1 = fma(a0, b1, a1 * b0), and the forms differ in
 * flex: y0 = fnms(a0, b0, a1 * b1); strict: y0 = fms(a1, b1, a0 * b0) */
MVK_TWINS(float *, CLmpyCLCSU, (float *y, const float *a, const float *b, uint32_t n));

/* y = x * s with a real scalar, and with a real vector y = x * v[i], which y may
 * not be */
MVK_TWINS(float *, CLmpyCLSU, (float *y, const float *x, float s, uint32_t n));
MVK_TWINS(float *, CLmpyCLVSU, (float *y, const float *x, const float *v, uint32_t n));

/* y = x * (s * 2^k) */
MVK_TWINS(float *, CLmpy_shlCLSIU, (float *y, const float *x, float s, int32_t k, uint32_t n));
MVK_TWINS(float *, CLmpy_shlCLSIU_inplace, (float *y, float s, int32_t k, uint32_t n));

/* y = y + a * b: y0 = fms(a1, b1, fma(a0, b0, y0)), y1 = fma(a1, b0, a0 * b1) + y1 */
MVK_TWINS(float *, CLmacCLCLU, (float *y, const float *a, const float *b, uint32_t n));

/* y = y + x * s: fma(x0, s, y0), fma(x1, s, y1) */
MVK_TWINS(float *, CLmacCLLU, (float *y, const float *x, float s, uint32_t n));

/* y = a * s + b * t: fma(a0, s, t * b0), fma(a1, s, t * b1) */
MVK_TWINS(float *, CLmixCLCLSSU,
          (float *y, const float *a, const float *b, float s, float t, uint32_t n));

/* y = a / b. inv = 1 / fma(b0, b0, b1 * b1) in binary64, its products narrowed:
 * y0 = fma(a0, b0, a1 * b1) * inv, y1 = fnms(a1, b0, a0 * b1) * inv */
MVK_TWINS(float *, CLdivCLCLU, (float *y, const float *a, const float *b, uint32_t n));

/* y = f / x, with f = 2^-k, and with f = s * 2^k; inv as above:
 * y0 = (f * x0) * inv, y1 = (-(x1 * f)) * inv */
MVK_TWINS(float *, CLrecipCLUU, (float *y, const float *x, uint32_t k, uint32_t n));
MVK_TWINS(float *, CLmpy_recipCLLIU, (float *y, const float *x, float s, int32_t k, uint32_t n));

/* y = x * 2^k, y = x * 2^-k; k = 0 copies */
MVK_TWINS(float *, CLshlCLUU, (float *y, const float *x, uint32_t k, uint32_t n));
MVK_TWINS(float *, CLshrCLUU, (float *y, const float *x, uint32_t k, uint32_t n));

/* Real y[i] = fma(u, u, v * v) with u = 2^k * x0, v = 2^k * x1. */
MVK_TWINS(float *, VLsquaredmagCLIU, (float *y, const float *x, int32_t k, uint32_t n));

/* y = a' * conj(b'), with a' = 2^k * a and b' = 2^k * b, each rounded:
 * y0 = fma(b'0, a'0, b'1 * a'1), y1 = fnms(b'0, a'1, b'1 * a'0) */
MVK_TWINS(float *, cvec_Lmpy_conjLLIU,
          (float *y, const float *a, const float *b, int32_t k, uint32_t n));

/* Mixes of planes with real gains. Planes p0, p1, ... are complex vectors that
 * start 2 m floats apart, m = n rounded up to a multiple of 4. For each component:
 *
 *     4:  y = fma(p3, g3, fma(p2, g2, fma(p0, g0, p1 * g1))), and z likewise with
 *         g4 to g7
 *     6:  y = fma(p5, g5, fma(p4, g4, fma(p3, g3, fma(p2, g2, fma(p0, g0, p1 * g1))))),
 *         and z with g6 to g11
 *     7:  y = fma(g6, p6, fma(g4, p4, g5 * p5) + w) with w the mix of p0 to p3,
 *         and z with g7 to g13
 *
 * Those with two results return y, and neither result may be one of their planes. */
MVK_TWINS(float *, CLmix4CL4SU, (float *y, const float *planes, const float *g, uint32_t n));
MVK_TWINS(float *, CLCLmix4CL8SU,
          (float *y, float *z, const float *planes, const float *g, uint32_t n));
MVK_TWINS(float *, CLCLmix6CL12SU,
          (float *y, float *z, const float *planes, const float *g, uint32_t n));
MVK_TWINS(float *, CLCLmix7CL14SU,
          (float *y, float *z, const float *planes, const float *g, uint32_t n));

/* Of value zero, and read by nothing. */
MVK_API extern const uint32_t mvk_clclmix5cl10csu_c;
MVK_API extern const uint32_t mvk_clclmix5cl10csu_order_coef_c;
MVK_API extern const uint32_t mvk_unused_debug;

MVK_END_DECLS

#endif
