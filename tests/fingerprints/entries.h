// The exported names, each with what makes its fingerprint.
#ifndef MVK_TESTS_FINGERPRINTS_ENTRIES_H_
#define MVK_TESTS_FINGERPRINTS_ENTRIES_H_

#include <functional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "fingerprints/digest.h"

namespace testing_support {

struct Entry {
  std::string name;
  std::function<void(Digest &)> run;
};
using Entries = std::vector<Entry>;

// A group for each family; `list` adds the family's entries.
struct Group {
  const char *name;
  void (*list)(Entries &);

  friend std::ostream &operator<<(std::ostream &out, const Group &group) {
    return out << group.name;
  }
};
std::span<const Group> Groups();

inline Entries EntriesOf(const Group &group) {
  Entries entries;
  group.list(entries);
  return entries;
}

// The entry of a function or table: MVK_ENTRY(name, [](Digest &digest) { ... })
#define MVK_ENTRY(name, ...) entries.push_back({#name, __VA_ARGS__})

inline uint64_t FingerprintOf(const Entry &entry) {
  Digest digest;
  entry.run(digest);
  return digest.value();
}

void ListBlockKernels(Entries &entries);
void ListVectorKernels(Entries &entries);
void ListFilters(Entries &entries);
void ListDelays(Entries &entries);
void ListTransforms(Entries &entries);
void ListTransformsByLength(Entries &entries);
void ListCosineTransforms(Entries &entries);
void ListModulation(Entries &entries);
void ListQmfBanks(Entries &entries);
void ListMfbBanks(Entries &entries);
void ListHybridBank(Entries &entries);
void ListLimiter(Entries &entries);
void ListResampler(Entries &entries);
void ListComponent(Entries &entries);
void ListServices(Entries &entries);
void ListTables(Entries &entries);

}  // namespace testing_support

#endif
