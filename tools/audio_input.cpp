#include "audio_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "files.h"
#include "messages.h"

namespace mvk {
namespace {

Descriptor open_descriptor(const std::string &path) {
  if (path == "-") {
    if (isatty(STDIN_FILENO) == 1) {
      refuse("audio isn't read from a terminal; redirect standard input or name a file");
    }
    return Descriptor(dup(STDIN_FILENO));
  }
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) {
    fail("can't open " + path + ": " + system_error(errno) +
         "; check the name and its permissions");
  }
  return file;
}

Descriptor spooled(const Descriptor &source, const std::string &name) {
  Descriptor copy = unlinked_temporary();
  copy_all(source.get(), name, copy.get(), "a temporary file in " + temporary_folder());
  if (lseek(copy.get(), 0, SEEK_SET) != 0) fail("can't read " + name + ": " + system_error(errno));
  return copy;
}

}  // namespace

AudioInput open_audio(const std::string &path) {
  AudioInput input{path == "-" ? "standard input" : path, {}, nullptr};
  Descriptor source = open_descriptor(path);
  struct stat status {};
  if (fstat(source.get(), &status) != 0) {
    fail("can't read " + input.name + ": " + system_error(errno));
  }
  if (S_ISDIR(status.st_mode)) fail(path + " is a folder; name an audio file");
  if (!S_ISREG(status.st_mode)) source = spooled(source, input.name);
  // libsndfile closes the descriptor, whether or not it can read the file.
  input.file.reset(sf_open_fd(source.release(), SFM_READ, &input.info, SF_TRUE));
  if (!input.file) {
    fail(input.name + " can't be read as audio: " + sf_strerror(nullptr) +
         " It may be damaged or of a kind that libsndfile doesn't know");
  }
  return input;
}

bool ends_early(const AudioInput &input) {
  // libsndfile takes the shorter length without an error and leaves a line such
  // as "data : 96000 (should be 47978)" in its log.
  constexpr uint64_t kUnknownLength = 0x7FFFF000;  // and above: streamed headers
  std::array<char, 16384> log{};
  sf_command(input.file.get(), SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
  const std::string text = log.data();
  const std::string marker = " (should be ";
  for (auto at = text.find(marker); at != std::string::npos; at = text.find(marker, at + 1)) {
    const auto stated_at = text.find_last_of(' ', at - 1);
    if (stated_at == std::string::npos) continue;
    const uint64_t stated = std::strtoull(text.c_str() + stated_at, nullptr, 0);
    const uint64_t present = std::strtoull(text.c_str() + at + marker.size(), nullptr, 0);
    // A byte more is a missing pad byte.
    if (stated > present + 1 && stated < kUnknownLength) return true;
  }
  return false;
}

void note_early_end(const AudioInput &input, const std::string &participle) {
  if (!ends_early(input)) return;
  complain("note: " + input.name + " ends before the length in its header; what is there gets " +
           participle);
}

sf_count_t read_frames(const AudioInput &input, float *samples, sf_count_t frames) {
  return sf_readf_float(input.file.get(), samples, frames);
}

sf_count_t read_frames(const AudioInput &input, double *samples, sf_count_t frames) {
  return sf_readf_double(input.file.get(), samples, frames);
}

sf_count_t read_frames(const AudioInput &input, short *samples, sf_count_t frames) {
  return sf_readf_short(input.file.get(), samples, frames);
}

void check_complete(const AudioInput &input, sf_count_t frames) {
  if (sf_error(input.file.get()) != SF_ERR_NO_ERROR) {
    fail("can't read " + input.name + ": " + sf_strerror(input.file.get()) +
         " It is cut off or damaged");
  }
  // A stream written without seeking, such as FLAC from a pipe, has no length;
  // damage to its end shows as one without any frames.
  if (!has_length(input)) {
    if (frames == 0) fail(input.name + " gives no audio; it is cut off or damaged");
  } else if (frames < input.info.frames) {
    fail(input.name + " ends after " + std::to_string(frames) + " of " +
         std::to_string(input.info.frames) + " frames; it is cut off or damaged");
  }
}

AudioBlocks::AudioBlocks(const AudioInput &audio, std::size_t frames)
    : input(audio), samples(frames * static_cast<std::size_t>(audio.info.channels)) {}

void AudioBlocks::next(sf_count_t most) {
  got = ended ? 0 : read_frames(input, samples.data(), most);
  read += got;
  std::fill(samples.begin() + got * input.info.channels, samples.end(), 0.0F);
  if (got == most || ended) return;
  check_complete(input, read);
  ended = true;
}

}  // namespace mvk
