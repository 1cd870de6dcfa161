/*
 * Fourier transforms of 2 to 4096 complex points, and of real sequences.
 *
 * A complex sequence is an array of pairs of floats, real part first, in natural
 * order before and after a transform. For a length N:
 *
 *     forward   X[k] = sum over n of x[n] exp(-2 pi j n k / N)
 *     inverse   x[n] = sum over k of X[k] exp(+2 pi j n k / N)
 *
 * Unscaled transforms are these sums. Scaled ones are the sums times 1/N, in
 * either direction: forward and inverse give back the data if one of the two is
 * scaled.
 *
 * There are two families. MVK_r4 has 43 lengths. Those of its powers of two are
 * the same to the bit on every processor, and accurate to about 3e-7 (here and
 * below: the largest error relative to the result's root mean square). Its other
 * lengths have twiddles of six decimals, and are accurate to 1e-6 to 2e-6.
 * MVK_r8 has 16 of the lengths from 64 up, needs fewer operations, and is
 * accurate to about 3e-7 throughout. The two agree to within rounding.
 *
 * All tables are constant and nothing has a state, except mvk_fft_state, which is
 * only read by transforms: any number of threads may run transforms at once on
 * arrays of their own. Nothing allocates or fails; no array needs more than a
 * float's alignment.
 *
 * Literature: J. W. Cooley and J. W. Tukey, "An algorithm for the machine
 * calculation of complex Fourier series", Math. Comp. 19, 1965; C. Van Loan,
 * "Computational Frameworks for the Fast Fourier Transform", SIAM 1992; H. V.
 * Sorensen, D. L. Jones, M. T. Heideman and C. S. Burrus, "Real-valued fast Fourier
 * transform algorithms", IEEE Trans. ASSP 35(6), 1987.
 */
#ifndef MVK_FFT_H
#define MVK_FFT_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* ---- Lengths ----------------------------------------------------------- */

/* DO(N) for the powers of two of MVK_r4 but 4096, for its other lengths, and for
 * the lengths of MVK_r8. */
/* clang-format off */
#define MVK_FFT_POWERS_OF_TWO(DO) \
  DO(2) DO(4) DO(8) DO(16) DO(32) DO(64) DO(128) DO(256) DO(512) DO(1024) DO(2048)
#define MVK_FFT_COMPOSITES(DO) \
  DO(6) DO(12) DO(15) DO(20) DO(24) DO(30) DO(36) DO(40) DO(45) DO(48) DO(60) DO(72) DO(80) \
  DO(90) DO(96) DO(120) DO(144) DO(160) DO(180) DO(192) DO(240) DO(288) DO(320) DO(360) \
  DO(384) DO(480) DO(576) DO(640) DO(720) DO(768) DO(960)
#define MVK_FFT_RADIX8(DO) \
  DO(64) DO(128) DO(144) DO(192) DO(240) DO(256) DO(320) DO(384) DO(512) DO(576) DO(720) \
  DO(768) DO(960) DO(1024) DO(2048) DO(4096)
/* clang-format on */

/* ---- Kernels ----------------------------------------------------------- */

/* A transform of N points from src to dst. n is ignored, and N by custom.
 *
 * dst and src are separate arrays of N pairs, except that they may be the same for
 * MVK_r4 of 2, 4, 6, 8 and 16 points. src is a work area: it is overwritten,
 * except by MVK_r4 of 2, 4, 6, 8, 12, 15, 16, 20, 24, 30 and 40 points and by MVK_r8
 * of 64. */
typedef void mvk_fft_kernel(float *dst, float *src, uint32_t n);

/* MVK_r4_fft_N and MVK_r4_inv_fft_N are unscaled, those with _s scaled; MVK_r8
 * likewise. Scaling multiplies the inputs: by powers of two exactly, else by the
 * float next to 1/N.
 *
 * MVK_r4 of 16 points has twiddles of six decimals (see mvk_fft_fwd_usc_16 for
 * better ones). The inverse of MVK_r4 equals the forward transform with real and
 * imaginary parts exchanged before and after to the bit, where the first radix is
 * 4: at 4^m points and at 12, 20, 36, 48, 60, 80, 144, 180, 192, 240, 320, 576,
 * 720, 768 and 960. */
#define MVK_FFT_DECLARE_KERNELS(family, N)                               \
  MVK_API void family##_fft_##N(float *dst, float *src, uint32_t n);     \
  MVK_API void family##_inv_fft_##N(float *dst, float *src, uint32_t n); \
  MVK_API void family##_fft_##N##_s(float *dst, float *src, uint32_t n); \
  MVK_API void family##_inv_fft_##N##_s(float *dst, float *src, uint32_t n);
#define MVK_FFT_DECLARE_R4(N) MVK_FFT_DECLARE_KERNELS(MVK_r4, N)
#define MVK_FFT_DECLARE_R8(N) MVK_FFT_DECLARE_KERNELS(MVK_r8, N)
MVK_FFT_POWERS_OF_TWO(MVK_FFT_DECLARE_R4)
MVK_FFT_COMPOSITES(MVK_FFT_DECLARE_R4)
MVK_FFT_DECLARE_R4(4096)
MVK_FFT_RADIX8(MVK_FFT_DECLARE_R8)

