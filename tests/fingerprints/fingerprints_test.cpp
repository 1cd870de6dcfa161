// Every exported name gives the bits that it always gave, in every build.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "fingerprints/entries.h"
#include "fingerprints/lists.h"

namespace testing_support {
namespace {

TEST(Fingerprints, AreThereForEveryExportedName) {
  std::set<std::string> names;
  for (const OpenCase &open : OpenCases()) names.insert(open.name);
  for (const Group &group : Groups()) {
    for (const Entry &entry : EntriesOf(group)) names.insert(entry.name);
  }
  const std::set<std::string> exports = ReadExports();
  for (const std::string &name : exports) EXPECT_TRUE(names.contains(name)) << name;
  for (const std::string &name : names) EXPECT_TRUE(exports.contains(name)) << name;
}

TEST(Fingerprints, AreThereOnce) {
  std::set<std::string> names;
  for (const Group &group : Groups()) {
    for (const Entry &entry : EntriesOf(group)) {
      EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
    }
  }
  for (const auto &[name, fingerprint] : ReadExpected()) {
    EXPECT_TRUE(names.contains(name)) << name << " is in expected.txt only";
  }
}

struct FingerprintsOf : testing::TestWithParam<Group> {};

TEST_P(FingerprintsOf, AreThoseOfTheList) {
  const Fingerprints expected = ReadExpected();
  for (const Entry &entry : EntriesOf(GetParam())) {
    const auto line = expected.find(entry.name);
    ASSERT_NE(line, expected.end()) << entry.name << " isn't in expected.txt";
    EXPECT_EQ(Hexadecimal(FingerprintOf(entry)), line->second) << entry.name;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FingerprintsOf, testing::ValuesIn(Groups().begin(), Groups().end()),
                         [](const auto &tested) { return std::string(tested.param.name); });

TEST(OpenResults, AreWithinTheirBounds) {
  OpenLines lines = ReadOpen();
  for (const OpenCase &open : OpenCases()) {
    ASSERT_TRUE(lines.contains(open.name)) << open.name << " isn't in open.txt";
    const OpenLine &line = lines[open.name];
    EXPECT_EQ(line.size, open.size) << open.name;
    const std::vector<float> result = open.result();
    for (const auto &[index, want] : line.places) {
      ASSERT_LT(index, result.size()) << open.name;
      EXPECT_NEAR(result[index], want.value, want.bound) << open.name << ", index " << index;
    }
    lines.erase(open.name);
  }
  for (const auto &[name, line] : lines) ADD_FAILURE() << name << " is in open.txt only";
}

}  // namespace
}  // namespace testing_support
