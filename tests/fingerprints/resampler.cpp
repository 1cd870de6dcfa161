// The resampler, and streams.
#include "component/stream_memory.h"
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "orvane_resampler.h"
#include "reference/conversion_reference.h"

namespace testing_support {
namespace {

constexpr unsigned kFactors[] = {0, 1, 2, 3, 4, 8};
constexpr int kChannelCounts[] = {-1, 0, 1, 2, 3, 35, 36};

// ---- Conversion ----

constexpr int32_t kDatatypes[] = {DT_LONG,        DT_INT16,   DT_INT32,
                                  DT_INT32_IN_64, DT_FLOAT32, DT_FLOAT64};

// Ties, ends of integers and all else.
float AnySample(Random &random) {
  return random.Below(4) == 0 ? random.Special() : kFinite.next(random);
}

void FillFrames(StreamMemory &stream, uint64_t frames, Random &random) {
  for (uint32_t c = 0; c < stream.channels; ++c) {
    for (uint64_t i = 0; i < frames; ++i) {
      const float x = AnySample(random);
      // More bits than a float holds, so that narrowing has to round.
      const double fine = x * (1.0 + random.Unit() * 0x1p-24);
      if (stream.datatype == DT_FLOAT64) {
        reference::Store(stream.At(c, i), fine);
      } else {
        FillSample(stream, c, i, random, [x] { return x; });
      }
    }
  }
}

// NaNs keep their bits where samples are copied, and all of these are quiet.
void AddConversions(Digest &digest) {
  Random random(1);
  for (int32_t from : kDatatypes) {
    for (int32_t to : kDatatypes) {
      for (Layout layout : kLayouts) {
        for (unsigned frames : {0u, 1u, 7u, 64u, 131u}) {
          constexpr uint32_t kChannels = 3;
          const size_t room = 8 * (frames + 5) * (kChannels + 3);
          StreamMemory src(from, kChannels, layout, room, frames % 3);
          StreamMemory dst(to, kChannels, Layout::kInterleaved, room, frames % 5);
          FillFrames(src, frames + 2, random);
          const orvane_stream_desc src_desc = src.Describe(), dst_desc = dst.Describe();
          orvane_stream_convert(&src_desc, &dst_desc, 2, 1, frames, 0);
          digest.Bytes(dst.bytes.data(), dst.bytes.size());
        }
      }
    }
  }
}

// ---- Engine ----

struct Engine {
  Engine(unsigned factor, unsigned channels, int upsampling)
      : arena(orvane_resampler_query(factor, static_cast<int>(channels), upsampling) + 4),
        handle(orvane_resampler_init(factor, channels, upsampling, arena.data() + 4)) {}

  std::vector<uint8_t> arena;
  orvane_resampler *handle;
};

// Blocks of all channels, interleaved and apart, in the engine's own type and in those that are
// converted.
void AddResampled(Digest &digest, decltype(&orvane_resampler_upsample) resample,
                  std::initializer_list<unsigned> factors, int upsampling) {
  for (unsigned factor : factors) {
    for (unsigned channels : {1u, 2u, 5u}) {
      for (int32_t datatype : {DT_LONG, DT_FLOAT32, DT_INT32}) {
        for (Layout layout : {Layout::kInterleaved, Layout::kPlanar}) {
          Engine engine(factor, channels, upsampling);
          Random random(factor);
          for (const Material &material : {kUniform, kFinite, kUniform}) {
            // Frames of converted input come out as far apart as if they were interleaved.
            const size_t room = size_t{1024} * channels;
            StreamMemory in(datatype, channels, layout, room, 4);
            StreamMemory out(datatype, channels, layout, room, 8);
            FillStream(in, room / 4 / in.stride, random, [&] { return material.next(random); });
            orvane_stream_desc from = in.Describe(), to = out.Describe();
            digest.Integer(resample(&to, &from, engine.handle));
            digest.Bytes(out.bytes.data(), out.bytes.size());
          }
        }
      }
    }
  }
  digest.Integer(resample(nullptr, nullptr, Engine(2, 1, upsampling).handle));
}

template <typename Ask>
void AskEach(Ask ask) {
  for (unsigned factor : kFactors) {
    for (int upsampling : {0, 1}) {
      const Engine engine(factor, 2, upsampling);
      ask(engine.handle);
    }
  }
}

void AddQueries(Digest &digest) {
  for (unsigned factor : kFactors) {
    for (int channels : kChannelCounts) {
      for (int upsampling : {0, 1}) {
        digest.Integer(orvane_resampler_query(factor, channels, upsampling));
      }
    }
  }
}

// Where the handle lies, and where it is refused.
void AddInit(Digest &digest) {
  std::vector<uint8_t> arena(65536);
  const auto start = reinterpret_cast<uintptr_t>(arena.data());
  uint8_t *const aligned = arena.data() + (64 - start % 64);
  for (unsigned factor : kFactors) {
    for (unsigned channels : {0u, 1u, 35u, 36u}) {
      for (size_t misalignment : {0u, 4u, 40u}) {
        const orvane_resampler *const handle =
            orvane_resampler_init(factor, channels, 1, aligned + misalignment);
        digest.Integer(
            handle == nullptr
                ? 99
                : static_cast<uint64_t>(reinterpret_cast<const uint8_t *>(handle) - aligned));
      }
    }
  }
  digest.Integer(orvane_resampler_init(2, 1, 1, nullptr) != nullptr);
}

void AddPassed(Digest &digest) {
  for (unsigned channels : {1u, 3u}) {
    Engine engine(1, channels, 1);
    StreamMemory in(DT_LONG, channels, Layout::kInterleaved, size_t{1024} * channels);
    StreamMemory out(DT_LONG, channels, Layout::kInterleaved, size_t{1024} * channels);
    Random random(channels);
    FillFrames(in, 256, random);
    orvane_stream_desc from = in.Describe(), to = out.Describe();
    digest.Integer(orvane_resampler_passthrough(&to, &from, engine.handle));
    digest.Bytes(out.bytes.data(), out.bytes.size());
    digest.Integer(orvane_resampler_passthrough(nullptr, &from, engine.handle));
    digest.Integer(orvane_resampler_passthrough(&to, nullptr, engine.handle));
    digest.Integer(orvane_resampler_passthrough(&to, &from, nullptr));
  }
}

}  // namespace

void ListResampler(Entries &entries) {
  MVK_ENTRY(orvane_stream_convert, AddConversions);
  MVK_ENTRY(orvane_resampler_query, AddQueries);
  MVK_ENTRY(orvane_resampler_init, AddInit);
  MVK_ENTRY(orvane_resampler_get_processing_block_size, [](Digest &digest) {
    AskEach([&](const orvane_resampler *handle) {
      uint64_t in = 0, out = 0;
      orvane_resampler_get_processing_block_size(handle, &in, &out);
      digest.Integer(in);
      digest.Integer(out);
    });
  });
  MVK_ENTRY(orvane_resampler_get_output_latency, [](Digest &digest) {
    AskEach([&](const orvane_resampler *handle) {
      digest.Integer(orvane_resampler_get_output_latency(handle));
    });
  });
  MVK_ENTRY(orvane_resampler_upsample, [](Digest &digest) {
    AddResampled(digest, &orvane_resampler_upsample, {1, 2, 4}, 1);
  });
  MVK_ENTRY(orvane_resampler_downsample, [](Digest &digest) {
    AddResampled(digest, &orvane_resampler_downsample, {1, 2, 4}, 0);
  });
  MVK_ENTRY(orvane_resampler_passthrough, AddPassed);
}

}  // namespace testing_support
