/* Files and folders for one test. */
#ifndef MVK_TESTS_HOST_FOLDER_H
#define MVK_TESTS_HOST_FOLDER_H

#include <set>
#include <string>

namespace host {

/* A fresh folder that goes away with everything in it. */
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  const std::string &path() const { return path_; }

  /* The path of a file in it. */
  std::string file(const std::string &name) const { return path_ + "/" + name; }

  /* The names of all that is in it, hidden files too. */
  std::set<std::string> names() const;

 private:
  std::string path_;
};

std::string read_bytes(const std::string &path);
void write_bytes(const std::string &path, const std::string &bytes);

/* Cuts a file to a part of its size. */
void truncate_to(const std::string &path, double part);

/* A mono file of 16 bits with a second of noise at the start and then silence,
 * almost all of it a hole that takes no room on the disk. */
void write_sparse_au(const std::string &path, long long frames, int rate);

}  // namespace host

#endif
