/* Audio files to read. */
#ifndef MVK_TOOLS_AUDIO_INPUT_H
#define MVK_TOOLS_AUDIO_INPUT_H

#include <sndfile.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

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

/* Notes that it does, if so. `participle` is what happens to the audio, such as
 * "resampled". */
void note_early_end(const AudioInput &input, const std::string &participle);

/* Whether the file knows how long it is. */
inline bool has_length(const AudioInput &input) { return input.info.frames != SF_COUNT_MAX; }

/* Frames read into `samples`, fewer than asked for only at the end. */
sf_count_t read_frames(const AudioInput &input, float *samples, sf_count_t frames);
sf_count_t read_frames(const AudioInput &input, double *samples, sf_count_t frames);
sf_count_t read_frames(const AudioInput &input, short *samples, sf_count_t frames);

/* To be called at the end of reading: fails if `frames`, the number read in
 * all, isn't what the file announced. */
void check_complete(const AudioInput &input, sf_count_t frames);

/* A file by blocks of so many frames, and then silence. */
struct AudioBlocks {
  AudioBlocks(const AudioInput &audio, std::size_t frames);

  /* Goes on to a block with at most `most` frames of audio, and silence behind them. Fails
   * if the file has ended and isn't complete. */
  void next(sf_count_t most);

  const AudioInput &input;
  std::vector<float> samples;
  sf_count_t got = 0;   // frames of audio in the block
  sf_count_t read = 0;  // in all
  bool ended = false;
};

}  // namespace mvk

#endif
