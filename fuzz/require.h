// What a fuzzer finds beside what the sanitizers see.
#ifndef MVK_FUZZ_REQUIRE_H_
#define MVK_FUZZ_REQUIRE_H_

#include <stdio.h>
#include <unistd.h>

#include <cstdlib>

// libFuzzer closes standard error to what is tested, as fuzz/run asks it to. This was
// opened before.
inline const int kReports = dup(STDERR_FILENO);

inline void Require(bool holds, const char *what) {
  if (holds) return;
  dprintf(kReports, "doesn't hold: %s\n", what);
  std::abort();
}

#endif
