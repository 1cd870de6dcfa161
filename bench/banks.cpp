// Filter banks of 64 complex bands, with ten taps of the prototype per band: the QMF bank beside
// liquid-dsp's channelizer, what its time goes into, and the MFB bank beside it.
#include <complex>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bench/kernels.h"
#include "mvk_mfb.h"
#include "mvk_qmf.h"

#ifdef MVK_BENCH_LIQUID
#include <liquid/liquid.h>
#endif

namespace {

constexpr uint32_t bands = 64, order = 5;
constexpr uint32_t slots = 4;  // a call: the bands of eight channels fill half a first cache
constexpr uint32_t samples = slots * bands;

// ---- QMF ----------------------------------------------------------------------

struct memory {
  template <class Query>
  explicit memory(Query *query) : memory(sizes(query)) {}

  bench::placed<std::byte> state, scratch, record;

 private:
  struct bytes {
    uint32_t state, scratch, record;
  };
  template <class Query>
  static bytes sizes(Query *query) {
    bytes b;
    query(bands, order, &b.state, &b.scratch, &b.record);
    return b;
  }
  explicit memory(bytes b) : state(b.state), scratch(b.scratch), record(b.record) {}
};

// The subbands of a call for one channel.
struct band_slots {
  band_slots() {
    for (uint32_t s = 0; s < slots; ++s) pointers[s] = values.data() + 2 * s * bands;
  }
  bench::placed<float> values{2 * samples};
  float *pointers[slots];
};

struct qmf {
  void analyse(const float *in) { MVK_CLqmf_analysisL(analysis, subbands.pointers, in); }
  void synthesise(float *out) { MVK_Lqmf_synthesisCL(synthesis, out, subbands.pointers); }

  band_slots subbands;
  memory analysis_memory{MVK_qmf_analysisL_query_mem};
  memory synthesis_memory{MVK_qmf_synthesisL_query_mem};
  mvk_qmf_analysisL_state *analysis = mvk_qmf_analysisL_open(
      bands, slots, MVK_TWIDDLE_NONE, order, mvk_qmf_filter_coeff_P5_p64orv301_vec_ana,
      analysis_memory.state.data(), analysis_memory.scratch.data(), analysis_memory.record.data());
  mvk_qmf_synthesisL_state *synthesis = mvk_qmf_synthesisL_open(
      bands, slots, MVK_TWIDDLE_NONE, order, mvk_qmf_filter_coeff_P5_p64orv301_vec_syn,
      synthesis_memory.state.data(), synthesis_memory.scratch.data(),
      synthesis_memory.record.data());
};

void enroll_qmf() {
  const std::string name = "banks/qmf/" + std::to_string(bands) + "/";
  bench::enroll(name + "library", [](benchmark::State &state) {
    qmf bank;
    const bench::placed<float> x = bench::noise(samples, 1);
    bench::placed<float> y(samples);
    bench::repeat(state, [&] {
      bank.analyse(x.data());
      bank.synthesise(y.data());
      return samples;
    });
  });

  // A channelizer takes complex samples and decimates as far as the number of its channels
  // allows. It has as many taps per channel, and gives as many complex subbands for each slot.
#ifdef MVK_BENCH_LIQUID
  bench::enroll(name + "liquid", [](benchmark::State &state) {
    constexpr unsigned half_taps = 5;
    constexpr float stop_band = 70;
    const firpfbch_crcf analysis =
        firpfbch_crcf_create_kaiser(LIQUID_ANALYZER, bands, half_taps, stop_band);
    const firpfbch_crcf synthesis =
        firpfbch_crcf_create_kaiser(LIQUID_SYNTHESIZER, bands, half_taps, stop_band);
    const bench::placed<float> real = bench::noise(samples, 1);
    bench::placed<liquid_float_complex> x(samples), y(samples), subbands(bands);
    for (uint32_t i = 0; i < samples; ++i) x[i] = real[i];
    bench::repeat(state, [&] {
      for (uint32_t i = 0; i < samples; i += bands) {
        firpfbch_crcf_analyzer_execute(analysis, x.data() + i, subbands.data());
        firpfbch_crcf_synthesizer_execute(synthesis, subbands.data(), y.data() + i);
      }
      return samples;
    });
    firpfbch_crcf_destroy(analysis);
    firpfbch_crcf_destroy(synthesis);
  });
#endif
}

// ---- Stages -------------------------------------------------------------------

// The stages of a call, each as a call of its own, beside the whole: the ratio is a stage's
// fraction of the time. The window folds the taps' products as it sums them, so that these two
// are one stage. The transform, and with it the reorder, meet silence, which stays what it is
// however often it is transformed; their time doesn't depend on what the samples are.
struct stages {
  qmf bank;
  bench::placed<float> x = bench::noise(samples, 1), y{samples}, silence{4 * bands};

