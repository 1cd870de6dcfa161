#include "kernels/vector_rows.h"

#include <deque>
#include <vector>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"

namespace testing_support {
namespace {

constexpr uint32_t kMostElements = 67;

// What a call starts from. y and z hold something as well: some kernels read them.
struct Start {
  std::vector<float> y, z, a, b;
  float s, t;
  int32_t k = 3;
  uint32_t n;
};

// What it must leave behind.
struct Want {
  std::vector<float> y, z;
};

Start RandomStart(const VectorKernel &kernel, const Material &material, Random &random,
                  uint32_t n) {
  return {
      .y = Samples(material, random, kernel.y(n)),
      .z = Samples(material, random, kernel.z(n)),
      .a = Samples(material, random, kernel.a(n)),
      .b = Samples(material, random, kernel.b(n)),
      .s = random.Unit(),
      .t = random.Unit(),
      .n = n,
  };
}

Want Wanted(const VectorKernel &kernel, Form form, const Start &start) {
  const bool strict = form == Form::kStrict && kernel.strict_oracle != nullptr;
  Want want = {start.y, start.z};
  (strict ? kernel.strict_oracle
          : kernel.oracle)({want.y.data(), want.z.data(), start.a.data(), start.b.data(), start.s,
                            start.t, start.k, start.n});
  return want;
}

testing::AssertionResult SameResults(const VectorKernel &kernel, std::span<const float> got,
                                     std::span<const float> want, const KernelCall &call) {
  return kernel.copies ? SameBits(got, want, call) : SameSamples(got, want, call);
}

float *Called(const VectorKernel &kernel, Form form, const VectorCall &arguments) {
  return (form == Form::kFlex ? kernel.flex : kernel.strict)(arguments);
}

KernelCall Described(const VectorKernel &kernel, Form form, uint32_t n, const char *material) {
  return {.kernel = kernel.name,
          .form = form == Form::kFlex ? "flex" : "strict",
          .count = n,
          .material = material};
}

testing::AssertionResult LeavesResults(const VectorKernel &kernel, Form form, const Start &start,
                                       const Want &want, GuardedFloats &y, GuardedFloats &z,
                                       const float *a, const float *b, const KernelCall &call) {
  const float *result =
      Called(kernel, form, {y.data(), z.data(), a, b, start.s, start.t, start.k, start.n});
  if (result != y.data()) return testing::AssertionFailure() << call << ": returns another pointer";
  if (auto same = SameResults(kernel, y.values(), want.y, call); !same) return same;
  if (auto same = SameResults(kernel, z.values(), want.z, call); !same) return same;
  if (auto stand = y.GuardsStand(call); !stand) return stand;
  return z.GuardsStand(call);
}

// One call on buffers of its own, all of them aligned.
testing::AssertionResult Holds(const VectorKernel &kernel, Form form, const Start &start,
                               const char *material) {
  const KernelCall call = Described(kernel, form, start.n, material);
  GuardedFloats y(start.y, 0), z(start.z, 0), a(start.a, 0), b(start.b, 0);
  const Want want = Wanted(kernel, form, start);
  const auto results = LeavesResults(kernel, form, start, want, y, z, a.data(), b.data(), call);
  if (!results) return results;
  if (auto untouched = a.Untouched(call); !untouched) return untouched;
  return b.Untouched(call);
}

std::vector<uint32_t> CountsUpTo(uint32_t most, const VectorKernel &kernel, Form form) {
  if (kernel.block) return {kBlockSize};
  std::vector<uint32_t> counts;
  for (uint32_t n = 0; n <= most; n += form == Form::kFlex ? 1 : 4) counts.push_back(n);
  return counts;
}

// The distances at which a buffer is tried; one of no size needs only one.
std::vector<int> Offsets(const std::vector<float> &values) {
  if (values.empty()) return {0};
  return {0, 1, 2, 3, 4, 5, 6, 7};
}

std::deque<GuardedFloats> AtEachOffset(const std::vector<float> &values) {
  std::deque<GuardedFloats> buffers;
  for (int offset : Offsets(values)) buffers.emplace_back(values, offset);
  return buffers;
}

constexpr Form kForms[] = {Form::kFlex, Form::kStrict};

}  // namespace

void ExpectAnyCountAtAnyAlignment(const VectorKernel &kernel) {
  Random random(1);
  for (uint32_t n : CountsUpTo(kMostElements, kernel, Form::kFlex)) {
    const Start start = RandomStart(kernel, kMixed, random, n);
    const Want want = Wanted(kernel, Form::kFlex, start);
    auto ys = AtEachOffset(start.y), zs = AtEachOffset(start.z);
    auto as = AtEachOffset(start.a), bs = AtEachOffset(start.b);
    KernelCall call = Described(kernel, Form::kFlex, n, kMixed.name);
    const auto holds_at = [&](int oy, int oz, int oa, int ob) {
      call.offsets = {oy, oz, oa, ob};
      GuardedFloats &y = ys[static_cast<size_t>(oy)], &z = zs[static_cast<size_t>(oz)];
      y.Refill();
      z.Refill();
      return LeavesResults(kernel, Form::kFlex, start, want, y, z,
                           as[static_cast<size_t>(oa)].data(), bs[static_cast<size_t>(ob)].data(),
                           call);
    };
    const bool four_buffers = !start.z.empty() && !start.b.empty();
    for (int oy : Offsets(start.y)) {
      for (int oz : Offsets(start.z)) {
        for (int oa : Offsets(start.a)) {
          // A fourth buffer goes along with the other three.
          if (four_buffers) {
            ASSERT_TRUE(holds_at(oy, oz, oa, (oy + oz + oa) % 8));
            continue;
          }
          for (int ob : Offsets(start.b)) ASSERT_TRUE(holds_at(oy, oz, oa, ob));
        }
      }
    }
    for (const GuardedFloats &a : as) ASSERT_TRUE(a.Untouched(call));
    for (const GuardedFloats &b : bs) ASSERT_TRUE(b.Untouched(call));
  }
}

void ExpectAnySamples(const VectorKernel &kernel) {
  for (const Material &material : kMaterials) {
    for (Form form : kForms) {
      Random random(2);
      for (int round = 0; round < 4; ++round) {
        for (uint32_t n : CountsUpTo(kMostElements, kernel, form)) {
          Start start = RandomStart(kernel, material, random, n);
          start.s = material.next(random);
          start.t = material.next(random);
          ASSERT_TRUE(Holds(kernel, form, start, material.name));
        }
      }
    }
  }
}

void ExpectResultsOverInputs(const VectorKernel &kernel) {
  Random random(3);
  for (Form form : kForms) {
    for (uint32_t n : CountsUpTo(kMostElements, kernel, form)) {
      for (int offset = 0; offset < (form == Form::kFlex ? 8 : 1); ++offset) {
        const Start apart = RandomStart(kernel, kMixed, random, n);
        const KernelCall call = Described(kernel, form, n, "over an input");
        const auto over = [&](bool over_a, bool over_b) {
          Start start = apart;
          std::vector<float> shared = over_a ? start.a : start.b;
          std::copy_n(shared.begin(), start.y.size(), start.y.begin());
          if (over_a && over_b) start.b = start.a;
          Want want = Wanted(kernel, form, start);
          // An input that is longer than the result keeps its end.
          want.y.insert(want.y.end(), shared.begin() + static_cast<ptrdiff_t>(want.y.size()),
                        shared.end());
          GuardedFloats y(shared, offset), z(start.z, offset), a(start.a, 0), b(start.b, 0);
          ASSERT_TRUE(LeavesResults(kernel, form, start, want, y, z, over_a ? y.data() : a.data(),
                                    over_b ? y.data() : b.data(), call));
        };
        if (kernel.over_a) {
          ASSERT_NO_FATAL_FAILURE(over(true, false));
        }
        if (kernel.over_b) {
          ASSERT_NO_FATAL_FAILURE(over(false, true));
        }
        if (kernel.over_a && kernel.over_b) {
          ASSERT_NO_FATAL_FAILURE(over(true, true));
        }
      }
    }
  }
}

void ExpectSpecialValuesAtEachPlace(const VectorKernel &kernel, uint32_t most) {
  Random random(4);
  for (Form form : kForms) {
    for (uint32_t n : CountsUpTo(most, kernel, form)) {
      Start start = RandomStart(kernel, kUniform, random, n);
      for (std::vector<float> *buffer : {&start.y, &start.z, &start.a, &start.b}) {
        for (float &place : *buffer) {
          const float usual = place;
          for (float special : kKernelSpecials) {
            place = special;
            ASSERT_TRUE(Holds(kernel, form, start, "a special value"));
          }
          place = usual;
        }
      }
    }
  }
}

void ExpectSpecialScalars(const VectorKernel &kernel) {
  Random random(5);
  constexpr uint32_t kCount = 24;  // so that each special value is among the samples
  for (Form form : kForms) {
    Start start = RandomStart(kernel, kUniform, random, kernel.block ? kBlockSize : kCount);
    size_t next = 0;
    const auto each_in_turn = [&next](std::vector<float> &samples, size_t step) {
      for (float &sample : samples) {
        sample = kKernelSpecials[next++ * step % std::size(kKernelSpecials)];
      }
    };
    for (float s : kKernelSpecials) {
      for (float t : kKernelSpecials) {
        each_in_turn(start.a, 1);
        each_in_turn(start.b, 3);
        each_in_turn(start.y, 7);
        start.s = s, start.t = t;
        ASSERT_TRUE(Holds(kernel, form, start, "special scalars"));
      }
    }
  }
}

void ExpectAnyShift(const VectorKernel &kernel) {
  std::vector<int32_t> shifts;
  for (int32_t k = -200; k <= 200; ++k) shifts.push_back(k);
  for (uint32_t k :
       {0x7fffffffu, 0x7fffff80u, 0x80000000u, 0x80000001u, 0x40000003u, 0xc0000000u}) {
    shifts.push_back(static_cast<int32_t>(k));
  }
  for (const Material &material : kMaterials) {
    Random random(6);
    for (Form form : kForms) {
      for (int32_t k : shifts) {
        const uint32_t count = form == Form::kFlex ? 13 : 12;
        Start start = RandomStart(kernel, material, random, kernel.block ? kBlockSize : count);
        start.k = k;
        ASSERT_TRUE(Holds(kernel, form, start, material.name)) << "shift " << k;
      }
    }
  }
}

void ExpectNothingTouchedOutside(const VectorKernel &kernel) {
  Random random(7);
  const uint32_t most = kernel.block ? kBlockSize : kMostElements;
  EdgePages y_pages(kernel.y(most)), z_pages(kernel.z(most) + 1);
  EdgePages a_pages(kernel.a(most) + 1), b_pages(kernel.b(most) + 1);
  for (Form form : kForms) {
    for (Edge edge : {Edge::kBefore, Edge::kBehind}) {
      for (uint32_t n : CountsUpTo(most, kernel, form)) {
        const Start start = RandomStart(kernel, kMixed, random, n);
        float *const y = y_pages.Place(start.y, edge);
        float *const z = z_pages.Place(start.z, edge);
        const float *const a = a_pages.Place(start.a, edge);
        const float *const b = b_pages.Place(start.b, edge);
        const auto aligned = [](const float *p) {
          return reinterpret_cast<uintptr_t>(p) % 32 == 0;
        };
        const bool all_aligned = aligned(y) && aligned(z) && aligned(a) && aligned(b);
        if (form == Form::kStrict && !all_aligned) continue;
        Called(kernel, form, {y, z, a, b, start.s, start.t, start.k, n});
        const Want want = Wanted(kernel, form, start);
        const KernelCall call = Described(kernel, form, n, "at the edge of a page");
        ASSERT_TRUE(SameResults(kernel, {y, start.y.size()}, want.y, call));
        ASSERT_TRUE(SameResults(kernel, {z, start.z.size()}, want.z, call));
      }
    }
  }
}

}  // namespace testing_support
