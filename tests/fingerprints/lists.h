// The committed lists, and how they are made.
#ifndef MVK_TESTS_FINGERPRINTS_LISTS_H_
#define MVK_TESTS_FINGERPRINTS_LISTS_H_

#include <array>
#include <cstddef>
#include <iosfwd>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "fingerprints/open_results.h"

namespace testing_support {

// Names and fingerprints, in hexadecimal digits.
using Fingerprints = std::map<std::string, std::string>;

// An open result: the largest difference between builds over the greatest magnitude, and the
// exact value at a few places.
struct OpenLine {
  static constexpr size_t kPlaces = 4;
  struct Place {
    size_t index;
    Bounded want;
  };

  uint32_t size;
  double difference;
  std::array<Place, kPlaces> places;
};
using OpenLines = std::map<std::string, OpenLine>;

// tests/abi/exports.txt, and expected.txt and open.txt beside this file.
std::set<std::string> ReadExports();
Fingerprints ReadExpected();
OpenLines ReadOpen();

std::string Hexadecimal(uint64_t fingerprint);

// What expected.txt holds if the library is as it should be.
void PrintExpected(std::ostream &out);

// All values of the open results of this build, and what open.txt holds from those of this and
// other builds.
void PrintOpenResults(std::ostream &out);
void PrintOpen(std::ostream &out, std::span<const char *const> other_results);

}  // namespace testing_support

#endif
