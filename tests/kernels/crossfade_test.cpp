// Crossfades through a table.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "kernels/kernel_samples.h"
#include "mvk_kernels.h"
#include "reference/mix_reference.h"

namespace testing_support {
namespace {

using State = mvk_blk_crossfade_state;
using Kernel = float *(*)(float *, State *, const float *, const float *, float, float);

struct FormRow {
  const char *name;
  Kernel kernel;
};

constexpr FormRow kForms[] = {{"flex", mvk_blk_Lcrossfade_gainLS_flex},
                              {"strict", MVK_blk_Lcrossfade_gainLS_strict}};

struct Given {
  std::vector<float> x;
  std::vector<float> table;
  float s;
  float t;
  uint32_t position;
};

struct Places {
  int y = 0;
  int x = 0;
  int table = 0;
};

// One block from a given position, apart and in place.
void ExpectBlock(const FormRow &form, const Given &given, Places at = {}) {
  const auto length = static_cast<uint32_t>(given.table.size());
  reference::Crossfade crossfade{given.position, length};
  std::vector<float> wanted(kBlockSize);
  reference::CrossfadeBlock(crossfade, wanted.data(), given.x.data(), given.table.data(), given.s,
                            given.t);
  for (bool in_place : {false, true}) {
    const KernelCall call{
        "Lcrossfade_gainLS", form.name, length, {at.y, at.x, at.table}, in_place ? "over x" : ""};
    GuardedFloats x(given.x, at.x), table(given.table, at.table), apart(kBlockSize, at.y);
    GuardedFloats &y = in_place ? x : apart;
    State states[3] = {{7, 7}, {given.position, length}, {7, 7}};
    EXPECT_EQ(form.kernel(y.data(), &states[1], x.data(), table.data(), given.s, given.t), y.data())
        << call;
    ASSERT_TRUE(SameSamples(y.values(), wanted, call)) << "position " << given.position;
    EXPECT_EQ(states[1].position, crossfade.position) << call;
    EXPECT_EQ(states[1].length, length) << call;
    for (int i : {0, 2}) EXPECT_TRUE(states[i].position == 7 && states[i].length == 7) << call;
    EXPECT_TRUE(y.GuardsStand(call));
    EXPECT_TRUE(table.Untouched(call));
    EXPECT_TRUE(in_place || x.Untouched(call));
  }
}

Given Some(Random &random, const Material &material, uint32_t length, uint32_t position = 0) {
  return {Samples(material, random, kBlockSize), Samples(material, random, length),
          material.next(random), material.next(random), position};
}

TEST(Crossfade, ReadsItsTableFromBothEndsAtAnyPosition) {
  Random random(1);
  for (const FormRow &form : kForms) {
    for (uint32_t length = 32; length <= 100; ++length) {
      for (uint32_t position = 0; position + 32 <= length; ++position) {
        ExpectBlock(form, Some(random, kUniform, length, position));
      }
    }
  }
}

TEST(Crossfade, TakesAnySamplesAndGains) {
  Random random(2);
  for (const FormRow &form : kForms) {
    for (const Material &material : kMaterials) {
      for (int i = 0; i < 50; ++i) ExpectBlock(form, Some(random, material, 64, 8));
    }
  }
}

TEST(Crossfade, TakesSpecialValuesInAnyPlace) {
  Random random(3);
  const Given plain = Some(random, kUniform, 48, 7);
  for (const FormRow &form : kForms) {
    for (float special : kKernelSpecials) {
      for (size_t i = 0; i < plain.x.size(); ++i) {
        Given given = plain;
        given.x[i] = special;
        ExpectBlock(form, given);
      }
      for (size_t i = 0; i < plain.table.size(); ++i) {
        Given given = plain;
        given.table[i] = special;
        ExpectBlock(form, given);
      }
      Given given = plain;
      given.s = special;
      ExpectBlock(form, given);
      given = plain;
      given.t = special;
      ExpectBlock(form, given);
    }
  }
}

TEST(Crossfade, FlexTakesAnyAlignment) {
  Random random(4);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      for (int table = 0; table < 8; ++table) {
        ExpectBlock(kForms[0], Some(random, kUniform, 64, 32), {y, x, table});
      }
    }
  }
}

