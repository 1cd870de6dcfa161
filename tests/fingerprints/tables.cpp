// Constant tables: all of their bytes, and what those of pointers point to.
#include <algorithm>

#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "mvk_dct.h"
#include "mvk_fft.h"
#include "mvk_hybrid.h"
#include "mvk_kernels.h"
#include "mvk_mfb.h"
#include "mvk_qmf.h"
#include "orvane_ht_ztlim.h"
#include "orvane_resampler.h"

namespace testing_support {
namespace {

struct Table {
  const char *name;
  const void *bytes;
  size_t count;
};

#define TABLE(name) \
  { #name, &name, sizeof name }

const Table kSingleTables[] = {
    TABLE(mvk_fft_twiddle),
    TABLE(mvk_fft_real_sine),
    TABLE(mvk_non_power_two_lengths),
    TABLE(mvk_num_of_non_power_two_lengths),
    TABLE(mvk_hyb_p8_13),
    TABLE(mvk_hyb_p4_13),
    TABLE(mvk_hyb_p2_6),
    TABLE(mvk_clclmix5cl10csu_c),
    TABLE(mvk_clclmix5cl10csu_order_coef_c),
    TABLE(mvk_unused_debug),
    TABLE(MVK_MFB_P10KM_P64ORV301),
    TABLE(MVK_MFB_P10KM_P64ORV301_LEGACY),
    TABLE(MVK_MFB_P10KM_P4_319SC),
    TABLE(MVK_MFB_P10KM_P4_319SC_128M),
    TABLE(MVK_MFB_P10KM_P4_319SC_256M),
    TABLE(MVK_MFB_TWID64O),
    TABLE(MVK_MFB_TWID64E),
    TABLE(MVK_MFB_TWID128E),
    TABLE(MVK_MFB_TWID256E),
    TABLE(orvane_ht_ZTLIM_ONE_OVER_256_S),
    TABLE(orvane_ht_ZTLIM_ONE_OVER_256_L),
    TABLE(orvane_ht_a_ztlim_win_32),
    TABLE(orvane_ht_a_ztlim_win_40),
    TABLE(orvane_ht_a_ztlim_win_64),
    TABLE(orvane_ht_a_ztlim_win_128),
    TABLE(orvane_ht_a_ztlim_win_256),
    TABLE(RESAMP_PROCESSING_BLK_SIZE),
    TABLE(orvane_resampler_2x_filt),
    TABLE(orvane_resampler_4x_filt),
    TABLE(orvane_resampler_2x_ph0_vec),
    TABLE(orvane_resampler_2x_ph1_vec),
    TABLE(orvane_resampler_4x_ph0_vec),
    TABLE(orvane_resampler_4x_ph1_vec),
    TABLE(orvane_resampler_4x_ph2_vec),
    TABLE(orvane_resampler_4x_ph3_vec),
};

// Those that there is one of for each length or design.
#define ROW(name) TABLE(name),
#define DCT_TWIDDLES(n)             \
  ROW(mvk_dct_twiddle_table16_L##n) \
  ROW(mvk_dct_twiddle_table16_L##n##_1) ROW(mvk_dct_twiddle_table16_L##n##_2)
#define DCT_OTHERS(n)                   \
  ROW(mvk_dct_twiddle_table16_rev_L##n) \
  ROW(mvk_dct_twiddle_table16_1_L##n) ROW(mvk_dct_twiddle_table16_rev_1_L##n)
#define DCT_COSINES(n) ROW(mvk_dct_twiddle_table16_L##n##_cos)
#define FFT_SINE(L) ROW(mvk_rfft_sine_##L)
#define QMF_PROTOTYPE(name, design, P, M, rows) \
  ROW(mvk_qmf_filter_coeff_##name)              \
  ROW(mvk_qmf_filter_coeff_##name##_vec_ana) ROW(mvk_qmf_filter_coeff_##name##_vec_syn)
#define COS_FULL(M) ROW(mvk_cos_##M##_full) ROW(mvk_cos_##M##_full_scl)
#define COS_HALF_SAMPLE(M) ROW(mvk_cos_##M##_full_twiddle)
#define COS_ALIGNED(M) ROW(mvk_cos_##M##_ast_mini_twiddle)

const Table kDctTwiddles[] = {DCT_TWIDDLES(2) MVK_DCT_LENGTHS(DCT_TWIDDLES)};
const Table kDctOthers[] = {DCT_OTHERS(2) MVK_DCT_LENGTHS(DCT_OTHERS) DCT_OTHERS(640)};
const Table kDctCosines[] = {MVK_DCT_LENGTHS(DCT_COSINES) DCT_COSINES(640)};
const Table kFftSines[] = {MVK_FFT_REAL_LENGTHS(FFT_SINE)};
const Table kQmfPrototypeTables[] = {MVK_QMF_PROTOTYPES(QMF_PROTOTYPE)};
const Table kCosFull[] = {MVK_COS_FULL_BANDS(COS_FULL)};
const Table kCosHalfSample[] = {MVK_COS_HALF_SAMPLE_BANDS(COS_HALF_SAMPLE)};
const Table kCosAligned[] = {MVK_COS_ALIGNED_BANDS(COS_ALIGNED)};

// Addresses depend on where the library is loaded; what lies there doesn't.
using TimeConstants = const orvane_ht_ztlim_coefs *const[9];
void AddTimeConstants(Digest &digest, const TimeConstants &table) {
  for (const orvane_ht_ztlim_coefs *record : table) {
    // Rates that share a record show by its first place.
    digest.Integer(static_cast<uint64_t>(std::ranges::find(table, record) - table));
    if (record != nullptr) digest.Bytes(record, sizeof *record);
  }
}

template <size_t size>
void AddDispatch(Digest &digest, mvk_fft_transform *const (&table)[size]) {
  for (size_t i = 0; i < size; ++i) {
    digest.Integer(table[i] != nullptr);
    if (table[i] == nullptr) continue;
    const uint32_t n = size == 12 ? 1u << i : mvk_non_power_two_lengths[i];
    std::vector<float> src = Corpus(kUniform).Copy(2 * size_t{n});
    std::vector<float> dst(src.size()), scratch(src.size());
    table[i](dst.data(), src.data(), scratch.data());
    digest.Numbers(dst);
  }
}

}  // namespace

void ListTables(Entries &entries) {
  const auto add_all = [&entries](std::span<const Table> tables) {
    for (const Table &table : tables) {
      entries.push_back(
          {table.name, [&table](Digest &digest) { digest.Bytes(table.bytes, table.count); }});
    }
  };
  add_all(kSingleTables);
  add_all(kDctTwiddles);
  add_all(kDctOthers);
  add_all(kDctCosines);
  add_all(kFftSines);
  add_all(kQmfPrototypeTables);
  add_all(kCosFull);
  add_all(kCosHalfSample);
  add_all(kCosAligned);
#define ADD(name, add) MVK_ENTRY(name, [](Digest &digest) { add(digest, name); });
  ADD(orvane_ht_ap_ztlim_coefs_32, AddTimeConstants)
  ADD(orvane_ht_ap_ztlim_coefs_40, AddTimeConstants)
  ADD(orvane_ht_ap_ztlim_coefs_64, AddTimeConstants)
  ADD(orvane_ht_ap_ztlim_coefs_128, AddTimeConstants)
  ADD(orvane_ht_ap_ztlim_coefs_256, AddTimeConstants)
  ADD(mvk_fft_cplx_fwd_scl, AddDispatch)
  ADD(mvk_fft_cplx_fwd_usc, AddDispatch)
  ADD(mvk_fft_cplx_inv_scl, AddDispatch)
  ADD(mvk_fft_cplx_inv_usc, AddDispatch)
  ADD(mvk_odd_fft_cplx_fwd_scl, AddDispatch)
  ADD(mvk_odd_fft_cplx_fwd_usc, AddDispatch)
  ADD(mvk_odd_fft_cplx_inv_scl, AddDispatch)
  ADD(mvk_odd_fft_cplx_inv_usc, AddDispatch)
}

}  // namespace testing_support
