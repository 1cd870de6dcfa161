// Filters of blocks against closed forms, and values worked out by hand where the forms part ways.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

using Complex = std::complex<double>;
using Kernel = float *(*)(float *, const float *, const float *, float *);

constexpr int kLength = 32;

struct alignas(32) Record {
  float values[64] = {};
};

// ---- Closed forms ----

// The response to an impulse at time n, in exact arithmetic but for the last digits.
struct Response {
  const char *name;
  Kernel flex;
  Kernel strict;
  double (*at)(int n, const double *c);
  int every;  // outputs of the closed form to one of the filter's
  int zeros;  // zeros that the filter's inputs stand for in between
};

double FirstOrder(int n, const double *c) {
  return n == 0 ? c[0] : std::pow(c[2], n - 1) * (c[0] * c[2] + c[1]);
}

// The state pair as a complex number, which c3 + i c4 turns and shrinks.
double Rotation(int n, const double *c) {
  if (n == 0) return -2 * c[0];
  const Complex state = std::pow(Complex(c[3], c[4]), n - 1) * Complex(c[1], c[2]);
  return 2 * (state.real() + state.imag());
}

// By the eigenvalues of ((c3, coupling), (c4, c3)).
double Coupled(int n, const double *c, double coupling) {
  if (n == 0) return -2 * c[0];
  const Complex root = std::sqrt(Complex(coupling * c[4]));
  const Complex up = std::pow(c[3] + root, n - 1), down = std::pow(c[3] - root, n - 1);
  const Complex state = (up + down) / 2.0 * c[1] + coupling * (up - down) / (2.0 * root) * c[2];
  return 2 * state.real();
}

double Coupled2(int n, const double *c) { return Coupled(n, c, 1); }
double Coupled3(int n, const double *c) { return Coupled(n, c, 0.0625); }

// By the poles z of z^2 = 2 c3 z + c4.
double Direct(int n, const double *c) {
  const Complex root = std::sqrt(Complex(c[3] * c[3] + c[4]));
  const auto poles = [&](int m) {
    if (m < 0) return Complex(0);
    return (std::pow(c[3] + root, m + 1) - std::pow(c[3] - root, m + 1)) / (2.0 * root);
  };
  return (c[0] * poles(n) + c[1] * poles(n - 1) + c[2] * poles(n - 2)).real();
}

float *Wide(float *y, const float *x, const float *c, float *s) {
  return mvk_blk_Liir1xL_flex(y, x, c, reinterpret_cast<mvk_blk_iir1x_state *>(s));
}
float *WideStrict(float *y, const float *x, const float *c, float *s) {
  return MVK_blk_Liir1xL_strict(y, x, c, reinterpret_cast<mvk_blk_iir1x_state *>(s));
}

// The filters that work in place, behind the interface of those that don't.
template <float *(*kernel)(float *, const float *, float *)>
float *InPlace(float *y, const float *x, const float *c, float *s) {
  std::copy(x, x + kLength, y);
  return kernel(y, c, s);
}

const Response kResponses[] = {
    {"Liir1L", mvk_blk_Liir1L_flex, MVK_blk_Liir1L_strict, FirstOrder, 1, 0},
    {"Liir1xL", Wide, WideStrict, FirstOrder, 1, 0},
    {"Liir2df1L", mvk_blk_Liir2df1L_flex, MVK_blk_Liir2df1L_strict, Direct, 1, 0},
    {"Liir2ssv1L", mvk_blk_Liir2ssv1L_flex, MVK_blk_Liir2ssv1L_strict, Rotation, 1, 0},
    {"Liir2ssv1efL", mvk_blk_Liir2ssv1efL_flex, MVK_blk_Liir2ssv1efL_strict, Rotation, 1, 0},
    {"Liir2ssv2L", mvk_blk_Liir2ssv2L_flex, MVK_blk_Liir2ssv2L_strict, Coupled2, 1, 0},
    {"Liir2ssv2L_inplace", InPlace<mvk_blk_Liir2ssv2L_inplace_flex>,
     InPlace<MVK_blk_Liir2ssv2L_inplace_strict>, Coupled2, 1, 0},
    {"Liir2ssv3L_inplace", InPlace<mvk_blk_Liir2ssv3L_inplace_flex>,
     InPlace<MVK_blk_Liir2ssv3L_inplace_strict>, Coupled3, 1, 0},
    {"Liir2ssv1_dsmpL", mvk_blk_Liir2ssv1_dsmpL_flex, MVK_blk_Liir2ssv1_dsmpL_strict, Rotation, 2,
     0},
    {"Liir2ssv1_usmpL", mvk_blk_Liir2ssv1_usmpL_flex, MVK_blk_Liir2ssv1_usmpL_strict, Rotation, 1,
     1},
};

