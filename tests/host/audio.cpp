#include "host/audio.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace host {

const char *const kSpeech = "/usr/share/sounds/alsa/Front_Center.wav";
const char *const kBell = "/usr/share/sounds/freedesktop/stereo/bell.oga";

std::vector<double> Audio::channel(int c) const {
  std::vector<double> result;
  for (std::size_t i = static_cast<std::size_t>(c); i < samples.size();
       i += static_cast<std::size_t>(channels)) {
    result.push_back(samples[i]);
  }
  return result;
}

Audio read_audio(const std::string &path) {
  SF_INFO info{};
  SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
  Audio audio{info.format, info.samplerate, info.channels, {}};
  audio.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
  const sf_count_t got = sf_readf_double(file, audio.samples.data(), info.frames);
  sf_close(file);
  if (got != info.frames) throw std::runtime_error(path + " ends early");
  return audio;
}

void write_audio(const std::string &path, const Audio &audio) {
  SF_INFO info{};
  info.samplerate = audio.rate;
  info.channels = audio.channels;
  info.format = audio.format;
  SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
  const int kind = audio.format & SF_FORMAT_SUBMASK;
  sf_count_t written = 0;
  const sf_count_t frames = audio.frames();
  if (kind == SF_FORMAT_FLOAT || kind == SF_FORMAT_DOUBLE || kind == SF_FORMAT_VORBIS) {
    written = sf_writef_double(file, audio.samples.data(), frames);
  } else {
    std::vector<short> integers;
    for (double x : audio.samples) {
      integers.push_back(static_cast<short>(std::clamp(std::lrint(x * 32768.0), -32768L, 32767L)));
    }
    written = sf_writef_short(file, integers.data(), frames);
  }
  if (sf_close(file) != 0 || written != frames) throw std::runtime_error("can't write " + path);
}

Audio tones(int format, int rate, int channels, int frames, double level) {
  Audio audio{format, rate, channels, {}};
  for (int i = 0; i < frames; ++i) {
    for (int c = 0; c < channels; ++c) {
      const double x = 0.6 * std::sin(0.02 * (c + 1) * i + c) + 0.4 * std::cos(0.31 * i + 2 * c);
      audio.samples.push_back(std::lrint(level * x * 32768.0) / 32768.0);
    }
  }
  return audio;
}

}  // namespace host
