// The steps of the filter banks' modulation around its transforms, and what the whole amounts to,
// for tests.
#ifndef MVK_TESTS_REFERENCE_MODULATION_STEPS_H_
#define MVK_TESTS_REFERENCE_MODULATION_STEPS_H_

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "reference/dct_exact.h"
#include "reference/fft_values.h"

namespace reference {

// ---- Real bands ----

// 2 M samples to M, before a DCT-III.
inline std::vector<float> FoldedForBands(std::span<const float> src) {
  const size_t m = src.size() / 2, h = m / 2;
  std::vector<float> work(m);
  work[0] = 0.5f * src[3 * h];
  for (size_t i = 1; i < h; ++i) work[i] = 0.5f * (src[3 * h - i] + src[3 * h + i]);
  for (size_t i = h; i < m; ++i) work[i] = 0.5f * (src[3 * h - i] - src[i - h]);
  return work;
}

// M results of a DCT-II to 2 M samples.
inline std::vector<float> UnfoldedFromBands(std::span<const float> y) {
  const size_t m = y.size(), h = m / 2;
  std::vector<float> v(2 * m);
  for (size_t n = 0; n < h; ++n) v[n] = 2 * y[h - n];
  for (size_t n = h; n < 3 * h; ++n) v[n] = 2 * y[n - h];
  v[3 * h] = 0.0f;
  for (size_t n = 3 * h + 1; n < 2 * m; ++n) v[n] = -2 * y[5 * h - n];
  return v;
}

// cos((pi / M) (band + 1/2) whole), for the 4 M different products.
inline Wide BandCosine(const WideReals &cosines, size_t band, int64_t whole) {
  const auto period = static_cast<int64_t>(cosines.size());  // 4 M
  const int64_t turn = static_cast<int64_t>(2 * band + 1) * whole % period;
  return cosines[static_cast<size_t>(turn < 0 ? turn + period : turn)];
}

// 1 / (2 M) times the sum over r of src[r] cos((pi / M) (m + 1/2) (r - 3 M / 2))
inline WideReals ExactRealBands(std::span<const float> src) {
  const size_t m = src.size() / 2;
  const WideReals cosines = Cosines<Wide>(4 * m);
  WideReals bands(m);
  for (size_t band = 0; band < m; ++band) {
    for (size_t r = 0; r < 2 * m; ++r) {
      bands[band] += src[r] * BandCosine(cosines, band,
                                         static_cast<int64_t>(r) - static_cast<int64_t>(3 * m / 2));
    }
    bands[band] /= static_cast<Wide>(2 * m);
  }
  return bands;
}

// 2 times the sum over j of bands[j] cos((pi / M) (j + 1/2) (n - M / 2)), n = 0 to 2 M - 1
inline WideReals ExactRealSamples(std::span<const float> bands) {
  const size_t m = bands.size();
  const WideReals cosines = Cosines<Wide>(4 * m);
  WideReals samples(2 * m);
  for (size_t n = 0; n < 2 * m; ++n) {
    for (size_t j = 0; j < m; ++j) {
      samples[n] += 2 * bands[j] *
                    BandCosine(cosines, j, static_cast<int64_t>(n) - static_cast<int64_t>(m / 2));
    }
  }
  return samples;
}

// ---- Complex bands ----

// Even bands come from the low bins, odd bands from the high ones.
inline ComplexArray BandsOfBins(const ComplexArray &bins) {
  const size_t m = bins.size();
  ComplexArray bands(m);
  for (size_t i = 0; i < m / 2; ++i) {
    bands[2 * i] = {bins[i].re, -bins[i].im};
    bands[2 * i + 1] = bins[m - 1 - i];
  }
  return bands;
}

inline ComplexArray BinsOfBands(const ComplexArray &bands) {
  const size_t m = bands.size();
  ComplexArray bins(m);
  for (size_t i = 0; i < m / 2; ++i) {
    bins[i] = {bands[2 * i].re, -bands[2 * i].im};
    bins[m - 1 - i] = bands[2 * i + 1];
  }
  return bins;
}

// Entry j of a table of pairs in groups of four.
struct TablePair {
  float c1, c2;
};

inline TablePair PairOf(const float *table, size_t j) {
  const float *group = table + j / 4 * 8;
  return {group[j % 4], group[j % 4 + 4]};
}

using Factors = std::vector<std::complex<double>>;

// What the alignment rotation multiplies the bands by.
inline Factors AlignmentFactors(const float *table, size_t bands) {
  Factors factors;
  for (size_t j = 0; j < bands; ++j) {
    const TablePair pair = PairOf(table, j);
    factors.emplace_back(pair.c2, pair.c1);
  }
  return factors;
}

// What the half-sample rotation multiplies the bands by, from both ends.
inline Factors HalfSampleFactors(const float *table, size_t bands) {
  Factors factors(bands);
  for (size_t j = 0; j < bands / 2; ++j) {
    const TablePair pair = PairOf(table, j);
    factors[j] = {pair.c2, pair.c1};
    factors[bands - 1 - j] = {-pair.c1, -pair.c2};  // -i (c2 - i c1)
  }
  return factors;
}

inline Factors Inverses(const Factors &factors) {
  Factors inverses;
  for (const auto &factor : factors) inverses.push_back(1.0 / factor);
  return inverses;
}

}  // namespace reference

#endif
