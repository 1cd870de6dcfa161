// The start-up call, the power of one half and the arithmetic on times.
#include "mvk_services.h"

#include "core/tables.h"

using namespace mvk;

int MVK_dsplib_init() { return 0; }

// ---- Power of one half --------------------------------------------------------

namespace {

// 2^(-i / steps)
template <int N>
consteval table<N> powers(int steps) {
  return make_table<N>(
      [=](int i) { return static_cast<float>(exp2_negative(static_cast<double>(i) / steps)); });
}

constinit const table<8> fine = powers<8>(32768);
constinit const table<16> low = powers<16>(4096), middle = powers<16>(256), high = powers<16>(16);

}  // namespace

float MVK_Lpow05I16(uint16_t v) {
  return (low[v >> 3 & 15] * middle[v >> 7 & 15]) * (high[v >> 11 & 15] * fine[v & 7]);
}

// ---- Times --------------------------------------------------------------------

void MVK_time_init() {}
void MVK_time_end() {}
void MVK_time_reset(uint64_t *t) { *t = 0; }
uint64_t MVK_time_add(uint64_t a, uint64_t b) { return a + b; }
uint64_t MVK_time_sub(uint64_t a, uint64_t b) { return a - b; }
double MVK_time_div(uint64_t t, unsigned n) {
  return static_cast<double>(t) / static_cast<double>(n);
}
int MVK_time_lt(uint64_t a, uint64_t b) { return a < b; }
