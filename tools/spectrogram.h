/* Spectra of audio over time. */
#ifndef MVK_TOOLS_SPECTROGRAM_H
#define MVK_TOOLS_SPECTROGRAM_H

#include <cstddef>
#include <span>
#include <vector>

#include "analysis.h"
#include "library.h"
#include "mvk_fft.h"

namespace mvk {

/* Spectra through the library's transforms of real sequences.
 *
 * A spectrum has a power for each frequency from 0 to half the rate in steps of the
 * rate over the length, and tells about the frame at its window's centre. A sine of full scale at
 * one of these frequencies has the power 1 there, and so has a constant 1 at 0. */
class Spectrogram : public Analyser {
 public:
  /* `length`, of the window in frames, is a power of two from 4 to 4096. */
  Spectrogram(const Library &library, std::size_t length, int channels);

  std::size_t length() const { return framing().window; }
  std::size_t bins() const { return length() / 2 + 1; }

  std::span<const float> powers(const float *frames) override;

 private:
  std::vector<char> memory_;
  mvk_fft_state *state_;
  decltype(MVK_fft_CLfwd_scaledL) *transform_;
  std::vector<float> window_;
  std::vector<float> windowed_;
  std::vector<float> spectrum_;
  std::vector<float> powers_;
};

}  // namespace mvk

#endif
