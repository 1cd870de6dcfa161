#include "core/log.h"

#if defined(MVK_LOG_STANDIN)
#include "core/log_standin.h"
#else
#include <android/log.h>
#endif

namespace mvk {

void log_error(const char *text) {
  constexpr int error = 6;
  __android_log_print(error, nullptr, "%s", text);
}

}  // namespace mvk
