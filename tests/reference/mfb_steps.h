// The multichannel banks of ten taps per band, sample by sample in their order of rounding, for
// tests.
#ifndef MVK_TESTS_REFERENCE_MFB_STEPS_H_
#define MVK_TESTS_REFERENCE_MFB_STEPS_H_

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "reference/fft_values.h"

namespace reference {

inline constexpr size_t kMfbTaps = 10;  // per band

// Where a tap of a sample stands among groups of four samples.
inline size_t MfbTapPlace(size_t tap, size_t sample) {
  return 4 * kMfbTaps * (sample / 4) + 4 * tap + sample % 4;
}

inline float MfbTap(std::span<const float> table, size_t tap, size_t sample) {
  return table[MfbTapPlace(tap, sample)];
}

// Pair j of a table of pairs by fours.
inline Complex MfbPair(std::span<const float> table, size_t j) {
  return {table[j / 4 * 8 + j % 4], table[j / 4 * 8 + 4 + j % 4]};
}

// Pairs that turn nothing, so that turned numbers are what they were to the bit.
inline std::vector<float> MfbUnitPairs(size_t bands) {
  std::vector<float> table(2 * bands);
  for (size_t j = 0; j < bands; ++j) table[j / 4 * 8 + j % 4] = 1;
  return table;
}

enum class MfbPath { kNew, kLegacy };

// ---- Analysis ----

// What a slot is turned and transformed from.
struct MfbSums {
  std::vector<float> odd, even;
};

// The window of one channel, over a ring of nine blocks.
class MfbAnalysisWindow {
 public:
  MfbAnalysisWindow(std::span<const float> table, size_t bands, MfbPath path, uint32_t position = 0)
      : table_(table), path_(path), position_(position) {
    ring_.fill(std::vector<float>(bands));
  }

  MfbSums Slot(const float *x) {
    const size_t m = ring_[0].size();
    MfbSums sums{std::vector<float>(m), std::vector<float>(m)};
    for (size_t k = 0; k < m; ++k) {
      const auto c = [&](size_t tap) { return MfbTap(table_, tap, k); };
      const auto b = [&](size_t age) { return ring_[(position_ % 9 + age) % 9][k]; };
      const float h = 0.5f * x[path_ == MfbPath::kLegacy ? m - 1 - k : k];
      float odd = c(5) * b(5);
      odd = std::fma(c(1), b(1), odd);
      odd = std::fma(-c(3), b(3), odd);
      odd = std::fma(-c(7), b(7), odd);
      odd = std::fma(c(9), h, odd);
      float even = c(4) * b(4);
      even = std::fma(c(0), b(0), even);
      even = std::fma(c(8), b(8), even);
      even = std::fma(-c(2), b(2), even);
      even = std::fma(-c(6), b(6), even);
      sums.odd[k] = odd;
      sums.even[k] = even;
      ring_[position_ % 9][k] = h;
    }
    ++position_;
    return sums;
  }

 private:
  std::span<const float> table_;
  MfbPath path_;
  uint32_t position_;
  std::array<std::vector<float>, 9> ring_;
};

// The transform's input if nothing is turned.
inline std::vector<float> MfbUnturned(const MfbSums &sums, MfbPath path) {
  std::vector<float> u;
  for (size_t k = 0; k < sums.odd.size(); ++k) {
    const bool odd_first = path == MfbPath::kNew;
    u.push_back(odd_first ? sums.odd[k] : sums.even[k]);
    u.push_back(odd_first ? sums.even[k] : sums.odd[k]);
  }
  return u;
}

// Bands in their order from the bins of the transform.
inline std::vector<float> MfbUnpacked(std::span<const float> f, MfbPath path) {
  const size_t m = f.size() / 2;
  std::vector<float> bands(f.size());
  for (size_t i = 0; i < m / 2; ++i) {
    const float *const up = &f[2 * i], *const down = &f[2 * (m - 1 - i)];
    float *const even = &bands[4 * i], *const odd = even + 2;
    if (path == MfbPath::kNew) {
      even[0] = up[0], even[1] = up[1];
      odd[0] = down[0], odd[1] = -down[1];
    } else {
      even[0] = -up[1], even[1] = -up[0];
      odd[0] = -down[1], odd[1] = down[0];
    }
  }
  return bands;
}

// A product and a fused step, where either product may be the one that is rounded.
struct MfbEither {
  MfbEither(float a, float b, float c, float d)
      : candidates{std::fma(a, b, c * d), std::fma(c, d, a * b)} {}
  bool Has(float x) const { return x == candidates[0] || x == candidates[1]; }

