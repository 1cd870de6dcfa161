// The phase shifter, beside the chain of operations that its recursions make and beside FIR
// Hilbert transformers. Their phase is exact; what they give up is level near 0 Hz and near half
// the rate.
#include "phase90_hilbert.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <string>

#include "bench/kernels.h"
#include "mvk_kernels.h"

#ifdef MVK_BENCH_LIQUID
#include <liquid/liquid.h>
#endif

#if defined(__x86_64__)
#pragma GCC target("fma")
#endif

namespace {

constexpr unsigned lengths[] = {512, 1024, 2048};
constexpr std::size_t block = 32;

struct shifter {
  explicit shifter(unsigned length)
      : work(length + 1280), history(1280), memory(sizeof(Phase90Hilbert_state)) {
    init_Phase90Hilbert(&state, length, memory.data(), work.data(), history.data());
  }
  bench::placed<float> work, history;
  bench::placed<std::byte> memory;
  Phase90Hilbert_state *state;
};

void enroll_library(const std::string &name, unsigned n) {
  bench::enroll(name + "library", [=](benchmark::State &state) {
    shifter own(n);
    const bench::placed<float> x = bench::noise(n, 1);
    bench::placed<float> y(n);
    bench::repeat(state, [&] {
      // It works in place, where shifted samples would be shifted again until nothing but
      // denormal numbers were left of some. The copy counts.
      std::copy_n(x.data(), n, y.data());
      process_Phase90Hilbert(own.state, y.data());
      return n;
    });
  });
}

// ---- The chain ------------------------------------------------------------------

// What a section gives for a sample goes, through two fused operations, into what it gives for
// the next but one: as a factor into the first, as the addend into the second. Where the first
// awaits the input alone, as in the first backward section, there is but one. Sections don't
// wait for those behind them, nor even samples for odd ones, so that of a pass the slowest
// section counts, once for each pair of samples. The passes wait for each other: n samples
// forward, then backward 981 that the first section has to itself and n + 299 with two fused
// operations. Loads, stores, the other sections and the ramp would be free.
#ifdef KEEP_IN_REGISTER
struct chain {
  explicit chain(unsigned length) : n(length) {
    KEEP_IN_REGISTER(half);
    KEEP_IN_REGISTER(zero);
  }
  void operator()() {
    float y = passed_on;
    for (unsigned pair = 0; pair < n / 2; ++pair) y = second(first(y));
    for (unsigned pair = 0; pair < alone; ++pair) y = first(y);
    for (unsigned pair = 0; pair < (n + delay) / 2 - alone; ++pair) y = second(first(y));
    passed_on = y;
  }

 private:
  static constexpr unsigned delay = 1280, alone = (981 + 1) / 2;

  // 1 stays 1.
  float first(float y) const {
    y = __builtin_fmaf(y, half, half);
    KEEP_IN_REGISTER(y);
    return y;
  }
  float second(float y) const {
    y = __builtin_fmaf(half, zero, y);
    KEEP_IN_REGISTER(y);
    return y;
  }

  unsigned n;
  float half = 0.5f, zero = 0, passed_on = 1;
};
#endif

void enroll_chain([[maybe_unused]] const std::string &name, [[maybe_unused]] unsigned n) {
#ifdef KEEP_IN_REGISTER
  bench::enroll(name + "chain", [=](benchmark::State &state) {
    chain waits(n);
    bench::repeat(state, [&] {
      waits();
      return n;
    });
  });
#endif
}

// ---- FIR filters --------------------------------------------------------------

constexpr unsigned taps = 127;

// An ideal transformer's, under a Hamming window.
double tap(unsigned i) {
  const double distance = static_cast<double>(i) - taps / 2;
  if (i % 2 != 0) return 0;
  const double window = 0.54 + 0.46 * std::cos(2 * std::numbers::pi * distance / (taps - 1));
  return 2 / (std::numbers::pi * distance) * window;
}

// A filter of every `step`th of the taps.
struct filter {
  explicit filter(unsigned step) : count((taps + step - 1) / step), c(count), s(count) {
    for (unsigned i = 0; i < count; ++i) c[i] = static_cast<float>(tap(i * step));
    MVK_blk_LfirUL_setup(s.data(), count);
  }
  void operator()(float *y, const float *x) {
    MVK_blk_LfirUL_strict(y, x, count, c.data(), s.data());
  }
  unsigned count;
  bench::placed<float> c, s;
};

// Half of the taps are zeros, which the kernel doesn't know: it is given all taps, or even
// and odd samples one after the other.
void enroll_fir(const std::string &name, unsigned n) {
  bench::enroll(name + "fir:all-taps", [=](benchmark::State &state) {
    filter hilbert(1);
    const bench::placed<float> x = bench::noise(n, 1);
    bench::placed<float> y(n);
    bench::repeat(state, [&] {
      for (std::size_t i = 0; i < n; i += block) hilbert(y.data() + i, x.data() + i);
      return n;
    });
  });
  bench::enroll(name + "fir:two-streams", [=](benchmark::State &state) {
    filter hilbert[2] = {filter(2), filter(2)};
    const bench::placed<float> x = bench::noise(n, 1);
    bench::placed<float> y(n), in(block), out(block);
    bench::repeat(state, [&] {
      for (std::size_t i = 0; i < n; i += 2 * block)
        for (std::size_t parity = 0; parity < 2; ++parity) {
          for (std::size_t k = 0; k < block; ++k) in[k] = x[i + 2 * k + parity];
          hilbert[parity](out.data(), in.data());
          for (std::size_t k = 0; k < block; ++k) y[i + 2 * k + parity] = out[k];
        }
      return n;
    });
  });
}

// liquid-dsp's, whose next length is 129 taps; it takes a sample at a time and knows the zeros.
void enroll_liquid([[maybe_unused]] const std::string &name, [[maybe_unused]] unsigned n) {
#ifdef MVK_BENCH_LIQUID
  bench::enroll(name + "liquid", [=](benchmark::State &state) {
    const firhilbf hilbert = firhilbf_create(32, 60.0f);
    const bench::placed<float> x = bench::noise(n, 1);
    bench::placed<liquid_float_complex> y(n);
    bench::repeat(state, [&] {
      for (std::size_t i = 0; i < n; ++i) firhilbf_r2c_execute(hilbert, x[i], &y[i]);
      return n;
    });
    firhilbf_destroy(hilbert);
  });
#endif
}

[[maybe_unused]] const bool enrolled = [] {
  for (const unsigned n : lengths) {
    const std::string name = "phase90/" + std::to_string(n) + "/";
    enroll_library(name, n);
    enroll_chain(name, n);
    enroll_fir(name, n);
    enroll_liquid(name, n);
  }
  return true;
}();

}  // namespace
