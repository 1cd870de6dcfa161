#include "audio_output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "files.h"
#include "formats.h"
#include "messages.h"
#include "quantise.h"

namespace mvk {
namespace {

// What a sample takes at most in a file that is limited to 4 GiB.
int bytes_per_sample(int format) {
  const int samples = format & SF_FORMAT_SUBMASK;
  if (samples == SF_FORMAT_DOUBLE) return 8;
  if (samples == SF_FORMAT_FLOAT) return 4;
  const SampleFormat *known = sample_format_of(format);
  return known == nullptr || known->bits == 0 ? 0 : (known->bits + 7) / 8;
}

}  // namespace

void check_size(const SF_INFO &info, sf_count_t frames, const std::string &name) {
  // Leaves room for the header and the tags.
  constexpr double kMost = 4294967296.0 - 1048576.0;
  const Container *container = container_of(info.format);
  if (container != nullptr && container->beyond_4_gib) return;
  const double bytes = static_cast<double>(frames) * info.channels * bytes_per_sample(info.format);
  if (bytes > kMost) {
    refuse(name + " would pass the 4 GiB that " + format_name(info.format) +
           " can hold; use --format rf64, w64 or caf");
  }
}

// Writes go through these functions because libsndfile forgets an error that
// happens while it completes a file, and its encoders don't all survive one. So
// it is told that all went well, and the error is kept for check_sink.
SF_VIRTUAL_IO AudioOutput::operations() {
  SF_VIRTUAL_IO io;
  io.get_filelen = [](void *sink) -> sf_count_t {
    struct stat status {};
    return fstat(static_cast<Sink *>(sink)->fd, &status) == 0 ? status.st_size : -1;
  };
  io.seek = [](sf_count_t offset, int whence, void *sink) -> sf_count_t {
    return lseek(static_cast<Sink *>(sink)->fd, offset, whence);
  };
  io.read = [](void *data, sf_count_t size, void *sink) -> sf_count_t {
    return read(static_cast<Sink *>(sink)->fd, data, static_cast<std::size_t>(size));
  };
  io.write = [](const void *data, sf_count_t size, void *user) -> sf_count_t {
    Sink *sink = static_cast<Sink *>(user);
    if (sink->error_number == 0 && !write_all(sink->fd, data, static_cast<std::size_t>(size))) {
      sink->error_number = errno;
    }
    return size;
  };
  io.tell = [](void *sink) -> sf_count_t {
    return lseek(static_cast<Sink *>(sink)->fd, 0, SEEK_CUR);
  };
  return io;
}

AudioOutput::AudioOutput(OutputFile &file, const SF_INFO &info, const std::string &name)
    : name_(name), description_(file.description()), info_(info), sink_{file.fd(), 0} {
  SF_VIRTUAL_IO io = operations();
  SF_INFO opened = info;
  file_.reset(sf_open_virtual(&io, SFM_WRITE, &opened, &sink_));
  check_sink();
  if (!file_) {
    fail("can't write " + name_ + " as " + format_name(info.format) + " at " +
         std::to_string(info.samplerate) + " Hz: " + sf_strerror(nullptr) +
         " Choose another format with --format");
  }
  // The peak chunk bears the time of day; without it the same audio always
  // gives the same file.
  sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  const SampleFormat *samples = sample_format_of(info.format);
  bits_ = samples != nullptr ? samples->bits : 0;
}

AudioOutput::~AudioOutput() = default;

void AudioOutput::check_sink() const {
  if (sink_.error_number == 0) return;
  fail("can't write " + description_ + ": " + system_error(sink_.error_number) +
       "; nothing was changed");
}

void AudioOutput::check_written(sf_count_t written, sf_count_t frames) {
  check_sink();
  // An encoder may count samples that it adds to fill its last byte.
  if (written < frames) {
    fail("can't write " + name_ + ": " + sf_strerror(file_.get()) + "; nothing was changed");
  }
  frames_ += frames;
}

void AudioOutput::write(const float *samples, sf_count_t frames) {
  check_size(info_, frames_ + frames, name_);
  const std::size_t count = static_cast<std::size_t>(frames * info_.channels);
  if (bits_ == 0) {
    check_written(sf_writef_float(file_.get(), samples, frames), frames);
  } else if (bits_ <= 16) {
    shorts_.resize(count);
    limited_ += quantise({samples, count}, bits_, shorts_.data());
    check_written(sf_writef_short(file_.get(), shorts_.data(), frames), frames);
  } else {
    ints_.resize(count);
    limited_ += quantise({samples, count}, bits_, ints_.data());
    check_written(sf_writef_int(file_.get(), ints_.data(), frames), frames);
  }
}

void AudioOutput::write(const short *samples, sf_count_t frames) {
  check_size(info_, frames_ + frames, name_);
  using Limits = std::numeric_limits<short>;
  at_full_scale_ +=
      static_cast<uint64_t>(std::count_if(samples, samples + frames * info_.channels, [](short s) {
        return s == Limits::max() || s == Limits::min();
      }));
  check_written(sf_writef_short(file_.get(), samples, frames), frames);
}

void AudioOutput::finish() {
  const int error = sf_close(file_.release());
  check_sink();
  if (error != SF_ERR_NO_ERROR) {
    fail("can't complete " + name_ + ": " + sf_error_number(error));
  }
  check_result();
}

// Some containers round the rate or can't be empty, which libsndfile doesn't
// report. So the file has to show that it can be read back.
void AudioOutput::check_result() const {
  const bool raw = (info_.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_RAW;
  if (raw) return;
  const std::string format = format_name(info_.format);
  const std::string advice = "; choose another format with --format";
  SF_INFO found{};
  lseek(sink_.fd, 0, SEEK_SET);
  const SndfilePointer result(sf_open_fd(sink_.fd, SFM_READ, &found, SF_FALSE));
  if (!result) {
    fail(format + (frames_ == 0 ? " can't hold an empty file" : " can't be read back") + advice);
  }
  if (found.samplerate != info_.samplerate) {
    fail(format + " can't hold a rate of " + std::to_string(info_.samplerate) + " Hz" + advice);
  }
  if (found.channels != info_.channels || found.frames < frames_) {
    fail(format + " doesn't hold all of the audio" + advice);
  }
}

}  // namespace mvk