/* ---- Look-ups ---------------------------------------------------------- */

/* The two kernels of one family, length and direction. */
typedef struct mvk_fft_pair {
  mvk_fft_kernel *unscaled;
  mvk_fft_kernel *scaled;
} mvk_fft_pair;

/* The kernels of length n, or null. 8192 is answered as 4096. The records are
 * constant. For a set-up, not for every block: they search. */
MVK_API const mvk_fft_pair *MVK_r4_cplx_fwd_pair(uint32_t n);
MVK_API const mvk_fft_pair *MVK_r4_cplx_inv_pair(uint32_t n);
MVK_API const mvk_fft_pair *MVK_r8_cplx_fwd_pair(uint32_t n);
MVK_API const mvk_fft_pair *MVK_r8_cplx_inv_pair(uint32_t n);
MVK_API mvk_fft_kernel *MVK_r4_cplx_fwd_unscaled(uint32_t n);
MVK_API mvk_fft_kernel *MVK_r4_cplx_inv_unscaled(uint32_t n);
MVK_API mvk_fft_kernel *MVK_r4_cplx_fwd_scaled(uint32_t n);
MVK_API mvk_fft_kernel *MVK_r4_cplx_inv_scaled(uint32_t n);

/* 1, or 0 for null. */
MVK_API int mvk_valid_pair_ptr(const mvk_fft_pair *pair);

/* ---- Sized entry points ------------------------------------------------ */

/* MVK_r4's transforms with a work area apart, for all its lengths but 4096:
 * mvk_fft_DIRECTION_SCALING_N, where DIRECTION is fwd or inv and SCALING usc
 * (unscaled) or scl (scaled).
 *
 * Powers of two: src may be dst, and null means dst. scratch has room for N pairs
 * and is apart from dst; up to 8 points it isn't used. src keeps its values if it
 * is apart from dst and scratch; scratch may be src. The results are MVK_r4's to
 * the bit, except at 16 points, where the twiddles here are of full precision.
 *
 * Other lengths: the kernel of MVK_r4 itself. scratch isn't used. */
typedef void mvk_fft_transform(float *dst, float *src, float *scratch);

#define MVK_FFT_DECLARE_ENTRY_POINTS(N)                                     \
  MVK_API void mvk_fft_fwd_usc_##N(float *dst, float *src, float *scratch); \
  MVK_API void mvk_fft_inv_usc_##N(float *dst, float *src, float *scratch); \
  MVK_API void mvk_fft_fwd_scl_##N(float *dst, float *src, float *scratch); \
  MVK_API void mvk_fft_inv_scl_##N(float *dst, float *src, float *scratch);
MVK_FFT_POWERS_OF_TWO(MVK_FFT_DECLARE_ENTRY_POINTS)
MVK_FFT_COMPOSITES(MVK_FFT_DECLARE_ENTRY_POINTS)

/* The entry points of 2^i points, null for i = 0. */
MVK_API extern mvk_fft_transform *const mvk_fft_cplx_fwd_scl[12];
MVK_API extern mvk_fft_transform *const mvk_fft_cplx_fwd_usc[12];
MVK_API extern mvk_fft_transform *const mvk_fft_cplx_inv_scl[12];
MVK_API extern mvk_fft_transform *const mvk_fft_cplx_inv_usc[12];

/* The other lengths, ascending, their number, and their entry points by position. */
MVK_API extern const uint32_t mvk_non_power_two_lengths[31];
MVK_API extern const uint32_t mvk_num_of_non_power_two_lengths;
MVK_API extern mvk_fft_transform *const mvk_odd_fft_cplx_fwd_scl[31];
MVK_API extern mvk_fft_transform *const mvk_odd_fft_cplx_fwd_usc[31];
MVK_API extern mvk_fft_transform *const mvk_odd_fft_cplx_inv_scl[31];
MVK_API extern mvk_fft_transform *const mvk_odd_fft_cplx_inv_usc[31];

/* ---- A transform chosen at run time ------------------------------------- */

/* What a state is to run: complex transforms of n points, and transforms of real
 * sequences of 2 n samples. */
enum {
  MVK_FFT_CLFWD_SCALEDCL = 0x01,
  MVK_FFT_CLFWD_UNSCALEDCL = 0x02,
  MVK_FFT_CLINV_SCALEDCL = 0x04,
  MVK_FFT_CLINV_UNSCALEDCL = 0x08,
  MVK_FFT_CLFWD_SCALEDL = 0x10,
  MVK_FFT_CLFWD_UNSCALEDL = 0x20,
  MVK_FFT_LINV_SCALEDCL = 0x40,
  MVK_FFT_LINV_UNSCALEDCL = 0x80
};

