/* Running mvk as a user does. */
#ifndef MVK_TESTS_HOST_PROCESS_H
#define MVK_TESTS_HOST_PROCESS_H

#include <sys/resource.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace host {

/* How a run ended and what it said. */
struct Outcome {
  int exit_code = -1;  // -1 if a signal ended it
  int signal = 0;
  std::string out;
  std::string err;
};

struct Environment {
  std::string stdin_path = "/dev/null";
  std::string stdout_path;     // empty: captured
  std::string piped_input;     // bytes for standard input through a pipe instead
  std::string temporary;       // TMPDIR, if not empty
  rlim_t file_size_limit = 0;  // bytes that a file may have, 0: any number
  mode_t mask = 022;
  int ignored_signal = 0;
};

/* A running mvk. */
struct Process {
  pid_t pid;
  int out;  // what it prints, in nameless files
  int err;
};

/* Starts mvk with these arguments. `stdin_fd` takes the place of
 * environment.stdin_path if it isn't -1. */
Process start(const std::vector<std::string> &arguments, const Environment &environment = {},
              int stdin_fd = -1);

/* Waits for its end. */
Outcome finish(const Process &process);

Outcome run(const std::vector<std::string> &arguments, const Environment &environment = {});

/* The library that goes with it. */
std::string library();

}  // namespace host

#endif
