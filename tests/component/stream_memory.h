// A stream together with the memory round it, so that a test can compare every byte that a call
// might have touched.
#ifndef MVK_TESTS_COMPONENT_STREAM_MEMORY_H_
#define MVK_TESTS_COMPONENT_STREAM_MEMORY_H_

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "component/random_samples.h"
#include "orvane_resampler.h"
#include "reference/conversion_reference.h"

namespace testing_support {

enum class Layout { kInterleaved, kPadded, kPlanar, kSparsePlanar };

inline constexpr Layout kLayouts[] = {Layout::kInterleaved, Layout::kPadded, Layout::kPlanar,
                                      Layout::kSparsePlanar};

inline const char *Name(Layout layout) {
  constexpr const char *kNames[] = {"interleaved", "padded", "planar", "sparse planar"};
  return kNames[static_cast<size_t>(layout)];
}

inline uint64_t StrideOf(Layout layout, uint32_t channels) {
  switch (layout) {
    case Layout::kInterleaved:
      return channels;
    case Layout::kPadded:
      return channels + 3;
    case Layout::kPlanar:
      return 1;
    default:
      return 3;
  }
}

struct StreamMemory {
  static constexpr size_t kMargin = 64;
  static constexpr uint8_t kFill = 0x35;  // 0x35353535 is 6.75e-7 as a float

  // `room` bytes for each channel that lies apart, or for all of them together, from an address
  // that is `misalignment` bytes past an aligned one.
  StreamMemory(int32_t stream_datatype, uint32_t stream_channels, Layout layout, size_t room,
               size_t misalignment = 0)
      : datatype(stream_datatype),
        channels(stream_channels),
        stride(StrideOf(layout, stream_channels)),
        start(kMargin + misalignment) {
    const bool apart = layout == Layout::kPlanar || layout == Layout::kSparsePlanar;
    channel_step = apart ? room : reference::Width(datatype);
    bytes.assign(start + room * (apart ? channels : 1) + kMargin, kFill);
  }

  // The descriptor is good until this record is moved, copied to or described again.
  orvane_stream_desc Describe() {
    pointers.clear();
    for (uint32_t c = 0; c < channels; ++c) {
      pointers.push_back(bytes.data() + start + c * channel_step);
    }
    return {channels, stride, datatype, pointers.data()};
  }

  uint8_t *At(uint32_t c, uint64_t i) { return bytes.data() + Offset(c, i); }
  const uint8_t *At(uint32_t c, uint64_t i) const { return bytes.data() + Offset(c, i); }

  size_t Offset(uint32_t c, uint64_t i) const {
    return start + c * channel_step + i * stride * reference::Width(datatype);
  }

  int32_t datatype;
  uint32_t channels;
  uint64_t stride;
  size_t start;
  size_t channel_step;
  std::vector<uint8_t> bytes;
  std::vector<void *> pointers;
};

// Writes sample i of channel c, a float for the real datatypes and random bits for the others.
template <typename NextFloat>
void FillSample(StreamMemory &stream, uint32_t c, uint64_t i, Random &random, NextFloat next) {
  uint8_t *to = stream.At(c, i);
  switch (stream.datatype) {
    case DT_LONG:
    case DT_FLOAT32:
      return reference::Store(to, static_cast<float>(next()));
    case DT_FLOAT64: {
      // With more bits than a float holds, so that narrowing has to round.
      const double coarse = next();
      return reference::Store(to, coarse * (1.0 + random.Unit() * 0x1p-24));
    }
    case DT_INT16:
      return reference::Store(to, static_cast<uint16_t>(random.Bits32()));
    case DT_INT32:
      return reference::Store(to, random.Bits32());
    case DT_INT32_IN_64:
      return reference::Store(to, random.Bits());
    default:
      return;
  }
}

template <typename NextFloat>
void FillStream(StreamMemory &stream, uint64_t frames, Random &random, NextFloat next) {
  for (uint32_t c = 0; c < stream.channels; ++c) {
    for (uint64_t i = 0; i < frames; ++i) FillSample(stream, c, i, random, next);
  }
}

inline std::string HexOf(const uint8_t *bytes, size_t width) {
  std::ostringstream text;
  text << "0x" << std::hex;
  for (size_t b = width; b-- > 0;) text << (bytes[b] >> 4) << (bytes[b] & 15);
  return text.str();
}

// "channel 2, frame 17: 0x... instead of 0x..." for the sample that holds byte `offset`.
inline std::string DescribeDifference(const StreamMemory &got, const StreamMemory &want,
                                      size_t offset) {
  std::ostringstream text;
  const size_t width = reference::Width(got.datatype);
  for (uint32_t c = 0; c < got.channels && width > 0; ++c) {
    const size_t first = got.Offset(c, 0);
    const size_t step = got.stride * width;
    if (offset < first || (offset - first) % step >= width) continue;
    const uint64_t frame = (offset - first) / step;
    if (got.channel_step > step && offset >= first + got.channel_step) continue;
    text << "channel " << c << ", frame " << frame << ": " << HexOf(got.At(c, frame), width)
         << " instead of " << HexOf(want.At(c, frame), width);
    return text.str();
  }
  text << "byte " << static_cast<std::ptrdiff_t>(offset) - static_cast<std::ptrdiff_t>(got.start)
       << " from the start, which holds no sample: " << HexOf(&got.bytes[offset], 1)
       << " instead of " << HexOf(&want.bytes[offset], 1);
  return text.str();
}

// Whether all bytes agree: samples, the gaps between them and the margins.
inline testing::AssertionResult SameBytes(const StreamMemory &got, const StreamMemory &want) {
  if (got.bytes.size() != want.bytes.size()) return testing::AssertionFailure() << "other size";
  for (size_t b = 0; b < got.bytes.size(); ++b) {
    if (got.bytes[b] != want.bytes[b]) {
      return testing::AssertionFailure() << DescribeDifference(got, want, b);
    }
  }
  return testing::AssertionSuccess();
}

inline testing::AssertionResult SameFloat(float got, float want) {
  if (std::isnan(want) ? std::isnan(got)
                       : std::bit_cast<uint32_t>(got) == std::bit_cast<uint32_t>(want)) {
    return testing::AssertionSuccess();
  }
  std::ostringstream text;
  text << std::hex << "0x" << std::bit_cast<uint32_t>(got) << " (" << got << ") instead of 0x"
       << std::bit_cast<uint32_t>(want) << " (" << want << ")";
  return testing::AssertionFailure() << text.str();
}

// Whether the frames of two streams of floats agree bit for bit, or are both NaN.
inline testing::AssertionResult SameFloats(const StreamMemory &got, const StreamMemory &want,
                                           uint64_t frames) {
  for (uint32_t c = 0; c < got.channels; ++c) {
    for (uint64_t i = 0; i < frames; ++i) {
      const auto same =
          SameFloat(reference::Load<float>(got.At(c, i)), reference::Load<float>(want.At(c, i)));
      if (!same) {
        return testing::AssertionFailure()
               << "channel " << c << ", frame " << i << ": " << same.message();
      }
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace testing_support

#endif
