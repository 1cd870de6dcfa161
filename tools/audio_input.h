/* Audio files to read. */
#ifndef MVK_TOOLS_AUDIO_INPUT_H
#define MVK_TOOLS_AUDIO_INPUT_H

#include <sndfile.h>

#include <memory>
#include <string>

namespace mvk {

struct CloseSndfile {
  void operator()(SNDFILE *file) const { sf_close(file); }
};
using SndfilePointer = std::unique_ptr<SNDFILE, CloseSndfile>;

struct AudioInput {
  std::string name;  // for messages
  SF_INFO info;
  SndfilePointer file;
};

/* Opens any audio that libsndfile reads. "-" is standard input, which, like a
 * FIFO, is first copied to a temporary file, because headers are read by
 * seeking. */
AudioInput open_audio(const std::string &path);

/* Whether the header promises more audio than the file holds, as that of a
 * truncated file does. Headers of a length that was unknown when they were
 * written don't count. */
bool ends_early(const AudioInput &input);

/* Frames read into `samples`, fewer than asked for only at the end. */
sf_count_t read_frames(const AudioInput &input, float *samples, sf_count_t frames);
sf_count_t read_frames(const AudioInput &input, double *samples, sf_count_t frames);
sf_count_t read_frames(const AudioInput &input, short *samples, sf_count_t frames);

/* To be called at the end of reading: fails if `frames`, the number read in
 * all, isn't what the file announced. */
void check_complete(const AudioInput &input, sf_count_t frames);

}  // namespace mvk

#endif
