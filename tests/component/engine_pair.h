// An engine of the library and the reference's, fed alike.
#ifndef MVK_TESTS_COMPONENT_ENGINE_PAIR_H_
#define MVK_TESTS_COMPONENT_ENGINE_PAIR_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "component/stream_memory.h"
#include "orvane_resampler.h"
#include "reference/resampler_reference.h"

namespace testing_support {

struct EngineShape {
  unsigned factor;
  bool up;
};

// The shapes that filter.
inline constexpr EngineShape kFilters[] = {{2, true}, {4, true}, {2, false}, {4, false}};

// All that the tests draw on.
inline constexpr EngineShape kShapes[] = {{1, true},  {2, true},  {3, true},  {4, true},
                                          {1, false}, {2, false}, {3, false}, {4, false}};

// "Up2" in the name of a test.
inline std::string ShapeSuffix(const testing::TestParamInfo<EngineShape> &shape) {
  return (shape.param.up ? "Up" : "Down") + std::to_string(shape.param.factor);
}

inline std::string Name(const EngineShape &shape) {
  return (shape.up ? "up by " : "down by ") + std::to_string(shape.factor);
}

// An engine in memory of its own.
class LibraryEngine {
 public:
  LibraryEngine(unsigned factor, unsigned channels, bool up)
      : arena_(orvane_resampler_query(factor, static_cast<int>(channels), up)),
        handle_(orvane_resampler_init(factor, channels, up, arena_.data())),
        up_(up) {}

  LibraryEngine(const LibraryEngine &) = delete;
  LibraryEngine &operator=(const LibraryEngine &) = delete;

  uint64_t Run(orvane_stream_desc out, orvane_stream_desc in) {
    const auto run = up_ ? orvane_resampler_upsample : orvane_resampler_downsample;
    return run(&out, &in, handle_);
  }

  orvane_resampler *handle() const { return handle_; }

 private:
  std::vector<uint8_t> arena_;
  orvane_resampler *handle_;
  bool up_;
};

struct EnginePair {
  EnginePair(unsigned factor, unsigned channels, bool up)
      : library(factor, channels, up), expected(factor, channels, up) {}

  // Runs one block of `in` through both, from the bytes that `out` holds. `out` gets the library's
  // result; the reference's is returned.
  StreamMemory Run(StreamMemory &out, StreamMemory &in) {
    StreamMemory wanted = out;
    EXPECT_EQ(library.Run(out.Describe(), in.Describe()), expected.OutFrames());
    reference::Run(expected, wanted.Describe(), in.Describe());
    return wanted;
  }

  LibraryEngine library;
  reference::Engine expected;
};

// A whole stream of one contiguous channel through `run`, block by block; `shape` has its frames.
template <typename RunBlock>
std::vector<float> RunBlocks(const reference::Engine &shape, std::vector<float> x, RunBlock run) {
  const size_t blocks = x.size() / shape.InFrames();
  std::vector<float> y(blocks * shape.OutFrames());
  for (size_t block = 0; block < blocks; ++block) {
    void *from = x.data() + block * shape.InFrames();
    void *to = y.data() + block * shape.OutFrames();
    run(orvane_stream_desc{1, 1, DT_LONG, &to}, orvane_stream_desc{1, 1, DT_LONG, &from});
  }
  return y;
}

// The same through an engine of the library.
inline std::vector<float> RunStream(unsigned factor, bool up, const std::vector<float> &x) {
  LibraryEngine engine(factor, 1, up);
  return RunBlocks(reference::Engine(factor, 1, up), x,
                   [&](auto out, auto in) { engine.Run(out, in); });
}

}  // namespace testing_support

#endif
