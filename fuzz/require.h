// What a fuzzer finds beside what the sanitizers see.
#ifndef MVK_FUZZ_REQUIRE_H_
#define MVK_FUZZ_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

inline void Require(bool holds, const char *what) {
  if (holds) return;
  std::fprintf(stderr, "doesn't hold: %s\n", what);
  std::abort();
}

#endif
