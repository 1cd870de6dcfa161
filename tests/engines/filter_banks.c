/* QMF, MFB and hybrid banks. */
#include <mvk_hybrid.h>
#include <mvk_mfb.h>
#include <mvk_qmf.h>
#include <stdlib.h>

#include "engines.h"

enum { kMostBands = 256, kSlots = 24 };

/* ---- QMF ---- */

typedef struct memory_of_bank {
  void *state, *scratch, *record;
} memory_of_bank;

static memory_of_bank fresh_for_bank(uint32_t state, uint32_t scratch, uint32_t record) {
  return (memory_of_bank){fresh(state), fresh(scratch), fresh(record)};
}

static void free_bank(memory_of_bank memory) {
  free(memory.state), free(memory.scratch), free(memory.record);
}

/* One bank there and one back, of complex and of real bands, under the names of either sample. */
#define DEFINE_RUN_QMF(type, complex_analysis, real_analysis, complex_synthesis, real_synthesis) \
  static uint64_t run_qmf_##type(uint64_t digest, uint32_t bands, uint32_t order,                \
                                 uint32_t twiddle, const float *for_analysis,                    \
                                 const float *for_synthesis) {                                   \
    /* A query for short samples knows 32 and 64 bands. */                                       \
    const uint32_t asked = bands > 32 ? 64 : bands;                                              \
    uint32_t state, scratch, record;                                                             \
    MVK_qmf_analysis##type##_query_mem(asked, order, &state, &scratch, &record);                 \
    const memory_of_bank there = fresh_for_bank(state, scratch, record);                         \
    MVK_qmf_synthesis##type##_query_mem(asked, order, &state, &scratch, &record);                \
    const memory_of_bank back = fresh_for_bank(state, scratch, record);                          \
    mvk_qmf_analysis##type##_state *analysis = mvk_qmf_analysis##type##_open(                    \
        bands, kSlots, twiddle, order, for_analysis, there.state, there.scratch, there.record);  \
    mvk_qmf_synthesis##type##_state *synthesis = mvk_qmf_synthesis##type##_open(                 \
        bands, kSlots, twiddle, order, for_synthesis, back.state, back.scratch, back.record);    \
    const size_t samples = (size_t)bands * kSlots;                                               \
    float *in = fresh(samples * sizeof *in), *out = fresh(samples * sizeof *out);                \
    float *between = fresh(2 * samples * sizeof *between), *slots[kSlots];                       \
    for (int s = 0; s < kSlots; ++s) slots[s] = between + (size_t)s * 2 * bands;                 \
    noise_source noise = {bands};                                                                \
    fill_with_noise(&noise, in, samples);                                                        \
    complex_analysis(analysis, slots, in);                                                       \
    complex_synthesis(synthesis, out, (const float *const *)slots);                              \
    digest = digest_of(digest, between, 2 * samples * sizeof *between);                          \
    digest = digest_of(digest, out, samples * sizeof *out);                                      \
    if (bands != 48) { /* which real banks don't have */                                         \
      real_analysis(analysis, between, in);                                                      \
      real_synthesis(synthesis, out, between);                                                   \
      digest = digest_of(digest, out, samples * sizeof *out);                                    \
    }                                                                                            \
    free_bank(there), free_bank(back), free(in), free(out), free(between);                       \
    return digest;                                                                               \
  }
DEFINE_RUN_QMF(L, MVK_CLqmf_analysisL, MVK_Lqmf_analysisL, MVK_Lqmf_synthesisCL,
               MVK_Lqmf_synthesisL)
DEFINE_RUN_QMF(S, MVK_CLqmf_analysisS, MVK_Lqmf_analysisS, MVK_Sqmf_synthesisCL,
               MVK_Sqmf_synthesisL)

