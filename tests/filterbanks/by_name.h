// The names of tests that are run for each of several things with names.
#ifndef MVK_TESTS_FILTERBANKS_BY_NAME_H_
#define MVK_TESTS_FILTERBANKS_BY_NAME_H_

#include <string>

namespace testing_support {

inline constexpr auto kByName = [](const auto &tested) { return std::string(tested.param.name); };

}  // namespace testing_support

#endif
