/* A percentage on standard error while a command runs. */
#ifndef MVK_TOOLS_PROGRESS_H
#define MVK_TOOLS_PROGRESS_H

#include <cstdint>
#include <string>

namespace mvk {

class Progress {
 public:
  /* Shows nothing if `wanted` is false or standard error isn't a terminal. */
  Progress(std::string title, uint64_t total, bool wanted);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void show(uint64_t done);

 private:
  std::string title_;
  uint64_t total_;
  bool shown_;
  int percent_ = -1;
};

}  // namespace mvk

#endif
