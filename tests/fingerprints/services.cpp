// The phase shifter and the small services.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "mvk_services.h"
#include "phase90_hilbert.h"

namespace testing_support {
namespace {

constexpr unsigned kLengths[] = {512, 1024, 2048};

struct Shifter {
  explicit Shifter(unsigned length)
      : work(length + 1280, 1), history(1280, 3), samples_per_frame(length) {
    status = init_Phase90Hilbert(&handle, length, &state, work.data(), history.data());
  }

  // Which of the state's addresses lead where is told by what is found there.
  void AddTo(Digest &digest) const {
    digest.Integer(static_cast<uint64_t>(status));
    digest.Numbers(state.back_a);
    digest.Numbers(state.back_b);
    digest.Numbers(state.fwd);
    digest.Integer(static_cast<uint64_t>(state.frame_length));
    digest.Number(state.boundary);
    digest.Number(state.inv_length);
    digest.Integer(state.work == work.values().data());
    digest.Integer(state.history == history.values().data());
    digest.Numbers(history.values());
  }

  Phase90Hilbert_state state = {};
  Phase90Hilbert_state *handle = nullptr;
  GuardedFloats work, history;
  unsigned samples_per_frame;
  int status;
};

void AddFrames(Digest &digest, Shifter &shifter) {
  for (const Material &material : {kUniform, kFinite, kFew, kGentle}) {
    GuardedFloats samples(Corpus(material).Copy(shifter.samples_per_frame), 1);
    digest.Integer(static_cast<uint64_t>(process_Phase90Hilbert(shifter.handle, samples.data())));
    digest.Numbers(samples.values());
    shifter.AddTo(digest);
  }
}

void AddSizes(Digest &digest) {
  for (unsigned length : {0u, 256u, 512u, 1000u, 1024u, 2048u, 4096u}) {
    unsigned sizes[3] = {99, 99, 99};
    digest.Integer(static_cast<uint64_t>(
        getRequiredBufferSize_Phase90Hilbert(length, &sizes[0], &sizes[1], &sizes[2])));
    for (unsigned size : sizes) digest.Integer(size);
  }
}

// The sizes of operands that times come in.
constexpr uint64_t kTimes[] = {0, 1, 2, 3, 0xffffffff, 1ull << 53, (1ull << 63) - 1, ~uint64_t{0}};

template <typename Operation>
void AddPairsOfTimes(Digest &digest, Operation operation) {
  for (uint64_t a : kTimes) {
    for (uint64_t b : kTimes) digest.Integer(static_cast<uint64_t>(operation(a, b)));
  }
}

}  // namespace

void ListServices(Entries &entries) {
  MVK_ENTRY(getRequiredBufferSize_Phase90Hilbert, AddSizes);
  MVK_ENTRY(init_Phase90Hilbert, [](Digest &digest) {
    for (unsigned length : kLengths) Shifter(length).AddTo(digest);
    Phase90Hilbert_state *handle = nullptr;
    digest.Integer(
        static_cast<uint64_t>(init_Phase90Hilbert(&handle, 600, nullptr, nullptr, nullptr)));
    digest.Integer(handle != nullptr);
  });
  MVK_ENTRY(process_Phase90Hilbert, [](Digest &digest) {
    for (unsigned length : kLengths) {
      Shifter shifter(length);
      AddFrames(digest, shifter);
    }
  });
  MVK_ENTRY(reset_Phase90Hilbert, [](Digest &digest) {
    for (unsigned length : kLengths) {
      Shifter shifter(length);
      Digest unused;
      AddFrames(unused, shifter);
      digest.Integer(static_cast<uint64_t>(reset_Phase90Hilbert(shifter.handle)));
      shifter.AddTo(digest);
    }
  });
  MVK_ENTRY(MVK_dsplib_init,
            [](Digest &digest) { digest.Integer(static_cast<uint64_t>(MVK_dsplib_init())); });
  MVK_ENTRY(MVK_Lpow05I16, [](Digest &digest) {
    for (uint32_t v = 0; v < 65536; ++v) digest.Number(MVK_Lpow05I16(static_cast<uint16_t>(v)));
  });
  // Nothing that could be seen comes of these two: their fingerprint is that of no result.
  MVK_ENTRY(MVK_time_init, [](Digest &) { MVK_time_init(); });
  MVK_ENTRY(MVK_time_end, [](Digest &) { MVK_time_end(); });
  MVK_ENTRY(MVK_time_reset, [](Digest &digest) {
    uint64_t time = 77;
    MVK_time_reset(&time);
    digest.Integer(time);
  });
  MVK_ENTRY(MVK_time_add, [](Digest &digest) { AddPairsOfTimes(digest, &MVK_time_add); });
  MVK_ENTRY(MVK_time_sub, [](Digest &digest) { AddPairsOfTimes(digest, &MVK_time_sub); });
  MVK_ENTRY(MVK_time_lt, [](Digest &digest) { AddPairsOfTimes(digest, &MVK_time_lt); });
  MVK_ENTRY(MVK_time_div, [](Digest &digest) {
    for (uint64_t time : kTimes) {
      for (unsigned n : {0u, 1u, 3u, 48000u, ~0u}) digest.Number(MVK_time_div(time, n));
    }
  });
}

}  // namespace testing_support
