/* What the commands that make one audio file of another have in common. */
#ifndef MVK_TOOLS_TRANSFER_H
#define MVK_TOOLS_TRANSFER_H

#include <sndfile.h>

#include <CLI/CLI.hpp>
#include <string>

#include "audio_input.h"
#include "audio_output.h"
#include "output_file.h"
#include "progress.h"

namespace mvk {

struct FileOptions {
  std::string in;
  std::string out;
  std::string format;
  std::string library;
  bool quiet = false;
};

/* IN and OUT. */
void add_files(CLI::App &command, FileOptions &options);

/* --format, --library and --quiet, which come last. */
void add_file_options(CLI::App &command, FileOptions &options);

/* On --format, for --help. */
std::string file_options_help();

/* The output file of a command, on its way from the input. It isn't there until
 * commit(). */
class Transfer {
 public:
  /* OUT gets `rate` and, if the input's length is known, about `frames` frames.
   * `participle` is what happens to the audio, such as "resampled". */
  Transfer(const AudioInput &input, const FileOptions &options, int rate, sf_count_t frames,
           const std::string &participle);

  AudioOutput &output() { return output_; }
  int format() const { return info_.format; }

  void commit();

  /* Says how many samples were cut to what OUT can hold, if any were. */
  void report_limits() const;

 private:
  SF_INFO info_;
  bool quiet_;
  OutputFile file_;
  AudioOutput output_;
};

/* Of reading a file, titled "mvk: `title`". */
Progress progress_through(const AudioInput &input, bool quiet, const std::string &title);

}  // namespace mvk

#endif
