// The modulation of real banks.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dct/cosine_transforms.h"
#include "dct/pair_kinds.h"
#include "mvk_qmf.h"
#include "reference/dct_steps.h"
#include "reference/modulation_steps.h"

namespace testing_support {
namespace {

using reference::ErrorOf;

// Whether the bands are in `work` before they are in the result.
constexpr bool kPlaces[] = {false, true};

KernelCall CallOf(const char *function, const char *kind, uint32_t bands,
                  std::array<int, 4> offsets = {}) {
  return {function, kind, bands, offsets, ""};
}

double BoundOf(bool coarse_twiddles) { return coarse_twiddles ? 5e-6 : 1e-6; }

std::vector<float> Bands(std::vector<float> src, const mvk_fft_pair *pair, bool in_place) {
  const auto m = static_cast<uint32_t>(src.size() / 2);
  std::vector<float> out(m, kNaN), work(m, kNaN);
  mvk_forwardModulationReal(src.data(), out.data(), m, pair, SinesFor(m).data(),
                            in_place ? out.data() : work.data());
  return out;
}

// Of a place apart for the second half, or behind the first.
std::vector<float> Block(const std::vector<float> &bands, const mvk_fft_pair *pair, bool behind) {
  const auto m = static_cast<uint32_t>(bands.size());
  std::vector<float> data = bands, work(m, kNaN);
  data.resize(2 * size_t{m}, kNaN);
  mvk_inverseModulationReal(data.data(), behind ? data.data() + m : work.data(), m, pair,
                            SinesFor(m).data());
  if (!behind) std::copy(work.begin(), work.end(), data.begin() + m);
  return data;
}

class RealBands : public testing::TestWithParam<uint32_t> {};

std::vector<uint32_t> Counts() {
  return {std::begin(kCosineLengths) + 1, std::end(kCosineLengths)};  // 4 and up
}

INSTANTIATE_TEST_SUITE_P(All, RealBands, testing::ValuesIn(Counts()),
                         testing::PrintToStringParamName());

TEST_P(RealBands, AreTheirSumsOfCosines) {
  const uint32_t m = GetParam();
  Random random(m);
  const std::vector<float> src = Samples(kUniform, random, 2 * size_t{m});
  const reference::WideReals want = reference::ExactRealBands(src);
  for (const PairKind &kind : PairKinds(m / 2)) {
    for (const bool in_place : kPlaces) {
      EXPECT_LT(ErrorOf(Bands(src, kind.pair, in_place), want).largest,
                BoundOf(kind.has_coarse_twiddles))
          << m << " " << kind.name << " " << in_place;
    }
  }
}

TEST_P(RealBands, AreTheFoldedBlocksTypeThree) {
  const uint32_t m = GetParam();
  Random random(m + 1);
  for (const Material &material : {kUniform, kClose, kFew}) {
    const std::vector<float> src = Samples(material, random, 2 * size_t{m});
    const std::vector<float> t = SinesFor(m);
    for (const PairKind &kind : PairKinds(m / 2)) {
      const std::vector<float> want =
          ResultOf(kDct3Scaled, kind.pair, t.data(), reference::FoldedForBands(src));
      for (const bool in_place : kPlaces) {
        EXPECT_TRUE(SameSamples(Bands(src, kind.pair, in_place), want,
                                CallOf("forwardModulationReal", kind.name, m)));
      }
    }
  }
}

TEST_P(RealBands, AreMadeOfTheirBlocksSumsOfCosines) {
  const uint32_t m = GetParam();
  Random random(m + 2);
  const std::vector<float> bands = Samples(kUniform, random, m);
  const reference::WideReals want = reference::ExactRealSamples(bands);
  for (const PairKind &kind : PairKinds(m / 2)) {
    for (const bool behind : kPlaces) {
      EXPECT_LT(ErrorOf(Block(bands, kind.pair, behind), want).largest,
                BoundOf(kind.has_coarse_twiddles))
          << m << " " << kind.name << " " << behind;
    }
  }
}

TEST_P(RealBands, BlocksAreTheUnfoldedTypeTwo) {
  const uint32_t m = GetParam();
  Random random(m + 3);
  for (const Material &material : {kUniform, kClose, kFew}) {
    const std::vector<float> bands = Samples(material, random, m), t = SinesFor(m);
    for (const PairKind &kind : PairKinds(m / 2)) {
      const std::vector<float> want =
          reference::UnfoldedFromBands(ResultOf(kDct2Unscaled, kind.pair, t.data(), bands));
      for (const bool behind : kPlaces) {
        EXPECT_TRUE(SameSamples(Block(bands, kind.pair, behind), want,
                                CallOf("inverseModulationReal", kind.name, m)));
      }
    }
  }
}

TEST_P(RealBands, WriteNothingOutsideAtAnyAddress) {
  const uint32_t m = GetParam();
  Random random(m + 4);
  const std::vector<float> x = Samples(kUniform, random, 2 * size_t{m});
  const std::vector<float> first(x.begin(), x.begin() + m);
  const reference::WideReals want = reference::ExactRealBands(x);
  const reference::WideReals block = reference::ExactRealSamples(first);
  for (const std::array<int, 4> &offsets : {std::array{0, 0, 0, 0},
                                            {1, 0, 0, 0},
                                            {0, 1, 0, 0},
                                            {0, 0, 1, 0},
                                            {0, 0, 0, 1},
                                            {5, 3, 2, 7}}) {
    for (const bool same : kPlaces) {
      const KernelCall forward = CallOf("forwardModulationReal", "", m, offsets);
      GuardedFloats src(x, offsets[0]), out(m, offsets[1]), work(m, offsets[2]);
      GuardedFloats twiddle(SinesFor(m), offsets[3]);
      mvk_forwardModulationReal(src.data(), out.data(), m, nullptr, twiddle.data(),
                                same ? out.data() : work.data());
      EXPECT_LT(ErrorOf(out.values(), want).largest, BoundOf(HasCoarseTwiddles(m / 2))) << forward;
      EXPECT_TRUE(src.Untouched(forward)) << "source";
      EXPECT_TRUE(out.GuardsStand(forward)) << "result";
      EXPECT_TRUE(work.GuardsStand(forward)) << "work";
      EXPECT_EQ(bool{work.Untouched(forward)}, same) << "work";
      EXPECT_TRUE(twiddle.Untouched(forward)) << "twiddles";
    }
    const KernelCall inverse = CallOf("inverseModulationReal", "", m, offsets);
    GuardedFloats data(first, offsets[0]), work(m, offsets[1]);
    GuardedFloats twiddle(SinesFor(m), offsets[3]);
    mvk_inverseModulationReal(data.data(), work.data(), m, nullptr, twiddle.data());
    std::vector<float> got(data.values().begin(), data.values().end());
    got.insert(got.end(), work.values().begin(), work.values().end());
    EXPECT_LT(ErrorOf(got, block).largest, BoundOf(HasCoarseTwiddles(m / 2))) << inverse;
    EXPECT_TRUE(data.GuardsStand(inverse)) << "bands";
    EXPECT_TRUE(work.GuardsStand(inverse)) << "second half";
    EXPECT_TRUE(twiddle.Untouched(inverse)) << "twiddles";
    GuardedFloats run(x, offsets[0]);
    mvk_inverseModulationReal(run.data(), run.data() + m, m, nullptr, twiddle.data());
    EXPECT_LT(ErrorOf(run.values(), block).largest, BoundOf(HasCoarseTwiddles(m / 2))) << inverse;
    EXPECT_TRUE(run.GuardsStand(inverse)) << "both halves";
  }
}

TEST_P(RealBands, DoNotDependOnTheMiddleOfTheFirstHalf) {
  const uint32_t m = GetParam();
  Random random(m + 5);
  std::vector<float> src = Samples(kUniform, random, 2 * size_t{m});
  const std::vector<float> want = Bands(src, nullptr, false);
  src[m / 2] = kNaN;
  for (const bool in_place : kPlaces) {
    EXPECT_TRUE(SameSamples(Bands(src, nullptr, in_place), want,
                            CallOf("forwardModulationReal", "NaN", m)));
  }
}

TEST_P(RealBands, BlocksHaveAZeroInTheMiddleOfTheSecondHalf) {
  const uint32_t m = GetParam();
  Random random(m + 6);
  for (const bool behind : kPlaces) {
    const std::vector<float> block = Block(Samples(kUniform, random, m), nullptr, behind);
    EXPECT_EQ(BitsOf(block[m + m / 2]), BitsOf(0.0f)) << m;
  }
}

// Where there is no transform of half the length, the type III is an order of its input: what is
// left to see is the folding.
TEST(RealModulation, FoldsInOneWayOfRounding) {
  Random random(61);
  for (const uint32_t m : kLengthsWithoutTransform) {
    for (const Material &material : kMaterials) {
      std::vector<float> src = Samples(material, random, 2 * size_t{m});
      const std::vector<float> want = reference::UnfoldedDct3(reference::FoldedForBands(src));
      for (const bool in_place : kPlaces) {
        EXPECT_TRUE(SameSamples(Bands(src, nullptr, in_place), want,
                                CallOf("forwardModulationReal", material.name, m)));
      }
    }
  }
}

TEST(RealModulation, UnfoldsWhateverTheTypeTwoIs) {
  Random random(62);
  for (const uint32_t m : kLengthsWithoutTransform) {
    const std::vector<float> bands = Samples(kMixed, random, m), t = SinesFor(m);
    const std::vector<float> want =
        reference::UnfoldedFromBands(ResultOf(kDct2Unscaled, nullptr, t.data(), bands));
    for (const bool behind : kPlaces) {
      EXPECT_TRUE(SameSamples(Block(bands, nullptr, behind), want,
                              CallOf("inverseModulationReal", kMixed.name, m)));
    }
  }
}

TEST(RealModulation, InverseInOnePlaceStaysThere) {
  for (const uint32_t m : {4u, 8u, 12u, 32u, 64u}) {
    const KernelCall call = CallOf("inverseModulationReal", "in one place", m);
    GuardedFloats data(std::vector<float>(m, 0.5f), 1);
    mvk_inverseModulationReal(data.data(), data.data(), m, nullptr, SinesFor(m).data());
    EXPECT_TRUE(data.GuardsStand(call));
  }
}

}  // namespace
}  // namespace testing_support
