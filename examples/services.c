/* A gain table by the fast power of one half: a 16th of the way to one half, and all of it. */
#include <math.h>
#include <mvk_services.h>
#include <stdio.h>

int main(void) {
  printf("at 0: %.7f\n", MVK_Lpow05I16(0));
  printf("at 2048: %.7f\n", MVK_Lpow05I16(2048));
  double error = 0;
  for (int v = 0; v < 32768; ++v) {
    error = fmax(error, fabs(MVK_Lpow05I16((uint16_t)v) / pow(0.5, v / 32768.0) - 1));
  }
  printf("largest relative error: %.2g\n", error);
  return 0;
}
