// The exported tables of sines and twiddles.
#include <bit>
#include <cstddef>

#include "core/tables.h"
#include "fft/packed_spectrum.h"
#include "fft/twiddles.h"
#include "mvk_fft.h"

using namespace mvk;

namespace {

constexpr int blocks = 1024;

// The low ten bits of i in the opposite order.
constexpr int mirrored(int i) {
  int m = 0;
  for (int bit = 1; bit < blocks; bit *= 2) m = 2 * m + (i & bit ? 1 : 0);
  return m;
}

// Rows of cosines and sines for powers 1, 2 and 3.
consteval table<6 * blocks> block_twiddles() {
  return make_table<6 * blocks>([](int entry) {
    const int row = entry / blocks, i = entry % blocks, power = row / 2 + 1;
    const long p = long{power} * mirrored(i);
    return row % 2 == 0 ? twiddle_cos<accuracy::full>(p, 4 * blocks)
                        : twiddle_sin<accuracy::full>(p, 4 * blocks);
  });
}

template <int L>
consteval table<L / 4 - 1> quarter_sine() {
  return make_table<L / 4 - 1>([](int i) { return static_cast<float>(sin_pi(2 * (i + 1), L)); });
}

}  // namespace

extern "C" constinit const table<6 *blocks> mvk_fft_twiddle_data = block_twiddles();
extern "C" MVK_API const float mvk_fft_twiddle[6][blocks]
    __attribute__((alias("mvk_fft_twiddle_data")));

MVK_EXPORT_TABLE(mvk_fft_real_sine, 6144,
                 make_table<6144>([](int i) { return static_cast<float>(sin_pi(i, 4096)); }));

#define MVK_QUARTER_SINE(L) MVK_EXPORT_TABLE(mvk_rfft_sine_##L, L / 4 - 1, quarter_sine<L>());
MVK_FFT_REAL_LENGTHS(MVK_QUARTER_SINE)

#define MVK_QUARTER_SINE_DATA(L) mvk_rfft_sine_##L##_data,

const float *mvk::quarter_sine(std::size_t n) {
  static constexpr const float *by_log2[] = {nullptr, nullptr,
                                             MVK_FFT_REAL_LENGTHS(MVK_QUARTER_SINE_DATA)};
  return by_log2[std::countr_zero(n)];
}
