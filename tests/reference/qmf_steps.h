// The windows of the QMF banks, sample by sample in their order of rounding, for tests.
#ifndef MVK_TESTS_REFERENCE_QMF_STEPS_H_
#define MVK_TESTS_REFERENCE_QMF_STEPS_H_

#include <cmath>
#include <cstddef>
#include <deque>
#include <span>
#include <vector>

#include "reference/qmf_prototypes.h"

namespace reference {

// Sums over the even and over the odd ages of the blocks in the window.
struct AnalysisSums {
  std::vector<float> even, odd;
};

// The window of an analysis bank over blocks of M samples, and its history.
class AnalysisWindow {
 public:
  AnalysisWindow(const QmfWindow &window, const float *table)
      : window_(window),
        table_(table),
        blocks_(window.Blocks(), std::vector<float>(window.bands)) {}

  // Newest first.
  std::deque<std::vector<float>> &blocks() { return blocks_; }

  AnalysisSums Slot(const float *in) {
    const size_t m = window_.bands;
    AnalysisSums sums{std::vector<float>(m), std::vector<float>(m)};
    for (size_t k = 0; k < m; ++k) {
      const auto c = [&](size_t block) { return table_[block * m + k]; };
      const auto b = [&](size_t block) { return blocks_[block][k]; };
      float odd, even;
      if (window_.order == 5) {
        odd = c(2) * b(6);
        odd = std::fma(c(0), b(8), odd);
        odd = std::fma(c(4), b(4), odd);
        odd = std::fma(c(6), b(2), odd);
        odd = std::fma(c(8), b(0), odd);
        even = c(3) * b(5);
        even = std::fma(c(1), b(7), even);
        even = std::fma(c(5), b(3), even);
        even = std::fma(c(7), b(1), even);
        even = std::fma(c(9), in[k], even);
      } else {
        odd = c(2) * b(4);
        odd = std::fma(c(0), b(6), odd);
        odd = std::fma(c(4), b(2), odd);
        odd = std::fma(c(6), b(0), odd);
        even = c(3) * b(3);
        even = std::fma(c(1), b(5), even);
        even = std::fma(c(5), b(1), even);
        even = std::fma(c(7), in[k], even);
      }
      sums.odd[k] = odd;
      sums.even[k] = even;
    }
    // Apart from the fused sums: compilers negate these operand by operand, which loses the sign
    // of a zero.
    if (window_.order != 5) {
      for (float &odd : sums.odd) odd = -odd;
    }
    blocks_.pop_back();
    blocks_.emplace_front(in, in + m);
    return sums;
  }

 private:
  QmfWindow window_;
  const float *table_;
  std::deque<std::vector<float>> blocks_;
};

// 2 M samples for the modulation of a real bank.
inline std::vector<float> FoldedForModulation(const AnalysisSums &sums) {
  std::vector<float> src(sums.even.rbegin(), sums.even.rend());
  src.insert(src.end(), sums.odd.rbegin(), sums.odd.rend());
  return src;
}

// The delay line of a synthesis bank.
class SynthesisWindow {
 public:
  SynthesisWindow(const QmfWindow &window, const float *table)
      : window_(window), table_(table), stages_(window.Blocks(), Stage(window.bands)) {}

  // The output before it is doubled.
  std::vector<float> Slot(std::span<const float> a, std::span<const float> b) {
    const size_t m = window_.bands, last = window_.Blocks();
    const float sign = window_.order == 5 ? 1.0f : -1.0f;
    std::vector<float> out(m);
    for (size_t k = 0; k < m; ++k) {
      const auto c = [&](size_t block) { return table_[block * m + k]; };
      out[k] = std::fma(sign * c(0), a[k], stages_[0][k]);
      for (size_t j = 0; j + 1 < last; ++j) {
        stages_[j][k] = (j + 1) % 2 != 0 ? std::fma(c(j + 1), b[k], stages_[j + 1][k])
                                         : std::fma(sign * c(j + 1), a[k], stages_[j + 1][k]);
      }
      stages_[last - 1][k] = c(last) * b[k];
    }
    return out;
  }

 private:
  using Stage = std::vector<float>;

  QmfWindow window_;
  const float *table_;
  std::vector<Stage> stages_;
};

}  // namespace reference

#endif
