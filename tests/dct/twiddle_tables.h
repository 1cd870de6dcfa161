// The exported twiddle tables of the cosine transforms.
#ifndef MVK_TESTS_DCT_TWIDDLE_TABLES_H_
#define MVK_TESTS_DCT_TWIDDLE_TABLES_H_

#include <cstddef>
#include <cstdint>
#include <span>

#define MVK_TWIDDLE_LENGTHS_UP_TO_60(DO) \
  DO(4) DO(8) DO(12) DO(15) DO(16) DO(24) DO(30) DO(32) DO(36) DO(45) DO(48) DO(60)
#define MVK_TWIDDLE_LENGTHS_UP_TO_320(DO) \
  DO(64)                                  \
  DO(72) DO(90) DO(96) DO(120) DO(128) DO(144) DO(180) DO(192) DO(240) DO(256) DO(288) DO(320)
#define MVK_TWIDDLE_LENGTHS_UP_TO_1024(DO) \
  DO(360) DO(384) DO(480) DO(512) DO(576) DO(720) DO(768) DO(960) DO(1024)
#define MVK_TWIDDLE_LENGTHS(DO)    \
  MVK_TWIDDLE_LENGTHS_UP_TO_60(DO) \
  MVK_TWIDDLE_LENGTHS_UP_TO_320(DO) MVK_TWIDDLE_LENGTHS_UP_TO_1024(DO)

// Sines and the halved pair, cosines, and the other forms.
#define MVK_SINE_LENGTHS(DO) DO(2) MVK_TWIDDLE_LENGTHS(DO)
#define MVK_COSINE_LENGTHS(DO) MVK_TWIDDLE_LENGTHS(DO) DO(640)
#define MVK_REVERSED_LENGTHS(DO) DO(2) MVK_COSINE_LENGTHS(DO)

namespace testing_support {

struct TwiddleTable {
  const char *name;
  uint32_t length;
  const float *entries;
  size_t bytes;
  long double (*rule)(uint32_t k, uint32_t n);
};

std::span<const TwiddleTable> TwiddleTables();

// mvk_dct_twiddle_table16_L<n>, or null.
const float *SineTable(uint32_t n);

}  // namespace testing_support

#endif
