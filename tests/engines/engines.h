/* Every engine of the library at work, in plain C: for tools that watch memory and threads.
 *
 * An engine is built in memory that nobody has written to, fed with noise, and torn down. What it
 * returns is a digest of all its output, so that each value it makes decides something. */
#ifndef MVK_TESTS_ENGINES_ENGINES_H
#define MVK_TESTS_ENGINES_ENGINES_H

#include <stddef.h>
#include <stdint.h>

typedef struct engine {
  const char *name;
  uint64_t (*run)(void);
} engine;

/* Each ends with a null name. */
extern const engine processors[];
extern const engine transforms[];
extern const engine filter_banks[];
extern const engine kernels[];

/* ---- What engines are fed with, and what becomes of it ---- */

typedef struct noise_source {
  uint32_t bits;
} noise_source;

/* Noise within -1 to 1. */
void fill_with_noise(noise_source *source, float *samples, size_t count);

static const uint64_t kEmptyDigest = 14695981039346656037u;

/* The digest with so many bytes more. */
uint64_t digest_of(uint64_t digest, const void *bytes, size_t count);

/* Memory that nobody has written to; ends the program if there is none. */
void *fresh(size_t bytes);

#endif
