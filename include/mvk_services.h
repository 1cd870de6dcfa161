/*
 * Small services: a start-up call, a fast power of one half, and arithmetic on counts of
 * time. All are reentrant; none allocates.
 */
#ifndef MVK_SERVICES_H
#define MVK_SERVICES_H

#include <stdint.h>

#include "mvk_export.h"

MVK_BEGIN_DECLS

/* Does nothing, and returns 0: no other call depends on it. */
MVK_API int MVK_dsplib_init(void);

/* 0.5^((v mod 32768) / 32768), in (0.5, 1]: a product of four table entries, (L M) (H F)
 * with F = 2^(-(v mod 8) / 32768) and L, M, H for the bits 3 to 6, 7 to 10 and 11 to 14.
 * Each entry is the nearest float to its power, each product is rounded. */
MVK_API float MVK_Lpow05I16(uint16_t v);

/* Times are counts of a unit that is the caller's: nothing here reads a clock. */

/* Do nothing. */
MVK_API void MVK_time_init(void);
MVK_API void MVK_time_end(void);

/* *t = 0 */
MVK_API void MVK_time_reset(uint64_t *t);

/* a + b and a - b, modulo 2^64. */
MVK_API uint64_t MVK_time_add(uint64_t a, uint64_t b);
MVK_API uint64_t MVK_time_sub(uint64_t a, uint64_t b);

/* t / n in double precision: infinity or NaN where n is 0. */
MVK_API double MVK_time_div(uint64_t t, unsigned n);

/* 1 if a < b, else 0. */
MVK_API int MVK_time_lt(uint64_t a, uint64_t b);

MVK_END_DECLS

#endif
