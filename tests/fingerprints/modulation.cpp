// The modulation stage of the filter banks.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "mvk_dct.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

struct RealBank {
  uint32_t bands;
  const float *twiddle;
};
#define REAL_BANK(n) {n, mvk_dct_twiddle_table16_L##n},
const RealBank kRealBanks[] = {MVK_DCT_LENGTHS(REAL_BANK)};

// Without a pair, the kernels of the family whose rounding is fixed are looked up.
template <typename Run>
void ForEachRealBank(Run run) {
  for (const RealBank &bank : kRealBanks) {
    const mvk_fft_pair *const pair = MVK_r4_cplx_fwd_pair(bank.bands / 2);
    if (bank.bands % 4 != 0 || pair == nullptr) continue;
    for (const Material &material : kSignals) {
      run(bank, pair, Corpus(material, bank.bands));
      run(bank, nullptr, Corpus(material, bank.bands));
    }
  }
}

void AddForwardReal(Digest &digest) {
  ForEachRealBank([&](const RealBank &bank, const mvk_fft_pair *pair, Corpus corpus) {
    GuardedFloats src(corpus.Copy(2 * size_t{bank.bands}), 1), out(bank.bands, 2);
    GuardedFloats work(bank.bands, 3);
    mvk_forwardModulationReal(src.data(), out.data(), bank.bands, pair, bank.twiddle, work.data());
    digest.Numbers(out.values());
  });
}

void AddInverseReal(Digest &digest) {
  ForEachRealBank([&](const RealBank &bank, const mvk_fft_pair *pair, Corpus corpus) {
    GuardedFloats data(corpus.Copy(bank.bands), 1), work(bank.bands, 2);
    mvk_inverseModulationReal(data.data(), work.data(), bank.bands, pair, bank.twiddle);
    digest.Numbers(data.values());
    digest.Numbers(work.values());
  });
}

struct ComplexBank {
  uint32_t bands, mode;
  const float *rotation;
};
#define PLAIN(M) {M, MVK_TWIDDLE_NONE, nullptr},
#define ALIGNED(M) {M, MVK_TWIDDLE_ALIGN, mvk_cos_##M##_ast_mini_twiddle},
#define HALF_SAMPLE(M) {M, 1, mvk_cos_##M##_full_twiddle},
const ComplexBank kComplexBanks[] = {
    MVK_COS_FULL_BANDS(PLAIN) MVK_COS_ALIGNED_BANDS(ALIGNED){64, MVK_TWIDDLE_ALIGN, nullptr},
    MVK_COS_HALF_SAMPLE_BANDS(HALF_SAMPLE)};

// src, out and work, in the direction's order of arguments.
template <typename Modulate>
void AddComplex(Digest &digest, Modulate modulate) {
  for (const ComplexBank &bank : kComplexBanks) {
    const size_t count = 2 * size_t{bank.bands};
    for (const mvk_fft_pair *pair :
         {MVK_r4_cplx_fwd_pair(bank.bands), static_cast<const mvk_fft_pair *>(nullptr)}) {
      for (const Material &material : kSignals) {
        GuardedFloats src(Corpus(material, bank.bands).Copy(count), 1), out(count, 2);
        GuardedFloats work(count, 3);
        modulate(src.data(), out.data(), work.data(), bank.bands, bank.mode, bank.rotation, pair);
        digest.Numbers(out.values());
      }
    }
  }
}

}  // namespace

void ListModulation(Entries &entries) {
  MVK_ENTRY(mvk_forwardModulationReal, AddForwardReal);
  MVK_ENTRY(mvk_inverseModulationReal, AddInverseReal);
  MVK_ENTRY(mvk_forwardModulationComplex,
            [](Digest &digest) { AddComplex(digest, &mvk_forwardModulationComplex); });
  MVK_ENTRY(mvk_inverseModulationComplex,
            [](Digest &digest) { AddComplex(digest, &mvk_inverseModulationComplex); });
}

}  // namespace testing_support
