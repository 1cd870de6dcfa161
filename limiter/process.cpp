// The limiter's signal path.
#include <cstddef>
#include <cstdint>

#include "core/loop.h"
#include "core/strided.h"
#include "kernels/peak.h"
#include "limiter/gain.h"
#include "limiter/state.h"
#include "mvk_kernels.h"

using namespace mvk;

namespace {

constexpr std::size_t max_sub_block = 256;

// A sub-block's samples of one channel.
struct samples {
  float *start;
  std::size_t stride, n;

  bool is_contiguous() const { return stride == 1; }
  std::size_t step() const { return stride * sizeof(float); }
};

// Channels a sample apart, each at a stride of their number: one run of samples.
bool is_interleaved(float *const *channels, std::size_t count, std::size_t stride) {
  if (count != stride || count == 0) return false;
  for (std::size_t c = 0; c < count; ++c)
    if (!channels[c] || channels[c] != channels[0] + c) return false;
  return true;
}

// ---- Peak ---------------------------------------------------------------------

float contiguous_peak(const float *x, std::uint32_t n) {
  const bool aligned = reinterpret_cast<std::uintptr_t>(x) % 32 == 0;
  return aligned ? MVK_vec_Labs_maxLU_strict(x, n) : mvk_vec_Labs_maxLU_flex(x, n);
}

// The peak so far, and on over a strided channel.
//
// By definition this is a walk by greater_of, from which a NaN emerges as if the walk
// began behind it. The order counts for NaNs and for the sign of a zero only.
float strided_peak(float peak, samples in) {
  for (std::size_t i = 0; i < in.n; ++i) {
    const float x = in.start[i * in.stride];
    peak = greater_of(peak, greater_of(-x, x));
  }
  return peak;
}
float gathered_peak(float peak, samples in) {
  alignas(32) float x[max_sub_block];
  gather(x, in.start, in.step(), in.n);
  const float largest = largest_magnitude(x, in.n);
  return largest > 0 ? greater_of(peak, largest) : strided_peak(peak, {x, 1, in.n});
}

// Of the sub-block of n frames that begins at frame `first`.
float find_peak(float **detect, std::uint32_t channels, std::size_t stride, std::size_t first,
                std::uint32_t n) {
  float peak = 0;
  if (stride != 1 && is_interleaved(detect, channels, stride)) {
    const float largest = largest_magnitude(detect[0] + first * stride, n * stride);
    if (largest > 0) return largest;
  }
  for (std::uint32_t c = 0; c < channels; ++c) {
    if (!detect[c]) continue;
    float *const start = detect[c] + first * stride;
    peak = stride == 1 ? greater_of(contiguous_peak(start, n), peak)
                       : gathered_peak(peak, {start, stride, n});
  }
  return peak;
}

// ---- Limiting -----------------------------------------------------------------

// All inlined: passed in memory, the gains would come late.

// A fade from one gain to another across a sub-block.
struct fade {
  const float *window;
  std::size_t n;
  float from, to;

