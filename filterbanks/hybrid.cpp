// The hybrid bank: short complex filters over the lowest bands, by a fold and a short transform.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/carve.h"
#include "core/complex.h"
#include "mvk_hybrid.h"
#include "mvk_kernels.h"

using namespace mvk;

static_assert(sizeof(mvk_hybrid_analysisCL_state) == 32);
static_assert(sizeof(mvk_hybrid_synthesisCL_state) == 8);

const float mvk_hyb_p8_13[13] = {-0.0074608293f, -0.0227042101f, -0.0454686582f, -0.0726611391f,
                                 -0.0988510847f, 0.1179371029f,  0.125f,         0.1179371029f,
                                 0.0988510847f,  0.0726611391f,  0.0454686582f,  0.0227042101f,
                                 0.0074608293f};
const float mvk_hyb_p4_13[13] = {-0.0030515192f, 0.0079486230f,  0.0f,  -0.0431892388f,
                                 -0.1254244894f, 0.2122780681f,  0.25f, 0.2122780681f,
                                 0.1254244894f,  -0.0431892388f, 0.0f,  0.0079486230f,
                                 0.0030515192f};
const float mvk_hyb_p2_6[6] = {0.0189948753f, -0.0729313940f, 0.3059663177f,
                               0.3059663177f, -0.0729313940f, 0.0189948753f};

namespace {

constexpr int taps = 13, middle = 6, bands = 3;
constexpr std::size_t line = 2 * taps;  // floats of a band's history

// exp(i pi r / 8); every second one serves for 4 sub-bands.
constexpr cpx<float> turns[] = {
    {1.0f, 0.0f}, {0.9238795f, 0.38268343f},  {0.70710677f, 0.70710677f}, {0.38268343f, 0.9238795f},
    {0.0f, 1.0f}, {-0.38268343f, 0.9238795f}, {-0.70710677f, 0.70710677f}};

// The sample `age` calls old.
cpx<float> sample(const float *history, int age) {
  return load_complex<float>(history + 2 * (taps - 1 - age));
}

// N sub-bands, at w = (2 q + 1) pi / N for q below N. With n - 6 = r modulo N, a tap's turn
// exp(i w (n - 6)) is exp(i pi r / N) exp(2 pi i q r / N) but for a sign, which the stored taps
// carry; at r = N - 1 that leaves exp(-i pi / N). So samples are folded by r, turned, and
// transformed back.
template <int N>
void split(float *out, const float *filter, const float *history, const mvk_fft_pair *inverse) {
  float folded[2 * N];
  for (int r = 0; r < N; ++r) {
    cpx<float> sum = {0, 0};
    for (int n = (r + middle) % N; n < taps; n += N) {
      const cpx<float> x = sample(history, n);
      sum = {fma(filter[n], x.re, sum.re), fma(filter[n], x.im, sum.im)};
    }
    const cpx<float> turn = turns[8 / N * (r < N - 1 ? r : 1)];
    store_complex(folded + 2 * r, sum * (r < N - 1 ? turn : cpx<float>{turn.re, -turn.im}));
  }
  inverse->unscaled(out, folded, N);
}

void mvk_hybrid_analysis_p4(const mvk_hybrid_analysisCL_state &s, const float *history,
                            float *out) {
  split<4>(out, mvk_hyb_p4_13, history, s.pair4);
}

// The low and the high half of a band.
void halve(const float *history, float *out) {
  cpx<float> odd = {0, 0};
  for (int i = 0; i < 6; ++i) {
    const cpx<float> x = sample(history, 2 * i + 1);
    odd = {fma(mvk_hyb_p2_6[i], x.re, odd.re), fma(mvk_hyb_p2_6[i], x.im, odd.im)};
  }
  const cpx<float> x = sample(history, middle), even = {0.5f * x.re, 0.5f * x.im};
  store_complex(out, even + odd);
  store_complex(out + 2, even - odd);
}

// ---- Which sub-band stands where ----------------------------------------------

// What goes to a place of the output: the sub-band of the plain order, the band that it is of, and
// whether it is conjugated.
struct place {
  std::uint8_t source, band;
  bool conjugated = false;
};

constexpr place halves_order[10] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0},
                                    {5, 0}, {6, 1}, {7, 1}, {8, 2}, {9, 2}};
constexpr place plain_order[16] = {{0, 0},  {1, 0},  {2, 0},  {3, 0}, {4, 0},  {5, 0},
                                   {6, 0},  {7, 0},  {8, 1},  {9, 1}, {10, 1}, {11, 1},
                                   {12, 2}, {13, 2}, {14, 2}, {15, 2}};
constexpr place frequency_order[16] = {
    {0, 0},  {7, 0, true}, {1, 0},  {6, 0, true}, {2, 0}, {9, 1},  {3, 0},  {4, 0},
    {10, 1}, {5, 0},       {11, 1}, {15, 2},      {8, 1}, {12, 2}, {13, 2}, {14, 2}};

cpx<float> conjugated_if(bool conjugated, cpx<float> z) {
  return {z.re, conjugated ? -z.im : z.im};
}

}  // namespace

// ---- Analysis -----------------------------------------------------------------