TEST(FilterValues, ImpulsesAreFollowedByTheClosedForms) {
  // Every form is stable with these.
  alignas(32) const float c[] = {0.7f, -0.4f, 0.3f, 0.5f, -0.3f};
  const double exact[] = {c[0], c[1], c[2], c[3], c[4]};
  for (const Response &row : kResponses) {
    for (Kernel kernel : {row.flex, row.strict}) {
      for (int impulse = 0; impulse < kLength * row.every; ++impulse) {
        SCOPED_TRACE(row.name);
        SCOPED_TRACE(impulse);
        Record x, y, s;
        x.values[impulse] = 1;
        kernel(y.values, x.values, c, s.values);
        for (int i = 0; i < kLength * (1 + row.zeros); ++i) {
          const int n = i * row.every - impulse * (1 + row.zeros);
          ASSERT_NEAR(y.values[i], n < 0 ? 0.0 : row.at(n, exact), 2e-6) << "output " << i;
        }
      }
    }
  }
}

TEST(FilterValues, FirsConvolveSmallWholeNumbers) {
  Random random(1);
  const auto whole = [&random] { return static_cast<float>(random.Below(2001)) - 1000; };
  for (uint32_t taps = 2; taps <= 40; ++taps) {
    SCOPED_TRACE(taps);
    Record x, c, y, s;
    for (float &sample : x.values) sample = whole();
    for (uint32_t k = 0; k < taps; ++k) c.values[k] = whole();
    for (size_t block = 0; block < 2; ++block) {
      const float *input = x.values + block * kBlockSize;
      if (taps == 2) mvk_blk_Lfir2L_flex(y.values, input, c.values, s.values);
      if (taps > 2) mvk_blk_LfirUL_flex(y.values, input, taps, c.values, s.values);
      for (size_t i = 0; i < kBlockSize; ++i) {
        double sum = 0;
        for (size_t k = 0; k < taps && k <= i + block * kBlockSize; ++k) {
          sum += double{c.values[k]} * double{*(input + i - k)};
        }
        ASSERT_EQ(y.values[i], sum) << "sample " << i << " of block " << block;
      }
    }
  }
}

// ---- Roundings ----

TEST(FilterValues, OutputsOfACountedFirRoundInTwoWaysByTurns) {
  // 1 + 2^-30 - 1: at even times 1 goes first, at odd times the small product is lost in a 1.
  alignas(32) const float c[] = {1, 0x1p-30f, -1};
  Record x, y;
  std::fill_n(x.values, kLength, 1.0f);
  alignas(32) float s[] = {1, 1};
  for (int block = 0; block < 2; ++block) {
    MVK_blk_LfirUL_strict(y.values, x.values, 3, c, s);
    for (int i = 0; i < kLength; ++i) EXPECT_EQ(y.values[i], i % 2 == 0 ? 0x1p-30f : 0.0f) << i;
  }
  // The filter of three taps keeps to one way, and loses it always.
  MVK_blk_Lfir3L_strict(y.values, x.values, c, s);
  for (int i = 0; i < kLength; ++i) EXPECT_EQ(y.values[i], 0.0f) << i;
}

TEST(FilterValues, CountedFirKeepsTheOldestInputFirst) {
  alignas(32) const float c[] = {0, 10, 1};
  const Record x;
  Record y;
  alignas(32) float oldest_first[] = {2, 3};
  alignas(32) float newest_first[] = {3, 2};
  mvk_blk_LfirUL_flex(y.values, x.values, 3, c, oldest_first);
  EXPECT_EQ(y.values[0], 32);
  EXPECT_EQ(y.values[1], 3);
  mvk_blk_Lfir3L_flex(y.values, x.values, c, newest_first);
  EXPECT_EQ(y.values[0], 32);
  EXPECT_EQ(y.values[1], 3);
}

TEST(FilterValues, ShiftOfTheFirstOrderLeavesTheRecursionAlone) {
  alignas(32) const float c[] = {1, 0, 0.5f};
  Record x, y, s;
  x.values[0] = 1;
  mvk_blk_Liir1_shlLU_flex(y.values, x.values, c, s.values, 4);
  EXPECT_EQ(y.values[0], 16);
  EXPECT_EQ(y.values[1], 8);
  EXPECT_EQ(y.values[31], 0x1p-27f);
  EXPECT_EQ(s.values[1], 0x1p-31f);
}

