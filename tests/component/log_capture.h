// What the library logs while something runs.
#ifndef MVK_TESTS_COMPONENT_LOG_CAPTURE_H_
#define MVK_TESTS_COMPONENT_LOG_CAPTURE_H_

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace testing_support {

struct LogEntry {
  int priority;
  std::optional<std::string> tag;
  std::string text;

  bool operator==(const LogEntry &) const = default;
};

std::ostream &operator<<(std::ostream &stream, const LogEntry &entry);

inline const LogEntry kFormatMessage{6, {}, "ERROR: audio format not supported\n"};
inline const LogEntry kDatatypeMessage{6, {}, "ERROR: datatype not supported\n"};

std::vector<LogEntry> LoggedBy(const std::function<void()> &action);

}  // namespace testing_support

#endif
