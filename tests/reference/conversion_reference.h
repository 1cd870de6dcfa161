// Sample conversion one sample at a time, for tests.
//
// Values are formed in double, where every product with a power of two is exact, and rounded by
// hand for the rounding mode in force, so that nothing here depends on a conversion instruction.
#ifndef MVK_TESTS_REFERENCE_CONVERSION_REFERENCE_H_
#define MVK_TESTS_REFERENCE_CONVERSION_REFERENCE_H_

#include <cfenv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "orvane_resampler.h"

namespace reference {

// Bytes of one sample; 0 for a code that isn't a datatype.
constexpr size_t Width(int32_t datatype) {
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

constexpr bool Convertible(int32_t source, int32_t destination) {
  const auto real = [](int32_t datatype) { return datatype >= DT_LONG && datatype <= DT_FLOAT64; };
  return real(source) && real(destination) && (source == DT_LONG || destination == DT_LONG);
}

template <typename T>
T Load(const void *from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename T>
void Store(void *to, T value) {
  std::memcpy(to, &value, sizeof value);
}

// The whole number that `rounding`, one of FE_TONEAREST and its like, makes of x.
inline double RoundTo(int rounding, double x) {
  const double below = std::floor(x);
  const double above = std::ceil(x);
  if (rounding == FE_DOWNWARD) return below;
  if (rounding == FE_UPWARD) return above;
  if (rounding == FE_TOWARDZERO) return x < 0 ? above : below;
  if (x - below != above - x) return x - below < above - x ? below : above;
  return std::fmod(below, 2.0) == 0 ? below : above;
}

// x * 2^(bits - 1) rounded and held within `bits` bits; 0 for a NaN.
inline int32_t ToInteger(float x, int bits, int rounding) {
  if (std::isnan(x)) return 0;
  const double full_scale = std::ldexp(1.0, bits - 1);
  const double scaled = static_cast<double>(x) * full_scale;
  if (scaled >= full_scale - 1) return static_cast<int32_t>(full_scale - 1);
  if (scaled <= -full_scale) return static_cast<int32_t>(-full_scale);
  return static_cast<int32_t>(RoundTo(rounding, scaled));
}

// One sample of a convertible pair.
inline void ConvertSample(int32_t source, const void *from, int32_t destination, void *to) {
  if (source != DT_LONG) {
    switch (source) {
      case DT_INT16:
        return Store(to, static_cast<float>(Load<int16_t>(from) * 0x1p-15));
      case DT_INT32:
        return Store(to, static_cast<float>(Load<int32_t>(from) * 0x1p-31));
      case DT_INT32_IN_64:
        return Store(to, static_cast<float>(static_cast<int32_t>(Load<uint64_t>(from)) * 0x1p-31));
      case DT_FLOAT64:
        return Store(to, static_cast<float>(Load<double>(from)));
      default:
        return Store(to, Load<uint32_t>(from));
    }
  }
  const int rounding = std::fegetround();
  switch (destination) {
    case DT_INT16:
      return Store(to, static_cast<int16_t>(ToInteger(Load<float>(from), 16, rounding)));
    case DT_INT32:
      return Store(to, ToInteger(Load<float>(from), 32, rounding));
    case DT_INT32_IN_64:
      return Store(to, static_cast<int64_t>(ToInteger(Load<float>(from), 32, rounding)));
    case DT_FLOAT64:
      return Store(to, static_cast<double>(Load<float>(from)));
    default:
      return Store(to, Load<uint32_t>(from));
  }
}

// Where frame i of channel c stands.
inline uint8_t *SampleAt(const orvane_stream_desc &stream, uint32_t c, uint64_t i) {
  return static_cast<uint8_t *>(stream.channel_ptrs[c]) +
         i * stream.stride * Width(stream.datatype);
}

// What orvane_stream_convert does, sample after sample and channel after channel, so that streams
// which overlap in memory come out byte for byte.
inline void Convert(const orvane_stream_desc &source, const orvane_stream_desc &destination,
                    uint64_t source_frame, uint64_t destination_frame, uint64_t frames) {
  if (!Convertible(source.datatype, destination.datatype)) return;
  for (uint32_t c = 0; c < source.nchannels; ++c) {
    for (uint64_t i = 0; i < frames; ++i) {
      ConvertSample(source.datatype, SampleAt(source, c, source_frame + i), destination.datatype,
                    SampleAt(destination, c, destination_frame + i));
    }
  }
}

}  // namespace reference

#endif