TEST(FilterValues, DoublingAndAddingRoundsOnce) {
  // 2 w + b where 2 w overflows.
  alignas(32) const float c[] = {1, 0, 0};
  Record x, b, y, s;
  std::fill_n(x.values, kLength, 0x1p+127f);
  std::fill_n(b.values, kLength, -0x1p+127f);
  mvk_blk_Liir1_shl_addLL_flex(y.values, x.values, b.values, c, s.values);
  for (int i = 0; i < kLength; ++i) EXPECT_EQ(y.values[i], 0x1p+127f) << i;
}

TEST(FilterValues, WideStateKeepsWhatANarrowOneLoses) {
  alignas(32) const float c[] = {1, 0, 1};
  Record x, y, s;
  std::fill_n(x.values, kLength, 0x1p-30f);
  x.values[0] = 1;
  mvk_blk_iir1x_state wide{0, 0};
  mvk_blk_Liir1xL_flex(y.values, x.values, c, &wide);
  EXPECT_EQ(wide.w, 1 + 31 * 0x1p-30);
  EXPECT_EQ(wide.s0, 0x1p-30f);
  EXPECT_EQ(y.values[31], 1);
  mvk_blk_Liir1L_flex(y.values, x.values, c, s.values);
  EXPECT_EQ(s.values[1], 1);
}

TEST(FilterValues, DirectFormHoldsHalfOfACoefficient) {
  alignas(32) const float c[] = {1, 0, 0, 0.25f, 0};
  Record x, y, s;
  x.values[0] = 1;
  mvk_blk_Liir2df1L_flex(y.values, x.values, c, s.values);
  EXPECT_EQ(y.values[1], 0.5f);
  EXPECT_EQ(y.values[2], 0.25f);
}

// ---- Forms that agree ----

struct Pair {
  Record y, s;
};

void ExpectSame(const Pair &a, const Pair &b, const char *name) {
  EXPECT_TRUE(SameSamples(a.y.values, b.y.values, {name, "result"}));
  EXPECT_TRUE(SameSamples(a.s.values, b.s.values, {name, "state"}));
}

class StateSpaceForms : public testing::Test {
 protected:
  StateSpaceForms() {
    Random random(2);
    for (float &sample : x_.values) sample = random.Unit();
  }

  Pair Start() const { return {Record(), {{0.3f, -0.2f}}}; }

  alignas(32) const float c_[5] = {0.7f, -0.4f, 0.3f, 0.6f, 0.25f};
  Record x_;
};

TEST_F(StateSpaceForms, ShiftByNothingIsTheDoubling) {
  Pair plain = Start(), shifted = Start();
  mvk_blk_Liir2ssv2L_flex(plain.y.values, x_.values, c_, plain.s.values);
  mvk_blk_Liir2ssv2_shlLU_flex(shifted.y.values, x_.values, c_, shifted.s.values, 0);
  ExpectSame(shifted, plain, "Liir2ssv2_shlLU");
}

TEST_F(StateSpaceForms, ThirdCarriesItsSecondNumberSixteenTimesLarger) {
  Pair second = Start(), third = Start();
  mvk_blk_Liir2ssv2L_flex(second.y.values, x_.values, c_, second.s.values);
  alignas(32) const float c[] = {c_[0], c_[1], 16 * c_[2], c_[3], 16 * c_[4]};
  std::copy(x_.values, x_.values + kLength, third.y.values);
  third.s.values[1] *= 16;
  mvk_blk_Liir2ssv3L_inplace_flex(third.y.values, c, third.s.values);
  third.s.values[1] /= 16;
  ExpectSame(third, second, "Liir2ssv3L_inplace");
}

TEST_F(StateSpaceForms, SamplingUpIsTheRecursionOfSamplingDownOverZeros) {
  // Every other output of sampling up is that of sampling down the same input with zeros between.
  Pair up = Start(), down = Start();
  mvk_blk_Liir2ssv1_usmpL_flex(up.y.values, x_.values, c_, up.s.values);
  Record stuffed;
  for (size_t i = 0; i < kBlockSize; ++i) stuffed.values[2 * i] = x_.values[i];
  mvk_blk_Liir2ssv1_dsmpL_flex(down.y.values, stuffed.values, c_, down.s.values);
  for (size_t i = 0; i < kBlockSize; ++i) {
    EXPECT_EQ(BitsOf(up.y.values[2 * i]), BitsOf(down.y.values[i])) << i;
  }
  EXPECT_TRUE(SameSamples(up.s.values, down.s.values, {"Liir2ssv1_usmpL", "state"}));
}

}  // namespace
}  // namespace testing_support
