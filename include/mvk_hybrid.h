/*
 * Hybrid bank: the three lowest complex bands of a QMF bank, split into narrower sub-bands.
 *
 * Short complex filters of 13 taps run at the rate of the bands, 6 samples late. One call takes
 * a complex sample of each of the three bands and gives one of each sub-band. With x(n) a band's
 * sample n calls ago, s the filter and w the middle of a sub-band in radians:
 *
 *     sub-band = sum s(n) x(n) exp(i w (n - 6)),  n = 0 .. 12
 *
 *     mode 1  0 .. 7     band 0, 8-way   w = pi/8, 3 pi/8 .. 7 pi/8, -7 pi/8 .. -pi/8
 *             8 .. 11    band 1, 4-way   w = pi/4, 3 pi/4, -3 pi/4, -pi/4
 *             12 .. 15   band 2, likewise
 *     mode 0  0, 1       band 0, 8-way   w = pi/8, 3 pi/8
 *             2, 3       band 0          w = 5 pi/8 and -5 pi/8 summed; 7 pi/8 and -7 pi/8
 *             4, 5       band 0          w = -3 pi/8, -pi/8
 *             6, 7       band 1, 2-way   low half; high half, with signs (-1)^n
 *             8, 9       band 2, likewise
 *
 * Synthesis adds up the sub-bands of each band: the filters of a band sum to a delay of 6.
 *
 * Calling order, in memory of the caller's:
 *
 *     MVK_hybrid_analysisCL_query_mem(1, &state, &scratch, &record);
 *     a = MVK_hybrid_analysisCL_open(1, malloc(state), NULL, malloc(record));
 *     for each sample of the bands: MVK_CLhybrid_analysisCL(a, sub_bands, bands);
 *
 * Complex values are pairs of floats, real part first. Nothing allocates. An analysis record
 * serves one thread at a time; synthesis keeps no state.
 *
 * Literature: E. Schuijers, J. Breebaart, H. Purnhagen and J. Engdegard, "Low complexity
 * parametric stereo coding", AES 116th Convention, 2004, on hybrid banks behind QMF banks.
 */
#ifndef MVK_HYBRID_H
#define MVK_HYBRID_H

#include <stdint.h>

#include "mvk_export.h"
#include "mvk_fft.h"

MVK_BEGIN_DECLS

/* Flags of open. With MVK_HYBRID_UNSUPPORTED there is no bank. */
enum {
  MVK_HYBRID_MODE_0 = 0,      /* 10 sub-bands */
  MVK_HYBRID_MODE_1 = 1,      /* 16 sub-bands */
  MVK_HYBRID_UNSUPPORTED = 2, /* refused */
  MVK_HYBRID_REORDER = 4      /* sub-bands of mode 1 in order of frequency, see below */
};

typedef struct mvk_hybrid_analysisCL_state {
  uint32_t mode;             /* flags & 3 */
  uint32_t reorder;          /* flags & 4 */
  float *history;            /* of each band the last 13 complex samples, the newest last */
  const mvk_fft_pair *pair4; /* inverse, of 4 and 8 points */
  const mvk_fft_pair *pair8;
} mvk_hybrid_analysisCL_state;

typedef struct mvk_hybrid_synthesisCL_state {
  uint32_t mode;
  uint32_t reorder;
} mvk_hybrid_synthesisCL_state;

/* Bytes of the pieces of memory: 343, 0 and 39; 0, 0 and 15. Return the record's. */
MVK_API uint32_t MVK_hybrid_analysisCL_query_mem(uint32_t flags, uint32_t *state_bytes,
                                                 uint32_t *scratch_bytes, uint32_t *record_bytes);
MVK_API uint32_t MVK_hybrid_synthesisCL_query_mem(uint32_t flags, uint32_t *state_bytes,
                                                  uint32_t *scratch_bytes, uint32_t *record_bytes);

/* Make a silent bank in the caller's memory, at any address; scratch isn't used. Return the
 * record, or null if the flags have MVK_HYBRID_UNSUPPORTED. */
MVK_API mvk_hybrid_analysisCL_state *MVK_hybrid_analysisCL_open(uint32_t flags, void *state_mem,
                                                                void *scratch_mem,
                                                                void *record_mem);
MVK_API mvk_hybrid_synthesisCL_state *MVK_hybrid_synthesisCL_open(uint32_t flags, void *state_mem,
                                                                  void *scratch_mem,
                                                                  void *record_mem);

/* Silence the history; synthesis has none. */
MVK_API void MVK_hybrid_analysisCL_init(mvk_hybrid_analysisCL_state *record);
MVK_API void MVK_hybrid_synthesisCL_init(mvk_hybrid_synthesisCL_state *record);

/* Three complex samples in, 16 or 10 out. Reordered, mode 1 gives, with * a conjugate:
 *
 *     band 0: pi/8, -pi/8 *, 3 pi/8, -3 pi/8 *, 5 pi/8       0 .. 4
 *     band 1: 3 pi/4                                         5
 *     band 0: 7 pi/8, -7 pi/8                                6, 7
 *     band 1: -3 pi/4                                        8
 *     band 0: -5 pi/8                                        9
 *     band 1: -pi/4                                          10
 *     band 2: -pi/4                                          11
 *     band 1: pi/4                                           12
 *     band 2: pi/4, 3 pi/4, -3 pi/4                          13 .. 15 */
MVK_API void MVK_CLhybrid_analysisCL(mvk_hybrid_analysisCL_state *record, float *out,
                                     const float *in);

/* 16 or 10 complex samples in, three out. */
MVK_API void MVK_CLhybrid_synthesisCL(mvk_hybrid_synthesisCL_state *record, float *out,
                                      const float *in);

/* 6, both: the delay of the filters, which is that of the whole. */
MVK_API uint32_t MVK_hybrid_analysisCL_get_delay(void);
MVK_API uint32_t MVK_hybrid_synthesisCL_get_delay(void);

/* The headroom of the history, as mvk_vec_UnormLU_flex gives it. */
MVK_API uint32_t MVK_hybrid_analysisCL_get_scale(const mvk_hybrid_analysisCL_state *record);

/* Shifts the history left by `shift` bits, as mvk_vec_LshlLIU_inplace_flex does. */
MVK_API void MVK_hybrid_analysisCL_shl(mvk_hybrid_analysisCL_state *record, int32_t shift);

/* Do nothing: there is nothing to release. */
MVK_API void MVK_hybrid_analysisCL_close(mvk_hybrid_analysisCL_state *record);
MVK_API void MVK_hybrid_synthesisCL_close(mvk_hybrid_synthesisCL_state *record);

/* The filters, by their distance from the first tap. In the 8-way filter the first five taps, in
 * the 4-way one taps 1, 3, 4, 9, 11 and 12 have their signs turned over. The 2-way filter has
 * these taps at odd distances from its middle, 1/2 in the middle, and no others. */
MVK_API extern const float mvk_hyb_p8_13[13];
MVK_API extern const float mvk_hyb_p4_13[13];
MVK_API extern const float mvk_hyb_p2_6[6];

MVK_END_DECLS

#endif