static uint64_t run_qmf(void) {
  uint64_t digest = kEmptyDigest;
#define RUN(name, design, P, M, rows)                                                        \
  digest = run_qmf_L(digest, M, P, MVK_TWIDDLE_ALIGN, mvk_qmf_filter_coeff_##name##_vec_ana, \
                     mvk_qmf_filter_coeff_##name##_vec_syn);                                 \
  digest = run_qmf_S(digest, M, P, MVK_TWIDDLE_NONE, mvk_qmf_filter_coeff_##name##_vec_ana,  \
                     mvk_qmf_filter_coeff_##name##_vec_syn);
  MVK_QMF_PROTOTYPES(RUN)
#undef RUN
  return digest;
}

/* ---- MFB ---- */

typedef void synthesis_of_mfb(mvk_mfb_p10km_synthesisCL_state *record, const float *prototype,
                              const float *twiddle, void *scratch, uint32_t channels,
                              uint32_t slots, uint32_t bands, float *const *const *out,
                              const float *const *const *in);

static uint64_t run_mfb_bands(uint64_t digest, uint32_t bands, const float *prototype,
                              const float *twiddle, int legacy, synthesis_of_mfb *synthesise) {
  enum { kChannels = 2 };
  void *analysis_memory = fresh(MVK_mfb_p10km_analysisL_query_mem(kChannels, 0, bands));
  void *synthesis_memory = fresh(MVK_mfb_p10km_synthesisCL_query_mem(kChannels, 0, bands));
  void *analysis_scratch = fresh(MVK_mfb_p10km_analysisL_query_scratch(kChannels, 0, bands));
  void *synthesis_scratch = fresh(MVK_mfb_p10km_synthesisCL_query_scratch(kChannels, 0, bands));
  mvk_mfb_p10km_analysisL_state *analysis =
      MVK_CLmfb_p10km_analysisL_init(kChannels, 0, bands, analysis_memory);
  mvk_mfb_p10km_synthesisCL_state *synthesis =
      MVK_Lmfb_p10km_synthesisCL_init(kChannels, 0, bands, synthesis_memory);

  noise_source noise = {bands};
  for (int slot = 0; slot < kSlots; ++slot) {
    float samples[kChannels][kMostBands], between[kChannels][2 * kMostBands];
    float result[kChannels][kMostBands];
    const float *in[] = {samples[0], samples[1]}, *bands_in[] = {between[0], between[1]};
    float *bands_out[] = {between[0], between[1]}, *out[] = {result[0], result[1]};
    const float *const *in_slots[] = {in}, *const * bands_in_slots[] = {bands_in};
    float *const *bands_out_slots[] = {bands_out}, *const * out_slots[] = {out};
    for (int c = 0; c < kChannels; ++c) fill_with_noise(&noise, samples[c], bands);
    (legacy ? MVK_CLmfb_p10km_analysisL_legacy : MVK_CLmfb_p10km_analysisL)(
        analysis, prototype, twiddle, analysis_scratch, kChannels, 1, bands, bands_out_slots,
        in_slots);
    synthesise(synthesis, prototype, twiddle, synthesis_scratch, kChannels, 1, bands, out_slots,
               bands_in_slots);
    for (int c = 0; c < kChannels; ++c) {
      digest = digest_of(digest, between[c], 2 * bands * sizeof(float));
      digest = digest_of(digest, result[c], bands * sizeof(float));
    }
  }
  free(analysis_memory), free(synthesis_memory), free(analysis_scratch), free(synthesis_scratch);
  return digest;
}

static uint64_t run_mfb(void) {
  uint64_t digest = kEmptyDigest;
#define RUN(name)                                                                        \
  digest = run_mfb_bands(digest, 64, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E, 0,        \
                         MVK_Lmfb_p10km_synthesisCL_##name);                             \
  digest = run_mfb_bands(digest, 64, MVK_MFB_P10KM_P64ORV301_LEGACY, MVK_MFB_TWID64O, 1, \
                         MVK_Lmfb_p10km_synthesisCL_##name);                             \
  digest = run_mfb_bands(digest, 128, MVK_MFB_P10KM_P4_319SC_128M, MVK_MFB_TWID128E, 0,  \
                         MVK_Lmfb_p10km_synthesisCL_##name);                             \
  digest = run_mfb_bands(digest, 256, MVK_MFB_P10KM_P4_319SC_256M, MVK_MFB_TWID256E, 0,  \
                         MVK_Lmfb_p10km_synthesisCL_##name);
  MVK_MFB_SYNTHESES(RUN)
#undef RUN
  return digest;
}

/* ---- Hybrid ---- */

static uint64_t run_hybrid(void) {
  static const struct {
    uint32_t flags;
    size_t sub_bands;
  } modes[] = {{MVK_HYBRID_MODE_0, 10},
               {MVK_HYBRID_MODE_1, 16},
               {MVK_HYBRID_MODE_1 | MVK_HYBRID_REORDER, 16}};
  uint64_t digest = kEmptyDigest;
  for (size_t i = 0; i < sizeof modes / sizeof *modes; ++i) {
    uint32_t state, scratch, record;
    MVK_hybrid_analysisCL_query_mem(modes[i].flags, &state, &scratch, &record);
    const memory_of_bank there = fresh_for_bank(state, scratch, record);
    MVK_hybrid_synthesisCL_query_mem(modes[i].flags, &state, &scratch, &record);
    const memory_of_bank back = fresh_for_bank(state, scratch, record);
    mvk_hybrid_analysisCL_state *analysis =
        MVK_hybrid_analysisCL_open(modes[i].flags, there.state, there.scratch, there.record);
    mvk_hybrid_synthesisCL_state *synthesis =
        MVK_hybrid_synthesisCL_open(modes[i].flags, back.state, back.scratch, back.record);
    noise_source noise = {modes[i].flags};
    for (int slot = 0; slot < 2 * kSlots; ++slot) {
      float bands[6], sub_bands[32];
      fill_with_noise(&noise, bands, 6);
      MVK_CLhybrid_analysisCL(analysis, sub_bands, bands);
      MVK_CLhybrid_synthesisCL(synthesis, bands, sub_bands);
      digest = digest_of(digest, sub_bands, 2 * modes[i].sub_bands * sizeof(float));
      digest = digest_of(digest, bands, sizeof bands);
    }
    free_bank(there), free_bank(back);
  }
  return digest;
}

const engine filter_banks[] = {
    {"QMF banks", run_qmf}, {"MFB banks", run_mfb}, {"hybrid banks", run_hybrid}, {NULL, NULL}};
