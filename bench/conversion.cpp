// Conversion of one contiguous channel between the stored types and the engine's
// float, beside a memcpy that reads and writes as many bytes in all.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "bench/bench.h"
#include "orvane_resampler.h"

namespace {

// Short enough that the widest pair stays in the first cache.
constexpr unsigned frames = 1024;

struct stored_type {
  int32_t datatype;
  const char *name;
  std::size_t width;
};

constexpr stored_type engine_type = {DT_LONG, "long", 4};
constexpr stored_type stored_types[] = {
    {DT_FLOAT32, "float32", 4},         {DT_INT16, "int16", 2},     {DT_INT32, "int32", 4},
    {DT_INT32_IN_64, "int32-in-64", 8}, {DT_FLOAT64, "float64", 8},
};

using bytes = bench::placed<std::byte>;

void convert(const stored_type &from, const void *src, const stored_type &to, void *dst) {
  void *src_channel = const_cast<void *>(src);
  const orvane_stream_desc in = {1, 1, from.datatype, &src_channel};
  const orvane_stream_desc out = {1, 1, to.datatype, &dst};
  orvane_stream_convert(&in, &out, 0, 0, frames, 0);
}

bench::placed<float> floats() { return bench::sines(frames, 1, 64); }

bytes material(const stored_type &type) {
  bytes stored(frames * type.width);
  convert(engine_type, floats().data(), type, stored.data());
  return stored;
}

// The sines have come through, to within a step of the narrowest type.
bool holds_sines(const stored_type &type, const bytes &stored) {
  const bench::placed<float> want = floats();
  bench::placed<float> got(frames);
  convert(type, stored.data(), engine_type, got.data());
  for (unsigned i = 0; i < frames; ++i)
    if (!(std::abs(got[i] - want[i]) <= 0x1p-15f)) return false;
  return true;
}

void library(benchmark::State &state, const stored_type &from, const stored_type &to) {
  const bytes src = material(from);
  bytes dst(frames * to.width);
  bench::repeat(state, [&] {
    convert(from, src.data(), to, dst.data());
    return frames;
  });
  if (!holds_sines(to, dst)) return state.SkipWithError("the samples haven't come through");
}

void copy(benchmark::State &state, const stored_type &from, const stored_type &to) {
  const bytes src(frames * (from.width + to.width) / 2);
  bytes dst(src.size());
  bench::repeat(state, [&] {
    std::memcpy(dst.data(), src.data(), src.size());
    return frames;
  });
}

void enroll(const stored_type &from, const stored_type &to) {
  const std::string name = std::string("conversion/") + from.name + "-to-" + to.name + "/";
  bench::enroll(name + "library", [=](benchmark::State &state) { library(state, from, to); });
  bench::enroll(name + "memcpy", [=](benchmark::State &state) { copy(state, from, to); });
}

[[maybe_unused]] const bool enrolled = [] {
  enroll(engine_type, engine_type);
  for (const stored_type &type : stored_types) enroll(engine_type, type);
  for (const stored_type &type : stored_types) enroll(type, engine_type);
  return true;
}();

}  // namespace
