#include "component/log_capture.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace testing_support {
namespace {

std::vector<LogEntry> *recording = nullptr;

// A stand-in for the system's log writes "priority/tag: text" to standard error.
std::vector<LogEntry> EntriesIn(const std::string &written) {
  std::istringstream lines(written);
  std::vector<LogEntry> entries;
  for (std::string line; std::getline(lines, line);) {
    const size_t slash = line.find('/');
    const size_t colon = line.find(": ", slash);
    if (slash == std::string::npos || colon == std::string::npos) {
      ADD_FAILURE() << "not a line of the log: " << line;
      continue;
    }
    const std::string tag = line.substr(slash + 1, colon - slash - 1);
    entries.push_back({std::atoi(line.c_str()), tag.empty() ? std::nullopt : std::optional(tag),
                       line.substr(colon + 2) + '\n'});
  }
  return entries;
}

}  // namespace

std::ostream &operator<<(std::ostream &stream, const LogEntry &entry) {
  return stream << entry.priority << '/' << entry.tag.value_or("(no tag)") << ": " << entry.text;
}

// A library has one log or the other.
std::vector<LogEntry> LoggedBy(const std::function<void()> &action) {
  std::vector<LogEntry> entries;
  recording = &entries;
  testing::internal::CaptureStderr();
  action();
  const std::vector<LogEntry> written = EntriesIn(testing::internal::GetCapturedStderr());
  recording = nullptr;
  entries.insert(entries.end(), written.begin(), written.end());
  return entries;
}

}  // namespace testing_support

// Takes the place of the system log's function for the whole program.
extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) int __android_log_print(
    int priority, const char *tag, const char *format, ...) {
  char text[1024];
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (testing_support::recording != nullptr) {
    testing_support::recording->push_back(
        {priority, tag == nullptr ? std::nullopt : std::optional<std::string>(tag), text});
  }
  return length;
}
