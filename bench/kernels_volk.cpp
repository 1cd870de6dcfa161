// VOLK at the work of the kernels that it has a like of.
#ifdef MVK_BENCH_VOLK
#include <volk/volk_complex.h>
#include <volk/volk_typedefs.h>

#include <cstdint>
#include <string>

#include "bench/callees.h"
#include "bench/kernels.h"

namespace {

using bench::operands;

constexpr unsigned n = bench::vector_size;

// Enrolls every form of VOLK's kernel. The report takes the best of those with AVX and
// AVX2, and the best of those with AVX-512.
template <class Kernel, class Call>
void volk(const std::string &family_case, const std::string &kernel, Call call) {
  for (const bench::volk_form &form : bench::volk_forms())
    if (form.kernel == kernel)
      bench::enroll_vector(
          family_case, std::string(form.needs_avx512() ? "volk-avx512:" : "volk-avx:") + form.name,
          reinterpret_cast<Kernel>(form.function), call);
}

// ---- Calls --------------------------------------------------------------------

lv_32fc_t *pairs(float *x) { return reinterpret_cast<lv_32fc_t *>(x); }
const lv_32fc_t *pairs(const float *x) { return reinterpret_cast<const lv_32fc_t *>(x); }

// Over `count` real elements, which may be the parts of complex ones.
template <unsigned count>
constexpr auto scaled = [](auto f, operands &o) { f(o.y, o.a, 0.7f, count); };
template <unsigned count>
constexpr auto binary = [](auto f, operands &o) { f(o.y, o.a, o.b, count); };

constexpr auto binary_pairs = [](auto f, operands &o) { f(pairs(o.y), pairs(o.a), pairs(o.b), n); };
constexpr auto real_factors = [](auto f, operands &o) { f(pairs(o.y), pairs(o.a), o.b, n); };
constexpr auto from_pairs = [](auto f, operands &o) { f(o.y, pairs(o.a), n); };

// The sum of the squares as the dot product of the vector with itself.
constexpr auto energy = [](auto f, operands &o) { f(o.y, o.a, o.a, n); };

// The largest element by its index, the nearest to the largest magnitude.
constexpr auto peak = [](auto f, operands &o) {
  uint32_t at = 0;
  f(&at, o.a, n);
  o.y[0] = o.a[at];
};

[[maybe_unused]] const bool enrolled = [] {
  volk<p_32f_s32f_multiply_32f>("element/vec_LmpyLSU", "32f_s32f_multiply_32f", scaled<n>);
  volk<p_32f_s32f_multiply_32f>("element/CLmpyCLSU", "32f_s32f_multiply_32f", scaled<2 * n>);
  volk<p_32f_x2_multiply_32f>("element/vec_LmaskLSU", "32f_x2_multiply_32f", binary<n>);
  volk<p_32f_x2_add_32f>("element/CLaddCLCLU", "32f_x2_add_32f", binary<2 * n>);
  volk<p_32f_x2_subtract_32f>("element/CLsubCLCLU", "32f_x2_subtract_32f", binary<2 * n>);
  volk<p_32fc_32f_multiply_32fc>("element/CLmpyCLVSU", "32fc_32f_multiply_32fc", real_factors);
  volk<p_32fc_magnitude_squared_32f>("element/VLsquaredmagCLIU", "32fc_magnitude_squared_32f",
                                     from_pairs);
  volk<p_32fc_x2_multiply_conjugate_32fc>("element/cvec_Lmpy_conjLLIU",
                                          "32fc_x2_multiply_conjugate_32fc", binary_pairs);
  volk<p_32fc_x2_divide_32fc>("vector/CLdivCLCLU", "32fc_x2_divide_32fc", binary_pairs);

  for (const std::string form : {"flex", "strict"}) {
    volk<p_32fc_x2_multiply_32fc>("element/CLmpyCLCSU/" + form, "32fc_x2_multiply_32fc",
                                  binary_pairs);
    volk<p_32f_x2_dot_prod_32f>("reduction/vec_LdotLLU/" + form, "32f_x2_dot_prod_32f", binary<n>);
    volk<p_32f_x2_dot_prod_32f>("reduction/vec_Lsum_sqrLUU/" + form, "32f_x2_dot_prod_32f", energy);
    volk<p_32f_index_max_32u>("reduction/vec_Labs_maxLU/" + form, "32f_index_max_32u", peak);
  }
  return true;
}();

}  // namespace
#endif
