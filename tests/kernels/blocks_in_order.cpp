#include "kernels/blocks_in_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

#include "kernels/edge_pages.h"
#include "kernels/kernel_samples.h"

namespace testing_support {
namespace {

using testing::AssertionResult;

constexpr size_t kBlocks = 6;

enum class Form { kFlex, kStrict };
constexpr Form kForms[] = {Form::kFlex, Form::kStrict};

// What the blocks of a stream are given, and what is to come of them.
struct Run {
  const char *material;
  size_t blocks;
  std::vector<float> x;
  std::vector<float> addend;
  std::vector<std::vector<float>> c;  // for each block
  std::vector<float> s;
  uint32_t u;

  std::vector<float> y;
  std::vector<std::vector<float>> s_after;  // each block
};

// A number of the state: a float, or a binary64 with digits that a float wouldn't hold.
void PutNumber(const StatefulKernel &kernel, std::vector<float> &s, size_t word, float value) {
  if (static_cast<int>(word) != kernel.wide) {
    s[word] = value;
    return;
  }
  const double wide = static_cast<double>(value) * (1 + 0x1.23p-30);
  std::memcpy(&s[word], &wide, sizeof wide);
}

// The second half of a binary64 isn't a number of its own.
bool IsNumber(const StatefulKernel &kernel, size_t word) {
  return kernel.wide < 0 || static_cast<int>(word) != kernel.wide + 1;
}

AssertionResult SameState(const StatefulKernel &kernel, std::span<const float> got,
                          std::span<const float> wanted, const KernelCall &call) {
  const size_t floats = kernel.wide < 0 ? kernel.state : static_cast<size_t>(kernel.wide);
  AssertionResult same = SameSamples(got.first(floats), wanted.first(floats), call);
  if (same && kernel.wide >= 0) {
    double a, b;
    std::memcpy(&a, got.data() + kernel.wide, sizeof a);
    std::memcpy(&b, wanted.data() + kernel.wide, sizeof b);
    same = SameResult(a, b, call);
  }
  return same;
}

float Small(Random &random) { return 0.45f * random.Unit(); }

Run Given(const StatefulKernel &kernel, const Material &material, Random &random,
          size_t blocks = kBlocks) {
  const auto samples = [&](size_t count) {
    std::vector<float> some = Samples(material, random, count);
    for (float &sample : some) sample = kernel.positive ? std::fabs(sample) : sample;
    return some;
  };
  Run run{};
  run.material = material.name;
  run.blocks = blocks;
  run.x = samples(blocks * kernel.inputs);
  run.addend = samples(kernel.adds ? run.x.size() : 0);
  // Recursions with larger coefficients would soon hold infinities and nothing else.
  const std::vector<float> c = Samples({"small", Small}, random, kernel.coefficients);
  run.c.assign(blocks, c);
  run.s = samples(kernel.state);
  for (size_t word = 0; word < kernel.state; ++word) {
    if (IsNumber(kernel, word)) PutNumber(kernel, run.s, word, run.s[word]);
  }
  run.u = kernel.u;
  return run;
}

// Blocks with the same coefficients are one recursion, begun anew to find the state after each.
Run Solved(const StatefulKernel &kernel, Run run) {
  run.y.assign(run.blocks * kernel.outputs, 0.0f);
  run.s_after.clear();
  size_t first = 0;
  for (size_t b = 0; b < run.blocks; ++b) {
    if (run.c[b] != run.c[first]) first = b;
    std::vector<float> s = first == 0 ? run.s : run.s_after[first - 1];
    const StatefulCall call{run.y.data() + first * kernel.outputs,
                            run.x.data() + first * kernel.inputs,
                            kernel.adds ? run.addend.data() + first * kernel.inputs : nullptr,
                            run.c[b].data(),
                            s.data(),
                            run.u};
    kernel.oracle(call, (b + 1 - first) * kernel.inputs);
    run.s_after.push_back(s);
  }
  return run;
}

// Distances from a 32-byte boundary, in floats.
struct Places {
  int y = 0;
  int x = 0;
  int addend = 0;
  int c = 0;
  int s = 0;
};

// A run under way, with its state in memory.
class Stream {
 public:
  Stream(const StatefulKernel &kernel, Form form, bool in_place, const Run &run, Places at = {})
      : kernel_(kernel), form_(form), in_place_(in_place), run_(run), at_(at), s_(run.s, at.s) {}

