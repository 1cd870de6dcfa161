// The arithmetic floor: the processor's peak of fused multiply-adds, eight lanes
// at a time, with nothing to load or store.
#include "bench/bench.h"

#if defined(__x86_64__)
#include <immintrin.h>
#define FUSED_TARGET __attribute__((target("avx2,fma")))
#elif defined(__aarch64__)
#include <arm_neon.h>
#define FUSED_TARGET
#endif

namespace {

#if defined(__x86_64__)
using lanes8 = __m256;

FUSED_TARGET inline lanes8 splat(float x) { return _mm256_set1_ps(x); }
FUSED_TARGET inline void fuse(lanes8 &sum, lanes8 a, lanes8 b) { sum = _mm256_fmadd_ps(a, b, sum); }
FUSED_TARGET inline void keep(lanes8 &sum) { asm volatile("" : "+x"(sum)); }
#elif defined(__aarch64__)
struct lanes8 {
  float32x4_t lo, hi;
};

inline lanes8 splat(float x) { return {vdupq_n_f32(x), vdupq_n_f32(x)}; }
inline void fuse(lanes8 &sum, lanes8 a, lanes8 b) {
  sum.lo = vfmaq_f32(sum.lo, a.lo, b.lo);
  sum.hi = vfmaq_f32(sum.hi, a.hi, b.hi);
}
inline void keep(lanes8 &sum) { asm volatile("" : "+w"(sum.lo), "+w"(sum.hi)); }
#endif

#ifdef FUSED_TARGET

// Enough sums under way that none waits for its own result, few enough that all
// stay in registers.
constexpr int sums = 12;
constexpr int rounds = 1000;

FUSED_TARGET void fused_rounds(float x, float y) {
  const lanes8 a = splat(x), b = splat(y);
  lanes8 sum[sums];
  for (lanes8 &s : sum) s = splat(x);
  for (int i = 0; i < rounds; ++i) {
#pragma GCC unroll 12
    for (lanes8 &s : sum) fuse(s, a, b);
  }
#pragma GCC unroll 12
  for (lanes8 &s : sum) keep(s);
}

[[maybe_unused]] const bool enrolled = [] {
  benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
  bench::enroll("floor/peak/fused", [](benchmark::State &state) {
    float x = 0.5f, y = 0.25f;
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
    bench::repeat(state, [&] {
      fused_rounds(x, y);
      return 8 * sums * rounds;  // a "sample" is one lane of one operation
    });
  });
  return true;
}();

#endif

}  // namespace
