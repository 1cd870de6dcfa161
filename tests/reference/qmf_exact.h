// QMF banks as they are defined, in double precision, for tests. Next to a result stands how far
// single precision may be off.
#ifndef MVK_TESTS_REFERENCE_QMF_EXACT_H_
#define MVK_TESTS_REFERENCE_QMF_EXACT_H_

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>
#include <vector>

#include "reference/fft_exact.h"
#include "reference/fft_roots.h"
#include "reference/qmf_prototypes.h"

namespace reference {

// How the bands of a complex bank are turned.
enum class Turning { kNone, kAligned, kHalfSample };

inline constexpr double kRounding = 0x1p-24;

using Reals = std::vector<double>;

// A bank's modulation: exp(i pi / M (k + 1/2) n) and what goes with it.
class QmfCarriers {
 public:
  explicit QmfCarriers(uint32_t bands)
      : bands_(bands), roots_(Roots<double>(4 * size_t{bands}, Direction::kInverse)) {}

  WideComplex At(size_t band, int64_t n) const {
    return roots_[TurnOf(static_cast<int64_t>(2 * band + 1) * n)];
  }

  // The sum of x[i] times what is at `first` + i.
  WideComplex OverTime(size_t band, int64_t first, const Reals &x) const {
    return Sum(x, TurnOf(static_cast<int64_t>(2 * band + 1) * first), 2 * band + 1);
  }

  // The real part of the sum of bands at n; imaginary parts may be left out.
  double OverBands(const Reals &re, const Reals &im, int64_t n) const {
    return Sum(re, TurnOf(n), TurnOf(2 * n)).real() - Sum(im, TurnOf(n), TurnOf(2 * n)).imag();
  }

  // What an analysis bank multiplies band k by.
  WideComplex Turn(Turning turning, size_t band) const {
    const double middle = std::numbers::pi / bands_ * (static_cast<double>(band) + 0.5);
    switch (turning) {
      case Turning::kAligned:
        return std::polar(1.0, middle * 0.5 * (1 - bands_ / 64.0));
      case Turning::kHalfSample:
        return -std::polar(1.0, -middle / 2);
      default:
        return 1;
    }
  }

 private:
  size_t TurnOf(int64_t n) const {
    const auto period = static_cast<int64_t>(roots_.size());
    return static_cast<size_t>((n % period + period) % period);
  }

  // In plain arrays, since nearly all of the time goes here.
  WideComplex Sum(const Reals &x, size_t turn, size_t step) const {
    const double *const values = x.data();
    const auto *const roots = reinterpret_cast<const double *>(roots_.data());
    const size_t count = x.size(), period = roots_.size();
    double re = 0, im = 0;
    for (size_t i = 0; i < count; ++i) {
      re += values[i] * roots[2 * turn];
      im += values[i] * roots[2 * turn + 1];
      turn += step;
      if (turn >= period) turn -= period;
    }
    return {re, im};
  }

  uint32_t bands_;
  WideArray roots_;
};

struct QmfSlot {
  WideArray bands;  // real banks have no imaginary parts
  double bound;     // of each band's error
};

// The window over the samples up to and with slot s, halved and over M, and folded into the 2 M
// samples after which the carriers change their sign.
struct FoldedWindow {
  Reals samples;
  double weight = 0;  // the sum of the magnitudes

  FoldedWindow(const Reals &taps, size_t bands, std::span<const float> x, size_t s)
      : samples(2 * bands) {
    const size_t newest = (s + 1) * bands - 1;
    for (size_t d = 0; d < taps.size() && d <= newest; ++d) {
      const double product = taps[d] * x[newest - d] / (2.0 * static_cast<double>(bands));
      samples[d % (2 * bands)] += d / (2 * bands) % 2 == 0 ? product : -product;
      weight += std::fabs(product);
    }
  }
};

class ExactAnalysis {
 public:
  ExactAnalysis(const QmfWindow &window, const float *table)
      : window_(window),
        carriers_(window.bands),
        taps_(TapsOfAnalysis(window, table)),
        sign_(window.order == 5 ? 1 : -1) {}

  // Band k of a real bank, d samples behind an impulse of 1.
  double Real(size_t k, size_t d) const {
    if (d >= taps_.size()) return 0;
    const auto behind = static_cast<int64_t>(d) - static_cast<int64_t>(3 * window_.bands / 2);
    return sign_ / (2.0 * window_.bands) * taps_[d] * carriers_.At(k, behind).real();
  }

  WideComplex Complex(Turning turning, size_t k, size_t d) const {
    if (d >= taps_.size()) return 0;
    return -sign_ / (2.0 * window_.bands) * taps_[d] *
           Product(carriers_.At(k, static_cast<int64_t>(d)), carriers_.Turn(turning, k));
  }

