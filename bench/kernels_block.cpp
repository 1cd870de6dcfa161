// Kernels over blocks of 32 samples, beside a copy of each block that they read.
#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "bench/callees.h"
#include "bench/kernels.h"
#include "mvk_kernels.h"

namespace {

constexpr std::size_t block_size = 32;
constexpr float gains[16] = {0.1f, 0.2f, -0.3f, 0.4f, 0.5f,  -0.6f, 0.7f, -0.1f,
                             0.2f, 0.3f, 0.4f,  0.5f, -0.6f, 0.7f,  0.1f, -0.2f};
constexpr float limits[2] = {-0.5f, 0.4f};

// The inputs lie behind the result.
float *in(float *y, std::size_t input) { return y + (1 + input) * block_size; }

// What is in the blocks to begin with.
using material = bench::placed<float> (*)(std::size_t);
bench::placed<float> noise(std::size_t n) { return bench::noise(n, 1); }
bench::placed<float> silence(std::size_t n) { return bench::placed<float>(n); }

// Calls f for one set of blocks after another, all of them in the first cache.
template <unsigned inputs, class F, class Call>
void enroll_contender(const std::string &name, F *f, Call call, material contents = noise) {
  bench::enroll(name, [=](benchmark::State &state) {
    constexpr std::size_t sets = 16, set_size = (1 + inputs) * block_size;
    bench::placed<float> memory = contents(sets * set_size);
    F *const called = bench::opaque(f);
    auto own_call = call;
    bench::repeat(state, [&] {
      for (std::size_t set = 0; set < sets; ++set) own_call(called, memory.data() + set * set_size);
      return sets * block_size;
    });
  });
}

// call(f, y) is a call of the kernel with `inputs` blocks that it reads.
template <unsigned inputs, class F, class Call>
void enroll(const std::string &kernel, F *f, Call call, material contents = noise) {
  enroll_contender<inputs>("block/" + kernel + "/library", f, call, contents);
  enroll_contender<inputs>("block/" + kernel + "/copy", bench::copy_block, [](auto copy, float *y) {
    for (unsigned i = 0; i < inputs; ++i) copy(y, in(y, i));
  });
}

// Calls with the result, other arguments and the inputs, in this order.
template <unsigned inputs, class F, class... Others>
void enroll_inputs_last(const std::string &kernel, F *f, Others... others) {
  enroll<inputs>(kernel, f, [=](auto called, float *y) {
    [&]<std::size_t... i>(std::index_sequence<i...>) { called(y, others..., in(y, i)...); }
    (std::make_index_sequence<inputs>{});
  });
}
template <class F, class... Others>
void enroll_input_first(const std::string &kernel, F *f, Others... others) {
  enroll<1>(kernel, f, [=](auto called, float *y) { called(y, in(y, 0), others...); });
}
template <class F, class... Others>
void enroll_in_place(const std::string &kernel, F *f, Others... others) {
  enroll<1>(kernel, f, [=](auto called, float *y) { called(y, others...); });
}

// ---- In binary32 ----------------------------------------------------------------

void enroll_scalars() {
  enroll_input_first("single/BLmaxBLL/flex", mvk_BLmaxBLL_flex, 0.1f);
  enroll_input_first("single/BLmaxBLL/strict", MVK_BLmaxBLL_strict, 0.1f);
  enroll_in_place("single/BLmaxBLL_inplace/flex", mvk_BLmaxBLL_inplace_flex, 0.1f);
  enroll_in_place("single/BLmaxBLL_inplace/strict", MVK_BLmaxBLL_inplace_strict, 0.1f);
  enroll_in_place("single/BLmpyBLS_inplace", mvk_BLmpyBLS_inplace_flex, 1.0f);
  enroll_input_first("single/BLmpy_scaleBLSU", mvk_BLmpy_scaleBLSU_flex, 0.5f, 1u);
  enroll_in_place("single/BLmpy_scaleBLSU_inplace", mvk_BLmpy_scaleBLSU_inplace_flex, 0.5f, 1u);
  enroll_input_first("single/BLsaddBLL", mvk_BLsaddBLL_flex, 0.1f);
}

void enroll_mixes() {
  const float *const g = gains;
  enroll_inputs_last<1>("single/blk_LmixL", mvk_blk_LmixL_flex, g);
  enroll_inputs_last<2>("single/blk_LmixLL", mvk_blk_LmixLL_flex, g);
  enroll_inputs_last<3>("single/blk_LmixLLL", mvk_blk_LmixLLL_flex, g);
  enroll_inputs_last<4>("single/blk_LmixLLLL", mvk_blk_LmixLLLL_flex, g);
  enroll_inputs_last<1>("single/blk_Lmix_shlUL", mvk_blk_Lmix_shlUL_flex, g, 1u);
  enroll_inputs_last<2>("single/blk_Lmix_shlULL", mvk_blk_Lmix_shlULL_flex, g, 1u);
  enroll_inputs_last<3>("single/blk_Lmix_shlULLL", mvk_blk_Lmix_shlULLL_flex, g, 1u);
  enroll_inputs_last<4>("single/blk_Lmix_shlULLLL", mvk_blk_Lmix_shlULLLL_flex, g, 1u);
  enroll_inputs_last<8>("single/blk_LmixnL/8", MVK_blk_LmixnL, g, 8u);
  enroll_inputs_last<8>("single/blk_Lmix_shlUnL/8", MVK_blk_Lmix_shlUnL, g, 1u, 8u);
  enroll<8>("single/blk_Lmix_shlaL/8", MVK_blk_Lmix_shlaL,
            [](auto f, float *y) { f(y, gains, 8, in(y, 0), 1); });

  // The inputs are the samples and two stretches of the table.
  enroll<3>("single/blk_Lcrossfade_gainLS", mvk_blk_Lcrossfade_gainLS_flex,
            [state = mvk_blk_crossfade_state{0, 2 * block_size}](auto f, float *y) mutable {
              f(y, &state, in(y, 0), in(y, 1), 0.5f, 1.0f);
            });
}

void enroll_arithmetic() {
  enroll_in_place("single/blk_Lconst", mvk_blk_Lconst_flex, 0.5f);
  enroll_inputs_last<1>("single/blk_LabsL", mvk_blk_LabsL_flex);
  enroll_inputs_last<1>("single/blk_LclipL", mvk_blk_LclipL_flex, &limits[0]);
  enroll_inputs_last<2>("single/blk_LcmpLL", mvk_blk_LcmpLL_flex, &limits[0]);
  enroll_inputs_last<2>("single/blk_LmaxLL", mvk_blk_LmaxLL_flex);
  enroll_inputs_last<3>("single/blk_LmaxLLL", mvk_blk_LmaxLLL_flex);
  enroll_inputs_last<2>("single/blk_LminLL", mvk_blk_LminLL_flex);
  enroll_inputs_last<3>("single/blk_LminLLL", mvk_blk_LminLLL_flex);
  enroll_inputs_last<2>("single/blk_LsaddLL", mvk_blk_LsaddLL_flex);
  enroll_inputs_last<2>("single/blk_LsubLL", mvk_blk_LsubLL_flex);
  enroll<2>("single/blk_Lmpy_shlLSU", mvk_blk_Lmpy_shlLSU_flex,
            [](auto f, float *y) { f(y, in(y, 0), in(y, 1), 1); });

  // In place again and again, samples would grow or fade without end; zeros stay.
  const auto in_place = [](auto f, float *y) { f(y, in(y, 0)); };
  enroll<2>("single/blk_LLshuffleLL_inplace", mvk_blk_LLshuffleLL_inplace_flex, in_place, silence);
  enroll<2>("single/blk_LLdeshuffleLL_inplace", mvk_blk_LLdeshuffleLL_inplace_flex, in_place,
            silence);
}

// ---- In binary64, and with a past -------------------------------------------------

void enroll_others() {
  enroll_input_first("other/BLmpy_scale_xBLSU", mvk_BLmpy_scale_xBLSU_flex, 0.5f, 1u);
  enroll<2>("other/blk_Lmpy_shlLLU", mvk_blk_Lmpy_shlLLU_flex,
            [](auto f, float *y) { f(y, in(y, 0), in(y, 1), 1); });

  std::array<float, 15> past{};
  const auto fir = [past](auto f, float *y) mutable { f(y, in(y, 0), gains, past.data()); };
  enroll<1>("other/blk_Lfir2L", mvk_blk_Lfir2L_flex, fir);
  enroll<1>("other/blk_Lfir3L", mvk_blk_Lfir3L_flex, fir);
  enroll<1>("other/blk_LfirUL/16", mvk_blk_LfirUL_flex,
            [past](auto f, float *y) mutable { f(y, in(y, 0), 16, gains, past.data()); });
}

[[maybe_unused]] const bool enrolled = [] {
  enroll_scalars();
  enroll_mixes();
  enroll_arithmetic();
  enroll_others();
  return true;
}();

}  // namespace
