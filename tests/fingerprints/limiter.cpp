// The limiter.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "limiter/limiter_pair.h"

namespace testing_support {
namespace {

constexpr uint32_t kSubBlocks[] = {32, 40, 64, 128, 256};
constexpr uint32_t kRates[] = {192000, 176400, 96000, 88200, 64000, 48000, 44100, 32000, 24000};
constexpr uint32_t kMostChannels = 3;

// All of the state that isn't an address, and what its addresses lead to.
void AddState(Digest &digest, const LibraryLimiter &limiter) {
  const LimiterRecord record = limiter.Record();
  for (uint32_t x : {record.enable, record.hard_clip, record.num_channels, record.max_channels,
                     record.sample_rate, record.block_size, record.sub_block, record.hold_index,
                     record.hold_length, record.num_sub_blocks}) {
    digest.Integer(x);
  }
  for (float x : {record.peak, record.boost, record.prev_boost, record.last_peak, record.prev_gain,
                  record.slow_gain, record.gain, record.fast_gain}) {
    digest.Number(x);
  }
  digest.Integer(record.coefs != nullptr);
  if (record.coefs != nullptr) digest.Numbers(record.coefs, 6);
  digest.Numbers(record.window, record.sub_block);
  digest.Numbers(limiter.HoldBuffer());
  digest.Numbers(limiter.Delay());
}

// Limits at every served rate, and clips.
template <typename Run>
void ForEachSetting(Run run) {
  for (uint32_t sub_block : kSubBlocks) {
    for (uint32_t rate : kRates) {
      LibraryLimiter limiter(kMostChannels, sub_block);
      if (orvane_ht_ztlim_set_sample_rate(limiter.handle(), rate) != 0) continue;
      orvane_ht_ztlim_set_num_channels(limiter.handle(), kMostChannels);
      orvane_ht_ztlim_set_block_size(limiter.handle(), 2 * sub_block);
      orvane_ht_ztlim_set_peak(limiter.handle(), 0.3f);
      orvane_ht_ztlim_set_boost(limiter.handle(), 1.5f / 256, 2.5f / 256);
      orvane_ht_ztlim_set_hard_clip(limiter.handle(), rate == 88200);
      orvane_ht_ztlim_set_enable(limiter.handle(), 1);
      run(limiter);
    }
  }
}

// Blocks that are loud, silent and of a wide range, interleaved and apart.
void AddBlocks(Digest &digest, LibraryLimiter &limiter, bool indirect) {
  const Material kLoudness[] = {kUniform, kGentle, kFinite, kFew, kUniform};
  const uint32_t frames = orvane_ht_ztlim_get_block_size(limiter.handle());
  for (uint32_t stride : {1u, kMostChannels}) {
    for (const Material &material : kLoudness) {
      Corpus corpus(material, frames);
      const size_t step = stride == 1 ? frames : 1;
      GuardedFloats in(corpus.Copy(size_t{frames} * kMostChannels), 1);
      GuardedFloats side(corpus.Copy(size_t{frames} * stride), 3);
      GuardedFloats out(in.size(), 2);
      float *ins[kMostChannels], *outs[kMostChannels];
      for (uint32_t c = 0; c < kMostChannels; ++c) {
        ins[c] = in.data() + c * step;
        outs[c] = out.data() + c * step;
      }
      if (indirect) {
        float *sides[] = {side.data(), nullptr};
        orvane_ht_ztlim_process_indirect(limiter.handle(), outs, sides, ins, stride, stride, 2);
      } else {
        orvane_ht_ztlim_process(limiter.handle(), outs, ins, stride, stride);
      }
      digest.Numbers(out.values());
      digest.Number(orvane_ht_ztlim_get_limiter_gain(limiter.handle()));
    }
  }
  AddState(digest, limiter);
}

// A setter with values that it takes and such that it refuses, each followed by the state.
template <typename Value, typename Call>
void AddSettings(Digest &digest, std::initializer_list<Value> values, Call call) {
  for (uint32_t sub_block : kSubBlocks) {
    LibraryLimiter limiter(kMostChannels, sub_block);
    for (Value value : values) {
      digest.Integer(static_cast<uint64_t>(call(limiter.handle(), value)));
      AddState(digest, limiter);
    }
  }
}

// A getter over the settings, before and after they have been in use.
template <typename Get>
void AddAnswers(Digest &digest, Get get) {
  ForEachSetting([&](LibraryLimiter &limiter) {
    for (int enable : {0, 1, 1}) {
      orvane_ht_ztlim_set_enable(limiter.handle(), enable);
      if constexpr (std::is_same_v<decltype(get(limiter.handle())), float>) {
        digest.Number(get(limiter.handle()));
      } else {
        digest.Integer(static_cast<uint64_t>(get(limiter.handle())));
      }
      Digest unused;
      AddBlocks(unused, limiter, false);
    }
  });
}

void AddQueries(Digest &digest) {
  for (unsigned channels : {0u, 1u, 2u, 35u}) {
    for (unsigned sub_block : {0u, 31u, 32u, 40u, 48u, 64u, 128u, 256u, 512u}) {
      uint64_t parts[2] = {};
      digest.Integer(orvane_ht_ztlim_query_memory(channels, &parts[0], &parts[1], sub_block));
      digest.Integer(parts[0]);
      digest.Integer(parts[1]);
      digest.Integer(orvane_ht_ztlim_query_memory(channels, nullptr, nullptr, sub_block));
    }
  }
}

void AddInit(Digest &digest) {
  for (uint32_t sub_block : kSubBlocks) {
    for (DelayPlace place : {DelayPlace::kBehindState, DelayPlace::kApart}) {
      LibraryLimiter limiter(kMostChannels, sub_block, {place, 4, 20});
      AddState(digest, limiter);
      digest.Integer(static_cast<uint64_t>(reinterpret_cast<uint8_t *>(limiter.handle()) -
                                           limiter.state_memory().data()));
      digest.Integer(
          static_cast<uint64_t>(reinterpret_cast<const uint8_t *>(limiter.Delay().data()) -
                                limiter.delay_memory().data()));
    }
  }
  GuardedBytes memory(4096, 0);
  digest.Integer(orvane_ht_ztlim_init(1, 48, memory.data(), nullptr) != nullptr);
}

}  // namespace

void ListLimiter(Entries &entries) {
  MVK_ENTRY(orvane_ht_ztlim_query_memory, AddQueries);
  MVK_ENTRY(orvane_ht_ztlim_init, AddInit);
  MVK_ENTRY(orvane_ht_ztlim_reset_state, [](Digest &digest) {
    ForEachSetting([&](LibraryLimiter &limiter) {
      Digest unused;
      AddBlocks(unused, limiter, false);
      orvane_ht_ztlim_reset_state(limiter.handle());
      AddState(digest, limiter);
    });
  });
  MVK_ENTRY(orvane_ht_ztlim_process, [](Digest &digest) {
    ForEachSetting([&](LibraryLimiter &limiter) { AddBlocks(digest, limiter, false); });
  });
  MVK_ENTRY(orvane_ht_ztlim_process_indirect, [](Digest &digest) {
    ForEachSetting([&](LibraryLimiter &limiter) { AddBlocks(digest, limiter, true); });
  });

#define SETTER(name, ...)                                                                 \
  MVK_ENTRY(orvane_ht_ztlim_set_##name, [](Digest &digest) {                              \
    AddSettings(digest, {__VA_ARGS__}, [](orvane_ht_ztlim_state *state, auto value) {     \
      if constexpr (std::is_void_v<decltype(orvane_ht_ztlim_set_##name(state, value))>) { \
        orvane_ht_ztlim_set_##name(state, value);                                         \
        return 0;                                                                         \
      } else {                                                                            \
        return orvane_ht_ztlim_set_##name(state, value);                                  \
      }                                                                                   \
    });                                                                                   \
  });
  SETTER(enable, 1, 1, 0, 7)
  SETTER(peak, 0.5f, 0.0f, -2.0f, kInfinity)
  SETTER(hard_clip, 1, 0, -1)
  SETTER(sample_rate, 48000u, 192000u, 24000u, 11025u, 0u, 48000u)
  SETTER(block_size, 1024u, 1280u, 100u, 0u, 256u)
  SETTER(num_channels, 1u, 3u, 4u, 0u)
  MVK_ENTRY(orvane_ht_ztlim_set_boost, [](Digest &digest) {
    AddSettings(digest, {1.0f / 256, 0.1f, -3.0f}, [](auto *state, float boost) {
      orvane_ht_ztlim_set_boost(state, boost / 3, boost);
      return 0;
    });
  });

#define GETTER(name)                    \
  MVK_ENTRY(orvane_ht_ztlim_get_##name, \
            [](Digest &digest) { AddAnswers(digest, &orvane_ht_ztlim_get_##name); });
  GETTER(enable)
  GETTER(peak)
  GETTER(boost)
  GETTER(hard_clip)
  GETTER(sample_rate)
  GETTER(block_size)
  GETTER(num_channels)
  GETTER(limiter_gain)
  GETTER(latency)
  MVK_ENTRY(orvane_ht_ztlim_get_version, [](Digest &digest) {
    digest.Bytes(orvane_ht_ztlim_get_version(), sizeof(orvane_ht_ztlim_version));
  });
}

}  // namespace testing_support
