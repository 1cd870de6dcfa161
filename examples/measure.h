/* What the examples measure their results by. */
#ifndef EXAMPLES_MEASURE_H
#define EXAMPLES_MEASURE_H

#include <math.h>
#include <stdint.h>

static const double kPi = 3.14159265358979323846;

/* White noise within -1 to 1, the same in every run. */
static inline float noise(void) {
  static uint32_t bits = 1;
  bits = bits * 1664525u + 1013904223u;
  return (float)(int32_t)bits * 0x1p-31f;
}

/* A tone in n samples that are whole periods of it: its amplitude, and how far it lags
 * behind a sine that starts with them, in degrees from 0 to 360. */
typedef struct tone {
  double level, lag;
} tone;

static inline tone measure_tone(const float *samples, int n, double cycles_per_sample) {
  double sine = 0, cosine = 0;
  for (int i = 0; i < n; ++i) {
    sine += samples[i] * sin(2 * kPi * cycles_per_sample * i) * 2 / n;
    cosine += samples[i] * cos(2 * kPi * cycles_per_sample * i) * 2 / n;
  }
  const double lag = atan2(-cosine, sine) * 180 / kPi;
  return (tone){hypot(sine, cosine), lag < 0 ? lag + 360 : lag};
}

/* The energy of what out, `delay` samples late, has besides in, relative to in's. */
static inline double relative_error(const float *out, const float *in, int n, int delay) {
  double error = 0, energy = 0;
  for (int i = 0; i + delay < n; ++i) {
    error += pow(out[i + delay] - in[i], 2);
    energy += pow(in[i], 2);
  }
  return error / energy;
}

/* The delay at which that is least. */
static inline int measure_delay(const float *out, const float *in, int n, int longest) {
  int best = 0;
  for (int delay = 1; delay <= longest; ++delay) {
    if (relative_error(out, in, n, delay) < relative_error(out, in, n, best)) best = delay;
  }
  return best;
}

#endif
