// What the families of benchmarks share.
//
// A benchmark is named family/case/contender, where the case may itself have
// several parts:
//
//     resampler/up2/1ch/library
//     resampler/up2/1ch/soxr-LQ
//
// bench/report makes one table of each family, with a row for each case and the
// contenders beside each other; the library's own contender is called "library".
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <string>
#include <vector>

// Has a value in a vector register where it stands, whatever an optimiser would make of it.
#if defined(__x86_64__)
#define KEEP_IN_REGISTER(value) asm volatile("" : "+x"(value))
#elif defined(__aarch64__)
#define KEEP_IN_REGISTER(value) asm volatile("" : "+w"(value))
#endif

namespace bench {

template <class Run>
void enroll(const std::string &name, Run run) {
  benchmark::RegisterBenchmark(name.c_str(), run);
}

// Reports the time that one sample took of those that all iterations have made.
inline void report_samples(benchmark::State &state, std::size_t samples) {
  using benchmark::Counter;
  state.counters["per_sample"] =
      Counter(static_cast<double>(samples), Counter::kIsRate | Counter::kInvert);
}

// Calls step() over and over, which returns how many samples it has made, and
// reports the time that one sample took. All memory counts as read and written by
// step, so that nothing of it is optimised away.
template <class Step>
void repeat(benchmark::State &state, Step step) {
  std::size_t samples = 0;
  for (auto _ : state) {
    samples += step();
    benchmark::ClobberMemory();
  }
  report_samples(state, samples);
}

// States how many of an operation, which is a benchmark "floor/" + operation, a sample
// can't do without. What all that are stated for a contender take together, the report
// shows as that contender's time.
inline void count(benchmark::State &state, const std::string &contender,
                  const std::string &operation, double per_sample) {
  state.counters[contender + ":" + operation] = per_sample;
}

// ---- Memory -------------------------------------------------------------------

// n values of zero at a random cache line of a page. How the low bits of addresses
// fall together decides part of a short block's time; a new place for every
// repetition keeps one such chance out of the median.
template <class T>
class placed {
 public:
  explicit placed(std::size_t n) : storage_(n * sizeof(T) + page), size_(n) {
    static std::minstd_rand random;
    const std::size_t to_line = -reinterpret_cast<std::uintptr_t>(storage_.data()) % line;
    const std::size_t chosen = random() % (page / line - 1) * line;
    data_ = reinterpret_cast<T *>(storage_.data() + to_line + chosen);
  }
  placed(placed &&) = default;

  T *data() { return data_; }
  const T *data() const { return data_; }
  std::size_t size() const { return size_; }
  T &operator[](std::size_t i) { return data_[i]; }
  const T &operator[](std::size_t i) const { return data_[i]; }

 private:
  static constexpr std::size_t page = 4096, line = 64;

  std::vector<std::byte> storage_;
  std::size_t size_;
  T *data_;
};

// ---- Material -----------------------------------------------------------------

// Each channel has an amplitude of its own, well apart from its neighbour's, so that
// a mistaken one shows.
inline double amplitude(unsigned channel) { return 0.9 * std::pow(0.93, channel); }

// Interleaved sines, `period` frames long.
inline placed<float> sines(std::size_t frames, unsigned channels, unsigned period) {
  placed<float> x(frames * channels);
  for (std::size_t i = 0; i < frames; ++i) {
    const double turn = static_cast<double>(i % period) / period;
    const double sine = std::sin(2 * std::numbers::pi * turn);
    for (unsigned c = 0; c < channels; ++c)
      x[i * channels + c] = static_cast<float>(amplitude(c) * sine);
  }
  return x;
}

}  // namespace bench
