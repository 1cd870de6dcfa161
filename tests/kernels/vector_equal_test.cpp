// The comparison of two vectors within a tolerance.
#include <gtest/gtest.h>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/vector_reference.h"

namespace testing_support {
namespace {

using Equal = int32_t (*)(const float *, const float *, uint32_t, float);

struct EqualForm {
  const char *name;
  Equal equal;
  uint32_t step;  // between the counts that it takes
  int offsets;    // of its buffers that it takes
};

constexpr EqualForm kForms[] = {
    {"flex", mvk_vec_IeqLLU_flex, 1, 8},
    {"strict", MVK_vec_IeqLLU_strict, 4, 1},
};

constexpr uint32_t kMostElements = 67;

int32_t Compared(const EqualForm &form, const std::vector<float> &a, const std::vector<float> &b,
                 float tolerance) {
  GuardedFloats guarded_a(a, 0), guarded_b(b, 0);
  const auto n = static_cast<uint32_t>(a.size());
  const KernelCall call = {"vec_IeqLLU", form.name, n};
  const int32_t equal = form.equal(guarded_a.data(), guarded_b.data(), n, tolerance);
  EXPECT_TRUE(guarded_a.Untouched(call));
  EXPECT_TRUE(guarded_b.Untouched(call));
  return equal;
}

TEST(VectorEqual, TakesAnyCountAtAnyAlignment) {
  Random random(1);
  for (const EqualForm &form : kForms) {
    for (uint32_t n = 0; n <= kMostElements; n += form.step) {
      const std::vector<float> a = Samples(kUniform, random, n);
      std::vector<float> b = a;
      if (n > 0) b[random.Below(n)] += 0.25f;
      for (int oa = 0; oa < form.offsets; ++oa) {
        for (int ob = 0; ob < form.offsets; ++ob) {
          GuardedFloats guarded_a(a, oa), guarded_b(b, ob), same(a, ob);
          float *const pa = guarded_a.data();
          EXPECT_EQ(form.equal(pa, guarded_b.data(), n, 0.125f), n == 0)
              << n << " at " << oa << ", " << ob;
          EXPECT_EQ(form.equal(pa, guarded_b.data(), n, 0.5f), 1)
              << n << " at " << oa << ", " << ob;
          EXPECT_EQ(form.equal(pa, same.data(), n, 0), 1) << n << " at " << oa << ", " << ob;
        }
      }
    }
  }
}

TEST(VectorEqual, FindsADifferenceAtEachPlace) {
  for (const EqualForm &form : kForms) {
    std::vector<uint32_t> counts = {128, 132, 200};
    for (uint32_t n = form.step; n <= kMostElements; n += form.step) counts.push_back(n);
    for (uint32_t n : counts) {
      const std::vector<float> a(n, 1.0f);
      for (uint32_t place = 0; place < n; ++place) {
        std::vector<float> b = a;
        b[place] = 1.5f;
        ASSERT_EQ(Compared(form, a, b, 0.25f), 0) << form.name << " " << n << ", " << place;
        ASSERT_EQ(Compared(form, b, a, 0.25f), 0) << form.name << " " << n << ", " << place;
        ASSERT_EQ(Compared(form, a, b, 0.5f), 1) << form.name << " " << n << ", " << place;
      }
    }
  }
}

TEST(VectorEqual, CountsADifferenceThatIsNotANumberAsNone) {
  for (const EqualForm &form : kForms) {
    for (uint32_t place = 0; place < 12; ++place) {
      std::vector<float> a(12, 1.0f);
      a[place] = kNaN;
      EXPECT_EQ(Compared(form, a, std::vector<float>(12, 1.0f), 0), 1) << place;
      EXPECT_EQ(Compared(form, std::vector<float>(12, 1.0f), a, 0), 1) << place;
      a[place] = kInfinity;
      EXPECT_EQ(Compared(form, a, a, 0), 1) << place;
      EXPECT_EQ(Compared(form, a, std::vector<float>(12, 1.0f), kLargest), 0) << place;
      a[(place + 5) % 12] = kNaN;
      EXPECT_EQ(Compared(form, a, std::vector<float>(12, 1.0f), kLargest), 0) << place;
    }
  }
}

TEST(VectorEqual, HoldsForEveryInputIfTheToleranceIsNotANumber) {
  Random random(2);
  for (const EqualForm &form : kForms) {
    for (int round = 0; round < 100; ++round) {
      const std::vector<float> a = Samples(kMixed, random, 16), b = Samples(kMixed, random, 16);
      EXPECT_EQ(Compared(form, a, b, kNaN), 1);
    }
  }
}

TEST(VectorEqual, DoesNotHoldForANegativeToleranceUnlessThereIsNothing) {
  for (const EqualForm &form : kForms) {
    const std::vector<float> a(8, 1.0f);
    EXPECT_EQ(Compared(form, a, a, -0x1p-149f), 0);
    EXPECT_EQ(Compared(form, a, a, -0.0f), 1);
    EXPECT_EQ(Compared(form, {}, {}, -1), 1);
  }
}

TEST(VectorEqual, RoundsTheDifferenceBeforeItCompares) {
  for (const EqualForm &form : kForms) {
    const std::vector<float> a(4, 1.0f), b(4, -0x1p-30f);
    EXPECT_EQ(Compared(form, a, b, 1.0f), 1);
    EXPECT_EQ(Compared(form, a, b, 0x1.fffffep-1f), 0);
  }
}

TEST(VectorEqual, SeesDenormalDifferences) {
  for (const EqualForm &form : kForms) {
    const std::vector<float> a(4, 0x1p-126f), b(4, 0x0.fffffep-126f);
    EXPECT_EQ(Compared(form, a, b, 0), 0);
    EXPECT_EQ(Compared(form, a, b, 0x1p-149f), 1);
  }
}

TEST(VectorEqual, AgreesWithItsDefinitionOnAnySamples) {
  Random random(3);
  int held = 0;
  constexpr int kRounds = 3000;
  for (const EqualForm &form : kForms) {
    for (int round = 0; round < kRounds; ++round) {
      const uint32_t n = random.Below(kMostElements / form.step) * form.step;
      const std::vector<float> a = Samples(kMixed, random, n);
      std::vector<float> b = a;
      for (float &sample : b) {
        if (random.Below(32) == 0) sample += std::ldexp(random.Unit(), -8);
        if (random.Below(64) == 0) sample = KernelSpecial(random);
      }
      const float tolerance = std::fabs(std::ldexp(random.Unit(), -8));
      const int32_t expected = reference::EqualWithin(a.data(), b.data(), n, tolerance);
      held += expected;
      ASSERT_EQ(Compared(form, a, b, tolerance), expected) << form.name << " " << n;
    }
  }
  // Both answers came up often.
  EXPECT_GT(held, kRounds / 4);
  EXPECT_LT(held, 2 * kRounds - kRounds / 4);
}

TEST(VectorEqual, ReadsNothingOutside) {
  EdgePages pages_a(kMostElements), pages_b(kMostElements);
  Random random(4);
  for (Edge edge : {Edge::kBefore, Edge::kBehind}) {
    for (uint32_t n = 0; n <= kMostElements; ++n) {
      const std::vector<float> samples = Samples(kUniform, random, n);
      const float *const a = pages_a.Place(samples, edge);
      const float *const b = pages_b.Place(samples, edge);
      EXPECT_EQ(mvk_vec_IeqLLU_flex(a, b, n, 0), 1) << n;
      if (n % 8 == 0) {
        EXPECT_EQ(MVK_vec_IeqLLU_strict(a, b, n, 0), 1) << n;
      }
    }
  }
}

}  // namespace
}  // namespace testing_support
