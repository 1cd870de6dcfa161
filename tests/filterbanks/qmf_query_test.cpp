// What QMF banks say of themselves: the bytes that they need, delays and lengths.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "filterbanks/qmf_banks.h"
#include "mvk_qmf.h"

namespace testing_support {
namespace {

struct Figures {
  uint32_t bands, order;
  uint32_t state, scratch;
};

template <class Kind>
void ExpectFigures(std::initializer_list<Figures> figures, uint32_t record, uint64_t result) {
  for (const auto &[bands, order, state, scratch] : figures) {
    SCOPED_TRACE(testing::Message() << bands << " bands, order " << order);
    const QmfSizes sizes = QueriedSizes<Kind>(bands, order);
    EXPECT_EQ(sizes.state, state);
    EXPECT_EQ(sizes.scratch, scratch);
    EXPECT_EQ(sizes.record, record);
    EXPECT_EQ(sizes.result, result);
  }
}

TEST(QmfQuery, Figures) {
  ExpectFigures<LongAnalysis>({{64, 4, 1879, 1055},
                               {64, 5, 2407, 1055},
                               {48, 5, 1831, 799},
                               {32, 4, 983, 543},
                               {8, 5, 391, 159},
                               {4, 4, 199, 95},
                               {65, 4, 983, 543},
                               {65, 5, 1255, 543},
                               {1024, 5, 1255, 543},
                               {0xffffffffu, 4, 983, 543},
                               {0, 5, 103, 31}},
                              127, 127);
  ExpectFigures<LongSynthesis>({{64, 4, 1823, 1055},
                                {64, 5, 2335, 1055},
                                {48, 5, 1759, 799},
                                {32, 4, 927, 543},
                                {8, 5, 319, 159},
                                {4, 4, 143, 95},
                                {65, 4, 927, 543},
                                {65, 5, 1183, 543},
                                {1024, 5, 1183, 543},
                                {0xffffffffu, 4, 927, 543},
                                {0, 5, 31, 31}},
                               127, 127);
  ExpectFigures<ShortAnalysis>({{64, 4, 1879, 1055},
                                {64, 5, 2407, 1055},
                                {48, 5, 1255, 543},
                                {8, 4, 983, 543},
                                {63, 5, 1255, 543},
                                {65, 4, 983, 543},
                                {128, 5, 1255, 543},
                                {0, 4, 983, 543}},
                               119, 1024);
  ExpectFigures<ShortSynthesis>({{64, 4, 1823, 1055},
                                 {64, 5, 2335, 1055},
                                 {48, 5, 1183, 543},
                                 {8, 4, 927, 543},
                                 {63, 5, 1183, 543},
                                 {65, 4, 927, 543},
                                 {128, 5, 1183, 543},
                                 {0, 4, 927, 543}},
                                119, 1024);
}

// Orders are told apart by their lowest two bits, band counts above 64 are answered like 32.
template <class Kind>
void ExpectRule(uint32_t fixed4, uint32_t fixed5) {
  for (uint32_t order = 0; order <= 13; ++order) {
    for (uint32_t bands = 0; bands <= 130; ++bands) {
      SCOPED_TRACE(testing::Message() << bands << " bands, order " << order);
      const uint32_t counted = Kind::kShort ? (bands == 64 ? 64 : 32) : (bands > 64 ? 32 : bands);
      const QmfSizes sizes = QueriedSizes<Kind>(bands, order);
      const bool four = order % 4 == 0;
      ASSERT_EQ(sizes.state, (four ? fixed4 : fixed5) + (four ? 28 : 36) * counted);
      ASSERT_EQ(sizes.scratch, 31 + 16 * counted);
    }
  }
}

TEST(QmfQuery, CountsTheBytes) {
  ExpectRule<LongAnalysis>(23 + 64, 23 + 80);
  ExpectRule<ShortAnalysis>(23 + 64, 23 + 80);
  ExpectRule<LongSynthesis>(31, 31);
  ExpectRule<ShortSynthesis>(31, 31);
}

TEST(QmfQuery, RecordsFitAtAnyAddress) {
  EXPECT_LE(sizeof(mvk_qmf_analysisL_state) + 7, 127u);
  EXPECT_LE(sizeof(mvk_qmf_synthesisL_state) + 7, 127u);
  EXPECT_LE(sizeof(mvk_qmf_analysisS_state) + 7, 119u);
  EXPECT_LE(sizeof(mvk_qmf_synthesisS_state) + 7, 119u);
}

template <class Kind>
void ExpectDelays(uint32_t one_more) {
  const struct {
    uint32_t bands, order, delay;
  } kDelays[] = {{64, 5, 288}, {64, 4, 224}, {32, 4, 112},    {32, 5, 144},
                 {16, 5, 72},  {8, 4, 28},   {1024, 5, 4608}, {48, 5, 216}};
  for (const auto &[bands, order, delay] : kDelays) {
    const std::vector<float> table = AnyPrototype({order, bands}, 1);
    QmfBank<Kind> bank({bands, order, table.data()});
    EXPECT_EQ(Kind::kDelay(bank.record()), delay + one_more) << bands << ", order " << order;
  }
}

TEST(QmfDelay, IsHalfTheWindowLessHalfABlock) {
  ExpectDelays<LongAnalysis>(0);
  ExpectDelays<ShortAnalysis>(0);
  ExpectDelays<LongSynthesis>(1);
  ExpectDelays<ShortSynthesis>(1);
}

TEST(QmfFilterState, HasThisLength) {
  EXPECT_EQ(MVK_qmf_analysisL_get_max_filter_state_length(0), 448u);
  for (const uint32_t bands : {0u, 8u, 48u, 64u, 1024u}) {
    EXPECT_EQ(MVK_qmf_analysisL_get_filter_state_length(0, bands), 7 * bands);
  }
  for (const uint32_t flag : {1u, 2u, 4u, 0x80000000u}) {
    EXPECT_EQ(MVK_qmf_analysisL_get_max_filter_state_length(flag), 576u) << flag;
    for (const uint32_t bands : {0u, 8u, 48u, 64u, 1024u}) {
      EXPECT_EQ(MVK_qmf_analysisL_get_filter_state_length(flag, bands), 9 * bands) << flag;
    }
  }
}

}  // namespace
}  // namespace testing_support
