// The 90-degree phase shifter, one sample at a time, for tests.
#ifndef MVK_TESTS_REFERENCE_PHASE90_REFERENCE_H_
#define MVK_TESTS_REFERENCE_PHASE90_REFERENCE_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace reference {

inline constexpr int kPhase90Lengths[] = {512, 1024, 2048};

// Samples from an input to its place in the output, and the history that it takes.
inline constexpr int kPhase90Delay = 1280;

// Coefficients in units of 2^-15: the gain of the input, the sections that run forward in time
// and those that run backward.
inline constexpr float kPhase90Scale = 16341.0f / 32768;
inline constexpr float kPhase90Forward[] = {32596.0f / 32768, 32084.0f / 32768, 27694.0f / 32768,
                                            7776.0f / 32768};
inline constexpr float kPhase90Backward[] = {32498.0f / 32768, 30888.0f / 32768, 20226.0f / 32768};

// A signal that is going on behind the last sample would have left these in the first backward
// section: its inputs and its outputs, from what the forward sections hold, in the order of
// kPhase90PrimingOrder.
inline constexpr float kPhase90PrimingInputs[] = {0x1.55eab2p-8f, -0x1.922bbep-3f, -0x1.4f510cp-5f,
                                                  0x1.995056p-1f, 0x1.e6p-3f};
inline constexpr float kPhase90PrimingOutputs[] = {0x1.f7a14cp-1f, 0x1.5b4a4cp-1f, 0x1.4908ap-1f,
                                                   -0x1.65f896p-1f, -0x1.df852ap-3f};
inline constexpr size_t kPhase90PrimingOrder[] = {1, 0, 2, 3, 4};

// Where the first backward section is alone: on the samples the farthest ahead.
inline constexpr int kPhase90Alone = 981;

class Phase90 {
 public:
  explicit Phase90(int length)
      : frame_length(length),
        inv_length(1.0f / static_cast<float>(length)),
        history(kPhase90Delay, 0.0f),
        work(static_cast<size_t>(length + kPhase90Delay), 0.0f) {}

  void Process(float *samples) {
    const auto n = static_cast<size_t>(frame_length);
    std::copy(history.begin(), history.end(), work.begin());
    for (size_t i = 0; i < n; ++i) work[history.size() + i] = Forward(samples[i], i % 2);
    std::copy(work.begin() + frame_length, work.end(), history.begin());
    Prime();
    size_t i = work.size();
    for (int alone = 0; alone < kPhase90Alone; ++alone) {
      --i;
      const float y = BackwardFirst(work[i]);
      work[i] = y + y;
    }
    while (i-- > 0) work[i] = Backward(work[i]);
    Join(samples);
  }

  void Reset() {
    back_a = {};
    back_b = {};
    forward = {};
    boundary = 0;
    std::fill(history.begin(), history.end(), 0.0f);
  }

  // In the order of the record. Each of the pairs belongs to the even and to the odd samples:
  // the scaled input, and what the forward sections have made of it.
  std::array<float, 4> back_a{};
  std::array<float, 4> back_b{};
  std::array<std::array<float, 2>, 5> forward{};
  int frame_length;
  float boundary = 0;
  float inv_length;
  std::vector<float> history;
  std::vector<float> work;

 private:
  // Through the four forward sections, each of which looks back by two samples.
  float Forward(float x, size_t parity) {
    const auto old = [&](size_t section) { return forward[section][parity]; };
    std::array<float, 5> now;
    now[0] = x * kPhase90Scale;
    const float fed_back = std::fma(old(1), kPhase90Forward[0], -now[0]);
    now[1] = fed_back + old(0);
    for (size_t s = 2; s < 5; ++s) {
      const float c = kPhase90Forward[s - 1];
      now[s] = std::fma(-now[s - 1], c, std::fma(old(s), c, old(s - 1)));
    }
    for (size_t s = 0; s < 5; ++s) forward[s][parity] = now[s];
    return now[4];
  }

  float Primed(const float (&row)[5], size_t parity) const {
    float sum = row[0] * forward[kPhase90PrimingOrder[0]][parity];
    for (size_t column = 1; column < 5; ++column) {
      sum = std::fma(row[column], forward[kPhase90PrimingOrder[column]][parity], sum);
    }
    return sum;
  }

  void Prime() {
    back_a = {Primed(kPhase90PrimingInputs, 0), Primed(kPhase90PrimingInputs, 1),
              Primed(kPhase90PrimingOutputs, 0), Primed(kPhase90PrimingOutputs, 1)};
    back_b = {};
  }

  float BackwardFirst(float v) {
    const auto [u0, u1, y0, y1] = back_a;
    const float y = std::fma(y0, kPhase90Backward[0], std::fma(-v, kPhase90Backward[0], u0));
    back_a = {u1, v, y1, y};
    return y;
  }

  // All three sections. What comes out belongs to the sample before.
  float Backward(float v) {
    const float y0 = back_a[2];
    const float y = BackwardFirst(v);
    const auto [z0, z1, t0, t1] = back_b;
    const float z = std::fma(-y, kPhase90Backward[1], std::fma(z0, kPhase90Backward[1], y0));
    const float t = std::fma(-z, kPhase90Backward[2], std::fma(t0, kPhase90Backward[2], z0));
    back_b = {z1, z, t1, t};
    return t1 + t1;
  }

  // Fades the step from the frame before to this one across this one.
  void Join(float *samples) {
    const float d = boundary - work[0];
    boundary = work[static_cast<size_t>(frame_length)];
    for (int i = 0; i < frame_length; ++i) {
      const float r = static_cast<float>(frame_length - i) / static_cast<float>(frame_length);
      samples[i] = std::fma(r, d, work[static_cast<size_t>(i)]);
    }
  }
};

}  // namespace reference

#endif
