/* Spectra of audio over time. */
#ifndef MVK_TOOLS_SPECTROGRAM_H
#define MVK_TOOLS_SPECTROGRAM_H

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "audio_input.h"
#include "component.h"
#include "mvk_fft.h"
#include "progress.h"

namespace mvk {

/* Spectra through the library's transforms of real sequences.
 *
 * A spectrum has a power for each frequency from 0 to half the rate in steps of the
 * rate over the length: the mean over the channels. A sine of full scale at one of these
 * frequencies has the power 1 there, and so has a constant 1 at 0. */
class Spectrogram {
 public:
  /* `length`, of the window in frames, is a power of two from 4 to 4096. */
  Spectrogram(const Library &library, std::size_t length, int channels);

  std::size_t length() const { return length_; }
  std::size_t hop() const { return length_ / 4; }
  std::size_t bins() const { return length_ / 2 + 1; }
  std::size_t channels() const { return channels_; }

  /* Of `length` frames of interleaved audio. Valid up to the next call. */
  std::span<const float> powers(const float *frames);

 private:
  std::size_t length_;
  std::size_t channels_;
  std::vector<char> memory_;
  mvk_fft_state *state_;
  decltype(MVK_fft_CLfwd_scaledL) *transform_;
  std::vector<float> window_;
  std::vector<float> windowed_;
  std::vector<float> spectrum_;
  std::vector<float> powers_;
};

/* What a file came to. */
struct Analysed {
  sf_count_t frames = 0;
  uint64_t silenced = 0;  // samples that were no usable numbers
};

/* Decibels of the greatest sample that counts. Greater ones, and what isn't a finite
 * number, are silence. */
inline constexpr int kHighestLevel = 360;

/* Calls `take` with the spectrum of each hop of the file to its end. The window of hop h
 * has its centre at frame h hop(), with silence before and behind the file. There are as
 * many as have their centre in the file. */
Analysed analyse(const AudioInput &input, Spectrogram &spectrogram,
                 const std::function<void(std::span<const float>)> &take, Progress &progress);

}  // namespace mvk

#endif
