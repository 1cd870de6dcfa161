// Delay lines of blocks.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "mvk_kernels.h"

namespace testing_support {
namespace {

constexpr uint32_t kRing = 5 * kBlockSize;

// A ring that is full and in use; copies keep the bits of NaNs.
struct Ring {
  explicit Ring(uint32_t position, bool aligned)
      : samples(Corpus(kMixed).Copy(kRing + kBlockSize), aligned ? 0 : 3),
        state{position, kRing, samples.data()} {}

  void AddTo(Digest &digest) const {
    digest.Integer(state.position);
    digest.Integer(state.length);
    digest.Bytes(samples.values().data(), samples.values().size_bytes());
  }

  GuardedFloats samples;
  mvk_blk_delay_state state;
};

void AddSetup(Digest &digest, decltype(&mvk_blk_delay_setup_flex) setup) {
  for (uint32_t d : {0u, 1u, 31u, 32u, 33u, 64u, 1000u}) {
    Ring ring(32, true);
    setup(&ring.state, ring.samples.data() + 1, d);
    digest.Integer(ring.state.buffer == ring.samples.data() + 1);
    ring.AddTo(digest);
  }
}

void AddWrites(Digest &digest, decltype(&mvk_blk_delayL_flex) write, bool aligned) {
  Corpus corpus(kMixed, 2);
  Ring ring(kRing - 2 * kBlockSize, aligned);
  for (int block = 0; block < 9; ++block) {
    GuardedFloats x(corpus.Copy(kBlockSize), aligned ? 0 : block);
    write(&ring.state, x.data());
    ring.AddTo(digest);
  }
}

void AddReads(Digest &digest, decltype(&mvk_blk_LdelayU_flex) read, bool aligned) {
  for (uint32_t position = 0; position < kRing; position += kBlockSize) {
    Ring ring(position, aligned);
    for (uint32_t d = 0; d <= kRing - kBlockSize; d += d < 40 ? 1 : 13) {
      GuardedFloats y(kBlockSize, aligned ? 0 : static_cast<int>(d % 8));
      digest.Integer(read(&ring.state, y.data(), d) == y.data());
      digest.Bytes(y.data(), y.values().size_bytes());
    }
  }
}

void AddClears(Digest &digest, decltype(&mvk_blk_delay_clear_flex) clear, bool aligned) {
  for (uint32_t n : {0u, 4u, 32u, 60u, 100u, 192u, 400u}) {
    Ring ring(0, aligned);
    float *end = nullptr;
    for (int call = 0; call < 3; ++call) {
      end = clear(&ring.state, end, n);
      digest.Integer(end == nullptr ? ~uint64_t{0}
                                    : static_cast<uint64_t>(end - ring.state.buffer));
      ring.AddTo(digest);
    }
  }
}

#define TWIN(name, add)                                                                         \
  MVK_ENTRY(mvk_##name##_flex, [](Digest &digest) { add(digest, &mvk_##name##_flex, false); }); \
  MVK_ENTRY(MVK_##name##_strict, [](Digest &digest) { add(digest, &MVK_##name##_strict, true); });

}  // namespace

void ListDelays(Entries &entries) {
  MVK_ENTRY(mvk_blk_delay_setup_flex,
            [](Digest &digest) { AddSetup(digest, &mvk_blk_delay_setup_flex); });
  MVK_ENTRY(MVK_blk_delay_setup_strict,
            [](Digest &digest) { AddSetup(digest, &MVK_blk_delay_setup_strict); });
  TWIN(blk_delayL, AddWrites)
  TWIN(blk_LdelayU, AddReads)
  TWIN(blk_delay_clear, AddClears)
  MVK_ENTRY(MVK_blk_refLdelayU, [](Digest &digest) {
    for (uint32_t position = 0; position < kRing; position += kBlockSize) {
      Ring ring(position, false);
      for (uint32_t d = 0; d <= kRing - kBlockSize; ++d) {
        digest.Integer(
            static_cast<uint64_t>(MVK_blk_refLdelayU(&ring.state, d) - ring.state.buffer));
      }
    }
  });
}

}  // namespace testing_support
