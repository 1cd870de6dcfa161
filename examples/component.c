/* Loads the library as an audio host does, and takes 1 kHz from 48 to 96 kHz through its
 * component, in blocks of 128 frames. */
#include <acli.h>
#include <dlfcn.h>
#include <stdio.h>

#include "measure.h"

enum { kBlocks = 40, kIn = 128, kOut = 256 };

int main(void) {
  void *library = dlopen("libmavokresampler.so", RTLD_NOW | RTLD_LOCAL);
  const acli_component *component = library ? dlsym(library, "ACLI") : NULL;
  if (!component) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }

  uint32_t direction = ACLI_DIR_UP, factor = 2;
  acli_buffer config = {.params = &direction};
  acli_instance *resampler;
  if (component->create(NULL, &config, &resampler) != ACLI_OK) return 1;

  static float result[kBlocks * kOut];
  for (int block = 0; block < kBlocks; ++block) {
    float samples[kIn];
    for (int i = 0; i < kIn; ++i) {
      samples[i] = (float)sin(2 * kPi * 1000 / 48000 * (block * kIn + i));
    }
    acli_buffer in = {.size = sizeof samples,
                      .data = samples,
                      .params = &factor,
                      .audio_format = ACLI_FORMAT_FLOAT,
                      .rate = 48000,
                      .channels = 1,
                      .bits_per_sample = 32};
    acli_buffer out = {.size = kOut * sizeof(float), .data = result + block * kOut};
    if (component->process(resampler, &in, &out) != ACLI_OK) return 1;
    if (block == 0) printf("rate: %u\n", out.rate);
  }
  component->destroy(resampler);

  /* A period is 96 frames now. The filter's start isn't measured. */
  const tone sine = measure_tone(result + 9600 - 96 * 50, 96 * 50, 1000.0 / 96000);
  printf("gain at 1 kHz: %.6f\n", sine.level);
  printf("delay in frames: %.4f\n", sine.lag / 360 * 96);
  return dlclose(library);
}
