// What the families of transforms share: how they are timed, and FFTW's plans.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "bench/kernels.h"

#ifdef MVK_BENCH_FFTW
#include <fftw3.h>
#endif

namespace bench {

// From src to dst, n floats each. src may be overwritten.
using transform = std::function<void(float *dst, float *src)>;

// Makes a transform and what it needs, ahead of what is timed.
using maker = std::function<transform()>;

// Times batches of transforms over prepared inputs, which fill half of a first cache of 32 KiB
// as far as they fit, and are made anew between the batches.
inline void enroll_batches(const std::string &name, std::size_t floats, std::size_t samples,
                           maker make) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
    const std::size_t step = (floats + 15) & ~std::size_t{15};  // whole cache lines
    const std::size_t batch = std::max<std::size_t>(4, 4096 / step);
    const bench::placed<float> prepared = bench::noise(batch * step, 1);
    bench::placed<float> inputs(batch * step), output(step);
    const transform run = make();
    std::size_t done = 0;
    for (auto _ : state) {
      std::copy_n(prepared.data(), prepared.size(), inputs.data());
      benchmark::ClobberMemory();
      const auto start = std::chrono::steady_clock::now();
      for (std::size_t i = 0; i < batch; ++i) {
        run(output.data(), inputs.data() + i * step);
        benchmark::ClobberMemory();
      }
      const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
      state.SetIterationTime(time.count());
      done += batch * samples;
    }
    bench::report_samples(state, done);
  })->UseManualTime();
}

#ifdef MVK_BENCH_FFTW
// Planned patiently, for arrays at any cache line.
template <class Plan>
transform of_fftw(std::size_t floats, Plan make_plan) {
  bench::placed<float> src(floats), dst(floats);
  const std::shared_ptr<fftwf_plan_s> plan(make_plan(src.data(), dst.data()), fftwf_destroy_plan);
  return [plan, make_plan](float *out, float *in) { make_plan.run(plan.get(), in, out); };
}
#endif

}  // namespace bench
