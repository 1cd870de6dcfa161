/* What mvk says on standard error, and how a command gives up. */
#ifndef MVK_TOOLS_MESSAGES_H
#define MVK_TOOLS_MESSAGES_H

#include <string>

namespace mvk {

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2 };

/* Thrown to end a command. `message` says what was wrong and, after a
 * semicolon, what to do. */
struct Failure {
  ExitCode exit_code;
  std::string message;
};

/* Processing failed. */
[[noreturn]] void fail(const std::string &message);

/* The command as given can't be carried out. */
[[noreturn]] void refuse(const std::string &message);

/* Prints "mvk: message". */
void complain(const std::string &message);

/* The text of an errno. */
std::string system_error(int error_number);

}  // namespace mvk

#endif