TEST(Crossfade, GoesOnFromBlockToBlock) {
  Random random(5);
  for (const FormRow &form : kForms) {
    for (uint32_t length : {32u, 64u, 96u, 256u}) {
      const KernelCall call{"Lcrossfade_gainLS", form.name, length};
      GuardedFloats table(Samples(kUniform, random, length), 0);
      State state{1, 1};
      MVK_blk_Lcrossfade_gainLS_setup(&state, nullptr, length);
      reference::Crossfade crossfade{0, length};
      for (int block = 0; block < 12; ++block) {
        GuardedFloats x(Samples(kUniform, random, kBlockSize), 0);
        GuardedFloats y(kBlockSize, 0);
        std::vector<float> wanted(kBlockSize);
        // Gains may change from block to block.
        const float s = random.Unit(), t = random.Unit();
        reference::CrossfadeBlock(crossfade, wanted.data(), x.data(), table.data(), s, t);
        form.kernel(y.data(), &state, x.data(), table.data(), s, t);
        ASSERT_TRUE(SameSamples(y.values(), wanted, call)) << "block " << block;
        ASSERT_EQ(state.position, crossfade.position) << "block " << block;
      }
    }
  }
}

TEST(Crossfade, GoesFromOneGainToTheOther) {
  for (const FormRow &form : kForms) {
    alignas(32) float table[64], x[kBlockSize], y[kBlockSize];
    for (int j = 0; j < 64; ++j) table[j] = static_cast<float>(j);
    std::fill_n(x, kBlockSize, 2.0f);
    State state;
    MVK_blk_Lcrossfade_gainLS_setup(&state, nullptr, 64);
    for (int block = 0; block < 2; ++block) {
      form.kernel(y, &state, x, table, 10, 1000);
      for (int i = 0; i < 32; ++i) {
        const int j = 32 * block + i;
        EXPECT_EQ(y[i], static_cast<float>(2 * (10 * (63 - j) + 1000 * j))) << j;
      }
    }
  }
}

TEST(Crossfade, FusesTheFallingSideOverTheRoundedRisingOne) {
  const float up = 1 + 0x1p-20f, down = 1 - 0x1p-20f;
  for (const FormRow &form : kForms) {
    alignas(32) float x[kBlockSize], table[kBlockSize], y[kBlockSize];
    std::fill_n(x, kBlockSize, 1.0f);
    std::fill_n(table, kBlockSize, up);
    State state{0, 32};
    // The product is 1 - 2^-40: 1 where it is rounded, and exact where it is fused.
    form.kernel(y, &state, x, table, -down, down);
    for (float sample : y) EXPECT_EQ(sample, 0x1p-40f);
    form.kernel(y, &state, x, table, down, -down);
    for (float sample : y) EXPECT_EQ(sample, -0x1p-40f);
  }
}

TEST(Crossfade, PositionReturnsToTheTablesStart) {
  struct Step {
    uint32_t length, before, after;
  };
  for (const FormRow &form : kForms) {
    for (const Step &step : {Step{32, 0, 0}, Step{64, 0, 32}, Step{64, 32, 0}, Step{40, 8, 0},
                             Step{40, 4, 36}, Step{96, 32, 64}}) {
      alignas(32) const float table[96] = {}, x[kBlockSize] = {};
      alignas(32) float y[kBlockSize];
      State state{step.before, step.length};
      form.kernel(y, &state, x, table, 1, 1);
      EXPECT_EQ(state.position, step.after) << step.length << " from " << step.before;
    }
  }
}

TEST(Crossfade, SetupStartsATableAndReadsNoCoefficients) {
  State states[3] = {{7, 7}, {7, 7}, {7, 7}};
  MVK_blk_Lcrossfade_gainLS_setup(&states[1], nullptr, 96);
  EXPECT_EQ(states[1].position, 0u);
  EXPECT_EQ(states[1].length, 96u);
  for (int i : {0, 2}) EXPECT_TRUE(states[i].position == 7 && states[i].length == 7);
}

TEST(Crossfade, CoefficientCompanionReturnsTheRecordAsItIs) {
  GuardedFloats c(std::vector<float>{1, 2, 3}, 0);
  EXPECT_EQ(MVK_blk_Lcrossfade_gainLS_set_coef(c.data()), c.data());
  EXPECT_TRUE(c.Untouched({"Lcrossfade_gainLS", "set_coef"}));
  EXPECT_EQ(MVK_blk_Lcrossfade_gainLS_set_coef(nullptr), nullptr);
}

}  // namespace
}  // namespace testing_support
