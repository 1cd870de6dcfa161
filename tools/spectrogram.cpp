#include "spectrogram.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "messages.h"

namespace mvk {
namespace {

// Hann's window, periodic in its length, times 4: a sine of amplitude 1 has half of it in
// a bin of the scaled spectrum, and the window's mean is a half.
std::vector<float> hann_window(std::size_t length) {
  std::vector<float> window(length);
  for (std::size_t i = 0; i < length; ++i) {
    const double angle =
        2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(length);
    window[i] = static_cast<float>(2.0 - 2.0 * std::cos(angle));
  }
  return window;
}

float squared_magnitude(const float *number) {
  return number[0] * number[0] + number[1] * number[1];
}

}  // namespace

Spectrogram::Spectrogram(const Library &library, std::size_t length, int channels)
    : Analyser({length, length / 4, length / 2, 0}, channels),
      transform_(library.find<decltype(MVK_fft_CLfwd_scaledL)>("MVK_fft_CLfwd_scaledL")),
      window_(hann_window(length)),
      windowed_(length),
      spectrum_(length),
      powers_(bins()) {
  const auto query = library.find<decltype(MVK_fft_state_query_mem)>("MVK_fft_state_query_mem");
  const auto init = library.find<decltype(MVK_fft_init)>("MVK_fft_init");
  const auto pairs = static_cast<uint32_t>(length / 2);
  memory_.resize(query(pairs, MVK_FFT_CLFWD_SCALEDL));
  state_ = init(memory_.data(), pairs, MVK_FFT_CLFWD_SCALEDL);
  if (state_ == nullptr) {
    fail("the library can't transform " + std::to_string(length) +
         " samples; name the right library with --library PATH");
  }
}

std::span<const float> Spectrogram::powers(const float *frames) {
  std::fill(powers_.begin(), powers_.end(), 0.0F);
  const std::size_t last = length() / 2;
  for (std::size_t c = 0; c < channels(); ++c) {
    for (std::size_t i = 0; i < length(); ++i) {
      windowed_[i] = window_[i] * frames[i * channels() + c];
    }
    transform_(state_, spectrum_.data(), windowed_.data());
    // The ends have no second half at negative frequencies, and are real.
    const float first_and_last[] = {0.5F * spectrum_[0], 0.5F * spectrum_[1]};
    powers_[0] += first_and_last[0] * first_and_last[0];
    powers_[last] += first_and_last[1] * first_and_last[1];
    for (std::size_t k = 1; k < last; ++k) powers_[k] += squared_magnitude(&spectrum_[2 * k]);
  }
  for (float &power : powers_) power /= static_cast<float>(channels());
  return powers_;
}

}  // namespace mvk