  // Runs a further block and looks at everything it may and may not have written.
  AssertionResult Next() {
    const size_t b = next_++;
    const bool strict = form_ == Form::kStrict;
    const KernelCall call{kernel_.name.c_str(),
                          strict ? "strict" : "flex",
                          kBlockSize,
                          {at_.y, at_.x, at_.c, at_.s},
                          run_.material};
    GuardedFloats x(Slice(run_.x, b, kernel_.inputs), at_.x);
    GuardedFloats apart(kernel_.outputs, at_.y);
    GuardedFloats addend(Slice(run_.addend, b, kernel_.adds ? kernel_.inputs : 0), at_.addend);
    GuardedFloats c(run_.c[b], at_.c);
    GuardedFloats &y = in_place_ ? x : apart;
    const StatefulCall passed{y.data(), x.data(), addend.data(), c.data(), s_.data(), run_.u};
    const float *returned = strict ? kernel_.strict(passed) : kernel_.flex(passed);

    AssertionResult good = returned == y.data()
                               ? testing::AssertionSuccess()
                               : testing::AssertionFailure() << call << ": returns no result";
    const auto check = [&good](const AssertionResult &next) {
      if (good) good = next;
    };
    check(SameSamples(y.values().first(kernel_.outputs), Slice(run_.y, b, kernel_.outputs), call));
    check(SameState(kernel_, s_.values(), run_.s_after[b], call));
    check(y.GuardsStand(call));
    check(s_.GuardsStand(call));
    check(c.Untouched(call));
    check(addend.Untouched(call));
    if (!in_place_) check(x.Untouched(call));
    if (in_place_ && kernel_.inputs > kernel_.outputs) {
      const std::span<const float> given = x.given();
      check(SameBits(x.values().subspan(kernel_.outputs), given.subspan(kernel_.outputs), call));
    }
    if (!good) good << ", block " << b << (in_place_ ? " in place" : " apart");
    return good;
  }

  AssertionResult All() {
    AssertionResult good = testing::AssertionSuccess();
    while (good && next_ < run_.blocks) good = Next();
    return good;
  }

 private:
  static std::vector<float> Slice(const std::vector<float> &all, size_t b, size_t count) {
    const auto begin = all.begin() + static_cast<ptrdiff_t>(b * count);
    return {begin, begin + static_cast<ptrdiff_t>(count)};
  }

