/* Audio files to write. */
#ifndef MVK_TOOLS_AUDIO_OUTPUT_H
#define MVK_TOOLS_AUDIO_OUTPUT_H

#include <sndfile.h>

#include <cstdint>
#include <string>
#include <vector>

#include "audio_input.h"
#include "output_file.h"

namespace mvk {

/* Fails if `frames` frames in this format are more than its container's sizes
 * can say. */
void check_size(const SF_INFO &info, sf_count_t frames, const std::string &name);

/* An audio file being written into an OutputFile, which outlives it. */
class AudioOutput {
 public:
  AudioOutput(OutputFile &file, const SF_INFO &info, const std::string &name);
  ~AudioOutput();
  AudioOutput(const AudioOutput &) = delete;
  AudioOutput &operator=(const AudioOutput &) = delete;

  /* For metadata. */
  SNDFILE *sndfile() const { return file_.get(); }

  /* Floats are rounded here if the file holds integers: libsndfile itself would
   * scale by a step less than full scale, or truncate. */
  void write(const float *samples, sf_count_t frames);

  /* Samples of 16 bits for a file of 16 bits. */
  void write(const short *samples, sf_count_t frames);

  /* Completes the file, but doesn't commit it. */
  void finish();

  /* Floats beyond the full scale of the file's integers, and samples that
   * arrived as integers of full scale. */
  uint64_t limited() const { return limited_; }
  uint64_t at_full_scale() const { return at_full_scale_; }

 private:
  struct Sink {
    int fd;
    int error_number;  // of the first write that failed, or 0
  };

  void check_sink() const;
  void check_result() const;
  void check_written(sf_count_t written, sf_count_t frames);
  static SF_VIRTUAL_IO operations();

  std::string name_;
  std::string description_;
  SF_INFO info_;
  Sink sink_;
  SndfilePointer file_;
  int bits_;
  sf_count_t frames_ = 0;
  uint64_t limited_ = 0;
  uint64_t at_full_scale_ = 0;
  std::vector<short> shorts_;
  std::vector<int> ints_;
};

}  // namespace mvk

#endif