/* Function pointers that flags don't ask for are null. May be copied. */
typedef struct mvk_fft_state {
  mvk_fft_transform *fwd_scl;
  mvk_fft_transform *inv_scl;
  mvk_fft_transform *fwd_usc;
  mvk_fft_transform *inv_usc;
  uint32_t n;
  uint32_t flags;
} mvk_fft_state;

/* 1 if n points can be transformed as the flags say, else 0. Complex: the powers
 * of two from 2 to 2048 and mvk_non_power_two_lengths. With a real flag: the
 * powers of two only. */
MVK_API int MVK_fft_is_supported(uint32_t n, int32_t flags);

/* Bytes for MVK_fft_init, at any address: 47, or 0 if it isn't supported. */
MVK_API uint32_t MVK_fft_state_query_mem(uint32_t n, int32_t flags);

/* 0: no scratch memory is needed. */
MVK_API uint32_t MVK_fft_scratch_query_mem(uint32_t n, int32_t flags);

/* Fills a state in mem, at the next multiple of 8 bytes, and returns it; null if mem
 * is null or the transforms aren't supported. */
MVK_API mvk_fft_state *MVK_fft_init(void *mem, uint32_t n, int32_t flags);

/* Zeroes the state that MVK_fft_init returned. Null is ignored. */
MVK_API void MVK_fft_shutdown(mvk_fft_state *state);

/* The transforms. `in` and `out` are separate arrays of n pairs, or of 2 n real
 * samples; `in` is used as a work area and overwritten. A transform whose flag wasn't
 * given must not be called.
 *
 * A real sequence x of 2 n samples has the packed spectrum
 *
 *     P[0] = (X[0], X[n]),  P[k] = X[k] for k from 1 to n - 1
 *
 * of its transform X of length 2 n; the bins above n follow by symmetry. scaled
 * forward gives X / (2 n), unscaled forward X; scaled inverse gives x from X, and
 * unscaled inverse 2 n x.
 *
 * In the names, CL is a complex and L a real sequence, result first: CLfwd_scaledL
 * makes a spectrum of a real sequence. */
MVK_API void MVK_fft_CLfwd_scaledCL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_CLfwd_unscaledCL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_CLinv_scaledCL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_CLinv_unscaledCL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_CLfwd_scaledL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_CLfwd_unscaledL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_Linv_scaledCL(const mvk_fft_state *state, float *out, float *in);
MVK_API void MVK_fft_Linv_unscaledCL(const mvk_fft_state *state, float *out, float *in);

/* ---- Real transforms without a state ------------------------------------ */

/* Transforms of real sequences of 2 n samples through MVK_r4, n being a power of
 * two from 2 to 4096, and packed spectra as above. The source comes first. src
 * and dst are separate arrays of 2 n floats, and src is overwritten (by forward
 * transforms: from n = 32 up). Other n are not allowed. */

/* dst = P of X, and of X / (2 n) */
MVK_API void MVK_r4_rfft_nn(float *src, float *dst, uint32_t n);
MVK_API void MVK_r4_rfft_nn_s(float *src, float *dst, uint32_t n);

/* dst = P of X / n, and of X / (2 n), for the n samples of b followed by the n
 * samples of a. The kernel works in place, so n is 2, 4, 8 or 16 only: from 32 up,
 * dst isn't a spectrum. a and b are kept. */
MVK_API void MVK_r4_rsplit_fft_nn(const float *a, const float *b, float *dst, uint32_t n);
MVK_API void MVK_r4_rsplit_fft_nn_s(const float *a, const float *b, float *dst, uint32_t n);

/* dst = 2 n x (under two names), and x */
MVK_API void MVK_r4_inv_rfft_nn(float *src, float *dst, uint32_t n);
MVK_API void MVK_r4_inv_rfft_half_n(float *src, float *dst, uint32_t n);
MVK_API void MVK_r4_inv_rfft_nn_s(float *src, float *dst, uint32_t n);

/* ---- Tables ------------------------------------------------------------ */

/* The twiddles of MVK_r4's powers of two, by the numbers of blocks in bit-reversed
 * order: rows 2 p - 2 and 2 p - 1, for p from 1 to 3, are the cosines and the sines
 * of -2 pi p phi(i) / 4, where phi(i) is i with its bits mirrored about the binary
 * point (phi(1) = 1/2, phi(2) = 1/4, phi(3) = 3/4). */
MVK_API extern const float mvk_fft_twiddle[6][1024];

/* sin(pi i / 4096) */
MVK_API extern const float mvk_fft_real_sine[6144];

/* mvk_rfft_sine_L[k - 1] = sin(2 pi k / L) for k from 1 to L / 4 - 1. */
/* clang-format off */
#define MVK_FFT_REAL_LENGTHS(DO) \
  DO(8) DO(16) DO(32) DO(64) DO(128) DO(256) DO(512) DO(1024) DO(2048) DO(4096) DO(8192)
/* clang-format on */
#define MVK_FFT_DECLARE_SINE(L) MVK_API extern const float mvk_rfft_sine_##L[L / 4 - 1];
MVK_FFT_REAL_LENGTHS(MVK_FFT_DECLARE_SINE)

MVK_END_DECLS

#endif
