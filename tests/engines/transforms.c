/* Fourier and cosine transforms of every length. */
#include <mvk_dct.h>
#include <mvk_fft.h>
#include <stdlib.h>
#include <string.h>

#include "engines.h"

enum { kMostPoints = 4096 };

static uint64_t run_pair(uint64_t digest, const mvk_fft_pair *pair, uint32_t points) {
  if (!mvk_valid_pair_ptr(pair)) return digest;
  const size_t bytes = 2 * points * sizeof(float);
  float *in = fresh(bytes), *out = fresh(bytes);
  noise_source noise = {points};
  fill_with_noise(&noise, in, 2 * points);
  pair->unscaled(out, in, points);
  digest = digest_of(digest, out, bytes);
  fill_with_noise(&noise, in, 2 * points);
  pair->scaled(out, in, points);
  digest = digest_of(digest, out, bytes);
  free(in), free(out);
  return digest;
}

static uint64_t run_fourier(void) {
  uint64_t digest = kEmptyDigest;
  for (uint32_t points = 2; points <= kMostPoints; ++points) {
    digest = run_pair(digest, MVK_r4_cplx_fwd_pair(points), points);
    digest = run_pair(digest, MVK_r4_cplx_inv_pair(points), points);
    digest = run_pair(digest, MVK_r8_cplx_fwd_pair(points), points);
    digest = run_pair(digest, MVK_r8_cplx_inv_pair(points), points);
  }
  return digest;
}

static uint64_t run_entry_point(uint64_t digest, mvk_fft_transform *transform, uint32_t points) {
  const size_t bytes = 2 * points * sizeof(float);
  float *in = fresh(bytes), *out = fresh(bytes), *scratch = fresh(bytes);
  noise_source noise = {points};
  fill_with_noise(&noise, in, 2 * points);
  transform(out, in, scratch);
  digest = digest_of(digest, out, bytes);
  free(in), free(out), free(scratch);
  return digest;
}

static uint64_t run_entry_points(void) {
  uint64_t digest = kEmptyDigest;
  for (uint32_t i = 1; i < 12; ++i) {
    digest = run_entry_point(digest, mvk_fft_cplx_fwd_usc[i], 1u << i);
    digest = run_entry_point(digest, mvk_fft_cplx_inv_scl[i], 1u << i);
  }
  for (uint32_t i = 0; i < mvk_num_of_non_power_two_lengths; ++i) {
    digest = run_entry_point(digest, mvk_odd_fft_cplx_fwd_usc[i], mvk_non_power_two_lengths[i]);
    digest = run_entry_point(digest, mvk_odd_fft_cplx_inv_scl[i], mvk_non_power_two_lengths[i]);
  }
  return digest;
}

/* By a state, and with half the length's kernels looked up at every call. */
static uint64_t run_real(void) {
  const int32_t flags = MVK_FFT_CLFWD_SCALEDL | MVK_FFT_LINV_UNSCALEDCL;
  uint64_t digest = kEmptyDigest;
  for (uint32_t pairs = 2; pairs <= 2048; pairs *= 2) {
    const size_t bytes = 2 * pairs * sizeof(float);
    float *in = fresh(bytes), *out = fresh(bytes);
    void *memory = fresh(MVK_fft_state_query_mem(pairs, flags));
    mvk_fft_state *state = MVK_fft_init(memory, pairs, flags);
    noise_source noise = {pairs};
    fill_with_noise(&noise, in, 2 * pairs);
    MVK_fft_CLfwd_scaledL(state, out, in);
    MVK_fft_Linv_unscaledCL(state, in, out);
    digest = digest_of(digest, in, bytes);
    MVK_r4_rfft_nn_s(in, out, pairs);
    MVK_r4_inv_rfft_nn(out, in, pairs);
    digest = digest_of(digest, in, bytes);
    MVK_fft_shutdown(state);
    free(in), free(out), free(memory);
  }
  return digest;
}

static uint64_t run_cosine_length(uint64_t digest, const float *twiddle, uint32_t n) {
  const size_t bytes = n * sizeof(float);
  float *in = fresh(bytes), *out = fresh(bytes);
  noise_source noise = {n};
  fill_with_noise(&noise, in, n);
  mvk_dctII_scaled(NULL, twiddle, out, in, n);
  mvk_dctIII_scaled(NULL, twiddle, in, out, n);
  _mvk_ldct2_unscaled_iplu(NULL, twiddle, in, n);
  digest = digest_of(digest, in, bytes);
  free(in), free(out);
  return digest;
}

static uint64_t run_rotations(uint64_t digest, const float *c, const float *s, uint32_t n) {
  const size_t bytes = 2 * n * sizeof(float);
  float *in = fresh(bytes), *out = fresh(bytes);
  noise_source noise = {n};
  fill_with_noise(&noise, in, 2 * n);
  mvk_dct4_premodulation(out, in, c, s, n);
  mvk_dct4_postmodulation_shl1(in, out, c, s, n);
  digest = digest_of(digest, in, bytes);
  free(in), free(out);
  return digest;
}

/* Lengths are multiples of 4 with a transform of half the length. */
static uint64_t run_cosine(void) {
  uint64_t digest = kEmptyDigest;
#define RUN(n)                                                           \
  if (n % 4 == 0 && mvk_valid_pair_ptr(MVK_r4_cplx_fwd_pair(n / 2))) {   \
    digest = run_cosine_length(digest, mvk_dct_twiddle_table16_L##n, n); \
  }                                                                      \
  digest = run_rotations(digest, mvk_dct_twiddle_table16_L##n##_1,       \
                         mvk_dct_twiddle_table16_L##n##_2, n);
  MVK_DCT_LENGTHS(RUN)
#undef RUN
  return digest;
}

const engine transforms[] = {{"Fourier transforms", run_fourier},
                             {"their entry points", run_entry_points},
                             {"real transforms", run_real},
                             {"cosine transforms", run_cosine},
                             {NULL, NULL}};
