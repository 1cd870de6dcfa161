// What the prototypes of the QMF banks are, and how their arrangements carry them, for tests.
#ifndef MVK_TESTS_REFERENCE_QMF_PROTOTYPES_H_
#define MVK_TESTS_REFERENCE_QMF_PROTOTYPES_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace reference {

// The length of a bank's window: 2 P blocks of M taps.
struct QmfWindow {
  uint32_t order;  // P, 4 or 5
  uint32_t bands;  // M

  size_t Taps() const { return 2 * size_t{order} * bands; }
  size_t Blocks() const { return 2 * size_t{order} - 1; }

  // What tap n is multiplied by in the arrangements for the banks.
  int Sign(size_t n) const {
    const size_t period = 2 * size_t{bands};
    if (order == 5) return n / period % 2 == 0 ? 1 : -1;
    return (n + bands) / period % 2 == 0 ? -1 : 1;
  }
};

using Taps = std::vector<double>;

// Tap n of what a synthesis bank is given.
inline Taps TapsOfSynthesis(const QmfWindow &window, const float *table) {
  Taps p;
  for (size_t n = 0; n < window.Taps(); ++n) p.push_back(window.Sign(n) * double{table[n]});
  return p;
}

// The weights of the sample d back, of what an analysis bank is given: tap d + 1 of a symmetric
// prototype counted from its end, that is tap d.
inline Taps TapsOfAnalysis(const QmfWindow &window, const float *table) {
  Taps p = TapsOfSynthesis(window, table);
  return {p.rbegin(), p.rend()};
}

// p[n], n = 0 to 2 P M, of a prototype as synthesis banks get it.
inline Taps PrototypeOf(const QmfWindow &window, const float *table) {
  Taps p = TapsOfSynthesis(window, table);
  p.push_back(p[0]);
  return p;
}

}  // namespace reference

#endif
