// The twiddle tables, each entry against its rule in wide arithmetic.
#include <gtest/gtest.h>

#include "dct/table_checks.h"
#include "dct/twiddle_tables.h"
#include "mvk_dct.h"

namespace testing_support {
namespace {

TEST(DctTables, AreOfTheirLengths) {
  EXPECT_EQ(TwiddleTables().size(), 3u * 35 + 35 + 3 * 36);
  for (const TwiddleTable &table : TwiddleTables()) {
    EXPECT_EQ(table.bytes, table.length * sizeof(float)) << table.name;
  }
}

TEST(DctTables, AreRoundedOnce) {
  for (const TwiddleTable &table : TwiddleTables()) {
    for (uint32_t k = 0; k < table.length; ++k) {
      EXPECT_TRUE(IsNearest(table.entries[k], table.rule(k, table.length)))
          << table.name << " at " << k;
    }
  }
}

TEST(DctTables, ReversedTablesAreTheOthersBackwards) {
#define BACKWARDS(n)                                             \
  for (int k = 0; k < n; ++k) {                                  \
    EXPECT_EQ(BitsOf(mvk_dct_twiddle_table16_rev_L##n[k]),       \
              BitsOf(mvk_dct_twiddle_table16_1_L##n[n - 1 - k])) \
        << n << " at " << k;                                     \
  }
  MVK_REVERSED_LENGTHS(BACKWARDS)
#undef BACKWARDS
}

TEST(DctTables, EndsAreTheseValues) {
  const auto expect = [](float got, float want) { EXPECT_EQ(BitsOf(got), BitsOf(want)) << got; };
  expect(mvk_dct_twiddle_table16_L2[0], 0.0f);
  expect(mvk_dct_twiddle_table16_L2[1], 0.70710678f);
  expect(mvk_dct_twiddle_table16_L4[3], 0.92387953f);
  expect(mvk_dct_twiddle_table16_L15[5], 0.5f);
  expect(mvk_dct_twiddle_table16_L4_cos[0], 1.0f);
  expect(mvk_dct_twiddle_table16_L640_cos[320], 0.70710678f);
  expect(mvk_dct_twiddle_table16_rev_L2[0], 1.0f);
  expect(mvk_dct_twiddle_table16_1_L2[1], 1.0f);
  expect(mvk_dct_twiddle_table16_rev_1_L2[1], 0.0f);
  expect(mvk_dct_twiddle_table16_rev_1_L640[639], 0.0f);
  expect(mvk_dct_twiddle_table16_L2_1[0], 0.09754516f);
  expect(mvk_dct_twiddle_table16_L2_2[0], 0.49039264f);
}

}  // namespace
}  // namespace testing_support
