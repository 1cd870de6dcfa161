#include "kernels/mix_cases.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <span>
#include <vector>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"

namespace testing_support {
namespace {

using testing::AssertionResult;

// What one call is given.
struct Case {
  const char *material;
  std::vector<std::vector<float>> x;
  std::vector<float> g;
  uint32_t k = 0;
};

Case Given(const BlockKernel &kernel, const Material &material, Random &random) {
  Case given{material.name, {}, Samples(material, random, kernel.parameters)};
  for (size_t j = 0; j < kernel.inputs; ++j) {
    given.x.push_back(Samples(material, random, kBlockSize));
  }
  if (kernel.shifts) given.k = random.Below(9) - 4;
  return given;
}

// Distances from a 32-byte boundary, in floats.
struct Places {
  explicit Places(const BlockKernel &kernel) : x(kernel.inputs) {}
  int y = 0;
  int g = 0;
  std::vector<int> x;
};

constexpr size_t kApart = ~size_t{0};

// The input blocks in memory.
class Inputs {
 public:
  Inputs(const BlockKernel &kernel, const Case &given, const Places &at) {
    if (kernel.adjacent) {
      std::vector<float> all;
      for (const auto &x : given.x) all.insert(all.end(), x.begin(), x.end());
      buffers_.push_back(std::make_unique<GuardedFloats>(all, at.x[0]));
    } else {
      for (size_t j = 0; j < kernel.inputs; ++j) {
        buffers_.push_back(std::make_unique<GuardedFloats>(given.x[j], at.x[j]));
      }
    }
    for (const auto &buffer : buffers_) {
      for (size_t i = 0; i < buffer->size(); i += kBlockSize) {
        blocks_.push_back(buffer->data() + i);
      }
    }
  }

  float *block(size_t j) { return blocks_[j]; }
  const float *const *blocks() const { return blocks_.data(); }

  // Nothing has changed but what was written to block `result`.
  AssertionResult UntouchedBut(size_t result, const KernelCall &call) const {
    size_t j = 0;
    for (const auto &buffer : buffers_) {
      if (AssertionResult stand = buffer->GuardsStand(call); !stand) return stand;
      for (size_t i = 0; i < buffer->size(); i += kBlockSize, ++j) {
        if (j == result) continue;
        const std::span<const float> given = buffer->given();
        const AssertionResult same =
            SameBits(buffer->values().subspan(i, kBlockSize), given.subspan(i, kBlockSize), call);
        if (!same) return same;
      }
    }
    return testing::AssertionSuccess();
  }

