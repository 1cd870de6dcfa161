/* Kernels that keep a state from block to block, and one of each shape of those that don't. */
#include <mvk_kernels.h>
#include <stdlib.h>

#include "engines.h"

enum { kBlock = 32, kBlocks = 20, kDelay = 100 };

/* ---- Recursions ---- */

#define RUN_BLOCKS(setup, call)                     \
  do {                                              \
    setup;                                          \
    for (int block = 0; block < kBlocks; ++block) { \
      float y[kBlock], x[kBlock];                   \
      fill_with_noise(&noise, x, kBlock);           \
      call;                                         \
      digest = digest_of(digest, y, sizeof y);      \
    }                                               \
  } while (0)

static uint64_t run_filters(void) {
  static const float c[] = {0.5f, 0.25f, 0.125f, -0.25f, 0.375f, 0.0625f, 0.5f, 0.25f, 0.1f, 0.2f};
  uint64_t digest = kEmptyDigest;
  noise_source noise = {1};
  float s[16];
  RUN_BLOCKS(MVK_blk_Lfir2L_setup(s), mvk_blk_Lfir2L_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_Lfir3L_setup(s), mvk_blk_Lfir3L_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_LfirUL_setup(s, 7), mvk_blk_LfirUL_flex(y, x, 7, c, s));
  RUN_BLOCKS(MVK_blk_Liir1L_setup(s), mvk_blk_Liir1L_flex(y, x, c, s));
  mvk_blk_iir1x_state iir1x;
  RUN_BLOCKS(MVK_blk_Liir1xL_setup(&iir1x), mvk_blk_Liir1xL_flex(y, x, c, &iir1x));
  RUN_BLOCKS(MVK_blk_Liir2df1L_setup(s), mvk_blk_Liir2df1L_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_Liir2ssL_setup(s), mvk_blk_Liir2ssv1L_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_Liir2ssefL_setup(s), mvk_blk_Liir2ssv1efL_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_Liir2ssL_setup(s), mvk_blk_Liir2ssv2L_flex(y, x, c, s));
  double e[2];
  RUN_BLOCKS(MVK_blk_Lattack_decay_iir1L_setup(e), mvk_blk_Lattack_decay_iir1L_flex(y, x, c, e));
  RUN_BLOCKS(MVK_blk_Lattack_decay_peak_iir1L_setup(e),
             mvk_blk_Lattack_decay_peak_iir1L_flex(y, x, c, e));
  RUN_BLOCKS(MVK_blk_LintegrateL_setup(s), mvk_blk_LintegrateL_flex(y, x, c, s));
  RUN_BLOCKS(MVK_blk_LnrrecipLU_setup(s, 2), mvk_blk_LnrrecipLU_flex(y, x, 2, s));
  return digest;
}

static uint64_t run_delay(void) {
  uint64_t digest = kEmptyDigest;
  noise_source noise = {2};
  const uint32_t floats = 128 + kBlock + kBlock;
  float *ring = fresh(floats * sizeof *ring);
  mvk_blk_delay_state line;
  RUN_BLOCKS((mvk_blk_delay_setup_flex(&line, ring, kDelay),
              mvk_blk_delay_clear_flex(&line, NULL, floats)),
             (mvk_blk_delayL_flex(&line, x), mvk_blk_LdelayU_flex(&line, y, kDelay)));
  free(ring);
  return digest;
}

static uint64_t run_crossfade(void) {
  uint64_t digest = kEmptyDigest;
  noise_source noise = {5};
  float table[4 * kBlock];
  fill_with_noise(&noise, table, 4 * kBlock);
  mvk_blk_crossfade_state fade;
  RUN_BLOCKS(MVK_blk_Lcrossfade_gainLS_setup(&fade, NULL, 4 * kBlock),
             mvk_blk_Lcrossfade_gainLS_flex(y, &fade, x, table, 0.25f, 1));
  return digest;
}

/* ---- Vectors and blocks ---- */

static uint64_t run_vectors(void) {
  uint64_t digest = kEmptyDigest;
  noise_source noise = {3};
  for (uint32_t n = 1; n <= 35; ++n) {
    const size_t bytes = 2 * n * sizeof(float);
    float *a = fresh(bytes), *b = fresh(bytes), *y = fresh(bytes);
    fill_with_noise(&noise, a, 2 * n);
    fill_with_noise(&noise, b, 2 * n);
#define RUN(call) \
  call;           \
  digest = digest_of(digest, y, bytes)
    RUN(mvk_CLaddCLCLU_flex(y, a, b, n));
    RUN(mvk_CLmpyCLCSU_flex(y, a, b, n));
    RUN(MVK_CLmpyCLCSU_strict(y, a, b, n));
    RUN(mvk_CLmacCLCLU_flex(y, a, b, n));
    RUN(mvk_CLmixCLCLSSU_flex(y, a, b, 0.5f, 0.25f, n));
    RUN(mvk_CLdivCLCLU_flex(y, a, b, n));
    RUN(mvk_cvec_Lmpy_conjLLIU_flex(y, a, b, 1, n));
    RUN(mvk_VLsquaredmagCLIU_flex(y, a, 1, n));
    RUN(mvk_vec_LshlLIU_flex(y, a, 3, n));
    RUN(mvk_vec_Lmask_rev_coefLSU_flex(y, a, b, n));
#undef RUN
    const float single[] = {mvk_vec_Labs_maxLU_flex(a, n), mvk_vec_LdotLLU_flex(a, b, n),
                            mvk_vec_Lmean_sqrLU_flex(a, n)};
    const double exact = mvk_vec_NdotLLU_flex(a, b, n);
    const uint32_t headroom = mvk_vec_UnormLU_flex(a, n);
    digest = digest_of(digest_of(digest, single, sizeof single), &exact, sizeof exact);
    digest = digest_of(digest, &headroom, sizeof headroom);
    free(a), free(b), free(y);
  }
  return digest;
}

static uint64_t run_blocks(void) {
  uint64_t digest = kEmptyDigest;
  noise_source noise = {4};
  static const float g[] = {0.5f, -0.25f, 0.75f, 1};
  float a[kBlock], b[kBlock], c[kBlock], d[kBlock], y[kBlock];
  fill_with_noise(&noise, a, kBlock);
  fill_with_noise(&noise, b, kBlock);
  fill_with_noise(&noise, c, kBlock);
  fill_with_noise(&noise, d, kBlock);
  mvk_blk_LmixLLLL_flex(y, g, a, b, c, d);
  digest = digest_of(digest, y, sizeof y);
  MVK_blk_LmixnL(y, g, 4, a, b, c, d);
  digest = digest_of(digest, y, sizeof y);
  mvk_blk_LclipL_flex(y, g, a);
  digest = digest_of(digest, y, sizeof y);
  mvk_blk_LLshuffleLL_inplace_flex(a, b);
  digest = digest_of(digest_of(digest, a, sizeof a), b, sizeof b);
  return digest;
}

const engine kernels[] = {{"filters and followers", run_filters},
                          {"delay line", run_delay},
                          {"crossfade", run_crossfade},
                          {"vectors", run_vectors},
                          {"blocks", run_blocks},
                          {NULL, NULL}};
