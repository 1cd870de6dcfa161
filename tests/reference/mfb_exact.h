// The multichannel banks of ten taps per band by the sums that define them, in double precision,
// for tests. Next to a result stands how far single precision may be off.
#ifndef MVK_TESTS_REFERENCE_MFB_EXACT_H_
#define MVK_TESTS_REFERENCE_MFB_EXACT_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>

#include "reference/mfb_steps.h"
#include "reference/qmf_exact.h"

namespace reference {

// How the taps of a table stand in time. Blocks are those of M taps.
enum class MfbTime { kForwards, kBackwards, kBlocksBackwards, kSamplesBackwards };

inline Reals MfbTapsInTime(std::span<const float> table, MfbTime time) {
  const size_t m = table.size() / kMfbTaps;
  const bool blocks_turned = time == MfbTime::kBackwards || time == MfbTime::kBlocksBackwards;
  const bool samples_turned = time == MfbTime::kBackwards || time == MfbTime::kSamplesBackwards;
  Reals taps;
  for (size_t n = 0; n < table.size(); ++n) {
    const size_t j = n / m, k = n % m;
    taps.push_back(
        MfbTap(table, blocks_turned ? kMfbTaps - 1 - j : j, samples_turned ? m - 1 - k : k));
  }
  return taps;
}

// The angle that even bands are turned by, and odd ones by the negative of it: `quarters` right
// angles, and `shares` times that of the table of twiddles.
struct MfbTurn {
  double quarters, shares;

  WideComplex Of(size_t band, double twiddle_angle) const {
    const double angle = quarters * std::numbers::pi / 2 + shares * twiddle_angle;
    return std::polar(1.0, band % 2 == 0 ? angle : -angle);
  }
};

// Twiddles between the points of a half circle, half a step late or not.
inline double MfbTwiddleAngle(size_t bands, bool is_even) {
  return is_even ? std::numbers::pi / (4.0 * static_cast<double>(bands)) : 0;
}

class ExactMfbAnalysis {
 public:
  ExactMfbAnalysis(std::span<const float> table, MfbPath path, bool even_twiddles)
      : bands_(table.size() / kMfbTaps),
        carriers_(static_cast<uint32_t>(bands_)),
        taps_(MfbTapsInTime(
            table, path == MfbPath::kNew ? MfbTime::kBackwards : MfbTime::kBlocksBackwards)),
        first_(path == MfbPath::kNew ? 1 : 0) {
    for (size_t k = 0; k < bands_; ++k) {
      const MfbTurn turn = path == MfbPath::kNew ? MfbTurn{-1, -1} : MfbTurn{0, 1};
      const WideComplex turned = turn.Of(k, MfbTwiddleAngle(bands_, even_twiddles));
      turns_.push_back(path == MfbPath::kNew ? turned : -turned);
    }
  }

  // Band k, d samples behind an impulse of 1.
  WideComplex Response(size_t k, size_t d) const {
    if (d >= taps_.size()) return 0;
    return taps_[d] / (2.0 * static_cast<double>(bands_)) *
           Product(turns_[k], carriers_.At(k, static_cast<int64_t>(d) + first_));
  }

  // What becomes of x up to and with slot s, to within `modulation` times its rms by the
  // transform.
  QmfSlot Slot(std::span<const float> x, size_t s, double modulation) const {
    const FoldedWindow folded(taps_, bands_, x, s);
    QmfSlot slot{WideArray(bands_), 0};
    for (size_t k = 0; k < bands_; ++k) {
      slot.bands[k] = Product(turns_[k], carriers_.OverTime(k, first_, folded.samples));
    }
    // Five roundings of a window's sum, and four in turning what it comes to.
    slot.bound =
        (5 + 4) * kRounding * std::numbers::sqrt2 * folded.weight + modulation * Rms(slot.bands);
    return slot;
  }

 private:
  size_t bands_;
  QmfCarriers carriers_;
  Reals taps_;
  int64_t first_;
  WideArray turns_;
};

// What a synthesis function answers a band with: `gain` times a tap in time times the real part of
// the band, turned, on its carrier. The carriers are in phase `ahead` samples before 5 M.
struct MfbAnswer {
  double gain;
  MfbTime time;
  int64_t ahead;
  MfbTurn turn;
};

class ExactMfbSynthesis {
 public:
  ExactMfbSynthesis(std::span<const float> table, const MfbAnswer &answer, bool even_twiddles)
      : bands_(table.size() / kMfbTaps),
        carriers_(static_cast<uint32_t>(bands_)),
        taps_(MfbTapsInTime(table, answer.time)),
        first_(answer.ahead - 5 * static_cast<int64_t>(bands_)) {
    for (size_t k = 0; k < bands_; ++k) {
      turns_.push_back(answer.gain * answer.turn.Of(k, MfbTwiddleAngle(bands_, even_twiddles)));
    }
  }

  // Output n of y in band k, counted from the first of the slot.
  double Response(size_t k, WideComplex y, size_t n) const {
    if (n >= taps_.size()) return 0;
    const WideComplex carrier = carriers_.At(k, static_cast<int64_t>(n) + first_);
    return taps_[n] * Product(Product(turns_[k], y), carrier).real();
  }

  // How far that may be off: four roundings in turning, one of the product and one of the table.
  double ResponseBound(WideComplex y, size_t n, double modulation) const {
    if (n >= taps_.size()) return 0;
    return std::fabs(2 * taps_[n]) * std::abs(y) * (modulation + 6 * kRounding);
  }

  // Of slots of M pairs, one after the other.
  QmfOutput Of(std::span<const float> slots, double modulation) const {
    const size_t m = bands_, period = 2 * m;
    QmfOutput out(slots.size() / 2);
    for (size_t start = 0; start < out.samples.size(); start += m) {
      Reals re, im, v(period);
      for (size_t k = 0; k < m; ++k) {
        const float *const y = &slots[2 * (start + k)];
        const WideComplex turned = Product(turns_[k], WideComplex(y[0], y[1]));
        re.push_back(turned.real());
        im.push_back(turned.imag());
      }
      double peak = 0, energy = 0;
      for (size_t n = 0; n < period; ++n) {
        v[n] = carriers_.OverBands(re, im, static_cast<int64_t>(n) + first_);
        peak = std::max(peak, std::fabs(v[n]));
        energy += v[n] * v[n];
      }
      // Ten roundings on the way through the delay line, and six in turning what comes into it. A
      // bin of the transform has two of these samples.
      const double bound =
          (10 + 6) * kRounding * peak + modulation * std::sqrt(energy / static_cast<double>(m));
      out.AddSlot(start, taps_, v, bound);
    }
    return out;
  }

 private:
  size_t bands_;
  QmfCarriers carriers_;
  Reals taps_;
  int64_t first_;
  WideArray turns_;
};

}  // namespace reference

#endif
