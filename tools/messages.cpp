#include "messages.h"

#include <cstdio>
#include <system_error>

namespace mvk {

void fail(const std::string &message) { throw Failure{kFailed, message}; }

void refuse(const std::string &message) { throw Failure{kUsage, message}; }

void complain(const std::string &message) { std::fprintf(stderr, "mvk: %s\n", message.c_str()); }

std::string system_error(int error_number) { return std::generic_category().message(error_number); }

}  // namespace mvk
