/* The library's peak limiter, for interleaved audio. */
#ifndef MVK_TOOLS_LIMITER_H
#define MVK_TOOLS_LIMITER_H

#include <cstddef>
#include <string>
#include <vector>

#include "library.h"
#include "orvane_ht_ztlim.h"

namespace mvk {

/* The entry points that are in use here. */
struct LimiterFunctions {
  explicit LimiterFunctions(const Library &library);

  decltype(orvane_ht_ztlim_query_memory) *query_memory;
  decltype(orvane_ht_ztlim_init) *init;
  decltype(orvane_ht_ztlim_set_num_channels) *set_num_channels;
  decltype(orvane_ht_ztlim_set_sample_rate) *set_sample_rate;
  decltype(orvane_ht_ztlim_set_block_size) *set_block_size;
  decltype(orvane_ht_ztlim_set_peak) *set_peak;
  decltype(orvane_ht_ztlim_set_boost) *set_boost;
  decltype(orvane_ht_ztlim_set_hard_clip) *set_hard_clip;
  decltype(orvane_ht_ztlim_set_enable) *set_enable;
  decltype(orvane_ht_ztlim_get_latency) *get_latency;
  decltype(orvane_ht_ztlim_get_limiter_gain) *get_limiter_gain;
  decltype(orvane_ht_ztlim_process_indirect) *process_indirect;
};

struct LimiterSettings {
  float peak;   // ahead of the boost
  float boost;  // 1 is unity
  unsigned sub_block;
  bool hard_clip;  // takes audio of any rate
};

struct LimiterAudio {
  std::string name;  // for messages
  int rate;
  int channels;
  int detect_channels;  // 0: the audio itself decides its gain
};

/* An instance of the limiter, fed with one sub-block at a time. */
class Limiter {
 public:
  /* Refuses a sub-block or a rate that the library doesn't serve. */
  Limiter(const Library &library, const LimiterSettings &settings, const LimiterAudio &audio);

  /* Samples that aren't finite are taken for silence. */
  void process(const float *in, const float *detect, float *out);

  /* Frames by which the output is late. */
  std::size_t latency() const { return functions_.get_latency(state_); }

  /* What the cross-fade over the latest output came to, without the boost. */
  float gain() const { return functions_.get_limiter_gain(state_); }

 private:
  /* A sub-block with its channels one after another. */
  struct Planes {
    Planes(std::size_t frames, int count);
    void take(const float *interleaved);
    void give(float *interleaved) const;

    std::vector<float> samples;
    std::vector<float *> channels;
  };

  LimiterFunctions functions_;
  std::vector<char> memory_;
  orvane_ht_ztlim_state *state_;
  Planes audio_;
  Planes detect_;
};

}  // namespace mvk

#endif
