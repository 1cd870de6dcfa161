// The rotations before and after the transform of a DCT-IV.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_dct.h"
#include "mvk_fft.h"
#include "reference/dct_exact.h"
#include "reference/dct_rotations.h"
#include "reference/kernel_arithmetic.h"

namespace testing_support {
namespace {

using reference::EitherRounding;

constexpr uint32_t kMostPairs = 37;

struct Rotation {
  const char *name;
  int shift;
  void (*run)(float *out, const float *in, const float *c, const float *s, uint32_t n);
};

const Rotation kPre = {"premodulation", 0, mvk_dct4_premodulation};

template <int kShift>
void PostByShift(float *out, const float *in, const float *c, const float *s, uint32_t n) {
  mvk_dct4_postmodulation_shl(out, in, c, s, kShift, n);
}

#define BY_SHIFT(shift) \
  { "postmodulation_shl by " #shift, shift, PostByShift<shift> }
// Factors are made of the bits of the shift alone: 128 is an infinity, -127 and 129 are zeros, and
// 1000 and -1000 are whatever comes of them.
const Rotation kPost[] = {
    {"postmodulation_shl0", 0, mvk_dct4_postmodulation_shl0},
    {"postmodulation_shl1", 1, mvk_dct4_postmodulation_shl1},
    {"postmodulation_shl2", 2, mvk_dct4_postmodulation_shl2},
    BY_SHIFT(0),
    BY_SHIFT(1),
    BY_SHIFT(2),
    BY_SHIFT(3),
    BY_SHIFT(-1),
    BY_SHIFT(-20),
    BY_SHIFT(60),
    BY_SHIFT(100),
    BY_SHIFT(127),
    BY_SHIFT(-126),
    BY_SHIFT(128),
    BY_SHIFT(-127),
    BY_SHIFT(129),
    BY_SHIFT(1000),
    BY_SHIFT(-1000),
};
#undef BY_SHIFT

testing::AssertionResult IsOneOf(std::span<const float> got,
                                 const std::vector<EitherRounding> &want, const KernelCall &call) {
  if (got.size() != want.size()) return testing::AssertionFailure() << got.size() << " values";
  for (size_t i = 0; i < want.size(); ++i) {
    if (!SameNumber(got[i], want[i][0]) && !SameNumber(got[i], want[i][1])) {
      return Differs(i, got[i], want[i][0], call);
    }
  }
  return testing::AssertionSuccess();
}

std::vector<EitherRounding> Want(const Rotation &rotation, const std::vector<float> &in,
                                 const std::vector<float> &c, const std::vector<float> &s) {
  if (rotation.run == kPre.run) return reference::PreRotated(in, c, s);
  const float gain = reference::PowerOfTwo(static_cast<uint32_t>(rotation.shift));
  return reference::PostRotated(in, c, s, gain);
}

void ExpectRotated(const Rotation &rotation, Random &random) {
  for (const Material &material : kMaterials) {
    for (uint32_t n = 0; n <= kMostPairs; ++n) {
      for (const std::array<int, 4> &offsets :
           {std::array{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {3, 2, 5, 7}}) {
        const KernelCall call = {rotation.name, "", n, offsets, material.name};
        GuardedFloats out(2 * n, offsets[0]), in(Samples(material, random, 2 * n), offsets[1]);
        GuardedFloats c(Samples(material, random, n), offsets[2]);
        GuardedFloats s(Samples(material, random, n), offsets[3]);
        rotation.run(out.data(), in.data(), c.data(), s.data(), n);
        EXPECT_TRUE(IsOneOf(out.values(), Want(rotation, in.given(), c.given(), s.given()), call));
        EXPECT_TRUE(out.GuardsStand(call)) << "result";
        EXPECT_TRUE(in.Untouched(call)) << "input";
        EXPECT_TRUE(c.Untouched(call)) << "c";
        EXPECT_TRUE(s.Untouched(call)) << "s";
      }
    }
  }
}

TEST(DctRotation, PreTurnsEvenSamplesWithOddOnesFromTheEnd) {
  Random random(31);
  ExpectRotated(kPre, random);
}

TEST(DctRotation, PostTurnsAndShifts) {
  Random random(32);
  for (const Rotation &rotation : kPost) ExpectRotated(rotation, random);
}

std::vector<float> Result(const Rotation &rotation, const std::vector<float> &in,
                          const std::vector<float> &c, const std::vector<float> &s) {
  std::vector<float> out(in.size(), kNaN);
  rotation.run(out.data(), in.data(), c.data(), s.data(), static_cast<uint32_t>(c.size()));
  return out;
}

std::vector<float> Impulse(size_t count, size_t place) {
  std::vector<float> impulse(count, 0.0f);
  impulse[place] = 1;
  return impulse;
}

TEST(DctRotation, EightPairsAreAllTurned) {
  Random random(33);
  const std::vector<float> c = Samples(kUniform, random, 8), s = Samples(kUniform, random, 8);
  for (const Rotation &rotation : std::span(kPost).first(3)) {
    const float gain = static_cast<float>(1 << rotation.shift);
    const std::vector<float> out = Result(rotation, Impulse(16, 0), c, s);
    for (size_t i = 0; i < 16; ++i) {
      const float want = i == 0 ? gain * s[0] : i == 15 ? gain * c[0] : 0;
      EXPECT_EQ(out[i], want) << rotation.name << " " << i;
    }
  }
}

TEST(DctRotation, OfSixPairsTheFirstKeepsItsAngle) {
  Random random(34);
  const std::vector<float> c = Samples(kUniform, random, 6), s = Samples(kUniform, random, 6);
  for (const Rotation &rotation : std::span(kPost).first(3)) {
    const float gain = static_cast<float>(1 << rotation.shift);
    const std::vector<float> even = Result(rotation, Impulse(12, 0), c, s);
    const std::vector<float> odd = Result(rotation, Impulse(12, 1), c, s);
    for (size_t i = 0; i < 12; ++i) {
      EXPECT_EQ(even[i], i == 0 ? gain : 0) << rotation.name << " " << i;
      EXPECT_EQ(odd[i], i == 11 ? -gain : 0) << rotation.name << " " << i;
    }
  }
}

TEST(DctRotation, TheFirstOfSixPairsIgnoresItsTwiddles) {
  std::vector<float> twiddles(6, 1.0f), in(12, 1.0f);
  twiddles[0] = kNaN;
  in[0] = 3;
  in[1] = 5;
  for (const Rotation &rotation : kPost) {
    const float gain = reference::PowerOfTwo(static_cast<uint32_t>(rotation.shift));
    const std::vector<float> out = Result(rotation, in, twiddles, twiddles);
    EXPECT_EQ(out[0], gain * 3) << rotation.name;
    EXPECT_EQ(out[11], -gain * 5) << rotation.name;
  }
  const std::vector<float> out = Result(kPre, in, twiddles, twiddles);
  EXPECT_TRUE(std::isnan(out[0]));
  EXPECT_TRUE(std::isnan(out[1]));
}

TEST(DctRotation, ShiftsAreTheFixedFormsTimesPowersOfTwo) {
  Random random(35);
  for (const uint32_t n : {8u, 6u}) {
    const std::vector<float> in = Samples(kUniform, random, 2 * n);
    const std::vector<float> c = Samples(kUniform, random, n), s = Samples(kUniform, random, n);
    const std::vector<float> plain = Result(kPost[0], in, c, s);
    for (const Rotation &rotation : std::span(kPost).first(9)) {
      std::vector<float> want = plain;
      for (float &value : want) value = std::ldexp(value, rotation.shift);
      EXPECT_TRUE(
          SameSamples(Result(rotation, in, c, s), want, {rotation.name, "", n, {}, "shifted"}));
    }
  }
}

// sum over m of x[m] cos(pi (2 m + 1) (2 k + 1) / (4 N))
reference::WideReals ExactDct4(const std::vector<float> &x) {
  const size_t n = x.size();
  const reference::WideReals cosines = reference::Cosines<reference::Wide>(8 * n);
  reference::WideReals result(n);
  for (size_t k = 0; k < n; ++k) {
    for (size_t m = 0; m < n; ++m) result[k] += x[m] * cosines[(2 * m + 1) * (2 * k + 1) % (8 * n)];
  }
  return result;
}

// Before the transform an angle of pi (4 i + 1) / (8 n), halved, and behind it one of pi i / (2 n).
TEST(DctRotation, MakeATypeFourOutOfAFourierTransform) {
  const struct {
    uint32_t n;
    const float *half_sine, *half_cosine, *sine, *cosine;
  } kTables[] = {
#define TABLES(n)                                                         \
  {n, mvk_dct_twiddle_table16_L##n##_1, mvk_dct_twiddle_table16_L##n##_2, \
   mvk_dct_twiddle_table16_L##n, mvk_dct_twiddle_table16_rev_L##n}
      TABLES(2),  TABLES(4),  TABLES(8),  TABLES(12),  TABLES(15),  TABLES(16),  TABLES(30),
      TABLES(45), TABLES(64), TABLES(90), TABLES(120), TABLES(240), TABLES(480), TABLES(512),
#undef TABLES
  };
  Random random(36);
  for (const auto &[n, half_sine, half_cosine, sine, cosine] : kTables) {
    std::vector<float> x = Samples(kUniform, random, 2 * size_t{n});
    const reference::WideReals want = ExactDct4(x);
    std::vector<float> turned(2 * size_t{n}), transformed(2 * size_t{n});
    mvk_dct4_premodulation(turned.data(), x.data(), half_sine, half_cosine, n);
    MVK_r4_cplx_fwd_unscaled(n)(transformed.data(), turned.data(), n);
    mvk_dct4_postmodulation_shl1(x.data(), transformed.data(), sine, cosine, n);
    EXPECT_LT(reference::ErrorOf(x, want).largest, 5e-6) << n;
  }
}

}  // namespace
}  // namespace testing_support
