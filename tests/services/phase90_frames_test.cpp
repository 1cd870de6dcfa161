// Streams of frames, every sample and every field to the bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "kernels/edge_pages.h"
#include "services/phase90_pair.h"

namespace testing_support {

static void PrintTo(const Material &material, std::ostream *out) { *out << material.name; }

namespace {

constexpr Material kDenormal = {"denormal",
                                [](Random &random) { return std::ldexp(random.Unit(), -126); }};
// Normal numbers that the constants make denormal, and back.
constexpr Material kSmall = {"small",
                             [](Random &random) { return std::ldexp(random.Unit(), -123); }};
constexpr Material kImpulses = {
    "impulses", [](Random &random) { return random.Below(300) == 0 ? random.Unit() : 0.0f; }};
constexpr Material kNegativeZeros = {"negativeZeros", [](Random &) { return -0.0f; }};
constexpr Material kSteady = {"steady", [](Random &) { return 0.75f; }};
// The sections overflow, and hold infinities and then NaNs.
constexpr Material kHuge = {
    "huge", [](Random &random) { return random.Unit() < 0 ? -kLargest : kLargest; }};
constexpr Material kStreams[] = {kUniform, kWide,     kClose,         kFew,    kMixed, kDenormal,
                                 kSmall,   kImpulses, kNegativeZeros, kSteady, kHuge};

std::vector<float> Frame(const Material &material, Random &random, int length) {
  return Samples(material, random, static_cast<size_t>(length));
}

class Phase90Stream : public testing::TestWithParam<std::tuple<int, Material>> {};

TEST_P(Phase90Stream, IsShiftedAlike) {
  const auto &[length, material] = GetParam();
  Random random(static_cast<uint64_t>(length));
  Phase90Pair shifter(length);
  for (int frame = 0; frame < 14; ++frame) {
    // What is no number stays for good; so it begins anew.
    if (frame == 8) shifter.Reset();
    ASSERT_TRUE(shifter.Process(Frame(material, random, length))) << "frame " << frame;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Phase90Stream,
                         testing::Combine(testing::ValuesIn(reference::kPhase90Lengths),
                                          testing::ValuesIn(kStreams)),
                         [](const auto &each) {
                           return std::to_string(std::get<0>(each.param)) +
                                  std::get<1>(each.param).name;
                         });

class Phase90Frames : public testing::TestWithParam<int> {
 protected:
  std::vector<float> Noise() { return Frame(kUniform, random_, length_); }

  const int length_ = GetParam();
  Random random_{static_cast<uint64_t>(length_)};
};

INSTANTIATE_TEST_SUITE_P(All, Phase90Frames, testing::ValuesIn(reference::kPhase90Lengths),
                         testing::PrintToStringParamName());

TEST_P(Phase90Frames, ToneIsShiftedAlike) {
  Phase90Pair shifter(length_);
  int n = 0;
  for (int frame = 0; frame < 30; ++frame) {
    std::vector<float> samples;
    for (; n < (frame + 1) * length_; ++n) {
      samples.push_back(static_cast<float>(std::sin(0.13 * n) + 0.3 * std::sin(2.4 * n)));
    }
    ASSERT_TRUE(shifter.Process(samples)) << "frame " << frame;
  }
}

TEST_P(Phase90Frames, SpecialAmidNoiseIsShiftedAlike) {
  for (const float special : kKernelSpecials) {
    Phase90Pair shifter(length_);
    for (int frame = 0; frame < 3; ++frame) {
      std::vector<float> samples = Noise();
      if (frame == 1) samples[random_.Below(static_cast<unsigned>(length_))] = special;
      ASSERT_TRUE(shifter.Process(samples)) << special << ", frame " << frame;
    }
  }
}

// The same numbers after silence that lets the sections decay, down to the denormals.
TEST_P(Phase90Frames, DecayIsFollowedToItsEnd) {
  Phase90Pair shifter(length_);
  std::vector<float> samples = Noise();
  for (int frame = 0; frame < 65536 / length_; ++frame) {
    ASSERT_TRUE(shifter.Process(samples)) << "frame " << frame;
    std::fill(samples.begin(), samples.end(), 0.0f);
  }
}

TEST_P(Phase90Frames, LieAtAnyFloat) {
  Phase90Pair aligned(length_);
  for (int offset = 0; offset < 16; ++offset) {
    ASSERT_TRUE(aligned.Process(Noise(), offset)) << offset;
    const Phase90Place places[] = {
        {2 * offset % 8, 0, 0}, {0, offset, 0}, {0, 0, offset}, {2, offset, (offset + 5) % 16}};
    for (const Phase90Place &place : places) {
      Phase90Pair shifter(length_, place);
      for (int frame = 0; frame < 2; ++frame) {
        ASSERT_TRUE(shifter.Process(Noise(), (frame + offset) % 16))
            << place.state << ", " << place.work << ", " << place.history;
      }
    }
  }
}

// Up against memory that nobody may touch.
TEST_P(Phase90Frames, EdgesAreKept) {
  const auto length = static_cast<size_t>(length_);
  for (const Edge edge : {Edge::kBefore, Edge::kBehind}) {
    const std::vector<float> spoilt(length + reference::kPhase90Delay, kNaN);
    const std::span<const float> nans = spoilt;
    EdgePages work_pages(spoilt.size()), history_pages(reference::kPhase90Delay);
    EdgePages frame_pages(length);
    float *work = work_pages.Place(spoilt, edge);
    float *history = history_pages.Place(nans.first(reference::kPhase90Delay), edge);
    GuardedFloats state(kPhase90StateFloats, 0);
    Phase90Hilbert_state *shifter = nullptr;
    init_Phase90Hilbert(&shifter, static_cast<unsigned>(length_), state.data(), work, history);
    reference::Phase90 expected(length_);
    for (size_t frame = 0; frame < 3; ++frame) {
      std::vector<float> wanted = Noise();
      float *samples = frame_pages.Place(wanted, edge);
      process_Phase90Hilbert(shifter, samples);
      expected.Process(wanted.data());
      ASSERT_TRUE(SameSamples({samples, length}, wanted, {"phase90", "edge", frame}));
    }
    reset_Phase90Hilbert(shifter);
  }
}

// The work buffer and the backward sections carry nothing from one frame to the next.
TEST_P(Phase90Frames, DontDependOnWhatIsRebuilt) {
  Phase90Pair shifter(length_);
  for (int frame = 0; frame < 4; ++frame) {
    ASSERT_TRUE(shifter.Process(Noise())) << "frame " << frame;
    shifter.library.work().Refill();  // with NaNs
    for (float &value : shifter.library.handle()->back_a) value = kNaN;
    for (float &value : shifter.library.handle()->back_b) value = kNaN;
  }
}

TEST_P(Phase90Frames, OfTwoStatesDontMix) {
  Phase90Pair first(length_), second(length_);
  for (int frame = 0; frame < 6; ++frame) {
    ASSERT_TRUE(first.Process(Noise())) << "frame " << frame;
    if (frame % 3 != 0) {
      ASSERT_TRUE(second.Process(Noise())) << "frame " << frame;
    }
  }
}

// The step from what the last frame ended on is faded out in steps that are exact.
TEST_P(Phase90Frames, AreJoinedByARamp) {
  const auto length = static_cast<size_t>(length_);
  LibraryPhase90 shifter(length_);
  float boundary = 0;
  for (int frame = 0; frame < 6; ++frame) {
    std::vector<float> samples = Noise();
    process_Phase90Hilbert(shifter.handle(), samples.data());
    const std::span<const float> work = shifter.work().values();
    const float step = boundary - work[0];
    for (size_t i = 0; i < length; ++i) {
      const double left = 1 - static_cast<double>(i) / length_;
      const auto ramp = static_cast<float>(left);
      ASSERT_EQ(ramp, left);
      ASSERT_EQ(BitsOf(samples[i]), BitsOf(std::fma(ramp, step, work[i])))
          << "frame " << frame << ", sample " << i;
    }
    boundary = shifter.handle()->boundary;
    EXPECT_EQ(BitsOf(boundary), BitsOf(work[length]));
    EXPECT_TRUE(frame < 2 || step != 0.0f);
  }
}

// A backward pass that begins elsewhere ends elsewhere.
TEST(Phase90Lengths, ArePartOfTheBehaviour) {
  constexpr size_t kSamples = 8192;
  Random random(5);
  const std::vector<float> noise = UnitNoise(random, kSamples);
  std::vector<std::vector<float>> results;
  for (const int length : reference::kPhase90Lengths) {
    LibraryPhase90 shifter(length);
    results.push_back(noise);
    for (size_t i = 0; i < kSamples; i += static_cast<size_t>(length)) {
      process_Phase90Hilbert(shifter.handle(), &results.back()[i]);
    }
  }
  for (size_t i = 1; i < results.size(); ++i) {
    EXPECT_NE(results[i], results[0]);
    double farthest = 0;
    for (size_t n = 0; n < kSamples; ++n) {
      farthest = std::max<double>(farthest, std::fabs(results[i][n] - results[0][n]));
    }
    EXPECT_LT(farthest, 0.05) << reference::kPhase90Lengths[i];
  }
}

}  // namespace
}  // namespace testing_support
