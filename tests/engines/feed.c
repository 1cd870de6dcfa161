#include <stdlib.h>

#include "engines.h"

void fill_with_noise(noise_source *source, float *samples, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    source->bits = source->bits * 1664525u + 1013904223u;
    samples[i] = (float)(int32_t)source->bits * 0x1p-31f;
  }
}

/* FNV-1a. */
uint64_t digest_of(uint64_t digest, const void *bytes, size_t count) {
  const unsigned char *at = bytes;
  for (size_t i = 0; i < count; ++i) digest = (digest ^ at[i]) * 1099511628211u;
  /* A digest of unwritten bytes is found out here, where it is made. */
  if (digest == 0) abort();
  return digest;
}

void *fresh(size_t bytes) {
  void *memory = malloc(bytes > 0 ? bytes : 1);
  if (memory == NULL) abort();
  return memory;
}
