// A phase shifter of the library in guarded memory and the reference's, fed alike.
#ifndef MVK_TESTS_SERVICES_PHASE90_PAIR_H_
#define MVK_TESTS_SERVICES_PHASE90_PAIR_H_

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "kernels/kernel_samples.h"
#include "phase90_hilbert.h"
#include "reference/phase90_reference.h"

namespace testing_support {

inline constexpr size_t kPhase90StateFloats = sizeof(Phase90Hilbert_state) / sizeof(float);

// How far behind a multiple of 32 bytes the parts lie, in floats. The state's distance is even.
struct Phase90Place {
  int state = 0;
  int work = 0;
  int history = 0;
};

// In memory of exactly the sizes that it asks for, filled with NaNs.
class LibraryPhase90 {
 public:
  explicit LibraryPhase90(int length, const Phase90Place &place = {})
      : state_(kPhase90StateFloats, place.state),
        work_(static_cast<size_t>(length + reference::kPhase90Delay), place.work),
        history_(reference::kPhase90Delay, place.history) {
    EXPECT_EQ(Init(length), 0);
    EXPECT_EQ(reinterpret_cast<float *>(handle_), state_.data());
  }

  int Init(int length) {
    return init_Phase90Hilbert(&handle_, static_cast<unsigned>(length), state_.data(), work_.data(),
                               history_.data());
  }

  Phase90Hilbert_state *handle() { return handle_; }
  Phase90Hilbert_state Record() const {
    Phase90Hilbert_state record;
    std::memcpy(&record, handle_, sizeof record);
    return record;
  }
  GuardedFloats &work() { return work_; }
  const GuardedFloats &work() const { return work_; }
  GuardedFloats &history() { return history_; }
  const GuardedFloats &history() const { return history_; }

  testing::AssertionResult GuardsStand() const {
    if (auto stand = state_.GuardsStand({"state", "memory"}); !stand) return stand;
    if (auto stand = work_.GuardsStand({"work", "memory"}); !stand) return stand;
    return history_.GuardsStand({"history", "memory"});
  }

 private:
  GuardedFloats state_, work_, history_;
  Phase90Hilbert_state *handle_ = nullptr;
};

// Every field of the state, and what it points to.
inline testing::AssertionResult SameState(const LibraryPhase90 &library,
                                          const reference::Phase90 &expected) {
  const Phase90Hilbert_state got = library.Record();
  std::array<float, 10> forward;
  for (size_t i = 0; i < forward.size(); ++i) forward[i] = expected.forward[i / 2][i % 2];
  if (got.frame_length != expected.frame_length) {
    return testing::AssertionFailure() << "frame_length: " << got.frame_length;
  }
  if (got.work != library.work().values().data() ||
      got.history != library.history().values().data()) {
    return testing::AssertionFailure() << "another buffer";
  }
  const testing::AssertionResult fields[] = {
      SameSamples(got.fwd, forward, {"fwd", "field"}),
      SameSamples(library.history().values(), expected.history, {"history", "field"}),
      SameSamples(library.work().values(), expected.work, {"work", "field"}),
      SameSamples(got.back_a, expected.back_a, {"back_a", "field"}),
      SameSamples(got.back_b, expected.back_b, {"back_b", "field"}),
      SameResult(got.boundary, expected.boundary, {"boundary", "field"}),
      SameResult(got.inv_length, expected.inv_length, {"inv_length", "field"}),
  };
  for (const testing::AssertionResult &field : fields) {
    if (!field) return field;
  }
  return library.GuardsStand();
}

class Phase90Pair {
 public:
  explicit Phase90Pair(int length, const Phase90Place &place = {})
      : library(length, place), expected(length) {
    const std::span<const float> work = library.work().values();
    expected.work.assign(work.begin(), work.end());
  }

  void Reset() {
    EXPECT_EQ(reset_Phase90Hilbert(library.handle()), 0);
    expected.Reset();
  }

  // One frame through both, `offset` floats behind a multiple of 32 bytes.
  testing::AssertionResult Process(const std::vector<float> &samples, int offset = 0) {
    GuardedFloats got(samples, offset);
    std::vector<float> wanted = samples;
    if (process_Phase90Hilbert(library.handle(), got.data()) != 0) {
      return testing::AssertionFailure() << "reports a failure";
    }
    expected.Process(wanted.data());
    const KernelCall call{"phase90", "frame", samples.size(), {offset}};
    if (auto same = SameSamples(got.values(), wanted, call); !same) return same;
    if (auto stand = got.GuardsStand(call); !stand) return stand;
    return SameState(library, expected);
  }

  LibraryPhase90 library;
  reference::Phase90 expected;
};

}  // namespace testing_support

#endif
