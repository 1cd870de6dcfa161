// Fourier transforms beside FFTW and KissFFT: complex ones of both families, and real ones.
// A "sample" is a point of a complex transform and a sample of a real one.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/transforms.h"
#include "mvk_fft.h"

#ifdef MVK_BENCH_KISSFFT
#include <kiss_fft.h>
#include <kiss_fftr.h>
#endif

namespace {

#ifdef MVK_BENCH_FFTW
using bench::of_fftw;
#endif
using bench::maker;
using bench::transform;

// ---- Complex ------------------------------------------------------------------

transform of_kernel(mvk_fft_kernel *kernel, uint32_t n) {
  return [kernel = bench::opaque(kernel), n](float *dst, float *src) { kernel(dst, src, n); };
}

#ifdef MVK_BENCH_FFTW
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

void enroll_complex(const std::string &family, uint32_t n,
                    const std::vector<std::pair<std::string, maker>> &own) {
  const std::string name = family + "/" + std::to_string(n) + "/";
  const auto contender = [&](const std::string &who, const maker &make) {
    bench::enroll_batches(name + who, 2 * n, n, make);
  };
  for (const auto &[form, make] : own) contender("library" + form, make);
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

// Both families, of which the report takes the better.
void enroll_best(const std::string &family, uint32_t n) {
  std::vector<std::pair<std::string, maker>> own = {
      {":radix4", [n] { return of_kernel(MVK_r4_cplx_fwd_unscaled(n), n); }}};
  if (MVK_r8_cplx_fwd_pair(n))
    own.push_back({":radix8", [n] { return of_kernel(MVK_r8_cplx_fwd_pair(n)->unscaled, n); }});
  enroll_complex(family, n, own);
}

// ---- Real ---------------------------------------------------------------------

// `n` samples through the front end. The packed spectrum has no pair beyond them, FFTW's has.
void enroll_real(uint32_t n) {
  const std::string name = "real-fft/" + std::to_string(n) + "/";
  const auto contender = [&](const char *who, const maker &make) {
    bench::enroll_batches(name + who, n + 2, n, make);
  };
  contender("library", [n] {
    struct engine {
      std::vector<char> memory;
      mvk_fft_state *state;
    };
    const auto e = std::make_shared<engine>();
    e->memory.resize(MVK_fft_state_query_mem(n / 2, MVK_FFT_CLFWD_UNSCALEDL));
    e->state = MVK_fft_init(e->memory.data(), n / 2, MVK_FFT_CLFWD_UNSCALEDL);
    return transform([e](float *dst, float *src) { MVK_fft_CLfwd_unscaledL(e->state, dst, src); });
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

[[maybe_unused]] const bool enrolled = [] {
  for (uint32_t n = 64; n <= 4096; n *= 2) {
    enroll_best("fft", n);
    enroll_complex("fft-exact", n,
                   {{"", [n] { return of_kernel(MVK_r4_cplx_fwd_unscaled(n), n); }}});
  }
  for (const uint32_t n : mvk_non_power_two_lengths)
    if (n >= 48) enroll_best("fft-composite", n);
  for (uint32_t n = 256; n <= 4096; n *= 2) enroll_real(n);
  return true;
}();

}  // namespace
