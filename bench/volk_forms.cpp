// VOLK's implementations with AVX, AVX2 and AVX-512, each by its own name, compiled from
// VOLK's headers. (Through VOLK's library only the dispatcher's choice can be called
// without a search by name in every call.)
#include "bench/callees.h"

#if defined(MVK_BENCH_VOLK) && defined(__x86_64__)
#include <immintrin.h>
#include <volk/volk_common.h>
#include <volk/volk_complex.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#define LV_HAVE_GENERIC 1
#define LV_HAVE_AVX 1
#define LV_HAVE_AVX2 1
#define LV_HAVE_FMA 1
#define LV_HAVE_AVX512F 1
#pragma GCC push_options
#pragma GCC target("avx2,fma,avx512f")
#include <volk/volk_32f_index_max_32u.h>
#include <volk/volk_32f_s32f_multiply_32f.h>
#include <volk/volk_32f_x2_add_32f.h>
#include <volk/volk_32f_x2_dot_prod_32f.h>
#include <volk/volk_32f_x2_multiply_32f.h>
#include <volk/volk_32f_x2_subtract_32f.h>
#include <volk/volk_32fc_32f_multiply_32fc.h>
#include <volk/volk_32fc_magnitude_squared_32f.h>
#include <volk/volk_32fc_x2_divide_32fc.h>
#include <volk/volk_32fc_x2_multiply_32fc.h>
#include <volk/volk_32fc_x2_multiply_conjugate_32fc.h>
#pragma GCC pop_options

#define FORM(kernel, name) \
  { #kernel, #name, reinterpret_cast < void (*)()>(volk_##kernel##_##name) }
// For data at any address, and for aligned data.
#define FORMS(kernel, extension) FORM(kernel, u_##extension), FORM(kernel, a_##extension)

static std::vector<bench::volk_form> runnable_forms() {
  std::vector<bench::volk_form> forms = {
      FORMS(32f_index_max_32u, avx),
      FORMS(32f_s32f_multiply_32f, avx),
      FORMS(32f_x2_add_32f, avx),
      FORMS(32f_x2_add_32f, avx512f),
      FORMS(32f_x2_dot_prod_32f, avx),
      FORMS(32f_x2_dot_prod_32f, avx2_fma),
      FORMS(32f_x2_dot_prod_32f, avx512f),
      FORMS(32f_x2_multiply_32f, avx),
      FORMS(32f_x2_multiply_32f, avx512f),
      FORMS(32f_x2_subtract_32f, avx),
      FORMS(32f_x2_subtract_32f, avx512f),
      FORM(32fc_32f_multiply_32fc, a_avx),
      FORMS(32fc_magnitude_squared_32f, avx),
      FORMS(32fc_x2_divide_32fc, avx),
      FORMS(32fc_x2_multiply_32fc, avx),
      FORMS(32fc_x2_multiply_32fc, avx2_fma),
      FORMS(32fc_x2_multiply_conjugate_32fc, avx),
  };
  if (!__builtin_cpu_supports("avx512f"))
    std::erase_if(forms, [](const bench::volk_form &form) { return form.needs_avx512(); });
  return forms;
}
#else
#include <vector>

static std::vector<bench::volk_form> runnable_forms() { return {}; }
#endif

std::span<const bench::volk_form> bench::volk_forms() {
  static const std::vector<volk_form> forms = runnable_forms();
  return forms;
}
