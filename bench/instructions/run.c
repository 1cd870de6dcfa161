/* Runs one transform a number of times, for its instructions to be counted:
 *
 *     run LIBRARY KERNEL N TIMES     the library's kernel of that name
 *     run fftw - N TIMES             FFTW's plan for the same */
#include <dlfcn.h>
#include <fftw3.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "mvk_fft.h"

enum { LONGEST = 4096 };
static _Alignas(64) float from[2 * LONGEST], to[2 * LONGEST];

static int run_kernel(const char *library, const char *name, uint32_t n, long times) {
  void *handle = dlopen(library, RTLD_NOW);
  mvk_fft_kernel *kernel = handle ? (mvk_fft_kernel *)dlsym(handle, name) : NULL;
  if (!kernel) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  for (; times > 0; --times) kernel(to, from, n);
  return 0;
}

/* The plan is an estimate. Plans that are chosen by time would depend on the emulator's, and
 * planning them takes another number of instructions every time. */
static int run_fftw(int n, long times) {
  fftwf_plan plan = fftwf_plan_dft_1d(n, (fftwf_complex *)from, (fftwf_complex *)to, FFTW_FORWARD,
                                      FFTW_ESTIMATE | FFTW_DESTROY_INPUT);
  if (!plan) {
    fprintf(stderr, "FFTW has no plan for %d points\n", n);
    return 1;
  }
  for (; times > 0; --times) fftwf_execute(plan);
  return 0;
}

int main(int argc, char **argv) {
  if (argc != 5) {
    fprintf(stderr, "usage: run LIBRARY KERNEL N TIMES, or run fftw - N TIMES\n");
    return 2;
  }
  const long n = atol(argv[3]), times = atol(argv[4]);
  if (n < 1 || n > LONGEST) {
    fprintf(stderr, "run: %s points, which aren't 1 to %d\n", argv[3], LONGEST);
    return 2;
  }
  if (strcmp(argv[1], "fftw") == 0) return run_fftw((int)n, times);
  return run_kernel(argv[1], argv[2], (uint32_t)n, times);
}
