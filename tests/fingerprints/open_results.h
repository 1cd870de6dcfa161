// Results whose rounding is open, and differs between processors: they keep to an accuracy.
#ifndef MVK_TESTS_FINGERPRINTS_OPEN_RESULTS_H_
#define MVK_TESTS_FINGERPRINTS_OPEN_RESULTS_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace testing_support {

struct Bounded {
  double value, bound;  // the exact value, and how far single precision may be off
};

struct OpenCase {
  std::string name;
  uint32_t size;  // points or bands
  std::function<std::vector<float>()> result;
  std::function<std::vector<Bounded>()> exact;
};

std::vector<OpenCase> OpenCases();

}  // namespace testing_support

#endif
