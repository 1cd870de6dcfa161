/* File descriptors that close themselves, temporary files and copying. */
#ifndef MVK_TOOLS_FILES_H
#define MVK_TOOLS_FILES_H

#include <cstddef>
#include <string>

namespace mvk {

/* Owns a file descriptor; -1 is none. */
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor &&other) noexcept : fd_(other.release()) {}
  Descriptor &operator=(Descriptor &&other) noexcept;
  ~Descriptor();

  int get() const { return fd_; }
  int release();

  /* Closes now; false, with errno set, if what was written didn't arrive. */
  bool close();

 private:
  int fd_ = -1;
};

/* The folder for temporary files: TMPDIR, or /tmp. */
std::string temporary_folder();

/* A new file in the temporary folder that has no name, so that nothing is left
 * of it however the program ends. */
Descriptor unlinked_temporary();

/* Writes all of it; false, with errno set, on an error. */
bool write_all(int fd, const void *data, std::size_t size);

/* Copies from the current position of `from` to its end. Errors name the side
 * that they happened on. */
void copy_all(int from, const std::string &from_name, int to, const std::string &to_name);

}  // namespace mvk

#endif
