#include "kernels/reduction_rows.h"

#include <algorithm>
#include <vector>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"

namespace testing_support {
namespace {

constexpr uint32_t kMostElements = 67;

uint32_t ElementsRead(const Reduction &reduction, uint32_t n) {
  const uint32_t groups = (n + 3) / 4 * 4;
  switch (reduction.reads) {
    case Reads::kExactly:
      return n;
    case Reads::kAtLeastOne:
      return std::max(n, 1u);
    case Reads::kGroups:
      return groups;
    case Reads::kAtLeastGroup:
      return std::max(groups, 4u);
  }
  return 0;
}

// Infinities behind the elements that are read spoil every sum and every peak.
std::vector<float> WithSpoilersBehind(std::vector<float> samples) {
  samples.insert(samples.end(), 8, kInfinity);
  return samples;
}

struct Inputs {
  std::vector<float> a, b;
};

Inputs RandomInputs(const Reduction &reduction, const Material &material, Random &random,
                    uint32_t n) {
  const uint32_t count = ElementsRead(reduction, n);
  return {WithSpoilersBehind(Samples(material, random, count)),
          WithSpoilersBehind(Samples(material, random, reduction.two ? count : 0))};
}

testing::AssertionResult Holds(const Reduction &reduction, const Inputs &inputs, uint32_t n,
                               int32_t k, int offset_a, int offset_b, const char *material) {
  const KernelCall call = {.kernel = reduction.name,
                           .form = "",
                           .count = n,
                           .offsets = {offset_a, offset_b},
                           .material = material};
  GuardedFloats a(inputs.a, offset_a), b(inputs.b, offset_b);
  const double got = reduction.kernel({a.data(), b.data(), k, n});
  // Which of two paths is taken may depend on the address.
  const double want = reduction.oracle({a.data(), b.data(), k, n});
  if (auto same = SameResult(got, want, call); !same) return same;
  if (auto untouched = a.Untouched(call); !untouched) return untouched;
  return b.Untouched(call);
}

constexpr int32_t kSomeShift = 3;

}  // namespace

void ExpectAnyCountAtAnyAlignment(const Reduction &reduction) {
  Random random(1);
  const int offsets_a = reduction.aligned ? 1 : 8;
  const int offsets_b = reduction.aligned || !reduction.two ? 1 : 8;
  for (uint32_t n = 0; n <= kMostElements; ++n) {
    const Inputs inputs = RandomInputs(reduction, kUniform, random, n);
    for (int oa = 0; oa < offsets_a; ++oa) {
      for (int ob = 0; ob < offsets_b; ++ob) {
        ASSERT_TRUE(Holds(reduction, inputs, n, kSomeShift, oa, ob, kUniform.name));
      }
    }
  }
}

void ExpectAnySamples(const Reduction &reduction) {
  Random random(2);
  std::vector<uint32_t> counts = {100, 127, 128, 255, 1000, 1023, 4096, 4098};
  for (uint32_t n = 0; n <= kMostElements; ++n) counts.push_back(n);
  for (const Material &material : kMaterials) {
    for (uint32_t n : counts) {
      for (int round = 0; round < 4; ++round) {
        const Inputs inputs = RandomInputs(reduction, material, random, n);
        ASSERT_TRUE(Holds(reduction, inputs, n, kSomeShift, 0, 0, material.name));
      }
    }
  }
}

void ExpectSpecialValuesAtEachPlace(const Reduction &reduction) {
  Random random(3);
  std::vector<uint32_t> counts = {31, 32, 40, kMostElements};
  for (uint32_t n = 0; n <= 21; ++n) counts.push_back(n);
  for (uint32_t n : counts) {
    Inputs inputs = RandomInputs(reduction, kUniform, random, n);
    const uint32_t count = ElementsRead(reduction, n);
    for (std::vector<float> *input : {&inputs.a, &inputs.b}) {
      if (input->size() < count) continue;
      for (uint32_t place = 0; place < count; ++place) {
        const std::vector<float> usual = *input;
        for (float special : kKernelSpecials) {
          *input = usual;
          (*input)[place] = special;
          ASSERT_TRUE(Holds(reduction, inputs, n, kSomeShift, 0, 0, "a special value"));
          (*input)[random.Below(count)] = KernelSpecial(random);
          ASSERT_TRUE(Holds(reduction, inputs, n, kSomeShift, 0, 0, "two special values"));
        }
        *input = usual;
      }
    }
  }
}

void ExpectAnyShift(const Reduction &reduction) {
  Random random(4);
  const auto expect = [&](int32_t k) {
    for (const Material &material : kMaterials) {
      for (uint32_t n : {1u, 3u, 8u, 13u}) {
        const Inputs inputs = RandomInputs(reduction, material, random, n);
        ASSERT_TRUE(Holds(reduction, inputs, n, k, 0, 0, material.name)) << "shift " << k;
      }
    }
  };
  for (int32_t k = -200; k <= 200; ++k) ASSERT_NO_FATAL_FAILURE(expect(k));
  for (uint32_t k : {0x7fffffffu, 0x7fffff80u, 0x80000000u, 0x80000001u, 0xc0000000u}) {
    ASSERT_NO_FATAL_FAILURE(expect(static_cast<int32_t>(k)));
  }
}

void ExpectNothingReadOutside(const Reduction &reduction) {
  Random random(5);
  EdgePages pages_a(kMostElements + 4), pages_b(kMostElements + 4);
  for (Edge edge : {Edge::kBefore, Edge::kBehind}) {
    for (uint32_t n = 0; n <= kMostElements; ++n) {
      const uint32_t count = ElementsRead(reduction, n);
      if (reduction.aligned && edge == Edge::kBehind && count % 8 != 0) continue;
      const float *const a = pages_a.Place(Samples(kUniform, random, count), edge);
      const float *const b = pages_b.Place(Samples(kUniform, random, count), edge);
      const KernelCall call = {.kernel = reduction.name, .form = "", .count = n};
      const ReductionCall arguments = {a, b, kSomeShift, n};
      ASSERT_TRUE(SameResult(reduction.kernel(arguments), reduction.oracle(arguments), call));
    }
  }
}

}  // namespace testing_support
