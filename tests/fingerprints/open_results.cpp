#include "fingerprints/open_results.h"

#include <map>

#include "filterbanks/mfb_banks.h"
#include "filterbanks/qmf_banks.h"
#include "fingerprints/corpus.h"
#include "fingerprints/fft_rows.h"
#include "reference/fft_exact.h"

namespace testing_support {
namespace {

using reference::Direction;
using reference::Scaling;

// Of the largest error of a transform over the rms of its result.
constexpr double kTransformBound = 6e-7;

constexpr uint32_t kSlots = 14;  // longer than any history
constexpr uint32_t kOrder = 5;
// The fewest for which the banks take a transform of the quicker family.
constexpr uint32_t kFewestRealBands = 128;
constexpr uint32_t kFewestComplexBands = 64;

std::vector<Bounded> WithBound(const reference::WideArray &values, double bound) {
  std::vector<Bounded> parts;
  for (const reference::WideComplex &value : values) {
    parts.push_back({value.real(), bound});
    parts.push_back({value.imag(), bound});
  }
  return parts;
}

std::vector<Bounded> WithBounds(const reference::QmfOutput &output, double scale = 1) {
  std::vector<Bounded> values;
  for (size_t i = 0; i < output.samples.size(); ++i) {
    values.push_back({scale * output.samples[i], scale * output.bounds[i]});
  }
  return values;
}

// Slot by slot; real bands have no imaginary parts.
template <typename SlotOf>
std::vector<Bounded> InSlots(SlotOf slot_of, bool is_real) {
  std::vector<Bounded> values;
  for (size_t s = 0; s < kSlots; ++s) {
    const reference::QmfSlot slot = slot_of(s);
    const std::vector<Bounded> parts = WithBound(slot.bands, slot.bound);
    for (size_t i = 0; i < parts.size(); i += is_real ? 2 : 1) values.push_back(parts[i]);
  }
  return values;
}

std::vector<float> Signal(size_t slot_floats) {
  return Corpus(kUniform).Copy(kSlots * slot_floats);
}

void AddTransforms(std::vector<OpenCase> &cases) {
  size_t form = 0;
  for (const FftRow &row : Radix8Rows()) {
    const auto direction = form % 2 == 0 ? Direction::kForward : Direction::kInverse;
    const auto scaling = form % 4 < 2 ? Scaling::kUnscaled : Scaling::kScaled;
    ++form;
    if (RoundsAlike(row.points)) continue;
    const std::vector<float> x = Corpus(kUniform, row.points).Copy(2 * size_t{row.points});
    const auto exact = [=] {
      const auto want = reference::ExactTransform(reference::Widened(reference::ComplexOf(x)),
                                                  direction, scaling);
      return WithBound(want, kTransformBound * reference::Rms(want));
    };
    cases.push_back({row.name, row.points, [=] { return Transformed(row.run, x); }, exact});
  }
}

QmfShape ShapeOf(uint32_t bands) {
  static std::map<uint32_t, std::vector<float>> tables;
  std::vector<float> &table = tables[bands];
  if (table.empty()) table = AnyPrototype({kOrder, bands}, bands);
  return {bands, kOrder, table.data(), kSlots, MVK_TWIDDLE_NONE};
}

template <class Kind>
void AddRealQmf(std::vector<OpenCase> &cases, const char *name) {
  const QmfShape shape = ShapeOf(kFewestRealBands);
  const auto result = [=] { return QmfBank<Kind>(shape).Real(Signal(kFewestRealBands)); };
  const auto exact = [=] {
    const std::vector<float> x = Signal(kFewestRealBands);
    const double modulation = RealModulationBound(kFewestRealBands);
    if constexpr (Kind::kAnalyses) {
      const reference::ExactAnalysis bank(shape.Window(), shape.prototype);
      return InSlots([&](size_t s) { return bank.RealSlot(x, s, modulation); }, true);
    } else {
      const reference::ExactSynthesis bank(shape.Window(), shape.prototype);
      return WithBounds(bank.OfReal(x, modulation));
    }
  };
  cases.push_back({name, kFewestRealBands, result, exact});
}

template <class Kind>
void AddComplexQmf(std::vector<OpenCase> &cases, const char *name, decltype(Kind::kComplex) process,
                   double level = 1) {
  const QmfShape shape = ShapeOf(kFewestComplexBands);
  const size_t slot_floats = (Kind::kAnalyses ? 1 : 2) * size_t{kFewestComplexBands};
  const auto result = [=] { return QmfBank<Kind>(shape).Complex(Signal(slot_floats), process); };
  const auto exact = [=] {
    const std::vector<float> x = Signal(slot_floats);
    const double modulation = ComplexModulationBound(kFewestComplexBands);
    if constexpr (Kind::kAnalyses) {
      const reference::ExactAnalysis bank(shape.Window(), shape.prototype);
      return InSlots([&](size_t s) { return bank.ComplexSlot(Turning::kNone, x, s, modulation); },
                     false);
    } else {
      const reference::ExactSynthesis bank(shape.Window(), shape.prototype);
      return WithBounds(bank.OfComplex(Turning::kNone, x, modulation), level);
    }
  };
  cases.push_back({name, kFewestComplexBands, result, exact});
}

void AddQmf(std::vector<OpenCase> &cases) {
  AddRealQmf<LongAnalysis>(cases, "MVK_Lqmf_analysisL");
  AddRealQmf<ShortAnalysis>(cases, "MVK_Lqmf_analysisS");
  AddRealQmf<LongSynthesis>(cases, "MVK_Lqmf_synthesisL");
  AddRealQmf<ShortSynthesis>(cases, "MVK_Sqmf_synthesisL");
  AddComplexQmf<LongAnalysis>(cases, "MVK_CLqmf_analysisL", &MVK_CLqmf_analysisL);
  AddComplexQmf<ShortAnalysis>(cases, "MVK_CLqmf_analysisS", &MVK_CLqmf_analysisS);
  AddComplexQmf<LongSynthesis>(cases, "MVK_Lqmf_synthesisCL", &MVK_Lqmf_synthesisCL);
  AddComplexQmf<LongSynthesis>(cases, "MVK_Lqmf_synthesisCL_Head1Bit",
                               &MVK_Lqmf_synthesisCL_Head1Bit, 0.5);
  AddComplexQmf<ShortSynthesis>(cases, "MVK_Sqmf_synthesisCL", &MVK_Sqmf_synthesisCL);
}

constexpr std::span<const float> kMfbPrototype = MVK_MFB_P10KM_P4_319SC;
constexpr std::span<const float> kMfbTwiddle = MVK_MFB_TWID64E;

void AddMfbAnalysis(std::vector<OpenCase> &cases, const char *name, const MfbAnalysisForm &form) {
  const auto result = [=] {
    return MfbAnalysisBank(1, kFewestComplexBands)
        .RunOne(form.process, kMfbPrototype, kMfbTwiddle, Signal(kFewestComplexBands));
  };
  const auto exact = [=] {
    const std::vector<float> x = Signal(kFewestComplexBands);
    const reference::ExactMfbAnalysis analysis(kMfbPrototype, form.path, true);
    return InSlots([&](size_t s) { return analysis.Slot(x, s, kMfbModulation); }, false);
  };
  cases.push_back({name, kFewestComplexBands, result, exact});
}

void AddMfb(std::vector<OpenCase> &cases) {
  AddMfbAnalysis(cases, "MVK_CLmfb_p10km_analysisL", kMfbAnalyses[0]);
  AddMfbAnalysis(cases, "MVK_CLmfb_p10km_analysisL_legacy", kMfbAnalyses[1]);
  for (const MfbSynthesisForm &form : kMfbSyntheses) {
    const auto result = [=] {
      return MfbSynthesisBank(1, kFewestComplexBands)
          .RunOne(form.process, kMfbPrototype, kMfbTwiddle, Signal(2 * kFewestComplexBands));
    };
    const auto exact = [=] {
      const reference::ExactMfbSynthesis synthesis(kMfbPrototype, form.answer, true);
      return WithBounds(synthesis.Of(Signal(2 * kFewestComplexBands), kMfbModulation));
    };
    cases.push_back({std::string("MVK_Lmfb_p10km_synthesisCL_") + form.name, kFewestComplexBands,
                     result, exact});
  }
}

}  // namespace

std::vector<OpenCase> OpenCases() {
  std::vector<OpenCase> cases;
  AddTransforms(cases);
  AddQmf(cases);
  AddMfb(cases);
  return cases;
}

}  // namespace testing_support
