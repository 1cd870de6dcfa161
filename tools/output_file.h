/* An output that appears whole or not at all. */
#ifndef MVK_TOOLS_OUTPUT_FILE_H
#define MVK_TOOLS_OUTPUT_FILE_H

#include <sys/types.h>

#include <string>

#include "files.h"

namespace mvk {

/* Collects the content in a temporary file, which commit() puts in place:
 *
 *   - A path that is a regular file, or nothing yet: the temporary file lies
 *     beside it and is renamed over it. A symbolic link is followed.
 *   - Anything else, such as a device or a FIFO, and "-" for standard output:
 *     the temporary file has no name, and its content is copied.
 *
 * Until commit() succeeds the old file is untouched, and the temporary file
 * goes away with this object or when a signal ends the program. One such
 * object may exist at a time. */
class OutputFile {
 public:
  explicit OutputFile(const std::string &path);
  ~OutputFile();
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;

  /* The temporary file, for reading and writing. */
  int fd() const { return content_.get(); }

  /* What the temporary file is called in an error about writing it. */
  std::string description() const;

  void commit();

 private:
  void open_beside(mode_t mode, bool replaces, uid_t owner, gid_t group);
  void copy_to_destination();
  void rename_over_target();

  std::string name_;        // for messages
  std::string target_;      // the path with links followed; empty when copying
  Descriptor destination_;  // device, FIFO or standard output; none when renaming
  Descriptor content_;
};

}  // namespace mvk

#endif
