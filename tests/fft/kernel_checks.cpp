#include "fft/kernel_checks.h"

#include <gtest/gtest.h>

#include <set>

namespace testing_support {
namespace {

// All of a short transform; of a long one its ends, what lies about the powers of two, and more.
std::set<uint32_t> Places(uint32_t n) {
  std::set<uint32_t> places;
  if (n <= 400) {
    for (uint32_t i = 0; i < n; ++i) places.insert(i);
    return places;
  }
  for (uint32_t i = 0; i < 20; ++i) {
    places.insert(i);
    places.insert(n - 1 - i);
  }
  for (uint32_t power = 16; power < n; power *= 2) {
    for (uint32_t i : {power - 1, power, power + 1}) places.insert(i);
  }
  Random random(n);
  for (int i = 0; i < 20; ++i) places.insert(random.Below(n));
  return places;
}

}  // namespace

WideArray ExactResult(const Kernel &kernel, const ComplexArray &x) {
  return reference::ExactTransform(reference::Widened(x), kernel.direction, kernel.scaling);
}

void ExpectNothingOutsideIsTouched(std::span<const Kernel> kernels) {
  Random random(11);
  for (const Kernel &kernel : kernels) {
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const std::vector<float> want = FloatsOf(ResultOf(kernel, x));
    for (const auto &[to, from] :
         {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 3}, {2, 2}, {3, 5}, {7, 6}}) {
      const KernelCall call = CallOf(kernel, kUniform.name, {to, from});
      GuardedFloats dst(want.size(), to), src(FloatsOf(x), from);
      kernel.run(dst.data(), src.data(), kernel.length);
      EXPECT_TRUE(SameSamples(dst.values(), want, call));
      EXPECT_TRUE(dst.GuardsStand(call)) << "result";
      EXPECT_TRUE(src.GuardsStand(call)) << "source";
      EXPECT_EQ(bool{src.Untouched(call)}, LeavesItsSource(kernel)) << call;
    }
  }
}

void ExpectLengthArgumentIsIgnored(std::span<const Kernel> kernels) {
  Random random(12);
  for (const Kernel &kernel : kernels) {
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const std::vector<float> want = FloatsOf(ResultOf(kernel, x));
    for (const uint32_t n : {0u, 1u, kernel.length - 1, 2 * kernel.length, 0xffffffffu}) {
      std::vector<float> dst(want.size(), kNaN), src = FloatsOf(x);
      kernel.run(dst.data(), src.data(), n);
      EXPECT_TRUE(SameSamples(dst, want, CallOf(kernel, kUniform.name))) << "for " << n;
    }
  }
}

void ExpectInPlaceWhereAllowed(std::span<const Kernel> kernels) {
  Random random(13);
  for (const Kernel &kernel : kernels) {
    const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
    const ComplexArray apart = ResultOf(kernel, x);
    GuardedFloats both(FloatsOf(x), 1);
    kernel.run(both.data(), both.data(), kernel.length);
    const KernelCall call = CallOf(kernel, "in place");
    EXPECT_TRUE(both.GuardsStand(call));
    if (RunsInPlace(kernel)) {
      EXPECT_TRUE(SameSamples(both.values(), FloatsOf(apart), call));
    } else {
      const ComplexArray got = ComplexOf(both.values());
      EXPECT_GT(reference::LargestError(reference::Widened(got), reference::Widened(apart)), 0.01)
          << call;
    }
  }
}

void ExpectAccuracy(std::span<const Kernel> kernels, const WideTransform &want, double bound) {
  constexpr int kRounds = 4;
  Random random(14);
  for (const Kernel &kernel : kernels) {
    double largest = 0;
    for (int round = 0; round < kRounds; ++round) {
      const ComplexArray x = ComplexSamples(kUniform, random, kernel.length);
      const WideArray got = reference::Widened(ResultOf(kernel, x)), wide = want(kernel, x);
      largest += reference::LargestError(got, wide) / kRounds;
      EXPECT_LT(reference::RmsError(got, wide), bound / 3) << kernel.name;
    }
    EXPECT_LT(largest, bound) << kernel.name;
  }
}

void ExpectImpulses(std::span<const Kernel> kernels, double (*bound)(uint32_t length)) {
  constexpr reference::Complex kImpulse = {0.8f, -0.6f};
  for (const Kernel &kernel : kernels) {
    const uint32_t n = kernel.length;
    const WideArray roots = reference::Roots<double>(n, kernel.direction);
    const double factor = kernel.scaling == Scaling::kScaled ? 1.0 / n : 1.0;
    for (const uint32_t place : Places(n)) {
      ComplexArray x(n);
      x[place] = kImpulse;
      WideArray want(n);
      for (uint32_t k = 0; k < n; ++k) {
        want[k] = factor * reference::Product(roots[k * place % n], {kImpulse.re, kImpulse.im});
      }
      ASSERT_LT(reference::LargestError(reference::Widened(ResultOf(kernel, x)), want), bound(n))
          << kernel.name << " at " << place;
    }
  }
}

void ExpectWholeImpulseAtNought(std::span<const Kernel> kernels) {
  for (const Kernel &kernel : kernels) {
    ComplexArray x(kernel.length);
    x[0] = {1.0f, -2.0f};
    const float factor = reference::FactorOf(kernel.scaling, kernel.length);
    for (const reference::Complex &value : ResultOf(kernel, x)) {
      ASSERT_EQ(value.re, factor) << kernel.name;
      ASSERT_EQ(value.im, -2 * factor) << kernel.name;
    }
  }
}

}  // namespace testing_support
