// The tables and transforms of a QMF bank, by its bands.
#include "filterbanks/qmf.h"

#include "mvk_dct.h"

using namespace mvk;

const float *mvk::find_rotation(std::uint32_t bands, std::uint32_t twiddle_mode) {
  if (twiddle_mode == MVK_TWIDDLE_NONE) return nullptr;
  if (twiddle_mode != MVK_TWIDDLE_ALIGN)
    return bands == 64 ? mvk_cos_64_full_twiddle : mvk_cos_32_full_twiddle;
  switch (bands) {
#define MVK_CASE(M) \
  case M:           \
    return mvk_cos_##M##_ast_mini_twiddle;
    MVK_COS_ALIGNED_BANDS(MVK_CASE)
#undef MVK_CASE
    default:
      return nullptr;
  }
}

cosine_transform mvk::find_cosine_transform(std::uint32_t bands) {
  const mvk_fft_pair *const pair = find_forward_pair(bands / 2);
  const auto with = [=](const float *twiddle) {
    return cosine_transform{pair, pair ? twiddle : nullptr};
  };
  switch (bands) {
#define MVK_CASE(M) \
  case M:           \
    return with(mvk_dct_twiddle_table16_L##M);
    MVK_CASE(4)
    MVK_CASE(8)
    MVK_CASE(16)
    MVK_CASE(32)
    MVK_CASE(64)
    MVK_CASE(128)
    MVK_CASE(256)
    MVK_CASE(512)
    MVK_CASE(1024)
#undef MVK_CASE
    default:
      return with(nullptr);
  }
}

window_modulation mvk::find_window_modulation(std::uint32_t bands) {
  switch (bands) {
#define MVK_CASE(M) \
  case M:           \
    return {mvk_cos_##M##_full, mvk_cos_##M##_full_scl};
    MVK_COS_FULL_BANDS(MVK_CASE)
#undef MVK_CASE
    default:
      return {mvk_cos_32_full, mvk_cos_32_full_scl};
  }
}