  // What becomes of x up to and with slot s, to within `modulation` times its rms by the
  // modulation.
  QmfSlot RealSlot(std::span<const float> x, size_t s, double modulation) const {
    QmfSlot slot = Slot(x, s, modulation, -static_cast<int64_t>(3 * window_.bands / 2));
    for (WideComplex &band : slot.bands) band = sign_ * band.real();
    return slot;
  }

  QmfSlot ComplexSlot(Turning turning, std::span<const float> x, size_t s,
                      double modulation) const {
    QmfSlot slot = Slot(x, s, modulation, 0);
    for (size_t k = 0; k < slot.bands.size(); ++k) {
      slot.bands[k] = -sign_ * Product(slot.bands[k], carriers_.Turn(turning, k));
    }
    return slot;
  }

 private:
  QmfSlot Slot(std::span<const float> x, size_t s, double modulation, int64_t first) const {
    const size_t m = window_.bands;
    const FoldedWindow folded(taps_, m, x, s);
    QmfSlot slot{WideArray(m), 0};
    for (size_t k = 0; k < m; ++k) slot.bands[k] = carriers_.OverTime(k, first, folded.samples);
    // P roundings of a window's sum, and four in turning what it comes to.
    slot.bound = (window_.order + 4) * kRounding * std::numbers::sqrt2 * folded.weight +
                 modulation * Rms(slot.bands);
    return slot;
  }

  QmfWindow window_;
  QmfCarriers carriers_;
  Taps taps_;
  double sign_;
};

struct QmfOutput {
  explicit QmfOutput(size_t count) : samples(count), bounds(count) {}

  // What a slot whose output begins at `start` adds: its taps times the 2 M samples after which the
  // carriers change their sign, each to within `bound`.
  void AddSlot(size_t start, const Reals &taps, const Reals &period, double bound) {
    for (size_t n = 0; n < taps.size() && start + n < samples.size(); ++n) {
      const double product = taps[n] * period[n % period.size()];
      samples[start + n] += n / period.size() % 2 == 0 ? product : -product;
      bounds[start + n] += std::fabs(taps[n]) * bound;
    }
  }

  Reals samples;
  Reals bounds;
};

class ExactSynthesis {
 public:
  ExactSynthesis(const QmfWindow &window, const float *table)
      : window_(window), carriers_(window.bands), taps_(TapsOfSynthesis(window, table)) {}

  // Output n of a 1 in band k of a real bank, counted from the first of the slot.
  double Real(size_t k, size_t n) const {
    if (n >= taps_.size()) return 0;
    const auto middle = static_cast<int64_t>(window_.bands / 2);
    return 4 * taps_[n] * carriers_.At(k, static_cast<int64_t>(n) - middle).real();
  }

  double Complex(Turning turning, size_t k, WideComplex y, size_t n) const {
    if (n >= taps_.size()) return 0;
    const WideComplex turned = Product(y, std::conj(carriers_.Turn(turning, k)));
    return 2 * taps_[n] * Product(turned, carriers_.At(k, static_cast<int64_t>(n))).real();
  }

  // Of slots one after the other: M floats each, or M pairs.
  QmfOutput OfReal(std::span<const float> slots, double modulation) const {
    QmfOutput out(slots.size());
    for (size_t s = 0; s < slots.size(); s += window_.bands) {
      Reals bands;
      for (size_t k = 0; k < window_.bands; ++k) bands.push_back(4.0 * slots[s + k]);
      Add(out, s, bands, {}, -static_cast<int64_t>(window_.bands / 2), modulation);
    }
    return out;
  }

  QmfOutput OfComplex(Turning turning, std::span<const float> slots, double modulation) const {
    QmfOutput out(slots.size() / 2);
    for (size_t s = 0; s < slots.size() / 2; s += window_.bands) {
      Reals re, im;
      for (size_t k = 0; k < window_.bands; ++k) {
        const WideComplex band(slots[2 * (s + k)], slots[2 * (s + k) + 1]);
        const WideComplex turned = 2.0 * Product(band, std::conj(carriers_.Turn(turning, k)));
        re.push_back(turned.real());
        im.push_back(turned.imag());
      }
      Add(out, s, re, im, 0, modulation);
    }
    return out;
  }

 private:
  // What a slot adds from sample `start` on.
  void Add(QmfOutput &out, size_t start, const Reals &re, const Reals &im, int64_t first,
           double modulation) const {
    const size_t period = 2 * size_t{window_.bands};
    Reals v(period);
    double peak = 0, energy = 0;
    for (size_t n = 0; n < period; ++n) {
      v[n] = carriers_.OverBands(re, im, first + static_cast<int64_t>(n));
      peak = std::max(peak, std::fabs(v[n]));
      energy += v[n] * v[n];
    }
    // 2 P roundings on the way through the delay line, and six in turning what comes into it.
    const double bound = (2 * window_.order + 6) * kRounding * peak +
                         modulation * std::sqrt(energy / static_cast<double>(period));
    out.AddSlot(start, taps_, v, bound);
  }

  QmfWindow window_;
  QmfCarriers carriers_;
  Taps taps_;
};

}  // namespace reference

#endif
