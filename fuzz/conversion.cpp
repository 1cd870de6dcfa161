// Conversion of streams of any types, layouts and samples, compared with the plain reference.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "orvane_resampler.h"
#include "reference/conversion_reference.h"
#include "require.h"

namespace {

constexpr uint32_t kMostChannels = 8;
constexpr uint32_t kMostFrames = 70;

// A stream in memory that ends with its last sample.
struct Stream {
  Stream(FuzzedDataProvider &data, uint32_t channels, uint32_t frames)
      : datatype(data.ConsumeIntegralInRange<int32_t>(-1, 10)),
        stride(data.ConsumeIntegralInRange<uint64_t>(channels, channels + 2)),
        first(data.ConsumeIntegralInRange<uint32_t>(0, 20)) {
    const size_t width = reference::Width(datatype);
    const uint64_t last = first + (frames > 0 ? frames - 1 : 0);
    bytes.resize((last * stride + channels) * width);
  }

  orvane_stream_desc Describe(uint32_t channels) {
    pointers.clear();
    for (uint32_t c = 0; c < channels; ++c) {
      pointers.push_back(bytes.data() + c * reference::Width(datatype));
    }
    return {channels, stride, datatype, pointers.data()};
  }

  int32_t datatype;
  uint64_t stride;
  uint32_t first;  // frame
  std::vector<uint8_t> bytes;
  std::vector<void *> pointers;
};

// Where a NaN becomes a float or a double, its payload is the processor's affair.
bool SameSample(int32_t datatype, const uint8_t *a, const uint8_t *b) {
  if (datatype == DT_FLOAT64 || datatype == DT_LONG) {
    const bool wide = datatype == DT_FLOAT64;
    const double x =
        wide ? reference::Load<double>(a) : static_cast<double>(reference::Load<float>(a));
    const double y =
        wide ? reference::Load<double>(b) : static_cast<double>(reference::Load<float>(b));
    if (std::isnan(x) && std::isnan(y)) return true;
  }
  return std::memcmp(a, b, reference::Width(datatype)) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  const auto channels = data.ConsumeIntegralInRange<uint32_t>(0, kMostChannels);
  const auto frames = data.ConsumeIntegralInRange<uint32_t>(0, kMostFrames);
  const int mode = data.ConsumeIntegral<int>();
  Stream source(data, channels, frames), result(data, channels, frames);
  const std::vector<uint8_t> samples = data.ConsumeRemainingBytes<uint8_t>();
  for (size_t i = 0; i < source.bytes.size() && !samples.empty(); ++i) {
    source.bytes[i] = samples[i % samples.size()];
  }
  Stream expected = result;

  const orvane_stream_desc from = source.Describe(channels);
  const orvane_stream_desc to = result.Describe(channels);
  orvane_stream_convert(&from, &to, source.first, result.first, frames, mode);
  reference::Convert(from, expected.Describe(channels), source.first, result.first, frames);

  const size_t width = reference::Width(result.datatype);
  for (size_t i = 0; i < result.bytes.size(); i += width) {
    Require(SameSample(result.datatype, &result.bytes[i], &expected.bytes[i]),
            "converts like the reference");
  }
  return 0;
}
