// The resampler: its arena and its block entry points.
#include "orvane_resampler.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "component/polyphase.h"
#include "core/carve.h"
#include "core/strided.h"

namespace {

constexpr unsigned max_channels = 35;

using history = float[mvk::history_length];

}  // namespace

// The head of the arena; the work buffer and the coefficients follow it.
struct orvane_resampler {
  std::uint32_t channels;
  std::uint32_t factor;
  std::int32_t upsampling;
  std::uint64_t in_block_frames;
  std::uint64_t out_block_frames;
  history two_phases[max_channels][2];   // going up: the first run only
  history four_phases[max_channels][4];  // going down by 4
  float *coefficients[6];                // 2x phases 0 and 1, 4x phases 0 to 3
  orvane_stream_desc work;               // the input as floats, interleaved
  void *work_channels[max_channels];
};

namespace {

using mvk::are_apart;
using mvk::as_array_of;
using mvk::history_length;
using mvk::is_array_of;
using mvk::phase_samples;
using mvk::strided;
using mvk::window_length;

constexpr std::size_t alignment = 32;
constexpr int first_windows = 32;  // a step of the filters, longer than what a window looks back
constexpr std::uint64_t arena_overhead = 20536;

// The arena stays within the queried size wherever it starts: two alignments
// at the most lie between its pieces.
static_assert(sizeof(orvane_resampler) + 6 * sizeof(float[mvk::phase_slots]) +
                  2 * (alignment - 1) <=
              arena_overhead);

constexpr const float *phase_vectors[6] = {
    orvane_resampler_2x_ph0_vec, orvane_resampler_2x_ph1_vec, orvane_resampler_4x_ph0_vec,
    orvane_resampler_4x_ph1_vec, orvane_resampler_4x_ph2_vec, orvane_resampler_4x_ph3_vec};

struct block_size {
  std::uint64_t in, out;
};

block_size block_frames(unsigned factor, bool upsampling) {
  const std::uint64_t high = RESAMP_PROCESSING_BLK_SIZE;
  const std::uint64_t low = factor ? high / factor : 0;
  return upsampling ? block_size{low, high} : block_size{high, low};
}

// The samples of one channel of floats.
strided float_channel(const orvane_stream_desc &stream, unsigned c) {
  return {static_cast<char *>(stream.channel_ptrs[c]), stream.stride * sizeof(float)};
}

// Runs filter(y) so that its n results end up in the channel: at once where the
// channel is an array, else by way of the stack.
template <int n, class Filter>
void write_channel(strided out, Filter filter) {
  if (is_array_of<float>(out)) return filter(as_array_of<float>(out));
  alignas(alignment) float y[n];
  filter(y);
  mvk::scatter(out.start, out.step, y, n);
}

template <int F>
const float *const *phases(const orvane_resampler &r) {
  return r.coefficients + (F == 2 ? 0 : 2);
}

template <int F>
void upsample(orvane_resampler &r, const orvane_stream_desc &in, const orvane_stream_desc &out) {
  constexpr int n = phase_samples<F>;
  for (unsigned c = 0; c < r.channels; ++c) {
    history &past = r.two_phases[c][0];
    const strided x = float_channel(in, c), y = float_channel(out, c);
    // Only the first windows reach into the past. The others can lie in the input, unless it is
    // written over while they are in use.
    const bool in_input = is_array_of<float>(x) && are_apart(x, n, y, F * n);
    const int copied = in_input ? first_windows : n;
    alignas(alignment) float window[window_length<F>];
    std::memcpy(window, past, sizeof past);
    mvk::gather(window + history_length, x.start, x.step, copied);
    std::memcpy(past, in_input ? as_array_of<float>(x) + n - history_length : window + n,
                sizeof past);
    write_channel<F * n>(y, [&](float *to) {
      mvk::interpolate<F>(to, window, phases<F>(r), copied);
      if (in_input)
        mvk::interpolate<F>(to + F * copied, as_array_of<float>(x) + copied - history_length,
                            phases<F>(r), n - copied);
    });
  }
}

template <int F>
void downsample(orvane_resampler &r, const orvane_stream_desc &in, const orvane_stream_desc &out) {
  constexpr int n = phase_samples<F>;
  for (unsigned c = 0; c < r.channels; ++c) {
    history *pasts = F == 2 ? r.two_phases[c] : r.four_phases[c];
    const strided x = float_channel(in, c);
    alignas(alignment) float windows[F][window_length<F>];
    if (is_array_of<float>(x))
      mvk::split_phases(windows, as_array_of<float>(x));
    else
      for (int p = 0; p < F; ++p)
        mvk::gather(windows[p] + history_length, x.start + p * x.step, F * x.step, n);
    for (int p = 0; p < F; ++p) {
      std::memcpy(windows[p], pasts[p], sizeof *pasts);
      std::memcpy(pasts[p], windows[p] + n, sizeof *pasts);
    }
    // The input's step, also for the output.
    write_channel<n>({float_channel(out, c).start, x.step},
                     [&](float *y) { mvk::decimate<F>(y, windows, phases<F>(r)); });
  }
}

using kernel = void(orvane_resampler &, const orvane_stream_desc &, const orvane_stream_desc &);

// Passes one block through the kernel, if the factor has one, with conversion on
// either side of it unless the input is the engine's own type. The kernel's
// floats are staged in the output's memory.
std::uint64_t process(kernel *by_2, kernel *by_4, orvane_stream_desc *out, orvane_stream_desc *in,
                      orvane_resampler *r) {
  if (!out || !in) return 0;
  if (r->factor == 1) return orvane_resampler_passthrough(out, in, r);

  orvane_stream_desc staged = *out;
  staged.datatype = DT_LONG;
  const bool converts = in->datatype != DT_LONG;
  if (converts)
    orvane_stream_convert(in, &r->work, 0, 0, static_cast<unsigned>(r->in_block_frames), 0);
  const orvane_stream_desc &floats = converts ? r->work : *in;
  if (r->factor == 2) by_2(*r, floats, staged);
  if (r->factor == 4) by_4(*r, floats, staged);
  if (converts)
    orvane_stream_convert(&staged, out, 0, 0, static_cast<unsigned>(r->out_block_frames), 0);
  return r->out_block_frames;
}

}  // namespace

