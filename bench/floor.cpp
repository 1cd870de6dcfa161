// The arithmetic floor: how fast the processor does single operations with nothing
// to load or store. The peak is of fused multiply-adds, eight lanes at a time, that
// don't wait for each other; a latency is the step of a chain in which each does.
#include "bench/bench.h"

#if defined(__x86_64__)
#include <immintrin.h>
#pragma GCC target("avx2,fma")
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

#ifdef KEEP_IN_REGISTER
namespace {

constexpr int rounds = 1000;

// ---- The peak -----------------------------------------------------------------

#if defined(__x86_64__)
using lanes8 = __m256;

inline lanes8 splat(float x) { return _mm256_set1_ps(x); }
inline void fuse(lanes8 &sum, lanes8 a, lanes8 b) { sum = _mm256_fmadd_ps(a, b, sum); }
inline void keep(lanes8 &sum) { KEEP_IN_REGISTER(sum); }
#elif defined(__aarch64__)
struct lanes8 {
  float32x4_t lo, hi;
};

inline lanes8 splat(float x) { return {vdupq_n_f32(x), vdupq_n_f32(x)}; }
inline void fuse(lanes8 &sum, lanes8 a, lanes8 b) {
  sum.lo = vfmaq_f32(sum.lo, a.lo, b.lo);
  sum.hi = vfmaq_f32(sum.hi, a.hi, b.hi);
}
inline void keep(lanes8 &sum) {
  KEEP_IN_REGISTER(sum.lo);
  KEEP_IN_REGISTER(sum.hi);
}
#endif

// Enough sums under way that none waits for its own result, few enough that all
// stay in registers.
constexpr int sums = 12;

void fused_rounds(float x, float y) {
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

// ---- Latencies ----------------------------------------------------------------

typedef float single __attribute__((vector_size(16)));
typedef double binary64 __attribute__((vector_size(16)));

#if defined(__x86_64__)
inline single fused(single a, single b, single c) { return _mm_fmadd_ps(a, b, c); }
inline binary64 fused(binary64 a, binary64 b, binary64 c) { return _mm_fmadd_pd(a, b, c); }
inline single greater(single a, single b) { return _mm_max_ps(a, b); }
inline binary64 greater(binary64 a, binary64 b) { return _mm_max_pd(a, b); }
#elif defined(__aarch64__)
inline single fused(single a, single b, single c) { return vfmaq_f32(c, a, b); }
inline binary64 fused(binary64 a, binary64 b, binary64 c) { return vfmaq_f64(c, a, b); }
inline single greater(single a, single b) { return vmaxnmq_f32(a, b); }
inline binary64 greater(binary64 a, binary64 b) { return vmaxnmq_f64(a, b); }
#endif

// Measures a chain of v = step(v, x, nought). One is the value of v and x all along.
template <class V, class Step>
void enroll_latency(const std::string &operation, Step step) {
  constexpr int unrolled = 10;
  bench::enroll("floor/latency/" + operation, [=](benchmark::State &state) {
    bench::repeat(state, [=] {
      V v = V{} + 1, x = v, nought = V{};
      KEEP_IN_REGISTER(x);
      KEEP_IN_REGISTER(nought);
      for (int i = 0; i < rounds; ++i) {
#pragma GCC unroll 10
        for (int j = 0; j < unrolled; ++j) {
          v = step(v, x, nought);
          KEEP_IN_REGISTER(v);
        }
      }
      return unrolled * rounds;
    });
  });
}

// A fused operation may be quicker to pass on its addend than its factors; the
// floor takes the addend's.
template <class V>
void enroll_latencies(const std::string &suffix) {
  enroll_latency<V>("fma" + suffix, [](V v, V x, V nought) { return fused(x, nought, v); });
  enroll_latency<V>("mul" + suffix, [](V v, V x, V) { return v * x; });
  enroll_latency<V>("add" + suffix, [](V v, V, V nought) { return v + nought; });
  enroll_latency<V>("max" + suffix, [](V v, V x, V) { return greater(v, x); });
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
  enroll_latencies<single>("");
  enroll_latencies<binary64>("64");
  enroll_latency<float>("reciprocal64", [](float v, float, float) {
    return static_cast<float>(1 / static_cast<double>(v));
  });
  return true;
}();

}  // namespace
#endif
