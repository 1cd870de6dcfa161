// Fourier transforms beside FFTW and KissFFT: complex ones of both families, and real ones.
// A "sample" is a point of a complex transform and a sample of a real one.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bench/kernels.h"
#include "mvk_fft.h"

#ifdef MVK_BENCH_FFTW
#include <fftw3.h>
#endif
#ifdef MVK_BENCH_KISSFFT
#include <kiss_fft.h>
#include <kiss_fftr.h>
#endif

namespace {

// From src to dst, n floats each. src may be overwritten.
using transform = std::function<void(float *dst, float *src)>;

// Times batches of transforms over prepared inputs, which fill half of a first cache of 32 KiB
// as far as they fit, and are made anew between the batches.
void enroll(const std::string &name, std::size_t floats, std::size_t samples,
            std::function<transform()> make) {
  benchmark::RegisterBenchmark(
      name.c_str(),
      [=](benchmark::State &state) {
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
        using benchmark::Counter;
        state.counters["per_sample"] =
            Counter(static_cast<double>(done), Counter::kIsRate | Counter::kInvert);
      })
      ->UseManualTime();
}

// ---- Complex ------------------------------------------------------------------

transform of_kernel(mvk_fft_kernel *kernel, uint32_t n) {
  return [kernel = bench::opaque(kernel), n](float *dst, float *src) { kernel(dst, src, n); };
}

#ifdef MVK_BENCH_FFTW
// Planned patiently, for arrays at any cache line.
template <class Plan>
transform of_fftw(std::size_t floats, Plan make_plan) {
  bench::placed<float> src(floats), dst(floats);
  const std::shared_ptr<fftwf_plan_s> plan(make_plan(src.data(), dst.data()), fftwf_destroy_plan);
  return [plan, make_plan](float *out, float *in) { make_plan.run(plan.get(), in, out); };
}

fftwf_complex *as_complex(float *x) { return reinterpret_cast<fftwf_complex *>(x); }

struct fftw_complex_forward {
  int n;

  fftwf_plan operator()(float *src, float *dst) const {
    return fftwf_plan_dft_1d(n, as_complex(src), as_complex(dst), FFTW_FORWARD,
                             FFTW_PATIENT | FFTW_DESTROY_INPUT);
  }
  static void run(fftwf_plan plan, float *src, float *dst) {
    fftwf_execute_dft(plan, as_complex(src), as_complex(dst));
  }
};
struct fftw_real_forward {
  int n;

  fftwf_plan operator()(float *src, float *dst) const {
    return fftwf_plan_dft_r2c_1d(n, src, as_complex(dst), FFTW_PATIENT | FFTW_DESTROY_INPUT);
  }
  static void run(fftwf_plan plan, float *src, float *dst) {
    fftwf_execute_dft_r2c(plan, src, as_complex(dst));
  }
};
#endif

void enroll_complex(uint32_t n) {
  const std::string name = "fft/" + std::to_string(n) + "/";
  const auto contender = [&](const char *who, std::function<transform()> make) {
    enroll(name + who, 2 * n, n, make);
  };
  contender("library:radix4", [n] { return of_kernel(MVK_r4_cplx_fwd_unscaled(n), n); });
  if (MVK_r8_cplx_fwd_pair(n))
    contender("library:radix8", [n] { return of_kernel(MVK_r8_cplx_fwd_pair(n)->unscaled, n); });
#ifdef MVK_BENCH_FFTW
  contender("fftw", [n] { return of_fftw(2 * n, fftw_complex_forward{static_cast<int>(n)}); });
#endif
#ifdef MVK_BENCH_KISSFFT
  contender("kissfft", [n] {
    const std::shared_ptr<kiss_fft_state> plan(
        kiss_fft_alloc(static_cast<int>(n), 0, nullptr, nullptr), kiss_fft_free);
    return transform([plan](float *dst, float *src) {
      kiss_fft(plan.get(), reinterpret_cast<kiss_fft_cpx *>(src),
               reinterpret_cast<kiss_fft_cpx *>(dst));
    });
  });
#endif
}

// ---- Real ---------------------------------------------------------------------

// `n` samples through the front end. The packed spectrum has no pair beyond them, FFTW's has.
void enroll_real(uint32_t n) {
  const std::string name = "real-fft/" + std::to_string(n) + "/";
  const auto contender = [&](const char *who, std::function<transform()> make) {
    enroll(name + who, n + 2, n, make);
  };
  contender("library", [n] {
    struct engine {
      alignas(8) char memory[47];
      mvk_fft_state *state;
    };
    const auto e = std::make_shared<engine>();
    e->state = MVK_fft_init(e->memory, n / 2, MVK_FFT_CLFWD_UNSCALEDL);
    return transform(
        [e](float *dst, float *src) { MVK_fft_CLfwd_unscaledL(e->state, dst, src); });
  });
#ifdef MVK_BENCH_FFTW
  contender("fftw", [n] { return of_fftw(n + 2, fftw_real_forward{static_cast<int>(n)}); });
#endif
#ifdef MVK_BENCH_KISSFFT
  contender("kissfft", [n] {
    const std::shared_ptr<kiss_fftr_state> plan(
        kiss_fftr_alloc(static_cast<int>(n), 0, nullptr, nullptr), kiss_fftr_free);
    return transform([plan](float *dst, float *src) {
      kiss_fftr(plan.get(), src, reinterpret_cast<kiss_fft_cpx *>(dst));
    });
  });
#endif
}

const bool enrolled = [] {
  for (uint32_t n = 32; n <= 4096; n *= 2) enroll_complex(n);
  for (const uint32_t n : mvk_non_power_two_lengths)
    if (n >= 48) enroll_complex(n);
  for (uint32_t n = 256; n <= 4096; n *= 2) enroll_real(n);
  return true;
}();

}  // namespace
