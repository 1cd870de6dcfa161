// The component's own path, a host's stereo floats, beside the engine called
// directly: the difference is the way in and out of the engine's work buffer.
#include <cstdint>
#include <cstring>
#include <string>

#include "acli.h"
#include "bench/bench.h"
#include "bench/rates.h"

namespace {

using bench::rate_change;

constexpr unsigned channels = 2;
constexpr std::size_t high_frames = 256;

bench::placed<float> block_in(rate_change change) {
  return bench::sines(change.in_frames(high_frames), channels, 32);
}
bench::placed<float> block_out(rate_change change) {
  return bench::placed<float>(change.out_frames(high_frames) * channels);
}

// A component's instance with its host's buffers.
class host {
 public:
  explicit host(rate_change change) : change_(change), in_(block_in(change)) {
    const uint32_t direction = change.up ? ACLI_DIR_UP : ACLI_DIR_DOWN;
    acli_buffer config{};
    config.params = &direction;
    ACLI.create(nullptr, &config, &instance_);

    source_.size = static_cast<uint32_t>(in_.size() * sizeof(float));
    source_.data = in_.data();
    source_.params = &change_.factor;
    source_.audio_format = ACLI_FORMAT_FLOAT;
    source_.rate = 48000;
    source_.channels = channels;
    source_.bits_per_sample = 32;
  }
  host(const host &) = delete;
  ~host() { ACLI.destroy(instance_); }

  bool process(bench::placed<float> &out) {
    const uint32_t bytes = static_cast<uint32_t>(out.size() * sizeof(float));
    acli_buffer result{};
    result.size = bytes;
    result.data = out.data();
    return ACLI.process(instance_, &source_, &result) == ACLI_OK && result.size == bytes;
  }

 private:
  rate_change change_;
  bench::placed<float> in_;
  acli_instance *instance_ = nullptr;
  acli_buffer source_{};
};

// The component gives the engine's own samples.
bool agree(rate_change change) {
  host host(change);
  bench::engine engine(change, channels);
  const bench::placed<float> in = block_in(change);
  bench::placed<float> got = block_out(change), want = block_out(change);
  for (int block = 0; block < 4; ++block) {
    engine.push(in.data(), 0, want.data(), 0);
    if (!host.process(got)) return false;
    if (std::memcmp(got.data(), want.data(), got.size() * sizeof(float)) != 0) return false;
  }
  return true;
}

void process(benchmark::State &state, rate_change change) {
  if (!agree(change)) return state.SkipWithError("the component and the engine differ");
  host host(change);
  bench::placed<float> out = block_out(change);
  bench::repeat(state, [&] {
    host.process(out);
    return out.size();
  });
}

void direct(benchmark::State &state, rate_change change) {
  const bench::placed<float> in = block_in(change);
  bench::placed<float> out = block_out(change);
  bench::engine engine(change, channels);
  bench::repeat(state, [&] {
    engine.push(in.data(), 0, out.data(), 0);
    return out.size();
  });
}

[[maybe_unused]] const bool enrolled = [] {
  for (const rate_change change : bench::rate_changes) {
    const std::string name = "component/" + change.name() + "/2ch/";
    bench::enroll(name + "library", [=](benchmark::State &state) { process(state, change); });
    bench::enroll(name + "engine", [=](benchmark::State &state) { direct(state, change); });
  }
  return true;
}();

}  // namespace
