// The tables of the modulation stage, each entry against its rule in wide arithmetic.
#include <gtest/gtest.h>

#include "dct/table_checks.h"
#include "mvk_qmf.h"
#include "reference/fft_roots.h"

namespace testing_support {
namespace {

struct Rule {
  long double c1, c2;
};

// sine and cosine of pi numerator / denominator
reference::Root<long double> RootOf(uint64_t numerator, uint64_t denominator) {
  return reference::RootOfUnity<long double>(numerator, 2 * denominator);
}

Rule Full(uint64_t j, uint64_t m) {
  const auto root = RootOf(j, 2 * m);
  return {j == 0 ? -0.0L : root.sine / 2, root.cosine / 2};
}

Rule FullScaled(uint64_t j, uint64_t m) {
  const Rule full = Full(j, m);
  const auto bands = static_cast<long double>(m);
  return {full.c1 / bands, full.c2 / bands};
}

Rule HalfSample(uint64_t j, uint64_t m) {
  const auto root = RootOf(2 * j + 1, 4 * m);
  return {root.sine, -root.cosine};
}

// (pi / M) (j + 1/2) (1 - M / 64) / 2
Rule Alignment(uint64_t j, uint64_t m) {
  const auto root = RootOf((2 * j + 1) * (64 - m), 256 * m);
  return {root.sine, root.cosine};
}

const struct {
  const char *name;
  const float *entries;
  size_t bytes;
  uint32_t bands;
  uint32_t pairs;
  Rule (*rule)(uint64_t j, uint64_t bands);
} kTables[] = {
#define TABLE(table, bands, pairs, rule) \
  { #table, table, sizeof table, bands, pairs, rule }
#define FULL(m) \
  TABLE(mvk_cos_##m##_full, m, m, Full), TABLE(mvk_cos_##m##_full_scl, m, m, FullScaled)
#define HALF_SAMPLE(m) TABLE(mvk_cos_##m##_full_twiddle, m, m / 2, HalfSample)
#define ALIGNMENT(m) TABLE(mvk_cos_##m##_ast_mini_twiddle, m, m, Alignment)
    FULL(8),         FULL(16),     FULL(32),      FULL(48),      FULL(64),      HALF_SAMPLE(32),
    HALF_SAMPLE(64), ALIGNMENT(8), ALIGNMENT(16), ALIGNMENT(32), ALIGNMENT(48),
};

TEST(ModulationTables, HavePairsByFours) {
  for (const auto &table : kTables) {
    ASSERT_EQ(table.bytes, 2 * table.pairs * sizeof(float)) << table.name;
    for (uint32_t j = 0; j < table.pairs; ++j) {
      const Rule want = table.rule(j, table.bands);
      EXPECT_TRUE(IsNearest(table.entries[8 * (j / 4) + j % 4], want.c1)) << table.name << " " << j;
      EXPECT_TRUE(IsNearest(table.entries[8 * (j / 4) + 4 + j % 4], want.c2))
          << table.name << " " << j;
    }
  }
}

TEST(ModulationTables, SinesOfNoughtAreNegative) {
  size_t zeros = 0;
  for (const auto &table : kTables) {
    for (size_t i = 0; i < table.bytes / sizeof(float); ++i) {
      if (table.entries[i] != 0) continue;
      ++zeros;
      EXPECT_EQ(i, 0u) << table.name;
      EXPECT_EQ(BitsOf(table.entries[i]), 0x80000000u) << table.name;
    }
  }
  EXPECT_EQ(zeros, 10u);
}

// Four of a kind at a time are loaded from them.
TEST(ModulationTables, AreAligned) {
  for (const auto &table : kTables) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(table.entries) % 16, 0u) << table.name;
  }
}

TEST(ModulationTables, SomeEntriesAreThese) {
  EXPECT_EQ(mvk_cos_8_full[4], 0.5f);
  EXPECT_EQ(mvk_cos_8_full[8], 0.35355339f);  // pair 4
  EXPECT_EQ(mvk_cos_8_full[12], 0.35355339f);
  EXPECT_EQ(mvk_cos_64_full_scl[4], 0.0078125f);
  EXPECT_EQ(mvk_cos_48_full_scl[4], 0.010416667f);
  EXPECT_EQ(mvk_cos_32_full_twiddle[0], 0.024541229f);
  EXPECT_EQ(mvk_cos_32_full_twiddle[4], -0.99969882f);
  EXPECT_EQ(mvk_cos_8_ast_mini_twiddle[0], 0.085797312f);
  EXPECT_EQ(mvk_cos_48_ast_mini_twiddle[4], 0.99999163f);
}

}  // namespace
}  // namespace testing_support
