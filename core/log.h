// The platform's log.
#pragma once

namespace mvk {

// Writes text, which ends its own line, as an error without a tag.
void log_error(const char *text);

}  // namespace mvk
