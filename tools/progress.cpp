#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace mvk {

Progress::Progress(std::string title, uint64_t total, bool wanted)
    : title_(std::move(title)),
      total_(total),
      shown_(wanted && total > 0 && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  // Leaves a clean line for whatever is said next.
  if (percent_ >= 0) std::fputs("\r\033[K", stderr);
}

void Progress::show(uint64_t done) {
  if (!shown_) return;
  const double part = static_cast<double>(done) / static_cast<double>(total_);
  const int percent = std::min(100, static_cast<int>(100.0 * part));
  if (percent == percent_) return;
  percent_ = percent;
  std::fprintf(stderr, "\r%s %3d %%", title_.c_str(), percent);
}

}  // namespace mvk
