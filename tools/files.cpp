#include "files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

#include "messages.h"

namespace mvk {

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) ::close(fd_);
}

int Descriptor::release() { return std::exchange(fd_, -1); }

bool Descriptor::close() { return ::close(release()) == 0; }

std::string temporary_folder() {
  const char *folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

Descriptor unlinked_temporary() {
  std::string path = temporary_folder() + "/mvk-XXXXXX";
  Descriptor file(mkostemp(path.data(), O_CLOEXEC));
  if (file.get() < 0) {
    fail("can't make a temporary file in " + temporary_folder() + ": " + system_error(errno) +
         "; set TMPDIR to a folder with room");
  }
  unlink(path.c_str());
  return file;
}

bool write_all(int fd, const void *data, std::size_t size) {
  const char *next = static_cast<const char *>(data);
  while (size > 0) {
    const ssize_t written = write(fd, next, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    next += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

void copy_all(int from, const std::string &from_name, int to, const std::string &to_name) {
  std::vector<char> buffer(std::size_t{1} << 18);
  for (;;) {
    const ssize_t size = read(from, buffer.data(), buffer.size());
    if (size == 0) return;
    if (size < 0) {
      if (errno == EINTR) continue;
      fail("can't read " + from_name + ": " + system_error(errno));
    }
    if (!write_all(to, buffer.data(), static_cast<std::size_t>(size))) {
      fail("can't write " + to_name + ": " + system_error(errno) + "; its content isn't complete");
    }
  }
}

}  // namespace mvk
