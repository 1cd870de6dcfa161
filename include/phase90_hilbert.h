/*
 * A phase shifter by 90 degrees.
 *
 * One channel of audio is shifted in frames of 512, 1024 or 2048 samples, in place,
 * 1280 samples late. A sine of any frequency from 0.01 to 0.47 of the sample rate keeps
 * its amplitude within 0.1 per cent and lags by 90 degrees, with a ripple of about 2: a
 * sine becomes a negative cosine.
 *
 * The shift needs neither a long filter nor a transform. A cascade of four recursive
 * sections in z^-2 runs forward, and one of three runs backward over the last 1280
 * samples of its result and the frame; their phases add up to the shift. The cascades
 * are those of a pair of all-pass filters in quadrature, one of them turned about in
 * time. With a the scaled input, x a section's input and c its constant:
 *
 *     a  = 0.498687744140625 x[n]
 *     y1 = c1 y1[n-2] - a + a[n-2]          c1 = 0.9947509765625
 *     y  = c (y[n-2] - x) + x[n-2]          c2 = 0.9791259765625, c3 = 0.84515380859375,
 *                                           c4 = 0.2373046875
 *     backward, likewise, n + 2 for n - 2:  cA = 0.99176025390625, cB = 0.942626953125,
 *                                           cC = 0.61724853515625
 *
 * The backward cascade begins beyond the newest sample, in a state that is reckoned from
 * the forward one as if silence followed. A frame thus doesn't end quite where the next
 * begins: what is missing is added as a ramp that falls to zero across the frame. So the
 * length of the frame is part of the behaviour.
 *
 * Calling order, in memory of the caller's:
 *
 *     getRequiredBufferSize_Phase90Hilbert(1024, &state, &work, &history);
 *     init_Phase90Hilbert(&shifter, 1024, malloc(state), malloc(work), malloc(history));
 *     for each frame: process_Phase90Hilbert(shifter, samples);
 *
 * The state has the alignment of a pointer, the other buffers that of a float. A state
 * serves one thread at a time; states are independent. Nothing here allocates.
 *
 * Literature: R. Ansari, "IIR discrete-time Hilbert transformers", IEEE Trans. Acoustics,
 * Speech and Signal Processing 35(8), 1987; S. R. Powell and P. M. Chau, "A technique for
 * realizing linear phase IIR filters", IEEE Trans. Signal Processing 39(11), 1991, on
 * filtering backward in sections.
 */
#ifndef PHASE90_HILBERT_H
#define PHASE90_HILBERT_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* The state of one channel. Pairs of values are the older first, in `fwd` that of even
 * samples of a frame first. */
typedef struct Phase90Hilbert_state {
  float back_a[4];      /* backward section A: two latest inputs, two latest outputs */
  float back_b[4];      /* two latest outputs of section B, two of section C */
  float fwd[10];        /* pairs: scaled input, outputs of sections 1 to 4 */
  int16_t frame_length; /* N */
  float boundary;       /* where the next frame is to begin, before the ramp */
  float inv_length;     /* 1 / N */
  float *history;       /* the last 1280 outputs of the forward cascade */
  float *work;          /* N + 1280 floats */
} Phase90Hilbert_state;

/* The sizes in bytes of the three buffers for frames of `length` samples. Returns 0; for
 * a length other than 512, 1024 and 2048, returns 2 and gives three zeros. */
MVK_API int getRequiredBufferSize_Phase90Hilbert(unsigned length, unsigned *state_bytes,
                                                 unsigned *work_bytes, unsigned *history_bytes);

/* Makes a state at rest in state_mem and gives it in *out. Returns 0; for another length
 * returns 2 and touches nothing. */
MVK_API int init_Phase90Hilbert(Phase90Hilbert_state **out, unsigned length, void *state_mem,
                                void *work_mem, void *history_mem);

/* Replaces a frame of samples by the shifted signal of 1280 samples ago. Returns 0. */
MVK_API int process_Phase90Hilbert(Phase90Hilbert_state *state, float *samples);

/* Back to rest. Returns 0. */
MVK_API int reset_Phase90Hilbert(Phase90Hilbert_state *state);

MVK_END_DECLS

#endif
