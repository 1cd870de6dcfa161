// What the families of kernels share: their material and how they are called.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "bench/bench.h"

namespace bench {

// A pointer to f whose target the compiler can't know, so that nothing is inlined.
template <class F>
F *opaque(F *f) {
  F *volatile hidden = f;
  return hidden;
}

// Noise from -1 to 1, the same every time for a seed.
inline placed<float> noise(std::size_t n, unsigned seed) {
  std::minstd_rand random(seed);
  std::uniform_real_distribution<float> level(-1, 1);
  placed<float> x(n);
  for (std::size_t i = 0; i < n; ++i) x[i] = level(random);
  return x;
}

// ---- Counted vectors --------------------------------------------------------

inline constexpr unsigned vector_size = 1024;

// Inputs and room for results, each for as many complex numbers, and seven planes of
// them. One of `a` is the largest and the largest magnitude.
//
// Where the results lie moves on by a cache line with every call: what they share with an
// input in the lower bits of their addresses can double a kernel's time.
class operands {
 public:
  operands() { a_[700] = 1; }
  operands(const operands &) = delete;

  void move_results() {
    line_ = (line_ + 1) % lines;
    y = results_.data() + line_ * line;
  }

 private:
  static constexpr std::size_t n = 2 * vector_size, line = 16, lines = 64;

  placed<float> results_{n + line * lines}, other_results_{n};
  placed<float> a_ = noise(n, 1), b_ = noise(n, 2), planes_ = noise(7 * n, 3);
  std::size_t line_ = 0;

 public:
  float *y = results_.data(), *z = other_results_.data();
  const float *const a = a_.data(), *const b = b_.data(), *const planes = planes_.data();
};

using vector_call = std::function<void(operands &)>;

// The library's calls by the names of their cases.
inline std::map<std::string, vector_call> &library_calls() {
  static std::map<std::string, vector_call> calls;
  return calls;
}

// Whether the two give the same result, but for rounding.
inline bool agree(const vector_call &one, const vector_call &other) {
  operands p, q;
  one(p);
  other(q);
  for (std::size_t i = 0; i < 2 * vector_size; ++i)
    if (!(std::abs(p.y[i] - q.y[i]) <= 1e-4f * std::max(1.0f, std::abs(q.y[i])))) return false;
  return true;
}

// Enrolls f as a contender, where call(f, operands) is a call over the vectors' length
// and annotate(state) adds to what is reported.
template <class F, class Call, class Annotate>
void enroll_vector(const std::string &family_case, const std::string &contender, F *f, Call call,
                   Annotate annotate) {
  const vector_call whole_call = [=](operands &o) { call(f, o); };
  if (contender == "library") library_calls()[family_case] = whole_call;
  enroll(family_case + "/" + contender, [=](benchmark::State &state) {
    if (!agree(whole_call, library_calls().at(family_case)))
      return state.SkipWithError("the result isn't the library's");
    F *const called = opaque(f);
    operands o;
    repeat(state, [&] {
      call(called, o);
      o.move_results();
      return vector_size;
    });
    annotate(state);
  });
}
template <class F, class Call>
void enroll_vector(const std::string &family_case, const std::string &contender, F *f, Call call) {
  enroll_vector(family_case, contender, f, call, [](benchmark::State &) {});
}

}  // namespace bench