void MVK_CLhybrid_analysisCL(mvk_hybrid_analysisCL_state *record, float *out, const float *in) {
  const mvk_hybrid_analysisCL_state &s = *record;
  float *const low = s.history, *const mid = low + line, *const high = mid + line;
  std::memmove(low, low + 2, (bands * line - 2) * sizeof(float));
  for (int b = 0; b < bands; ++b)
    store_complex(low + (b + 1) * line - 2, load_complex<float>(in + 2 * b));

  if (s.mode == MVK_HYBRID_MODE_1) {
    float sub_bands[32];
    float *const y = s.reorder ? sub_bands : out;
    split<8>(y, mvk_hyb_p8_13, low, s.pair8);
    mvk_hybrid_analysis_p4(s, mid, y + 16);
    mvk_hybrid_analysis_p4(s, high, y + 24);
    if (!s.reorder) return;
    for (const place &p : frequency_order) {
      store_complex(out, conjugated_if(p.conjugated, load_complex<float>(y + 2 * p.source)));
      out += 2;
    }
    return;
  }

  // Of the middle of band 0, what is of opposite frequencies stays together.
  float eighths[16];
  split<8>(eighths, mvk_hyb_p8_13, low, s.pair8);
  const auto y = [&](int q) { return load_complex<float>(eighths + 2 * q); };
  store_complex(out, y(0));
  store_complex(out + 2, y(1));
  store_complex(out + 4, y(2) + y(5));
  store_complex(out + 6, y(3) + y(4));
  store_complex(out + 8, y(6));
  store_complex(out + 10, y(7));
  halve(mid, out + 12);
  halve(high, out + 16);
}

uint32_t MVK_hybrid_analysisCL_query_mem(uint32_t, uint32_t *state_bytes, uint32_t *scratch_bytes,
                                         uint32_t *record_bytes) {
  *state_bytes = bands * line * sizeof(float) + 31;
  *scratch_bytes = 0;
  return *record_bytes = sizeof(mvk_hybrid_analysisCL_state) + 7;
}

mvk_hybrid_analysisCL_state *MVK_hybrid_analysisCL_open(uint32_t flags, void *state_mem, void *,
                                                        void *record_mem) {
  if (flags & MVK_HYBRID_UNSUPPORTED) return nullptr;
  auto *const s = carver(record_mem).take<mvk_hybrid_analysisCL_state>(1, 8);
  const auto inverse_pair = [](std::uint32_t n) {
    const mvk_fft_pair *const pair = MVK_r8_cplx_inv_pair(n);
    return pair ? pair : MVK_r4_cplx_inv_pair(n);
  };
  *s = {flags & 3, flags & MVK_HYBRID_REORDER, carver(state_mem).take<float>(bands * line, 32),
        inverse_pair(4), inverse_pair(8)};
  MVK_hybrid_analysisCL_init(s);
  return s;
}

void MVK_hybrid_analysisCL_init(mvk_hybrid_analysisCL_state *record) {
  std::fill_n(record->history, bands * line, 0.0f);
}

uint32_t MVK_hybrid_analysisCL_get_delay() { return middle; }

uint32_t MVK_hybrid_analysisCL_get_scale(const mvk_hybrid_analysisCL_state *record) {
  return mvk_vec_UnormLU_flex(record->history, bands * line);
}

void MVK_hybrid_analysisCL_shl(mvk_hybrid_analysisCL_state *record, int32_t shift) {
  mvk_vec_LshlLIU_inplace_flex(record->history, shift, bands * line);
}

void MVK_hybrid_analysisCL_close(mvk_hybrid_analysisCL_state *) {}

// ---- Synthesis ----------------------------------------------------------------

namespace {

template <std::size_t N>
void add_up(float *out, const float *in, const place (&order)[N]) {
  std::fill_n(out, 2 * bands, 0.0f);
  for (const place &p : order) {
    float *const band = out + 2 * p.band;
    store_complex(band,
                  load_complex<float>(band) + conjugated_if(p.conjugated, load_complex<float>(in)));
    in += 2;
  }
}

}  // namespace

void MVK_CLhybrid_synthesisCL(mvk_hybrid_synthesisCL_state *record, float *out, const float *in) {
  if (record->mode != MVK_HYBRID_MODE_1)
    add_up(out, in, halves_order);
  else if (record->reorder)
    add_up(out, in, frequency_order);
  else
    add_up(out, in, plain_order);
}

uint32_t MVK_hybrid_synthesisCL_query_mem(uint32_t, uint32_t *state_bytes, uint32_t *scratch_bytes,
                                          uint32_t *record_bytes) {
  *state_bytes = *scratch_bytes = 0;
  return *record_bytes = sizeof(mvk_hybrid_synthesisCL_state) + 7;
}

mvk_hybrid_synthesisCL_state *MVK_hybrid_synthesisCL_open(uint32_t flags, void *, void *,
                                                          void *record_mem) {
  if (flags & MVK_HYBRID_UNSUPPORTED) return nullptr;
  auto *const s = carver(record_mem).take<mvk_hybrid_synthesisCL_state>(1, 8);
  *s = {flags & 3, flags & MVK_HYBRID_REORDER};
  return s;
}

void MVK_hybrid_synthesisCL_init(mvk_hybrid_synthesisCL_state *) {}
uint32_t MVK_hybrid_synthesisCL_get_delay() { return middle; }
void MVK_hybrid_synthesisCL_close(mvk_hybrid_synthesisCL_state *) {}