const std::uint64_t RESAMP_PROCESSING_BLK_SIZE = 256;

std::uint64_t orvane_resampler_query(unsigned factor, int channels, int upsampling) {
  if (channels < 1 || channels > static_cast<int>(max_channels)) return 0;
  const std::uint64_t work_samples =
      block_frames(factor, upsampling != 0).in * static_cast<unsigned>(channels);
  return arena_overhead + sizeof(float) * work_samples;
}

orvane_resampler *orvane_resampler_init(unsigned factor, unsigned channels, int upsampling,
                                        void *mem) {
  if (!mem || channels < 1 || channels > max_channels) return nullptr;
  const block_size frames = block_frames(factor, upsampling != 0);

  mvk::carver arena(mem);
  auto *r = arena.take<orvane_resampler>(1, alignment);
  auto *work = arena.take<float>(frames.in * channels, alignment);
  auto *coefficients = arena.take<float[mvk::phase_slots]>(6, alignment);

  std::memset(r, 0, sizeof *r);
  r->channels = channels;
  r->factor = factor;
  r->upsampling = upsampling;
  r->in_block_frames = frames.in;
  r->out_block_frames = frames.out;
  r->work = {channels, channels, DT_LONG, r->work_channels};
  for (unsigned c = 0; c < channels; ++c) r->work_channels[c] = work + c;
  for (int p = 0; p < 6; ++p) {
    std::memcpy(coefficients[p], phase_vectors[p], sizeof coefficients[p]);
    r->coefficients[p] = coefficients[p];
  }
  return r;
}

void orvane_resampler_get_processing_block_size(const orvane_resampler *handle,
                                                std::uint64_t *in_frames,
                                                std::uint64_t *out_frames) {
  const block_size frames = block_frames(handle->factor, handle->upsampling != 0);
  *in_frames = frames.in;
  *out_frames = frames.out;
}

std::uint32_t orvane_resampler_get_output_latency(const orvane_resampler *handle) {
  if (handle->factor == 1) return 0;
  if (!handle->upsampling) return 13;
  return handle->factor == 2 ? 27 : 54;
}

std::uint64_t orvane_resampler_upsample(orvane_stream_desc *out, orvane_stream_desc *in,
                                        orvane_resampler *handle) {
  return process(upsample<2>, upsample<4>, out, in, handle);
}

std::uint64_t orvane_resampler_downsample(orvane_stream_desc *out, orvane_stream_desc *in,
                                          orvane_resampler *handle) {
  return process(downsample<2>, downsample<4>, out, in, handle);
}

std::uint64_t orvane_resampler_passthrough(orvane_stream_desc *out, orvane_stream_desc *in,
                                           orvane_resampler *handle) {
  if (!out || !in || !handle) return 0;
  const std::uint64_t samples = std::max<std::uint64_t>(in->nchannels, in->stride);
  std::memmove(out->channel_ptrs[0], in->channel_ptrs[0],
               samples * handle->in_block_frames * sizeof(float));
  return handle->out_block_frames;
}
