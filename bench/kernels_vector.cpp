// Kernels over counted vectors, element by element and reduced to one number.
#include <string>

#include "bench/kernels.h"
#include "mvk_kernels.h"

namespace {

using bench::operands;

constexpr unsigned n = bench::vector_size;
constexpr float gain = 0.7f, other_gain = -0.3f;
constexpr float gains[14] = {0.1f,  0.2f, -0.3f, 0.4f, 0.5f,  -0.6f, 0.7f,
                             -0.1f, 0.2f, 0.3f,  0.4f, -0.5f, 0.6f,  0.7f};

// How a kernel is called, by what it takes.
constexpr auto unary = [](auto f, operands &o) { f(o.y, o.a, n); };
constexpr auto binary = [](auto f, operands &o) { f(o.y, o.a, o.b, n); };
constexpr auto scaled = [](auto f, operands &o) { f(o.y, o.a, gain, n); };
constexpr auto shifted = [](auto f, operands &o) { f(o.y, o.a, 1, n); };
constexpr auto scaled_shifted = [](auto f, operands &o) { f(o.y, o.a, gain, 1, n); };
constexpr auto reduced = [](auto f, operands &o) { o.y[0] = static_cast<float>(f(o.a, n)); };
constexpr auto reduced_both = [](auto f, operands &o) {
  o.y[0] = static_cast<float>(f(o.a, o.b, n));
};
constexpr auto planes = [](auto f, operands &o) { f(o.y, o.planes, gains, n); };
constexpr auto planes_twice = [](auto f, operands &o) { f(o.y, o.z, o.planes, gains, n); };

template <class F, class Call>
void library(const char *family_case, F *f, Call call) {
  bench::enroll_vector(family_case, "library", f, call);
}

// Those that others have as well.
void enroll_elementwise() {
  library("element/vec_LmpyLSU", mvk_vec_LmpyLSU_flex, scaled);
  library("element/vec_LmaskLSU", mvk_vec_LmaskLSU_flex, binary);
  library("element/CLaddCLCLU", mvk_CLaddCLCLU_flex, binary);
  library("element/CLsubCLCLU", mvk_CLsubCLCLU_flex, binary);
  library("element/CLmpyCLSU", mvk_CLmpyCLSU_flex, scaled);
  library("element/CLmpyCLVSU", mvk_CLmpyCLVSU_flex, binary);
  library("element/CLmpyCLCSU/flex", mvk_CLmpyCLCSU_flex, binary);
  library("element/CLmpyCLCSU/strict", MVK_CLmpyCLCSU_strict, binary);
  library("element/cvec_Lmpy_conjLLIU", mvk_cvec_Lmpy_conjLLIU_flex,
          [](auto f, operands &o) { f(o.y, o.a, o.b, 0, n); });
  library("element/VLsquaredmagCLIU", mvk_VLsquaredmagCLIU_flex,
          [](auto f, operands &o) { f(o.y, o.a, 0, n); });
}

// Those without a like.
void enroll_others() {
  library("vector/vec_LshlLIU", mvk_vec_LshlLIU_flex, shifted);
  library("vector/vec_Lmask_rev_coefLSU", mvk_vec_Lmask_rev_coefLSU_flex, binary);
  library("vector/vec_LsetLU", mvk_vec_LsetLU_flex, [](auto f, operands &o) { f(o.y, gain, n); });
  library("vector/vec_IeqLLU", mvk_vec_IeqLLU_flex,
          [](auto f, operands &o) { o.y[0] = float(f(o.a, o.b, n, 4.0f)); });
  library("vector/CLcopyCLU", mvk_CLcopyCLU_flex, unary);
  library("vector/CLzeroCLU", mvk_CLzeroCLU_flex, [](auto f, operands &o) { f(o.y, n); });
  library("vector/CLmpy_shlCLSIU", mvk_CLmpy_shlCLSIU_flex, scaled_shifted);
  library("vector/CLshlCLUU", mvk_CLshlCLUU_flex, shifted);
  library("vector/CLshrCLUU", mvk_CLshrCLUU_flex, shifted);
  library("vector/CLmacCLCLU", mvk_CLmacCLCLU_flex, binary);
  library("vector/CLmacCLLU", mvk_CLmacCLLU_flex, scaled);
  library("vector/CLmixCLCLSSU", mvk_CLmixCLCLSSU_flex,
          [](auto f, operands &o) { f(o.y, o.a, o.b, gain, other_gain, n); });
  library("vector/CLdivCLCLU", mvk_CLdivCLCLU_flex, binary);
  library("vector/CLrecipCLUU", mvk_CLrecipCLUU_flex, shifted);
  library("vector/CLmpy_recipCLLIU", mvk_CLmpy_recipCLLIU_flex, scaled_shifted);
  library("vector/CLmix4CL4SU", mvk_CLmix4CL4SU_flex, planes);
  library("vector/CLCLmix4CL8SU", mvk_CLCLmix4CL8SU_flex, planes_twice);
  library("vector/CLCLmix6CL12SU", mvk_CLCLmix6CL12SU_flex, planes_twice);
  library("vector/CLCLmix7CL14SU", mvk_CLCLmix7CL14SU_flex, planes_twice);
}

// A sum of four lanes is a chain of one operation for every four elements; so are
// vec_NdotLLU's two lanes, which add once for every four.
template <class F, class Call>
void chained(const char *family_case, F *f, Call call, const char *operation) {
  bench::enroll_vector(family_case, "library", f, call, [=](benchmark::State &state) {
    bench::count(state, "chain", operation, 0.25);
  });
}

void enroll_reductions() {
  const auto energy = [](auto f, operands &o) { o.y[0] = f(o.a, 0, n); };
  chained("reduction/vec_LdotLLU/flex", mvk_vec_LdotLLU_flex, reduced_both, "latency/fma");
  chained("reduction/vec_LdotLLU/strict", MVK_vec_LdotLLU_strict, reduced_both, "latency/fma");
  chained("reduction/vec_NdotLLU", mvk_vec_NdotLLU_flex, reduced_both, "latency/add64");
  chained("reduction/vec_Lsum_sqrLUU/flex", mvk_vec_Lsum_sqrLUU_flex, energy, "latency/fma");
  chained("reduction/vec_Lsum_sqrLUU/strict", MVK_vec_Lsum_sqrLUU_strict, energy, "latency/fma");
  chained("reduction/vec_Lmean_sqrLU/flex", mvk_vec_Lmean_sqrLU_flex, reduced, "latency/fma");
  chained("reduction/vec_Lmean_sqrLU/strict", MVK_vec_Lmean_sqrLU_strict, reduced, "latency/fma");
  library("reduction/vec_Labs_maxLU/flex", mvk_vec_Labs_maxLU_flex, reduced);
  library("reduction/vec_Labs_maxLU/strict", MVK_vec_Labs_maxLU_strict, reduced);
  library("reduction/vec_UnormLU", mvk_vec_UnormLU_flex, reduced);
}

[[maybe_unused]] const bool enrolled = [] {
  enroll_elementwise();
  enroll_others();
  enroll_reductions();
  return true;
}();

}  // namespace