  float candidates[2];
};

// The bands' parts from bins turned by a table of M floats, four at a step: forwards for the lower
// half of the bands, and backwards for the upper one.
inline std::vector<MfbEither> MfbPostTwiddled(std::span<const float> f,
                                              std::span<const float> table) {
  const size_t m = table.size();
  std::vector<MfbEither> parts;
  for (size_t i = 0; i < m / 4; ++i) {
    const float a = table[4 * i], b = table[4 * i + 1], c = table[4 * i + 2], d = table[4 * i + 3];
    const float r0 = f[2 * i], i0 = f[2 * i + 1];
    const float r1 = f[2 * (m - 1 - i)], i1 = f[2 * (m - 1 - i) + 1];
    parts.emplace_back(i0, a, -r0, b);
    parts.emplace_back(i0, b, r0, a);
    parts.emplace_back(i1, c, r1, d);
    parts.emplace_back(i1, d, -r1, c);
  }
  for (size_t s = 0; s < m / 4; ++s) {
    const float *const A = &table[m - 4 - 4 * s];
    const float r0 = f[2 * (m / 4 + s)], i0 = f[2 * (m / 4 + s) + 1];
    const float r1 = f[2 * (3 * m / 4 - 1 - s)], i1 = f[2 * (3 * m / 4 - 1 - s) + 1];
    parts.emplace_back(r0, A[2], -i0, A[3]);
    parts.emplace_back(-i0, A[2], -r0, A[3]);
    parts.emplace_back(-i1, A[1], -r1, A[0]);
    parts.emplace_back(r1, A[1], -i1, A[0]);
  }
  return parts;
}

// ---- Synthesis ----

enum class MfbPack { kPlain, kLegacy, kExtraLatency };

// One of the functions.
struct MfbSynthesisRule {
  MfbPack pack;
  bool reversed_groups;  // sample k reads the taps of sample M - 1 - k
  bool reversed_output;
  std::string_view terms;  // sign, tap and stream of what a slot adds to this one and the next nine
};

inline constexpr MfbSynthesisRule kMfbSymmetric = {MfbPack::kPlain, false, false,
                                                   "-0U +1V +2U -3V -4U +5V +6U -7V -8U +9V"};
inline constexpr MfbSynthesisRule kMfbLegacy = {MfbPack::kLegacy, false, true,
                                                "+0V -1U -2V +3U +4V -5U -6V +7U +8V -9U"};
inline constexpr MfbSynthesisRule kMfbExtraLatency = {MfbPack::kExtraLatency, false, false,
                                                      "+9U -8V -7U +6V +5U -4V -3U +2V +1U -0V"};
inline constexpr MfbSynthesisRule kMfbEven[] = {
    {MfbPack::kPlain, true, false, "+9V +8U -7V -6U +5V +4U -3V -2U +1V +0U"},
    {MfbPack::kPlain, true, false, "-9U +8V +7U -6V -5U +4V +3U -2V -1U +0V"},
    {MfbPack::kPlain, true, false, "-9V -8U +7V +6U -5V -4U +3V +2U -1V -0U"},
    {MfbPack::kPlain, true, false, "+9U -8V -7U +6V +5U -4V -3U +2V +1U -0V"},
};

// The transform's input from the bands.
inline std::vector<float> MfbPacked(std::span<const float> y, MfbPack pack) {
  const size_t m = y.size() / 2;
  std::vector<float> z(y.size());
  for (size_t i = 0; i < m / 2; ++i) {
    const float *const even = &y[4 * i], *const odd = even + 2;
    float *const up = &z[2 * i], *const down = &z[2 * (m - 1 - i)];
    switch (pack) {
      case MfbPack::kPlain:
        up[0] = even[0], up[1] = -even[1];
        down[0] = odd[0], down[1] = odd[1];
        break;
      case MfbPack::kLegacy:
        up[0] = -even[1], up[1] = even[0];
        down[0] = odd[1], down[1] = odd[0];
        break;
      case MfbPack::kExtraLatency:
        up[0] = even[1], up[1] = even[0];
        down[0] = -odd[1], down[1] = odd[0];
        break;
    }
  }
  return z;
}

// The delay line of one channel.
class MfbSynthesisWindow {
 public:
  MfbSynthesisWindow(const MfbSynthesisRule &rule, std::span<const float> table, size_t bands)
      : rule_(rule), table_(table), bands_(bands) {
    stages_.fill(std::vector<float>(bands));
  }

  std::vector<float> Slot(std::span<const float> u, std::span<const float> v) {
    std::vector<float> out(bands_);
    for (size_t k = 0; k < bands_; ++k) {
      const auto weight = [&](size_t term) {
        const float c = MfbTap(table_, static_cast<size_t>(rule_.terms[4 * term + 1] - '0'),
                               rule_.reversed_groups ? bands_ - 1 - k : k);
        return rule_.terms[4 * term] == '-' ? -c : c;
      };
      const auto stream = [&](size_t term) {
        return rule_.terms[4 * term + 2] == 'U' ? u[k] : v[k];
      };
      const float sum = std::fma(weight(0), stream(0), stages_[0][k]);
      out[rule_.reversed_output ? bands_ - 1 - k : k] = sum + sum;
      for (size_t j = 0; j < 8; ++j) {
        stages_[j][k] = std::fma(weight(j + 1), stream(j + 1), stages_[j + 1][k]);
      }
      stages_[8][k] = weight(9) * stream(9);
    }
    return out;
  }

 private:
  MfbSynthesisRule rule_;
  std::span<const float> table_;
  size_t bands_;
  std::array<std::vector<float>, 9> stages_;
};

}  // namespace reference

#endif
