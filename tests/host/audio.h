/* Audio files for the tests, read and written with libsndfile. */
#ifndef MVK_TESTS_HOST_AUDIO_H
#define MVK_TESTS_HOST_AUDIO_H

#include <sndfile.h>

#include <string>
#include <vector>

namespace host {

inline constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
inline constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;

/* Interleaved samples, full scale 1. */
struct Audio {
  int format = 0;
  int rate = 0;
  int channels = 0;
  std::vector<double> samples;

  long long frames() const { return static_cast<long long>(samples.size()) / channels; }
  std::vector<double> channel(int c) const;
};

Audio read_audio(const std::string &path);

/* Integer formats get samples that are rounded to 16 bits first, so that every
 * one of them holds the same. */
void write_audio(const std::string &path, const Audio &audio);

/* A different mixture of sines in each channel, within `level`, in steps of
 * 2^-15. */
Audio tones(int format, int rate, int channels, int frames, double level = 0.7);

/* Recordings that Debian's packages alsa-utils (speech, mono, 16 bits, 48000 Hz)
 * and sound-theme-freedesktop (stereo, Vorbis, 44100 Hz) bring. */
extern const char *const kSpeech;
extern const char *const kBell;

}  // namespace host

#endif