  void analysis_window() {
    const auto &r = *bank.analysis;
    for (uint32_t i = 0; i < samples; i += bands)
      r.window_complex(r.scratch, r.slot_ptr, r.prototype, r.cos_table, x.data() + i, bands);
  }
  void synthesis_window() {
    const auto &r = *bank.synthesis;
    for (uint32_t i = 0; i < samples; i += bands)
      r.window_complex(y.data() + i, r.history, r.prototype, r.cos_table, x.data(), bands);
  }
  void transform() {
    float *const src = silence.data();
    for (uint32_t s = 0; s < slots; ++s)
      bank.analysis->pair_full->unscaled(src + 2 * bands, src, bands);
  }

  // The modulation stage about a transform that does nothing.
  void analysis_reorder() {
    for (float *const out : bank.subbands.pointers)
      mvk_forwardModulationComplex(silence.data(), out, silence.data() + 2 * bands, bands,
                                   MVK_TWIDDLE_NONE, nullptr, &no_transform);
  }
  void synthesis_reorder() {
    for (const float *const in : bank.subbands.pointers)
      mvk_inverseModulationComplex(in, silence.data(), silence.data() + 2 * bands, bands,
                                   MVK_TWIDDLE_NONE, nullptr, &no_transform);
  }

  void analysis() { bank.analyse(x.data()); }
  void synthesis() { bank.synthesise(y.data()); }

 private:
  static void nothing(float *, float *, uint32_t) {}
  static constexpr mvk_fft_pair no_transform = {nothing, nothing};
};

void enroll_stage(const std::string &name, void (stages::*stage)(), void (stages::*whole)()) {
  const auto contender = [&](const char *who, void (stages::*work)()) {
    bench::enroll("banks-stages/" + name + "/" + who, [=](benchmark::State &state) {
      stages own;
      own.analysis();  // something to reorder and to synthesise
      bench::repeat(state, [&] {
        (own.*work)();
        return samples;
      });
    });
  };
  contender("library", stage);
  contender("whole", whole);
}

void enroll_stages() {
  enroll_stage("analysis/window-and-fold", &stages::analysis_window, &stages::analysis);
  enroll_stage("analysis/transform", &stages::transform, &stages::analysis);
  enroll_stage("analysis/reorder", &stages::analysis_reorder, &stages::analysis);
  enroll_stage("synthesis/reorder", &stages::synthesis_reorder, &stages::synthesis);
  enroll_stage("synthesis/transform", &stages::transform, &stages::synthesis);
  enroll_stage("synthesis/window-and-fold", &stages::synthesis_window, &stages::synthesis);
}

// ---- MFB ----------------------------------------------------------------------

// Several channels in one record.
struct mfb {
  explicit mfb(uint32_t channels) : count(channels), subbands(channels) {
    for (uint32_t s = 0; s < slots; ++s)
      for (band_slots &b : subbands) in_bands.push_back(b.pointers[s]);
    for (uint32_t s = 0; s < slots; ++s) of_slots.push_back(in_bands.data() + s * count);
  }
  mfb(const mfb &) = delete;

