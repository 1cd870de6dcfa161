// Filters and followers of blocks that carry a result on from sample to sample, beside
// the chain of operations that this makes: of all ways from a state round to itself,
// the one that takes longest for the samples it passes. What comes from the input
// alone is ready in time and doesn't count.
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "bench/kernels.h"
#include "mvk_kernels.h"

namespace {

constexpr std::size_t block_size = 32, blocks = 1024;

using material = bench::placed<float>;

material noise() { return bench::noise((blocks + 1) * block_size, 1); }
material magnitudes() {
  material x = noise();
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = std::abs(x[i]);
  return x;
}

// How many of an operation a sample of output waits for, one after the other.
struct step {
  const char *operation;
  double count;
};
using chain = std::vector<step>;

void count(benchmark::State &state, const chain &steps) {
  for (const step &s : steps)
    bench::count(state, "chain", std::string("latency/") + s.operation, s.count);
}

// Enrolls f, where call(f, y, x) is a call for the next block of x that makes `made`
// samples; it carries the state along.
template <class F, class Call>
void enroll(const std::string &kernel, const chain &steps, F *f, Call call,
            std::size_t made = block_size, material (*input)() = noise) {
  bench::enroll("recursion/" + kernel + "/library", [=](benchmark::State &state) {
    const material x = input();
    material y(made);
    F *const called = bench::opaque(f);
    auto own_call = call;
    bench::repeat(state, [&] {
      for (std::size_t b = 0; b < blocks; ++b)
        own_call(called, y.data(), x.data() + b * block_size);
      return blocks * made;
    });
    count(state, steps);
  });
}

// ---- First order, and the direct form -----------------------------------------

constexpr float direct[5] = {0.5f, 0.25f, 0.5f, 0.4f, -0.5f};

void enroll_iir() {
  const auto filter = [s = std::array<float, 4>{}](auto f, float *y, const float *x) mutable {
    f(y, x, direct, s.data());
  };

  // w to w: c2 * w, then two fused.
  const chain first_order = {{"mul", 1}, {"fma", 2}};
  enroll("blk_Liir1L", first_order, mvk_blk_Liir1L_flex, filter);
  enroll("blk_Liir1_shlLU", first_order, mvk_blk_Liir1_shlLU_flex,
         [s = std::array<float, 2>{}](auto f, float *y, const float *x) mutable {
           f(y, x, direct, s.data(), 1);
         });
  enroll("blk_Liir1_shl_addLL", first_order, mvk_blk_Liir1_shl_addLL_flex,
         [s = std::array<float, 2>{}](auto f, float *y, const float *x) mutable {
           f(y, x, x, direct, s.data());
         });

  // w to w: two fused, as w[n-1] is a factor of the inner one.
  enroll("blk_Liir1xL", {{"fma64", 2}}, mvk_blk_Liir1xL_flex,
         [s = mvk_blk_iir1x_state{}](auto f, float *y, const float *x) mutable {
           f(y, x, direct, &s);
         });

  // y[n-2] to y[n]: c4 * y, then four fused, for two samples. y[n-1] to y[n] is two
  // fused for one.
  enroll("blk_Liir2df1L", {{"mul", 0.5}, {"fma", 2}}, mvk_blk_Liir2df1L_flex, filter);
}

// ---- State space --------------------------------------------------------------

// Both states come round by way of the other: s1 to s0 by c4 * s1 and two fused, and
// s0 to s1 alike, for two samples. Each by itself is at most two fused for one.
const chain rotation = {{"mul", 1}, {"fma", 2}};

constexpr float turn[5] = {-0.5f, 0.1f, 0.2f, 0.8f, 0.3f};
constexpr float feed[5] = {-0.5f, 0.1f, 0.2f, 0.8f, -0.3f};

void enroll_state_space() {
  const auto filter = [](const float *c) {
    return [c, s = std::array<float, 2>{}](auto f, float *y, const float *x) mutable {
      f(y, x, c, s.data());
    };
  };

  enroll("blk_Liir2ssv1L", rotation, mvk_blk_Liir2ssv1L_flex, filter(turn));

  // s0 to s1: c4 * s0 and two fused; s1 to s0: two fused; for two samples.
  const chain fed = {{"mul", 0.5}, {"fma", 2}};
  enroll("blk_Liir2ssv2L", fed, mvk_blk_Liir2ssv2L_flex, filter(feed));
  enroll("blk_Liir2ssv2_shlLU", fed, mvk_blk_Liir2ssv2_shlLU_flex,
         [s = std::array<float, 2>{}](auto f, float *y, const float *x) mutable {
           f(y, x, feed, s.data(), 1);
         });

  // Two updates a sample of output, as in v1.
  enroll("blk_Liir2ssv1_dsmpL", {{"mul", 2}, {"fma", 4}}, mvk_blk_Liir2ssv1_dsmpL_flex,
         filter(turn));
  // One update a sample of output, of which every other lacks the input and one fused.
  enroll("blk_Liir2ssv1_usmpL", {{"mul", 1}, {"fma", 1.5}}, mvk_blk_Liir2ssv1_usmpL_flex,
         filter(turn), 2 * block_size);
}

// Filters in place of their own results again and again have to keep the level: the
// coefficients pass the input on.
constexpr float pass[5] = {-0.5f, 0, 0, 0.8f, -4.8f};
constexpr unsigned channels = 8;

// v3 in place over `channels` blocks, by call(y, s).
template <class Call>
void measure_channels(benchmark::State &state, Call call) {
  material memory = bench::noise(channels * block_size, 1);
  float states[channels][2] = {}, *y[channels], *s[channels];
  for (unsigned c = 0; c < channels; ++c) {
    y[c] = memory.data() + c * block_size;
    s[c] = states[c];
  }
  bench::repeat(state, [&] {
    call(y, s);
    return channels * block_size;
  });
}

void enroll_in_place() {
  const auto single = bench::opaque(mvk_blk_Liir2ssv3L_inplace_flex);
  const auto all = bench::opaque(MVK_blk_Liir2ssv3aLU_inplace);

  // s1 to s0: s1 * 0.0625 and two fused; s0 to s1: c4 * s0 and two fused.
  enroll("blk_Liir2ssv3L_inplace", rotation, mvk_blk_Liir2ssv3L_inplace_flex,
         [s = std::array<float, 2>{}](auto f, float *y, const float *) mutable {
           f(y, pass, s.data());
         });

  const std::string together = "recursion/blk_Liir2ssv3aLU_inplace/8ch/";
  bench::enroll(together + "library", [=](benchmark::State &state) {
    measure_channels(state, [=](float **y, float **s) { all(y, pass, s, channels); });
    // All channels at once take the one chain.
    count(state, {{"mul", 1.0 / channels}, {"fma", 2.0 / channels}});
  });
  bench::enroll(together + "single-calls", [=](benchmark::State &state) {
    measure_channels(state, [=](float **y, float **s) {
      for (unsigned c = 0; c < channels; ++c) single(y[c], pass, s[c]);
    });
  });
}

// ---- Followers ------------------------------------------------------------------

constexpr float rates[3] = {0.01f, 0.1f, 0.5f};
constexpr float limits[2] = {0.8f, -0.8f};

void enroll_followers() {
  const auto envelope = [e = 0.0](auto f, float *y, const float *x) mutable { f(y, x, rates, &e); };

  // e to e: e * (1 - c1), one fused and the greater; the floor is one more.
  enroll("blk_Lattack_decay_iir1L", {{"mul64", 1}, {"fma64", 1}, {"max64", 1}},
         mvk_blk_Lattack_decay_iir1L_flex, envelope, block_size, magnitudes);
  enroll("blk_Lattack_decay_peak_iir1L", {{"mul64", 1}, {"fma64", 1}, {"max64", 2}},
         mvk_blk_Lattack_decay_peak_iir1L_flex, envelope, block_size, magnitudes);

  // s to s: the sum, the greater and the lesser.
  enroll("blk_LintegrateL", {{"add", 1}, {"max", 2}}, mvk_blk_LintegrateL_flex,
         [s = 0.0f](auto f, float *y, const float *x) mutable { f(y, x, limits, &s); });

  // r to r: r * x, the lesser, one fused, e + e, and the product with r.
  enroll(
      "blk_LnrrecipLU", {{"mul", 2}, {"max", 1}, {"fma", 1}, {"add", 1}}, mvk_blk_LnrrecipLU_flex,
      [r = 1.0f](auto f, float *y, const float *x) mutable { f(y, x, 0, &r); }, block_size,
      magnitudes);
}

[[maybe_unused]] const bool enrolled = [] {
  enroll_iir();
  enroll_state_space();
  enroll_in_place();
  enroll_followers();
  return true;
}();

}  // namespace
