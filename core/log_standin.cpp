#include "core/log_standin.h"

#include <cstdarg>
#include <cstdio>

int __android_log_print(int priority, const char *tag, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  flockfile(stderr);
  std::fprintf(stderr, "%d/%s: ", priority, tag ? tag : "");
  const int written = std::vfprintf(stderr, format, arguments);
  funlockfile(stderr);
  va_end(arguments);
  return written;
}