  void analyse(const float *const *const *in) {
    MVK_CLmfb_p10km_analysisL(analysis, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E, scratch.data(),
                              count, slots, bands, of_slots.data(), in);
  }
  void synthesise(float *const *const *out) {
    MVK_Lmfb_p10km_synthesisCL_symmetric(synthesis, MVK_MFB_P10KM_P64ORV301, MVK_MFB_TWID64E,
                                         scratch.data(), count, slots, bands, out, of_slots.data());
  }

  uint32_t count;
  std::vector<band_slots> subbands;
  std::vector<float *> in_bands;
  std::vector<float **> of_slots;
  bench::placed<std::byte> scratch{MVK_mfb_p10km_analysisL_query_scratch(count, 0, bands)};
  bench::placed<std::byte> analysis_memory{MVK_mfb_p10km_analysisL_query_mem(count, 0, bands)};
  bench::placed<std::byte> synthesis_memory{MVK_mfb_p10km_synthesisCL_query_mem(count, 0, bands)};
  mvk_mfb_p10km_analysisL_state *analysis =
      MVK_CLmfb_p10km_analysisL_init(count, 0, bands, analysis_memory.data());
  mvk_mfb_p10km_synthesisCL_state *synthesis =
      MVK_Lmfb_p10km_synthesisCL_init(count, 0, bands, synthesis_memory.data());
};

// A call's samples of each channel, and the pointers to its slots.
struct audio {
  audio(uint32_t channels, bench::placed<float> material) : x(std::move(material)) {
    for (uint32_t s = 0; s < slots; ++s)
      for (uint32_t c = 0; c < channels; ++c) in_channels.push_back(channel(c) + s * bands);
    for (uint32_t s = 0; s < slots; ++s) of_slots.push_back(in_channels.data() + s * channels);
  }
  audio(const audio &) = delete;
  float *channel(uint32_t c) { return x.data() + c * samples; }

  bench::placed<float> x;
  std::vector<float *> in_channels;
  std::vector<float **> of_slots;
};

// Which half is timed.
struct half {
  const char *name;
  bool analysis, synthesis;
};

// The same audio through one MFB record and through a QMF record for each channel.
void enroll_mfb(const half &h, uint32_t channels) {
  const std::string name =
      std::string("banks/mfb") + h.name + "/" + std::to_string(channels) + "ch/";
  bench::enroll(name + "library", [=](benchmark::State &state) {
    mfb bank(channels);
    audio in(channels, bench::noise(channels * samples, 1));
    audio out(channels, bench::placed<float>(channels * samples));
    bank.analyse(in.of_slots.data());
    bench::repeat(state, [&] {
      if (h.analysis) bank.analyse(in.of_slots.data());
      if (h.synthesis) bank.synthesise(out.of_slots.data());
      return channels * samples;
    });
  });
  bench::enroll(name + "qmf", [=](benchmark::State &state) {
    std::vector<qmf> own(channels);
    audio in(channels, bench::noise(channels * samples, 1));
    audio out(channels, bench::placed<float>(channels * samples));
    for (uint32_t c = 0; c < channels; ++c) own[c].analyse(in.channel(c));
    bench::repeat(state, [&] {
      for (uint32_t c = 0; c < channels; ++c) {
        if (h.analysis) own[c].analyse(in.channel(c));
        if (h.synthesis) own[c].synthesise(out.channel(c));
      }
      return channels * samples;
    });
  });
}

[[maybe_unused]] const bool enrolled = [] {
  enroll_qmf();
  enroll_stages();
  for (const half &h :
       {half{"", true, true}, half{"-analysis", true, false}, half{"-synthesis", false, true}})
    for (const uint32_t channels : {1, 8}) enroll_mfb(h, channels);
  return true;
}();

}  // namespace
