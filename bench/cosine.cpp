// Cosine transforms beside FFTW's, and beside the complex transform that is in them.
#include <cstdint>
#include <string>

#include "bench/callees.h"
#include "bench/transforms.h"
#include "mvk_dct.h"
#include "mvk_fft.h"

namespace {

using bench::transform;

struct dct {
  uint32_t n;
  const float *twiddle;
};

#define LENGTH(N) \
  { N, mvk_dct_twiddle_table16_L##N }
constexpr dct lengths[] = {LENGTH(32),  LENGTH(64),  LENGTH(128), LENGTH(256),
                           LENGTH(512), LENGTH(960), LENGTH(1024)};

// The family that the filter banks would take.
const mvk_fft_pair *pair_of(uint32_t n) {
  const mvk_fft_pair *pair = MVK_r8_cplx_fwd_pair(n);
  return pair ? pair : MVK_r4_cplx_fwd_pair(n);
}

#ifdef MVK_BENCH_FFTW
struct fftw_cosine {
  int n;
  fftwf_r2r_kind kind;

  fftwf_plan operator()(float *src, float *dst) const {
    return fftwf_plan_r2r_1d(n, src, dst, kind, FFTW_PATIENT | FFTW_DESTROY_INPUT);
  }
  static void run(fftwf_plan plan, float *src, float *dst) { fftwf_execute_r2r(plan, src, dst); }
};
#endif

template <class F>
transform of_library(F *f, const dct &d) {
  return [f = bench::opaque(f), d, pair = pair_of(d.n / 2)](float *dst, float *src) {
    f(pair, d.twiddle, dst, src, d.n);
  };
}

void enroll(const dct &d) {
  const auto contender = [&](const std::string &type, const char *who, const bench::maker &make) {
    bench::enroll_batches("dct/" + type + "/" + std::to_string(d.n) + "/" + who, d.n, d.n, make);
  };
  contender("II", "library", [d] { return of_library(mvk_dctII_unscaled, d); });
  contender("III", "library", [d] { return of_library(mvk_dctIII_scaled, d); });
  for (const char *type : {"II", "III"}) {
    contender(type, "half-fft", [d] {
      mvk_fft_kernel *const kernel = bench::opaque(pair_of(d.n / 2)->unscaled);
      return transform([=](float *dst, float *src) { kernel(dst, src, d.n / 2); });
    });
    contender(type, "copy", [d] {
      auto *const copy = bench::opaque(bench::copy);
      return transform([=](float *dst, float *src) { copy(dst, src, d.n); });
    });
  }
#ifdef MVK_BENCH_FFTW
  const int n = static_cast<int>(d.n);
  contender("II", "fftw", [=] { return bench::of_fftw(d.n, fftw_cosine{n, FFTW_REDFT10}); });
  contender("III", "fftw", [=] { return bench::of_fftw(d.n, fftw_cosine{n, FFTW_REDFT01}); });
#endif
}

[[maybe_unused]] const bool enrolled = [] {
  for (const dct &d : lengths) enroll(d);
  return true;
}();

}  // namespace
