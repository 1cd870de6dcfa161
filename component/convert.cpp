// Streams in memory: where their channels start, and their samples as floats.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "acli.h"
#include "core/log.h"
#include "core/strided.h"
#include "orvane_resampler.h"

namespace {

using mvk::as_array_of;
using mvk::is_array_of;
using mvk::strided;

// ---- Samples ----------------------------------------------------------------

std::uint32_t same_bits(std::uint32_t x) { return x; }

float number(float x) { return x == x ? x : 0.0f; }

float from_int16(std::int16_t k) { return static_cast<float>(k) * 0x1p-15f; }
float from_int32(std::int32_t k) { return static_cast<float>(k) * 0x1p-31f; }
float from_int32_in_64(std::int64_t k) { return from_int32(static_cast<std::int32_t>(k)); }
float from_float64(double x) { return static_cast<float>(x); }

// Rounds to an integer by the current rounding mode, after clamping to floats
// that an int holds: processors differ in what they make of others.
int round_within(float lowest, float x, float highest) {
  return static_cast<int>(std::rint(std::min(std::max(number(x), lowest), highest)));
}

// Clamping before the rounding gives what clamping the rounded integer would.
std::int16_t to_int16(float x) {
  return static_cast<std::int16_t>(round_within(-0x1p15f, x * 0x1p15f, 0x1p15f - 1));
}

// The upper limit is tested on the fraction: the largest one below 1 scales to
// 2^31 - 128.
std::int32_t to_int32(float x) {
  const std::int32_t below_one = round_within(-0x1p31f, x * 0x1p31f, 0x1p31f - 128);
  return x >= 1.0f ? INT32_MAX : below_one;
}
std::int64_t to_int32_in_64(float x) { return to_int32(x); }
double to_float64(float x) { return x; }

// ---- Runs of samples ----------------------------------------------------------

// A walk by chunks is as good as one sample by sample: no sample is written over
// before it is read.
template <class From, class To>
bool goes_by_chunks(strided src, strided dst, unsigned n) {
  return mvk::are_apart(src, n, dst, n) ||
         (dst.start <= src.start && dst.step <= src.step && sizeof(To) <= sizeof(From));
}

// Converts n samples in order. Arrays go at once; else chunks of samples are read,
// converted as one array, and written.
template <class From, class To, To sample(From)>
void convert_run(strided src, strided dst, unsigned n) {
  constexpr unsigned chunk = 64;
  const auto convert = [&](auto count) __attribute__((always_inline)) {
    From from[chunk];
    To to[chunk];
    mvk::gather(from, src.start, src.step, count);
    for (unsigned i = 0; i < count; ++i) to[i] = sample(from[i]);
    mvk::scatter(dst.start, dst.step, to, count);
    src.start += count * src.step;
    dst.start += count * dst.step;
  };
  if (!goes_by_chunks<From, To>(src, dst, n)) {
    for (; n > 0; --n) convert(std::integral_constant<unsigned, 1>{});
  } else if (is_array_of<From>(src) && is_array_of<To>(dst)) {
    const From *from = as_array_of<From>(src);
    To *to = as_array_of<To>(dst);
#ifndef __clang__  // to which it is unknown
#pragma GCC ivdep
#endif
    for (unsigned i = 0; i < n; ++i) to[i] = sample(from[i]);
  } else {
    for (; n >= chunk; n -= chunk) convert(std::integral_constant<unsigned, chunk>{});
    if (n > 0) convert(n);
  }
}

// Copies n floats as bits, so that a NaN keeps its own. A copy onto itself, as
// the resampler makes where it stages floats for a host of floats, is left out.
void copy_run(strided src, strided dst, unsigned n) {
  if (src.start == dst.start && src.step == dst.step) return;
  convert_run<std::uint32_t, std::uint32_t, same_bits>(src, dst, n);
}

struct conversion {
  std::int32_t from, to;
  void (*run)(strided src, strided dst, unsigned n);
};

constexpr conversion conversions[] = {
    {DT_LONG, DT_LONG, copy_run},
    {DT_LONG, DT_FLOAT32, copy_run},
    {DT_FLOAT32, DT_LONG, copy_run},
    {DT_LONG, DT_INT16, convert_run<float, std::int16_t, to_int16>},
    {DT_INT16, DT_LONG, convert_run<std::int16_t, float, from_int16>},
    {DT_LONG, DT_INT32, convert_run<float, std::int32_t, to_int32>},
    {DT_INT32, DT_LONG, convert_run<std::int32_t, float, from_int32>},
    {DT_LONG, DT_INT32_IN_64, convert_run<float, std::int64_t, to_int32_in_64>},
    {DT_INT32_IN_64, DT_LONG, convert_run<std::int64_t, float, from_int32_in_64>},
    {DT_LONG, DT_FLOAT64, convert_run<float, double, to_float64>},
    {DT_FLOAT64, DT_LONG, convert_run<double, float, from_float64>},
};

// Bytes of one sample, 0 for an unknown datatype.
unsigned width(std::int32_t datatype) {
  switch (datatype) {
    case DT_BYTE_A:
    case DT_BYTE_B:
      return 1;
    case DT_INT16:
      return 2;
    case DT_LONG:
    case DT_INT32:
    case DT_FLOAT32:
      return 4;
    case DT_INT32_IN_64:
    case DT_FLOAT64:
      return 8;
    default:
      return 0;
  }
}

// Channel c from frame `frame` on.
strided channel_run(const orvane_stream_desc &stream, unsigned c, std::uint64_t frame) {
  const std::uint64_t step = stream.stride * width(stream.datatype);
  return {static_cast<char *>(stream.channel_ptrs[c]) + frame * step, step};
}

}  // namespace

std::int32_t acli_set_channel_ptrs(void *buffer, orvane_stream_desc *desc,
                                   std::uint64_t byte_count) {
  const std::uint32_t channels = desc->nchannels;
  std::uint64_t step;
  if (channels <= static_cast<std::uint32_t>(desc->stride)) {
    step = width(desc->datatype);
    if (step == 0) mvk::log_error("ERROR: datatype not supported\n");
  } else {
    step = byte_count / channels;
    if (step * channels != byte_count) return -1;
  }
  for (std::uint32_t c = 0; c < channels; ++c)
    desc->channel_ptrs[c] = static_cast<char *>(buffer) + c * step;
  return 0;
}

void orvane_stream_convert(const orvane_stream_desc *src, const orvane_stream_desc *dst,
                           unsigned src_frame, unsigned dst_frame, unsigned frames, int /*mode*/) {
  for (const conversion &known : conversions) {
    if (known.from != src->datatype || known.to != dst->datatype) continue;
    for (std::uint32_t c = 0; c < src->nchannels; ++c)
      known.run(channel_run(*src, c, src_frame), channel_run(*dst, c, dst_frame), frames);
    return;
  }
}
