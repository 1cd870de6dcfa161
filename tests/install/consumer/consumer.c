/* Raises a constant by 2 through the component and prints what it settles at. */
#include <acli.h>
#include <stdio.h>

int main(void) {
  uint32_t factor = 2;
  float samples[128], result[256];
  acli_instance *instance;
  if (ACLI.create(NULL, NULL, &instance)) return 1;
  for (int i = 0; i < 128; ++i) samples[i] = 1;

  acli_buffer in = {.size = sizeof samples, .data = samples, .params = &factor, .channels = 1};
  in.audio_format = ACLI_FORMAT_FLOAT;
  in.bits_per_sample = 32;
  acli_buffer out = {.size = sizeof result, .data = result};
  if (ACLI.process(instance, &in, &out) || out.size != sizeof result) return 1;
  printf("%s %.14g %.14g\n", session_identity, result[254], result[255]);
  return ACLI.destroy(instance);
}
