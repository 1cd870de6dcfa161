#include "dct/twiddle_tables.h"

#include "mvk_dct.h"
#include "reference/fft_roots.h"

namespace testing_support {
namespace {

// Of the angle pi numerator / denominator.
long double Sine(uint64_t numerator, uint64_t denominator) {
  return reference::RootOfUnity<long double>(numerator, 2 * denominator).sine;
}
long double Cosine(uint64_t numerator, uint64_t denominator) {
  return reference::RootOfUnity<long double>(numerator, 2 * denominator).cosine;
}

#define ROW(table, n, value)                                                        \
  {#table, n, table, sizeof table, [](uint32_t k, uint32_t length) -> long double { \
     const uint64_t i = k, l = length;                                              \
     return value;                                                                  \
   }},
#define SINE(n) ROW(mvk_dct_twiddle_table16_L##n, n, Sine(i, 2 * l))
#define COSINE(n) ROW(mvk_dct_twiddle_table16_L##n##_cos, n, Cosine(i, 2 * l))
#define REVERSED(n) ROW(mvk_dct_twiddle_table16_rev_L##n, n, Cosine(i, 2 * l))
#define SINE_FROM_ONE(n) ROW(mvk_dct_twiddle_table16_1_L##n, n, Sine(i + 1, 2 * l))
#define COSINE_FROM_ONE(n) ROW(mvk_dct_twiddle_table16_rev_1_L##n, n, Cosine(i + 1, 2 * l))
#define HALF_SINE(n) ROW(mvk_dct_twiddle_table16_L##n##_1, n, Sine(4 * i + 1, 8 * l) / 2)
#define HALF_COSINE(n) ROW(mvk_dct_twiddle_table16_L##n##_2, n, Cosine(4 * i + 1, 8 * l) / 2)

const TwiddleTable kTables[] = {
    MVK_SINE_LENGTHS(SINE) MVK_COSINE_LENGTHS(COSINE) MVK_REVERSED_LENGTHS(REVERSED)
        MVK_REVERSED_LENGTHS(SINE_FROM_ONE) MVK_REVERSED_LENGTHS(COSINE_FROM_ONE)
            MVK_SINE_LENGTHS(HALF_SINE) MVK_SINE_LENGTHS(HALF_COSINE)};

}  // namespace

std::span<const TwiddleTable> TwiddleTables() { return kTables; }

const float *SineTable(uint32_t n) {
  switch (n) {
#define CASE(length) \
  case length:       \
    return mvk_dct_twiddle_table16_L##length;
    MVK_SINE_LENGTHS(CASE)
#undef CASE
    default:
      return nullptr;
  }
}

}  // namespace testing_support
