// Calls of kernels with arguments that follow from their types.
#ifndef MVK_TESTS_FINGERPRINTS_KERNEL_CALLS_H_
#define MVK_TESTS_FINGERPRINTS_KERNEL_CALLS_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

#include "fingerprints/corpus.h"
#include "fingerprints/digest.h"
#include "mvk_kernels.h"

namespace testing_support {

// What the types of a kind of kernels don't tell.
struct CallPlan {
  std::span<const Material> materials;
  std::span<const uint32_t> last;  // values of the last integer: a count, a shift, taps
  bool counts = false;             // and those of strict forms are multiples of four
  size_t floats;                   // in each buffer
  size_t signals = 9;              // of the inputs; those behind them are coefficients
  const Material &coefficients = kGentle;
  bool has_state = false;  // outputs behind the first go on from call to call
};

// Block kernels have shifts only, and run on other samples for each.
inline constexpr uint32_t kShifts[] = {0, 3, static_cast<uint32_t>(-7), 61,
                                       static_cast<uint32_t>(-130)};

class CallArguments {
 public:
  static constexpr size_t kMostFloats = 968;

  CallArguments(const CallPlan &plan, const Material &material, bool aligned)
      : plan_(plan), signals_(material), coefficients_(plan.coefficients), aligned_(aligned) {}

  // Another call begins.
  void Begin(uint32_t last) {
    ++calls_;
    last_ = last;
    buffers_ = inputs_ = outputs_ = 0;
    if (calls_ == 1 || !plan_.has_state) {
      smooth_ = coefficients_.Next();
      wide_ = {coefficients_.Next(), coefficients_.Next()};
    }
  }

  template <typename Argument, bool is_last>
  Argument Next() {
    if constexpr (std::same_as<Argument, float *>) {
      return Output();
    } else if constexpr (std::same_as<Argument, const float *>) {
      return Fill(inputs_++ < plan_.signals ? signals_ : coefficients_);
    } else if constexpr (std::same_as<Argument, float>) {
      return signals_.Next();
    } else if constexpr (std::integral<Argument>) {
      return static_cast<Argument>(is_last ? last_ : kShifts[calls_ % std::size(kShifts)]);
    } else if constexpr (std::same_as<Argument, double *>) {
      return &smooth_;
    } else {
      static_assert(std::same_as<Argument, mvk_blk_iir1x_state *>);
      return &wide_;
    }
  }

  // The outputs as the call left them, and what lies behind them.
  void AddOutputs(Digest &digest) const {
    for (size_t i = 0; i < outputs_; ++i) {
      digest.Numbers(written_[i], std::min(plan_.floats, kMostWritten));
    }
    digest.Number(smooth_);
    digest.Number(wide_.s0);
    digest.Number(wide_.w);
  }
  // Kernels return their result pointer.
  void AddResult(Digest &digest, const float *result) const {
    digest.Integer(result == written_[0] ? 1 : 0);
  }
  void AddResult(Digest &digest, std::floating_point auto result) const { digest.Number(result); }
  void AddResult(Digest &digest, std::integral auto result) const {
    digest.Integer(static_cast<uint64_t>(result));
  }

 private:
  static constexpr size_t kBuffers = 6;
  static constexpr size_t kMostWritten = 160;

  // Every buffer at a distance of its own from a multiple of 32 bytes.
  float *Place() {
    const size_t buffer = buffers_++;
    const size_t call = plan_.has_state ? 1 : calls_;
    return storage_[buffer] + (aligned_ ? 0 : call * (2 * buffer + 1) % 8);
  }
  float *Fill(Corpus &corpus) {
    float *const buffer = Place();
    std::ranges::copy(corpus.Take(plan_.floats), buffer);
    return buffer;
  }
  float *Output() {
    float *output;
    if (plan_.has_state && outputs_ > 0) {
      output = Place();
      if (calls_ == 1) {
        std::ranges::transform(coefficients_.Take(plan_.floats), output,
                               [](float x) { return std::fabs(x); });
      }
    } else {
      output = Fill(signals_);
    }
    return written_[outputs_++] = output;
  }

  const CallPlan &plan_;
  Corpus signals_, coefficients_;
  bool aligned_;
  uint32_t last_ = 0;
  size_t calls_ = 0, buffers_ = 0, inputs_ = 0, outputs_ = 0;
  double smooth_ = 0;
  mvk_blk_iir1x_state wide_ = {};
  std::array<float *, kBuffers> written_ = {};
  alignas(64) float storage_[kBuffers][kMostFloats + 8];
};

template <typename... Arguments>
constexpr size_t LastInteger() {
  constexpr bool kIsInteger[] = {std::integral<Arguments>...};
  size_t last = sizeof...(Arguments);
  for (size_t i = 0; i < sizeof...(Arguments); ++i) {
    if (kIsInteger[i]) last = i;
  }
  return last;
}

// The results of a kernel over all materials and values of a plan.
template <typename Result, typename... Arguments>
void AddCalls(Digest &digest, const CallPlan &plan, bool aligned, Result (*kernel)(Arguments...)) {
  constexpr size_t kLast = LastInteger<Arguments...>();
  for (const Material &material : plan.materials) {
    CallArguments arguments(plan, material, aligned);
    for (uint32_t last : plan.last) {
      if (aligned && plan.counts && last % 4 != 0) continue;
      arguments.Begin(last);
      // Braces keep the order of the arguments.
      const auto values = [&]<size_t... i>(std::index_sequence<i...>) {
        return std::tuple<Arguments...>{arguments.template Next<Arguments, i == kLast>()...};
      }
      (std::index_sequence_for<Arguments...>());
      if constexpr (std::is_void_v<Result>) {
        std::apply(kernel, values);
      } else {
        arguments.AddResult(digest, std::apply(kernel, values));
      }
      arguments.AddOutputs(digest);
    }
  }
}

#define MVK_KERNEL_ENTRY(function, plan, aligned) \
  MVK_ENTRY(function, [](Digest &digest) { AddCalls(digest, plan, aligned, &function); });

// Both forms of a kernel.
#define MVK_TWIN_ENTRIES(name, plan)               \
  MVK_KERNEL_ENTRY(mvk_##name##_flex, plan, false) \
  MVK_KERNEL_ENTRY(MVK_##name##_strict, plan, true)

}  // namespace testing_support

#endif
