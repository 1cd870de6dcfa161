// Sized entry points of powers of two: the same transform with the work area of the caller.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fft/fft_kernels.h"
#include "reference/fft_power_of_two.h"

namespace testing_support {
namespace {

using reference::PowerOfTwoTransform;

std::vector<float> Want(const EntryPoint &entry, const ComplexArray &x) {
  return FloatsOf(PowerOfTwoTransform(x, entry.direction, entry.scaling));
}

testing::AssertionResult AsInPasses(const EntryPoint &entry, const ComplexArray &x,
                                    const char *material) {
  return SameSamples(FloatsOf(ResultOf(entry, x)), Want(entry, x), CallOf(entry, material));
}

bool NeedsScratch(const EntryPoint &entry) { return entry.length >= 16; }

TEST(FftEntryPoints, RoundAsTheirPassesDo) {
  Random random(31);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    for (const Material &material : {kUniform, kClose, kSignedZeros}) {
      const ComplexArray x = ComplexSamples(material, random, entry.length);
      EXPECT_TRUE(AsInPasses(entry, x, material.name));
    }
  }
}

TEST(FftEntryPoints, RoundAnyValuesAsTheirPassesDo) {
  Random random(32);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    if (entry.scaling == Scaling::kScaled) continue;
    for (const Material &material : {kWide, kFew, kMixed}) {
      const ComplexArray x = ComplexSamples(material, random, entry.length);
      EXPECT_TRUE(AsInPasses(entry, x, material.name));
    }
  }
}

TEST(FftEntryPoints, AreTheKernelsButForSixteen) {
  Random random(33);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    const ComplexArray x = ComplexSamples(kUniform, random, entry.length);
    const Kernel *kernel = Find(PowerOfTwoKernels(), entry.length, entry.direction, entry.scaling);
    EXPECT_EQ(bool{SameSamples(FloatsOf(ResultOf(entry, x)), FloatsOf(ResultOf(*kernel, x)),
                               CallOf(entry, kUniform.name))},
              entry.length != 16)
        << entry.name;
  }
}

// What a caller may pass as the source, and where it then is.
enum class Source { kApart, kNull, kResult, kScratch };

constexpr struct {
  Source source;
  const char *name;
} kSources[] = {
    {Source::kApart, "source apart"},
    {Source::kNull, "source null"},
    {Source::kResult, "source in the result"},
    {Source::kScratch, "source in the scratch"},
};

void ExpectResult(const EntryPoint &entry, const ComplexArray &x, Source source, const char *name,
                  std::array<int, 4> offsets) {
  const KernelCall call = CallOf(entry, name, offsets);
  const std::vector<float> floats = FloatsOf(x);
  const size_t count = floats.size();
  const bool in_result = source == Source::kNull || source == Source::kResult;
  const bool in_scratch = source == Source::kScratch;
  GuardedFloats dst(in_result ? floats : std::vector<float>(count, kNaN), offsets[0]);
  GuardedFloats src(floats, offsets[1]);
  GuardedFloats scratch(in_scratch ? floats : std::vector<float>(count, kNaN), offsets[2]);
  float *from = source == Source::kApart    ? src.data()
                : source == Source::kNull   ? nullptr
                : source == Source::kResult ? dst.data()
                                            : scratch.data();
  entry.run(dst.data(), from, scratch.data());
  EXPECT_TRUE(SameSamples(dst.values(), Want(entry, x), call));
  EXPECT_TRUE(dst.GuardsStand(call)) << "result";
  EXPECT_TRUE(src.Untouched(call)) << "source";
  EXPECT_TRUE(scratch.GuardsStand(call)) << "scratch";
  if (in_scratch) {
    EXPECT_EQ(bool{scratch.Untouched(call)}, !NeedsScratch(entry)) << call;
  }
}

TEST(FftEntryPoints, TakeTheSourceFromAnywhere) {
  Random random(34);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    const ComplexArray x = ComplexSamples(kUniform, random, entry.length);
    for (const auto &[source, name] : kSources) {
      for (const std::array<int, 4> offsets :
           {std::array{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {3, 2, 5, 0}}) {
        ExpectResult(entry, x, source, name, offsets);
      }
    }
  }
}

TEST(FftEntryPoints, NeedNoScratchUpToEight) {
  Random random(35);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    if (NeedsScratch(entry)) continue;
    const ComplexArray x = ComplexSamples(kUniform, random, entry.length);
    std::vector<float> both = FloatsOf(x);
    entry.run(both.data(), nullptr, nullptr);
    EXPECT_TRUE(SameSamples(both, Want(entry, x), CallOf(entry, "no scratch")));
  }
}

TEST(FftEntryPoints, KeepInfinitiesOutOfPartsThatTheyDontBelongTo) {
  Random random(36);
  for (const EntryPoint &entry : PowerOfTwoEntryPoints()) {
    const uint32_t n = entry.length;
    for (const uint32_t place : {0u, n / 2, n / 4, n / 8, n / 16, n / 32, n - 1}) {
      ComplexArray x = ComplexSamples(kUniform, random, n);
      (place % 2 == 0 ? x[place].re : x[place].im) = kInfinity;
      EXPECT_TRUE(AsInPasses(entry, x, "one infinity")) << "at " << place;
    }
  }
}

}  // namespace
}  // namespace testing_support
