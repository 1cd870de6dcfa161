#include "host/audio_command.h"

#include <cmath>

namespace host {

Audio AudioCommand::made(const std::string &in, const std::string &out,
                         const std::vector<std::string> &more) {
  std::vector<std::string> arguments = command_;
  arguments.insert(arguments.end(), {in, out});
  arguments.insert(arguments.end(), more.begin(), more.end());
  outcome_ = run(arguments);
  EXPECT_EQ(outcome_.exit_code, 0) << outcome_.err;
  return read_audio(out);
}

Audio AudioCommand::run_on(const std::string &in, const std::vector<std::string> &more) {
  return made(in, out_, more);
}

Audio AudioCommand::run_on(const Audio &source, const std::vector<std::string> &more) {
  write_audio(in_, source);
  return run_on(in_, more);
}

void AudioCommand::expect_compressed_whole(const std::vector<std::string> &more) {
  const Audio source = read_audio(kBell);
  for (const char *name : {"out.flac", "out.ogg", "out.aiff"}) {
    const Audio result = made(kBell, folder_.file(name), more);
    EXPECT_EQ(result.frames(), source.frames()) << name;
    EXPECT_EQ(result.rate, source.rate) << name;
    EXPECT_EQ(result.channels, source.channels) << name;
  }
}

void expect_same(const Audio &result, const Audio &source, const std::vector<double> &samples) {
  EXPECT_EQ(result.rate, source.rate);
  EXPECT_EQ(result.channels, source.channels);
  ASSERT_EQ(result.samples.size(), samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    ASSERT_EQ(result.samples[i], samples[i]) << "sample " << i;
  }
}

void expect_every_format(const std::function<Audio(const std::vector<std::string> &)> &make,
                         const Audio &source, const std::vector<double> &samples) {
  const struct {
    const char *name;
    int bits;  // of an integer
  } formats[] = {{"wav:s16", 16},  {"wav:u8", 8},    {"flac:s24", 24},
                 {"aiff:s32", 32}, {"w64:float", 0}, {"caf:double", 0}};
  for (const auto &format : formats) {
    SCOPED_TRACE(format.name);
    std::vector<double> rounded = samples;
    if (format.bits > 0) {
      const double full = std::ldexp(1.0, format.bits - 1);
      for (double &x : rounded) x = std::nearbyint(x * full) / full;
    }
    expect_same(make({"--format", format.name}), source, rounded);
  }
}

}  // namespace host