  const StatefulKernel &kernel_;
  const Form form_;
  const bool in_place_;
  const Run &run_;
  const Places at_;
  GuardedFloats s_;
  size_t next_ = 0;
};

// Both forms, and each of them wherever its result may stand.
template <typename Check>
void ForEachWay(const StatefulKernel &kernel, Check check) {
  for (Form form : kForms) {
    if (kernel.in_place != InPlace::kAlways) check(form, false);
    if (kernel.in_place != InPlace::kNever) check(form, true);
  }
}

bool ExpectRun(const StatefulKernel &kernel, const Run &given) {
  const Run run = Solved(kernel, given);
  bool good = true;
  ForEachWay(kernel, [&](Form form, bool in_place) {
    const AssertionResult result = Stream(kernel, form, in_place, run).All();
    EXPECT_TRUE(result);
    good = good && result;
  });
  return good;
}

}  // namespace

void ExpectOneLongRecursion(const StatefulKernel &kernel) {
  Random random(1);
  for (const Material &material : kMaterials) {
    for (int i = 0; i < 5; ++i) ExpectRun(kernel, Given(kernel, material, random));
  }
}

void ExpectStateApartFromCoefficients(const StatefulKernel &kernel) {
  Random random(2);
  for (int i = 0; i < 5; ++i) {
    Run run = Given(kernel, kUniform, random);
    for (size_t b = 1; b < run.blocks; b += 1 + random.Below(2)) {
      for (size_t later = b; later < run.blocks; ++later) {
        run.c[later] = Samples({"small", Small}, random, kernel.coefficients);
      }
    }
    ExpectRun(kernel, run);
  }
}

void ExpectNothingKeptBetweenCalls(const StatefulKernel &kernel) {
  Random random(3);
  const Run one = Solved(kernel, Given(kernel, kUniform, random));
  const Run other = Solved(kernel, Given(kernel, kUniform, random));
  ForEachWay(kernel, [&](Form form, bool in_place) {
    Stream first(kernel, form, in_place, one);
    Stream second(kernel, form, in_place, other);
    for (size_t b = 0; b < kBlocks; ++b) {
      EXPECT_TRUE(first.Next());
      EXPECT_TRUE(second.Next());
    }
  });
}

void ExpectAnyAlignment(const StatefulKernel &kernel) {
  Random random(4);
  const Run run = Solved(kernel, Given(kernel, kUniform, random, 2));
  const auto expect = [&](Places at) {
    // A state with a binary64 keeps to the alignment of its type.
    if (kernel.wide >= 0) at.s &= ~1;
    if (kernel.in_place != InPlace::kAlways) {
      EXPECT_TRUE(Stream(kernel, Form::kFlex, false, run, at).All());
    }
    if (kernel.in_place != InPlace::kNever) {
      EXPECT_TRUE(Stream(kernel, Form::kFlex, true, run, at).All());
    }
  };
  for (int offset = 0; offset < 8; ++offset) {
    expect({.y = offset});
    expect({.x = offset});
    expect({.addend = offset});
    expect({.c = offset});
    expect({.s = offset});
  }
  const auto any = [&random] { return static_cast<int>(random.Below(8)); };
  for (int i = 0; i < 50; ++i) expect({any(), any(), any(), any(), any()});
}

void ExpectSpecialValuesToPassThrough(const StatefulKernel &kernel) {
  Random random(5);
  const Run plain = Given(kernel, kUniform, random, 2);
  for (float special : {-0.0f, 0x1p-149f, kLargest, -kInfinity, kNaN}) {
    for (size_t i = 0; i < kernel.inputs; ++i) {
      Run run = plain;
      run.x[i] = special;
      if (kernel.adds) run.addend[kernel.inputs - 1 - i] = special;
      if (!ExpectRun(kernel, run)) return;
    }
  }
  for (float special : kKernelSpecials) {
    for (size_t i = 0; i < kernel.coefficients; ++i) {
      Run run = plain;
      for (auto &c : run.c) c[i] = special;
      if (!ExpectRun(kernel, run)) return;
    }
    for (size_t word = 0; word < kernel.state; ++word) {
      if (!IsNumber(kernel, word)) continue;
      Run run = plain;
      PutNumber(kernel, run.s, word, special);
      if (!ExpectRun(kernel, run)) return;
    }
  }
}

void ExpectUncheckedShifts(const StatefulKernel &kernel) {
  ASSERT_TRUE(kernel.shifts);
  Random random(6);
  Run run = Given(kernel, kUniform, random, 2);
  for (int k = -200; k <= 200; ++k) {
    SCOPED_TRACE(k);
    run.u = static_cast<uint32_t>(k);
    if (!ExpectRun(kernel, run)) return;
  }
}

void ExpectSilenceToStay(const StatefulKernel &kernel) {
  Random random(7);
  Run run = Given(kernel, kUniform, random);
  for (auto *zeros : {&run.x, &run.addend, &run.s}) std::fill(zeros->begin(), zeros->end(), 0.0f);
  for (float y : Solved(kernel, run).y) EXPECT_EQ(y, 0.0f);
  ExpectRun(kernel, run);
}

void ExpectNothingTouchedOutside(const StatefulKernel &kernel) {
  Random random(8);
  const Run run = Solved(kernel, Given(kernel, kUniform, random, 1));
  const KernelCall call{kernel.name.c_str(), "at a page's edge"};
  for (Edge edge : {Edge::kBefore, Edge::kBehind}) {
    // Of nothing there still is a page.
    EdgePages result(kernel.outputs), addend(run.addend.size() + 1),
        coefficients(kernel.coefficients + 1), state(kernel.state);
    const float *b = addend.Place(run.addend, edge);
    const float *c = coefficients.Place(run.c[0], edge);
    addend.ForbidStores();
    coefficients.ForbidStores();
    const bool apart = kernel.in_place != InPlace::kAlways;
    for (const auto form : {kernel.flex, kernel.strict}) {
      // Records that end with a page aren't aligned.
      if (form == kernel.strict && edge == Edge::kBehind) continue;
      EdgePages input(kernel.inputs);
      float *x = input.Place(run.x, edge);
      if (apart) input.ForbidStores();
      float *s = state.Place(run.s, edge);
      float *y = apart ? result.Place(std::vector<float>(kernel.outputs, kNaN), edge) : x;
      form({y, x, b, c, s, run.u});
      EXPECT_TRUE(SameSamples({y, kernel.outputs}, run.y, call));
      EXPECT_TRUE(SameState(kernel, {s, kernel.state}, run.s_after[0], call));
    }
  }
}

}  // namespace testing_support
