// Cosine transforms, and the rotations of a type IV.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "mvk_dct.h"

namespace testing_support {
namespace {

struct Twiddles {
  uint32_t n;
  const float *whole, *sines, *cosines;
};

#define TWIDDLES(n)                                                   \
  {n, mvk_dct_twiddle_table16_L##n, mvk_dct_twiddle_table16_L##n##_1, \
   mvk_dct_twiddle_table16_L##n##_2},
const Twiddles kTwiddles[] = {TWIDDLES(2) MVK_DCT_LENGTHS(TWIDDLES)};

// Types II and III are defined for 2 and multiples of 4 with a transform of half as many points.
// The pairs of the slower family and those that are found by a null one are the same.
template <typename Run>
void ForEachLength(Run run) {
  for (const Twiddles &twiddles : kTwiddles) {
    const mvk_fft_pair *const pair = MVK_r4_cplx_fwd_pair(twiddles.n / 2);
    if (twiddles.n != 2 && (twiddles.n % 4 != 0 || pair == nullptr)) continue;
    for (const Material &material : kSignals) {
      run(nullptr, twiddles, Corpus(material, twiddles.n).Copy(twiddles.n));
      if (pair != nullptr) run(pair, twiddles, Corpus(material, twiddles.n).Copy(twiddles.n));
    }
  }
}

void AddApart(Digest &digest, decltype(&mvk_dctII_scaled) transform) {
  ForEachLength([&](const mvk_fft_pair *pair, const Twiddles &twiddles, std::vector<float> x) {
    GuardedFloats in(std::move(x), 1), out(twiddles.n, 2);
    transform(pair, twiddles.whole, out.data(), in.data(), twiddles.n);
    digest.Numbers(out.values());
  });
}

void AddInPlace(Digest &digest, decltype(&_mvk_ldct2_scaled_iplu) transform) {
  ForEachLength([&](const mvk_fft_pair *pair, const Twiddles &twiddles, std::vector<float> x) {
    GuardedFloats data(std::move(x), 3);
    transform(pair, twiddles.whole, data.data(), twiddles.n);
    digest.Numbers(data.values());
  });
}

template <typename Rotate>
void AddRotations(Digest &digest, Rotate rotate) {
  for (const Twiddles &twiddles : kTwiddles) {
    for (const Material &material : kValues) {
      const size_t count = 2 * size_t{twiddles.n};
      GuardedFloats in(Corpus(material, twiddles.n).Copy(count), 1), out(count, 2);
      rotate(out.data(), in.data(), twiddles.sines, twiddles.cosines, twiddles.n);
      digest.Numbers(out.values());
    }
  }
}

}  // namespace

void ListCosineTransforms(Entries &entries) {
#define ADD(function, add) MVK_ENTRY(function, [](Digest &digest) { add(digest, &function); });
  ADD(mvk_dctII_scaled, AddApart)
  ADD(mvk_dctII_unscaled, AddApart)
  ADD(mvk_dctIII_scaled, AddApart)
  ADD(_mvk_ldct2_scaled_iplu, AddInPlace)
  ADD(_mvk_ldct2_unscaled_iplu, AddInPlace)
  ADD(_mvk_ldct3_scaled_iplu, AddInPlace)
  ADD(mvk_dct4_premodulation, AddRotations)
  ADD(mvk_dct4_postmodulation_shl0, AddRotations)
  ADD(mvk_dct4_postmodulation_shl1, AddRotations)
  ADD(mvk_dct4_postmodulation_shl2, AddRotations)
  MVK_ENTRY(mvk_dct4_postmodulation_shl, [](Digest &digest) {
    for (int32_t shift : {0, 5, -3}) {
      AddRotations(
          digest, [shift](float *out, const float *in, const float *c, const float *s, uint32_t n) {
            mvk_dct4_postmodulation_shl(out, in, c, s, shift, n);
          });
    }
  });
}

}  // namespace testing_support
