#include "output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "messages.h"

namespace mvk {
namespace {

// What ends the program from outside, and a crash inside an encoder.
constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGSEGV, SIGBUS, SIGABRT, SIGFPE};

// The named temporary file, empty when there is none. Global because a signal
// handler has no other way to know it; changed only while those signals wait.
char unfinished_path[PATH_MAX];

extern "C" void remove_unfinished(int signal_number) {
  if (unfinished_path[0] != '\0') unlink(unfinished_path);
  // SA_RESETHAND has restored the default action, which runs on return.
  raise(signal_number);
}

// Holds back the ending signals while a file comes, goes or changes its name.
class SignalsWait {
 public:
  SignalsWait() {
    sigset_t ending;
    sigemptyset(&ending);
    for (int s : kEndingSignals) sigaddset(&ending, s);
    sigprocmask(SIG_BLOCK, &ending, &before_);
  }
  ~SignalsWait() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  SignalsWait(const SignalsWait &) = delete;
  SignalsWait &operator=(const SignalsWait &) = delete;

 private:
  sigset_t before_;
};

void remove_on_signals() {
  for (int s : kEndingSignals) {
    struct sigaction action {};
    sigaction(s, nullptr, &action);
    // A signal that the caller ignores, as nohup does, stays ignored.
    if (action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = remove_unfinished;
    action.sa_flags = SA_RESETHAND;
    sigaction(s, &action, nullptr);
  }
}

mode_t mode_of_new_file() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// The path that a chain of symbolic links leads to, which need not exist.
std::string follow_links(const std::string &path) {
  namespace fs = std::filesystem;
  constexpr int kMostLinks = 40;
  fs::path target = path;
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(target, error); ++i) {
    const fs::path next = fs::read_symlink(target, error);
    if (error) break;
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return target.string();
}

}  // namespace

OutputFile::OutputFile(const std::string &path) : name_(path) {
  if (path == "-") {
    name_ = "standard output";
    if (isatty(STDOUT_FILENO) == 1) {
      refuse("audio isn't written to a terminal; redirect standard output or name a file");
    }
    destination_ = Descriptor(STDOUT_FILENO);
    content_ = unlinked_temporary();
    return;
  }
  struct stat old {};
  const bool exists = stat(path.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) refuse(path + " is a folder; name a file in it");
  if (exists && !S_ISREG(old.st_mode)) {
    destination_ = Descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (destination_.get() < 0) fail("can't open " + path + ": " + system_error(errno));
    content_ = unlinked_temporary();
    return;
  }
  if (exists && access(path.c_str(), W_OK) != 0) {
    fail("can't write " + path + ": " + system_error(errno) + "; the file is left as it was");
  }
  target_ = follow_links(path);
  open_beside(exists ? old.st_mode & 07777 : mode_of_new_file(), exists, old.st_uid, old.st_gid);
}

void OutputFile::open_beside(mode_t mode, bool replaces, uid_t owner, gid_t group) {
  const std::string folder = std::filesystem::path(target_).parent_path().string();
  const std::string pattern = (folder.empty() ? "." : folder) + "/.mvk-XXXXXX";
  if (pattern.size() >= sizeof unfinished_path) {
    fail("can't write " + name_ + ": " + system_error(ENAMETOOLONG));
  }
  remove_on_signals();
  const SignalsWait wait;
  std::snprintf(unfinished_path, sizeof unfinished_path, "%s", pattern.c_str());
  content_ = Descriptor(mkostemp(unfinished_path, O_CLOEXEC));
  if (content_.get() < 0) {
    const int error_number = errno;
    unfinished_path[0] = '\0';
    fail("can't write " + name_ + ": " + system_error(error_number) +
         "; check the folder and its permissions");
  }
  // Giving a file to its former owner is the privilege of root; for others the
  // owner already is the right one, or has to change.
  if (replaces && fchown(content_.get(), owner, group) != 0) errno = 0;
  if (fchmod(content_.get(), mode) != 0) errno = 0;
}

OutputFile::~OutputFile() {
  const SignalsWait wait;
  if (unfinished_path[0] != '\0') unlink(unfinished_path);
  unfinished_path[0] = '\0';
}

std::string OutputFile::description() const {
  return target_.empty() ? "a temporary file in " + temporary_folder() + " (TMPDIR names another)"
                         : name_;
}

void OutputFile::commit() {
  if (target_.empty()) {
    copy_to_destination();
  } else {
    rename_over_target();
  }
}

void OutputFile::copy_to_destination() {
  if (lseek(content_.get(), 0, SEEK_SET) != 0) {
    fail("can't read " + description() + ": " + system_error(errno));
  }
  copy_all(content_.get(), description(), destination_.get(), name_);
  if (!destination_.close()) fail("can't write " + name_ + ": " + system_error(errno));
}

void OutputFile::rename_over_target() {
  if (!content_.close()) fail("can't write " + name_ + ": " + system_error(errno));
  const SignalsWait wait;
  if (std::rename(unfinished_path, target_.c_str()) != 0) {
    fail("can't put " + name_ + " in place: " + system_error(errno));
  }
  unfinished_path[0] = '\0';
}

}  // namespace mvk