 private:
  std::vector<std::unique_ptr<GuardedFloats>> buffers_;
  std::vector<float *> blocks_;
};

std::vector<float> Wanted(const BlockKernel &kernel, const Case &given) {
  std::vector<float> y(kBlockSize);
  std::vector<float> x(kernel.inputs);
  for (size_t i = 0; i < kBlockSize; ++i) {
    for (size_t j = 0; j < kernel.inputs; ++j) x[j] = given.x[j][i];
    y[i] = kernel.oracle(x.data(), given.g.data(), given.k);
  }
  return y;
}

// One call, with its result apart or over input `over`.
AssertionResult Runs(const BlockKernel &kernel, bool strict, const Case &given, const Places &at,
                     size_t over = kApart) {
  const KernelCall call{kernel.name.c_str(),
                        strict ? "strict" : "flex",
                        kernel.inputs,
                        {at.y, at.g, at.x.empty() ? 0 : at.x[0], at.x.size() < 2 ? 0 : at.x[1]},
                        given.material};
  Inputs inputs(kernel, given, at);
  GuardedFloats g(given.g, at.g);
  GuardedFloats apart(kBlockSize, at.y);
  float *y = over == kApart ? apart.data() : inputs.block(over);
  const BlockCall passed{y, inputs.blocks(), g.data(), given.k};
  const float *returned = strict ? kernel.strict(passed) : kernel.flex(passed);

  AssertionResult good = returned == y
                             ? testing::AssertionSuccess()
                             : testing::AssertionFailure() << call << ": returns no result";
  const std::span<const float> got(y, kBlockSize);
  const std::vector<float> wanted = Wanted(kernel, given);
  if (good) good = kernel.copies ? SameBits(got, wanted, call) : SameSamples(got, wanted, call);
  if (good) good = apart.GuardsStand(call);
  if (good) good = inputs.UntouchedBut(over, call);
  if (good) good = g.Untouched(call);
  if (!good) {
    good << ", shift " << static_cast<int32_t>(given.k);
    if (over != kApart) good << ", over input " << over;
  }
  return good;
}

// Block b of a run through every combination of special values that up to three inputs can meet in.
Case Combinations(const BlockKernel &kernel, size_t b, Case given) {
  constexpr size_t kCount = std::size(kKernelSpecials);
  for (size_t i = 0; i < kBlockSize; ++i) {
    size_t rest = b * kBlockSize + i;
    for (size_t j = 0; j < kernel.inputs; ++j, rest /= kCount) {
      given.x[j][i] = kKernelSpecials[rest % kCount];
    }
  }
  given.material = "combined specials";
  return given;
}

bool ExpectBothForms(const BlockKernel &kernel, const Case &given, size_t over = kApart) {
  const Places aligned(kernel);
  const AssertionResult flex = Runs(kernel, false, given, aligned, over);
  const AssertionResult strict = Runs(kernel, true, given, aligned, over);
  EXPECT_TRUE(flex);
  EXPECT_TRUE(strict);
  return flex && strict;
}

}  // namespace

void ExpectDefinition(const BlockKernel &kernel) {
  Random random(1);
  for (const Material &material : kMaterials) {
    for (int i = 0; i < 40; ++i) {
      if (!ExpectBothForms(kernel, Given(kernel, material, random))) return;
    }
  }
}

void ExpectInPlace(const BlockKernel &kernel) {
  Random random(2);
  for (const Material &material : kMaterials) {
    for (size_t over = 0; over < kernel.inputs; ++over) {
      if (!ExpectBothForms(kernel, Given(kernel, material, random), over)) return;
    }
  }
}

void ExpectAnyAlignment(const BlockKernel &kernel) {
  Random random(3);
  const Case given = Given(kernel, kUniform, random);
  const auto expect = [&](const Places &at) { EXPECT_TRUE(Runs(kernel, false, given, at)); };
  for (int offset = 0; offset < 8; ++offset) {
    Places at(kernel);
    at.y = offset;
    expect(at);
    at.y = 0;
    at.g = offset;
    expect(at);
    at.g = 0;
    for (int &x : at.x) {
      x = offset;
      expect(at);
      EXPECT_TRUE(Runs(kernel, false, given, at, kernel.inputs - 1));
      x = 0;
    }
  }
  for (int i = 0; i < 50; ++i) {
    Places at(kernel);
    at.y = static_cast<int>(random.Below(8));
    at.g = static_cast<int>(random.Below(8));
    for (int &x : at.x) x = static_cast<int>(random.Below(8));
    expect(at);
  }
}

void ExpectSpecialValues(const BlockKernel &kernel) {
  Random random(4);
  const Case plain = Given(kernel, kUniform, random);
  for (size_t j = 0; j < kernel.inputs; ++j) {
    for (size_t i = 0; i < kBlockSize; ++i) {
      for (float special : {-0.0f, 0x1p-149f, kLargest, -kInfinity, kNaN}) {
        Case given = plain;
        given.x[j][i] = special;
        if (!ExpectBothForms(kernel, given)) return;
      }
    }
  }
  for (size_t i = 0; i < kernel.parameters; ++i) {
    for (float special : kKernelSpecials) {
      Case given = plain;
      given.g[i] = special;
      if (!ExpectBothForms(kernel, given)) return;
    }
  }
  const size_t blocks = kernel.inputs < 3 ? 13 : 250;
  for (size_t b = 0; b < blocks; ++b) {
    if (!ExpectBothForms(kernel, Combinations(kernel, b, plain))) return;
  }
}

void ExpectUncheckedShifts(const BlockKernel &kernel) {
  ASSERT_TRUE(kernel.shifts);
  Random random(5);
  for (int k = -200; k <= 200; ++k) {
    for (const Material &material : {kUniform, kWide}) {
      Case given = Given(kernel, material, random);
      given.k = static_cast<uint32_t>(k);
      if (!ExpectBothForms(kernel, given)) return;
    }
  }
}

void ExpectNothingTouchedOutside(const BlockKernel &kernel) {
  Random random(6);
  const Case given = Given(kernel, kUniform, random);
  std::vector<float> inputs;
  for (const auto &x : given.x) inputs.insert(inputs.end(), x.begin(), x.end());
  for (Edge edge : {Edge::kBefore, Edge::kBehind}) {
    // Of nothing there still is a page.
    EdgePages result(kBlockSize), parameters(kernel.parameters + 1), all(inputs.size() + 1);
    float *y = result.Place(std::vector<float>(kBlockSize, kNaN), edge);
    const float *g = parameters.Place(given.g, edge);
    std::vector<std::unique_ptr<EdgePages>> pages;
    std::vector<const float *> x;
    const float *adjacent = all.Place(inputs, edge);
    for (size_t j = 0; j < kernel.inputs; ++j) {
      pages.push_back(std::make_unique<EdgePages>(kBlockSize));
      x.push_back(kernel.adjacent ? adjacent + j * kBlockSize
                                  : pages.back()->Place(given.x[j], edge));
      pages.back()->ForbidStores();
    }
    parameters.ForbidStores();
    all.ForbidStores();
    const BlockCall passed{y, x.data(), g, given.k};
    const KernelCall call{kernel.name.c_str(), "at a page's edge"};
    kernel.flex(passed);
    EXPECT_TRUE(SameSamples({y, kBlockSize}, Wanted(kernel, given), call));
    // Parameters that end with a page aren't aligned.
    if (edge == Edge::kBehind) continue;
    kernel.strict(passed);
    EXPECT_TRUE(SameSamples({y, kBlockSize}, Wanted(kernel, given), call));
  }
}

}  // namespace testing_support
