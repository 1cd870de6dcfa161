/* Levels of audio over time and frequency: how files are analysed, and their pictures. */
#ifndef MVK_TOOLS_ANALYSIS_H
#define MVK_TOOLS_ANALYSIS_H

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "audio_input.h"
#include "output_file.h"
#include "plot.h"
#include "progress.h"

namespace mvk {

/* How analysis goes through audio, in frames. */
struct Framing {
  std::size_t window;  // given to each analysis
  std::size_t hop;     // from one window to the next
  std::size_t lead;    // of silence ahead of the audio, where the first window begins
  std::size_t late;    // from the frame that the first analysis tells about to frame 0
};

/* What makes powers of frequencies of windows of audio, one after another. Full scale has
 * the power 1. */
class Analyser {
 public:
  Analyser(const Framing &framing, int channels)
      : framing_(framing), channels_(static_cast<std::size_t>(channels)) {}
  virtual ~Analyser() = default;

  const Framing &framing() const { return framing_; }
  std::size_t channels() const { return channels_; }

  /* Of a window of interleaved audio, the mean over the channels. Valid up to the next
   * call. */
  virtual std::span<const float> powers(const float *frames) = 0;

 private:
  Framing framing_;
  std::size_t channels_;
};

/* What a file came to. */
struct Analysed {
  sf_count_t frames = 0;
  uint64_t silenced = 0;  // samples that were no usable numbers
};

/* Decibels of the greatest sample that counts. Greater ones, and what isn't a finite
 * number, are silence. */
inline constexpr int kHighestLevel = 360;

/* Makes samples that don't count zeros, and returns how many there were. */
uint64_t silence_unusable(std::span<float> samples);

/* Notes that there were some. */
void note_silenced(uint64_t count);

/* Calls `take` with the powers of each hop of the file to its end. Those of hop h tell
 * about the audio around frame h * hop, with silence before and behind the file. There
 * are as many as have that frame in the file. */
Analysed analyse(const AudioInput &input, Analyser &analyser,
                 const std::function<void(std::span<const float>)> &take, Progress &progress);

inline constexpr double kLowestLevel = -200.0;

/* In decibels, at least the lowest level. */
double level_of(double power);

/* Whether a path ends with `suffix`, which is in small letters, in any letters. */
bool is_named(const std::string &path, std::string_view suffix);

/* Draws a picture of the levels of a file. `method` ends its subtitle, and `rows` says
 * where in kHz each of the powers belongs. Nothing is drawn of no frames. */
Analysed draw_levels(const AudioInput &input, Analyser &analyser, const std::string &method,
                     const Cells &rows, OutputFile &file, const std::string &path,
                     Progress &progress);

}  // namespace mvk

#endif
