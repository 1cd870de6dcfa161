#include "host/process.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace host {
namespace {

int nameless_file() {
  char path[] = "/tmp/mvk-test-XXXXXX";
  const int fd = mkostemp(path, O_CLOEXEC);
  if (fd < 0) throw std::runtime_error("no temporary file");
  unlink(path);
  return fd;
}

std::string content_and_close(int fd) {
  std::string content;
  char buffer[65536];
  lseek(fd, 0, SEEK_SET);
  for (ssize_t got; (got = read(fd, buffer, sizeof buffer)) > 0;) {
    content.append(buffer, static_cast<std::size_t>(got));
  }
  close(fd);
  return content;
}

// A file of this build, or of another one that is named by the environment.
std::string built(const char *here, const char *there) {
  const char *build = std::getenv("MVK_BUILD");
  return build == nullptr ? here : std::string(build) + there;
}

// The emulator's words, if there is one, the program and its arguments.
std::vector<std::string> command_line(const std::vector<std::string> &arguments) {
  std::vector<std::string> words;
  std::istringstream emulator(MVK_EMULATOR);
  for (std::string word; emulator >> word;) words.push_back(word);
  words.push_back(built(MVK_PROGRAM, "/tools/mvk"));
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

[[noreturn]] void become(const std::vector<std::string> &words, const Environment &environment,
                         int in, int out, int err) {
  if (dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(127);
  if (!environment.temporary.empty()) setenv("TMPDIR", environment.temporary.c_str(), 1);
  if (environment.file_size_limit > 0) {
    const rlimit limit{environment.file_size_limit, environment.file_size_limit};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(127);
  }
  umask(environment.mask);
  if (environment.ignored_signal != 0) std::signal(environment.ignored_signal, SIG_IGN);
  std::vector<char *> argv;
  for (const std::string &word : words) argv.push_back(const_cast<char *>(word.c_str()));
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  _exit(127);
}

}  // namespace

Process start(const std::vector<std::string> &arguments, const Environment &environment,
              int stdin_fd) {
  const std::vector<std::string> words = command_line(arguments);
  Process process{-1, -1, nameless_file()};
  process.out = environment.stdout_path.empty()
                    ? nameless_file()
                    : open(environment.stdout_path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
  const int in =
      stdin_fd >= 0 ? stdin_fd : open(environment.stdin_path.c_str(), O_RDONLY | O_CLOEXEC);
  if (process.out < 0 || in < 0) throw std::runtime_error("can't open what mvk is to use");
  process.pid = fork();
  if (process.pid < 0) throw std::runtime_error("can't fork");
  if (process.pid == 0) become(words, environment, in, process.out, process.err);
  if (stdin_fd < 0) close(in);
  return process;
}

Outcome finish(const Process &process) {
  int status = 0;
  if (waitpid(process.pid, &status, 0) != process.pid) throw std::runtime_error("can't wait");
  Outcome outcome;
  if (WIFEXITED(status)) outcome.exit_code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  outcome.out = content_and_close(process.out);
  outcome.err = content_and_close(process.err);
  return outcome;
}

std::string library() { return built(MVK_LIBRARY, "/libmavokresampler.so"); }

Outcome run(const std::vector<std::string> &arguments, const Environment &environment) {
  if (environment.piped_input.empty()) return finish(start(arguments, environment));
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const Process process = start(arguments, environment, ends[0]);
  close(ends[0]);
  std::signal(SIGPIPE, SIG_IGN);  // mvk may leave before it has read everything
  std::thread writer([&] {
    const std::string &bytes = environment.piped_input;
    std::size_t sent = 0;
    while (sent < bytes.size()) {
      const ssize_t n = write(ends[1], bytes.data() + sent, bytes.size() - sent);
      if (n <= 0) break;
      sent += static_cast<std::size_t>(n);
    }
    close(ends[1]);
  });
  Outcome outcome = finish(process);
  writer.join();
  return outcome;
}

}  // namespace host
