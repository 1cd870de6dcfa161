// The eight transforms of the front end.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

#include "fft/fft_kernels.h"
#include "mvk_fft.h"
#include "reference/fft_exact.h"
#include "reference/fft_real.h"

namespace testing_support {
namespace {

using reference::LargestError;
using reference::WideArray;
using reference::Widened;

constexpr double kAccuracy = 6e-7;

// A state of one length with the transforms of some bits.
class State {
 public:
  State(uint32_t n, int32_t flags) : state_(MVK_fft_init(memory_.data() + 1, n, flags)) {}
  const mvk_fft_state *get() const { return state_; }

 private:
  alignas(8) std::array<std::byte, 48> memory_;
  mvk_fft_state *state_;
};

struct Transform {
  const char *name;
  void (*run)(const mvk_fft_state *state, float *out, float *in);
  Direction direction;
  Scaling scaling;
  int32_t bit;
};

const Transform kComplexTransforms[] = {
    {"CLfwd_scaledCL", MVK_fft_CLfwd_scaledCL, Direction::kForward, Scaling::kScaled, 0x01},
    {"CLfwd_unscaledCL", MVK_fft_CLfwd_unscaledCL, Direction::kForward, Scaling::kUnscaled, 0x02},
    {"CLinv_scaledCL", MVK_fft_CLinv_scaledCL, Direction::kInverse, Scaling::kScaled, 0x04},
    {"CLinv_unscaledCL", MVK_fft_CLinv_unscaledCL, Direction::kInverse, Scaling::kUnscaled, 0x08},
};

const Transform kRealTransforms[] = {
    {"CLfwd_scaledL", MVK_fft_CLfwd_scaledL, Direction::kForward, Scaling::kScaled, 0x10},
    {"CLfwd_unscaledL", MVK_fft_CLfwd_unscaledL, Direction::kForward, Scaling::kUnscaled, 0x20},
    {"Linv_scaledCL", MVK_fft_Linv_scaledCL, Direction::kInverse, Scaling::kScaled, 0x40},
    {"Linv_unscaledCL", MVK_fft_Linv_unscaledCL, Direction::kInverse, Scaling::kUnscaled, 0x80},
};

KernelCall CallOf(const Transform &transform, uint32_t n, std::array<int, 4> offsets = {}) {
  return {transform.name, "", n, offsets, ""};
}

std::vector<float> Result(const Transform &transform, uint32_t n, std::vector<float> in) {
  const State state(n, transform.bit);
  std::vector<float> out(in.size(), kNaN);
  transform.run(state.get(), out.data(), in.data());
  return out;
}

std::vector<float> WantOfReal(const Transform &transform, const std::vector<float> &in) {
  if (transform.direction == Direction::kForward) {
    return FloatsOf(reference::RealForward(in, transform.scaling));
  }
  return reference::RealInverse(ComplexOf(in), transform.scaling);
}

TEST(FftFrontEndTransforms, ComplexOnesAreTheEntryPoints) {
  Random random(61);
  for (const Transform &transform : kComplexTransforms) {
    for (const auto entries : {PowerOfTwoEntryPoints(), CompositeEntryPoints()}) {
      for (const EntryPoint &entry : entries) {
        if (entry.direction != transform.direction || entry.scaling != transform.scaling) continue;
        const ComplexArray x = ComplexSamples(kUniform, random, entry.length);
        EXPECT_TRUE(SameSamples(Result(transform, entry.length, FloatsOf(x)),
                                FloatsOf(ResultOf(entry, x)), CallOf(transform, entry.length)));
      }
    }
  }
}

TEST(FftFrontEndTransforms, RealOnesRoundAsTheirStepsDo) {
  Random random(62);
  for (const Transform &transform : kRealTransforms) {
    for (uint32_t n = 2; n <= 2048; n *= 2) {
      for (const Material &material : {kUniform, kClose, kSignedZeros}) {
        const std::vector<float> in = Samples(material, random, 2 * size_t{n});
        EXPECT_TRUE(
            SameSamples(Result(transform, n, in), WantOfReal(transform, in), CallOf(transform, n)))
            << material.name;
      }
    }
  }
}

TEST(FftFrontEndTransforms, WorkInTheInputAndNowhereElse) {
  Random random(63);
  for (const Transform &transform : kRealTransforms) {
    for (uint32_t n = 2; n <= 2048; n *= 2) {
      const std::vector<float> x = Samples(kUniform, random, 2 * size_t{n});
      const State state(n, transform.bit);
      for (const auto &[to, from] : {std::pair{0, 0}, {1, 2}, {3, 1}}) {
        const KernelCall call = CallOf(transform, n, {to, from});
        GuardedFloats out(x.size(), to), in(x, from);
        transform.run(state.get(), out.data(), in.data());
        EXPECT_TRUE(SameSamples(out.values(), WantOfReal(transform, x), call));
        EXPECT_TRUE(out.GuardsStand(call)) << "result";
        EXPECT_TRUE(in.GuardsStand(call)) << "input";
        // The conversion of an inverse runs on its input whatever the length.
        if (transform.direction == Direction::kInverse || n >= 16) {
          EXPECT_FALSE(in.Untouched(call)) << call;
        }
      }
    }
  }
}

TEST(FftFrontEndTransforms, HaveAnyAlignment) {
  Random random(64);
  for (const Transform &transform : kComplexTransforms) {
    for (const uint32_t n : {2u, 4u, 8u, 16u, 32u, 64u, 6u, 15u, 20u, 45u, 48u}) {
      const std::vector<float> x = Samples(kUniform, random, 2 * size_t{n});
      const std::vector<float> want = Result(transform, n, x);
      const State state(n, transform.bit);
      const KernelCall call = CallOf(transform, n, {1, 3});
      GuardedFloats out(x.size(), 1), in(x, 3);
      transform.run(state.get(), out.data(), in.data());
      EXPECT_TRUE(SameSamples(out.values(), want, call));
      EXPECT_TRUE(out.GuardsStand(call)) << "result";
      EXPECT_TRUE(in.GuardsStand(call)) << "input";
    }
  }
}

TEST(FftFrontEndTransforms, RealOnesAreAccurate) {
  Random random(65);
  for (uint32_t n = 2; n <= 2048; n *= 2) {
    const std::vector<float> x = Samples(kUniform, random, 2 * size_t{n});
    for (const Transform &transform : kRealTransforms) {
      const WideArray got = Widened(ComplexOf(Result(transform, n, x)));
      const WideArray want =
          transform.direction == Direction::kForward
              ? reference::ExactRealForward(x, transform.scaling)
              : reference::ExactRealInverse(Widened(ComplexOf(x)), transform.scaling);
      EXPECT_LT(LargestError(got, want), kAccuracy) << transform.name << " of " << n;
    }
  }
}

TEST(FftFrontEndTransforms, InverseRestoresWhatOneScalingHasLeft) {
  Random random(66);
  const auto &[scaled_forward, forward, scaled_inverse, inverse] = kRealTransforms;
  for (uint32_t n = 2; n <= 2048; n *= 2) {
    const std::vector<float> x = Samples(kUniform, random, 2 * size_t{n});
    const WideArray want = Widened(ComplexOf(x));
    for (const auto &[first, second] :
         {std::pair{&forward, &scaled_inverse}, {&scaled_forward, &inverse}}) {
      const std::vector<float> back = Result(*second, n, Result(*first, n, x));
      EXPECT_LT(LargestError(Widened(ComplexOf(back)), want), 2 * kAccuracy) << n;
    }
  }
}

TEST(FftFrontEndTransforms, SpectrumOfAnImpulseIsOne) {
  for (uint32_t n = 2; n <= 2048; n *= 2) {
    std::vector<float> x(2 * size_t{n}, 0.0f);
    x[0] = 1;
    const ComplexArray packed = ComplexOf(Result(kRealTransforms[1], n, x));
    EXPECT_EQ(packed[0].re, 1);
    EXPECT_EQ(packed[0].im, 1);
    for (uint32_t k = 1; k < n; ++k) {
      ASSERT_EQ(packed[k].re, 1) << n << " bin " << k;
      ASSERT_EQ(packed[k].im, 0) << n << " bin " << k;
    }
  }
}

TEST(FftFrontEndTransforms, EndsOfTheSpectrumShareABin) {
  // A constant is all in bin 0, and the highest frequency all in bin n.
  for (uint32_t n = 2; n <= 2048; n *= 2) {
    std::vector<float> x(2 * size_t{n});
    for (size_t i = 0; i < x.size(); ++i) x[i] = i % 2 == 0 ? 3.0f : -1.0f;
    const float length = 2 * static_cast<float>(n);
    const ComplexArray unscaled = ComplexOf(Result(kRealTransforms[1], n, x));
    EXPECT_EQ(unscaled[0].re, length);
    EXPECT_EQ(unscaled[0].im, 2 * length);
    const ComplexArray scaled = ComplexOf(Result(kRealTransforms[0], n, x));
    EXPECT_EQ(scaled[0].re, 1);
    EXPECT_EQ(scaled[0].im, 2);
    for (uint32_t k = 1; k < n; ++k) {
      ASSERT_EQ(unscaled[k].re, 0) << n << " bin " << k;
      ASSERT_EQ(unscaled[k].im, 0) << n << " bin " << k;
    }
  }
}

TEST(FftFrontEndTransforms, FourSamplesNeedNoTable) {
  EXPECT_EQ(Result(kRealTransforms[1], 2, {1, 2, 4, 8}), (std::vector<float>{15, -5, -3, 6}));
  EXPECT_EQ(Result(kRealTransforms[0], 2, {1, 2, 4, 8}),
            (std::vector<float>{3.75f, -1.25f, -0.75f, 1.5f}));
  EXPECT_EQ(Result(kRealTransforms[2], 2, {15, -5, -3, 6}), (std::vector<float>{1, 2, 4, 8}));
  EXPECT_EQ(Result(kRealTransforms[3], 2, {15, -5, -3, 6}), (std::vector<float>{4, 8, 16, 32}));
}

}  // namespace
}  // namespace testing_support
