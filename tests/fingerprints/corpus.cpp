#include "fingerprints/corpus.h"

#include <map>
#include <string>

namespace testing_support {

std::span<const float> Corpus::StoreOf(const Material &material) {
  static std::map<std::string, std::vector<float>> stores;
  std::vector<float> &store = stores[material.name];
  if (store.empty()) {
    Random random(2024);
    store = Samples(material, random, kStored);
  }
  return store;
}

}  // namespace testing_support