  // The faded samples d at i.
  f32x8 operator()(f32x8 d, std::size_t i) const {
    const f32x8 rising = load<f32x8>(window + i);
    const f32x8 falling = load_descending<f32x8>(window + n - 1 - i);
    return fma(falling, f32x8(from) * d, (f32x8(to) * d) * rising) * boost_unit;
  }
};

// The samples that the delay gives for x at i.
f32x8 exchange(float *delay, f32x8 x) {
  const f32x8 d = load<f32x8>(delay);
  store(delay, x);
  return d;
}

// y may be x. A step of eight is two loads and two stores for the signal, two loads for
// the window and five operations.
[[gnu::always_inline]] inline void limit_contiguous(float *y, const float *x, float *delay,
                                                    fade f) {
  for (std::size_t i = 0; i < f.n; i += lanes<f32x8>)
    store(y + i, f(exchange(delay + i, load<f32x8>(x + i)), i));
}

[[gnu::always_inline]] inline void limit_stereo(float *y, const float *x, float *delay, fade f) {
  for (std::size_t i = 0; i < f.n; i += lanes<f32x8>, x += 16, y += 16) {
    const auto [left, right] = deinterleave(load<f32x8>(x), load<f32x8>(x + 8));
    const auto [lo, hi] =
        interleave(f(exchange(delay + i, left), i), f(exchange(delay + f.n + i, right), i));
    store(y, lo);
    store(y + 8, hi);
  }
}

[[gnu::always_inline]] inline void limit_channel(samples out, samples in, float *delay, fade f) {
  alignas(32) float staged[max_sub_block];
  const float *x = in.start;
  if (!in.is_contiguous()) {
    gather(staged, in.start, in.step(), in.n);
    x = staged;
  }
  float *const y = out.is_contiguous() ? out.start : staged;
  limit_contiguous(y, x, delay, f);
  if (!out.is_contiguous()) scatter(out.start, out.step(), staged, out.n);
}

// ---- Clipping -----------------------------------------------------------------

// Whole blocks of 32 samples take both gains in one product, others one after another.
void clip_blocks(float *y, const float *x, std::size_t n, float peak, float boost) {
  const float gain = boost * boost_unit;
  counted(n, [&]<class V>(std::size_t i) {
    store(y + i, max_propagating(lesser_of(load<V>(x + i), V(peak)), V(-peak)) * gain);
  });
}

void clip_strided(samples out, samples in, float peak, float boost) {
  for (std::size_t i = 0; i < in.n; ++i) {
    const float below = lesser_of(in.start[i * in.stride], peak);
    out.start[i * out.stride] = (greater_of(-peak, below) * boost) * boost_unit;
  }
}

void clip(const orvane_ht_ztlim_state &s, float **out, float **in, std::size_t in_stride,
          std::size_t out_stride) {
  const std::size_t n = s.block_size;
  const bool blocks = in_stride == 1 && out_stride == 1 && s.sub_block != 40;
  for (std::uint32_t c = 0; c < s.num_channels; ++c)
    if (blocks)
      clip_blocks(out[c], in[c], n, s.peak, s.boost);
    else
      clip_strided({out[c], out_stride, n}, {in[c], in_stride, n}, s.peak, s.boost);
}

}  // namespace

void orvane_ht_ztlim_process(orvane_ht_ztlim_state *s, float **out, float **in, uint64_t in_stride,
                             uint64_t out_stride) {
  orvane_ht_ztlim_process_indirect(s, out, in, in, in_stride, out_stride, s->num_channels);
}

void orvane_ht_ztlim_process_indirect(orvane_ht_ztlim_state *s, float **out, float **detect,
                                      float **in, uint64_t in_stride, uint64_t out_stride,
                                      unsigned detect_channels) {
  if (!s->enable) return;
  if (s->hard_clip) return clip(*s, out, in, in_stride, out_stride);

  const std::uint32_t n = s->sub_block, channels = s->num_channels;
  const bool stereo = is_interleaved(in, channels, in_stride) &&
                      is_interleaved(out, channels, out_stride) && channels == 2;
  for (std::size_t block = 0, first = 0; block < s->num_sub_blocks; ++block, first += n) {
    update_gain(*s, find_peak(detect, detect_channels, in_stride, first, n));
    const fade f = {s->window, n, s->prev_gain * s->prev_boost, s->gain * s->boost};
    if (stereo)
      limit_stereo(out[0] + first * out_stride, in[0] + first * in_stride, s->delay, f);
    else
      for (std::uint32_t c = 0; c < channels; ++c)
        if (in[c])
          limit_channel({out[c] + first * out_stride, out_stride, n},
                        {in[c] + first * in_stride, in_stride, n}, s->delay + std::size_t{c} * n,
                        f);
    s->prev_boost = s->boost;
  }
}
