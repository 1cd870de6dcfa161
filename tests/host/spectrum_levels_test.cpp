// The levels that mvk spectrum writes into a table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <set>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"
#include "host/spectrum_reference.h"

namespace host {
namespace {

constexpr int kLengths[] = {32, 64, 128, 256, 512, 1024, 2048, 4096};

// The smallest level, which stands for silence.
constexpr double kFloor = -200.0;

// A step of a level, and what the rounding of a transform can make of a level of 0.
constexpr double kNear = 0.001;

class SpectrumLevels : public testing::Test {
 protected:
  SpectrumTable table_of(const std::string &in, int length,
                         const std::vector<std::string> &options = {}) {
    std::vector<std::string> arguments = {"spectrum", in, out_, "--length", std::to_string(length)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    return read_spectrum_table(out_);
  }

  SpectrumTable table_of(const Audio &audio, int length) {
    write_audio(in_, audio);
    return table_of(in_, length);
  }

  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.csv");
};

using Signal = std::function<double(int frame, int channel)>;

Audio audio_of(int channels, int frames, const Signal &signal, int rate = 48000) {
  Audio audio{kWavFloat, rate, channels, {}};
  for (int i = 0; i < frames; ++i) {
    for (int c = 0; c < channels; ++c) audio.samples.push_back(signal(i, c));
  }
  return audio;
}

// A sine of full scale at a bin.
double sine(int bin, int length, int frame, double phase = 0.3) {
  return std::sin(2 * std::numbers::pi * bin / length * frame + phase);
}

TEST_F(SpectrumLevels, SineOfFullScaleHasNoDecibelsInItsBin) {
  for (const int length : kLengths) {
    for (const int bin : {3, length / 8, length / 4 + 1, length / 2 - 3}) {
      SCOPED_TRACE("bin " + std::to_string(bin) + " of " + std::to_string(length));
      const SpectrumTable table = table_of(
          audio_of(1, 3 * length, [&](int i, int) { return sine(bin, length, i); }), length);
      // Windows that lie in the file.
      for (std::size_t row = 2; row < table.levels.size() - 1; ++row) {
        const std::vector<double> &levels = table.levels[row];
        for (int k = 0; k <= length / 2; ++k) {
          const double level = levels[static_cast<std::size_t>(k)];
          if (k == bin) {
            ASSERT_NEAR(level, 0.0, kNear);
          } else if (std::abs(k - bin) == 1) {
            ASSERT_NEAR(level, 20 * std::log10(0.5), kNear);  // half of it, by the window
          } else {
            ASSERT_LT(level, -100.0) << "bin " << k;
          }
        }
      }
    }
  }
}

TEST_F(SpectrumLevels, QuieterSineHasItsLevel) {
  for (const double decibels : {-1.0, -20.0, -60.5, 12.0}) {
    const double amplitude = std::pow(10.0, decibels / 20.0);
    const SpectrumTable table =
        table_of(audio_of(1, 512, [&](int i, int) { return amplitude * sine(9, 128, i); }), 128);
    EXPECT_NEAR(table.levels[7][9], decibels, kNear);
  }
}

TEST_F(SpectrumLevels, ConstantAndAlternatingSamplesHaveTheirAmplitudeAtTheEnds) {
  SpectrumTable table = table_of(audio_of(1, 512, [](int, int) { return -1.0; }), 128);
  EXPECT_NEAR(table.levels[7].front(), 0.0, kNear);
  EXPECT_LT(table.levels[7].back(), -100.0);
  table = table_of(audio_of(1, 512, [](int i, int) { return i % 2 == 0 ? 0.5 : -0.5; }), 128);
  EXPECT_LT(table.levels[7].front(), -100.0);
  EXPECT_NEAR(table.levels[7].back(), 20 * std::log10(0.5), kNear);
}

TEST_F(SpectrumLevels, PowersOfChannelsAreAveraged) {
  const double half = 10 * std::log10(0.5);
  // The same in both, whatever its phase: nothing is lost.
  SpectrumTable table = table_of(
      audio_of(2, 512, [](int i, int c) { return sine(9, 128, i, c * std::numbers::pi); }), 128);
  EXPECT_NEAR(table.levels[7][9], 0.0, kNear);
  // One of two.
  table =
      table_of(audio_of(2, 512, [](int i, int c) { return c == 1 ? sine(9, 128, i) : 0.0; }), 128);
  EXPECT_NEAR(table.levels[7][9], half, kNear);
  // A sine of its own in each.
  table = table_of(audio_of(2, 512, [](int i, int c) { return sine(9 + 20 * c, 128, i); }), 128);
  EXPECT_NEAR(table.levels[7][9], half, kNear);
  EXPECT_NEAR(table.levels[7][29], half, kNear);
  // One of five.
  table =
      table_of(audio_of(5, 512, [](int i, int c) { return c == 4 ? sine(9, 128, i) : 0.0; }), 128);
  EXPECT_NEAR(table.levels[7][9], 10 * std::log10(0.2), kNear);
}

TEST_F(SpectrumLevels, SilenceHasTheLowestLevel) {
  const SpectrumTable table = table_of(audio_of(2, 5000, [](int, int) { return 0.0; }), 256);
  ASSERT_EQ(table.levels.size(), 79U);
  for (const std::vector<double> &levels : table.levels) {
    for (const double level : levels) ASSERT_EQ(level, kFloor);
  }
  EXPECT_NE(read_bytes(out_).find(",-200.000,"), std::string::npos);
}

TEST_F(SpectrumLevels, LevelsBelowTheLowestAreRaisedToIt) {
  const SpectrumTable table =
      table_of(audio_of(1, 512, [](int i, int) { return 1e-11 * sine(9, 128, i); }), 128);
  EXPECT_EQ(table.levels[7][9], kFloor);
}

// Exactly the first frame, by the window's centre, and every later one only after it.
TEST_F(SpectrumLevels, RowIsCentredAtItsTime) {
  const SpectrumTable table =
      table_of(audio_of(
                   1, 1000, [](int i, int) { return i == 512 ? 1.0 : 0.0; }, 8000),
               256);
  for (std::size_t row = 0; row < table.times.size(); ++row) {
    const double offset = table.times[row] * 8000 - 512;
    const double window = 0.5 + 0.5 * std::cos(2 * std::numbers::pi * offset / 256);
    const bool reached = std::fabs(offset) < 128;
    for (int bin = 1; bin < 128; ++bin) {
      // An impulse has a 256th of its height in each bin, and twice that by the window's
      // mean, and again by the negative frequencies.
      ASSERT_NEAR(table.levels[row][static_cast<std::size_t>(bin)],
                  reached ? 20 * std::log10(window / 64) : kFloor, kNear)
          << "row " << row;
    }
  }
}

// ---- Shape ----

TEST_F(SpectrumLevels, RowsAndColumnsFollowFromTheLengths) {
  struct Case {
    int length;
    int frames;
    int rate;
  };
  std::vector<Case> cases = {{1024, 5000, 44100}, {1024, 5000, 11025}, {4096, 9000, 96000}};
  for (const int length : {32, 256, 4096}) {
    const int hop = length / 4;
    for (const int frames : {1, hop - 1, hop, hop + 1, length - 1, length}) {
      cases.push_back({length, frames, 48000});
    }
  }
  // Audio is read 8192 frames at a time.
  for (const int frames : {8191, 8192, 8193, 16384, 20001}) cases.push_back({256, frames, 48000});
  for (const auto &[length, frames, rate] : cases) {
    SCOPED_TRACE(std::to_string(frames) + " frames at " + std::to_string(rate) + " Hz by " +
                 std::to_string(length));
    const SpectrumTable table = table_of(tones(kWav16, rate, 2, frames), length);
    ASSERT_EQ(static_cast<long long>(table.times.size()), spectrum_rows(frames, length));
    ASSERT_EQ(table.frequencies.size(), static_cast<std::size_t>(length / 2 + 1));
    for (std::size_t k = 0; k < table.frequencies.size(); ++k) {
      ASSERT_EQ(table.frequencies[k], static_cast<double>(k) * rate / length);
    }
    for (std::size_t row = 0; row < table.times.size(); ++row) {
      ASSERT_NEAR(table.times[row], static_cast<double>(row) * (length / 4) / rate, 0.51e-9);
    }
  }
}

TEST_F(SpectrumLevels, TableIsWrittenInPlainNumbers) {
  write_audio(in_, audio_of(
                       1, 9, [](int, int) { return 0.0; }, 1600000));
  table_of(in_, 32);
  std::string expected = "seconds";
  for (int k = 0; k <= 16; ++k) expected.append(",").append(std::to_string(50000 * k));
  for (const char *time : {"0.000000000", "0.000005000"}) {
    expected.append("\r\n").append(time);
    for (int k = 0; k <= 16; ++k) expected += ",-200.000";
  }
  EXPECT_EQ(read_bytes(out_), expected + "\r\n");
}

TEST_F(SpectrumLevels, LengthIs1024IfNotGiven) {
  ASSERT_EQ(run({"spectrum", kSpeech, out_}).exit_code, 0);
  const std::string usual = read_bytes(out_);
  EXPECT_EQ(read_spectrum_table(out_).frequencies.size(), 513U);
  table_of(kSpeech, 1024);
  EXPECT_EQ(read_bytes(out_), usual);
}

// ---- Against the sums ----

// The ends, what lies about every 8192nd frame, and some between.
std::set<long long> telling_rows(long long rows, int length, int spread) {
  std::set<long long> chosen;
  const auto choose = [&](long long row) {
    if (row >= 0 && row < rows) chosen.insert(row);
  };
  for (int i = 0; i < 3; ++i) {
    choose(i);
    choose(rows - 1 - i);
  }
  for (long long row = 0; row < rows; row += std::max(rows / spread, 1LL)) choose(row);
  const long long block = 8192 / (length / 4);
  if (spread > 4) {
    for (int i = -3; i <= 3; ++i) choose(block + i);
  }
  return chosen;
}

struct Recording {
  const char *path;
  int length;
  int spread;    // rows to take in between
  int bin_step;  // every so many bins
};

class SpectrumOfRecording : public SpectrumLevels, public testing::WithParamInterface<Recording> {};

TEST_P(SpectrumOfRecording, IsThatOfTheSums) {
  const Recording &recording = GetParam();
  const Audio audio = read_audio(recording.path);
  const SpectrumTable table = table_of(recording.path, recording.length);
  const long long rows = spectrum_rows(audio.frames(), recording.length);
  ASSERT_EQ(static_cast<long long>(table.levels.size()), rows);
  for (const long long row : telling_rows(rows, recording.length, recording.spread)) {
    for (int bin = static_cast<int>(row % recording.bin_step); bin <= recording.length / 2;
         bin += recording.bin_step) {
      const ExpectedAmplitude expected = spectrum_amplitude(audio, recording.length, row, bin);
      const double level =
          table.levels[static_cast<std::size_t>(row)][static_cast<std::size_t>(bin)];
      const double lowest = std::pow(10.0, kFloor / 20.0);
      ASSERT_NEAR(std::pow(10.0, level / 20.0), std::max(expected.value, lowest), expected.error)
          << "row " << row << ", bin " << bin;
    }
  }
}

constexpr const char *kAlarm = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga";

INSTANTIATE_TEST_SUITE_P(
    Recordings, SpectrumOfRecording,
    testing::Values(Recording{kSpeech, 32, 40, 1}, Recording{kBell, 64, 40, 1},
                    Recording{kSpeech, 128, 20, 2}, Recording{kAlarm, 256, 10, 5},
                    Recording{kSpeech, 512, 10, 11}, Recording{kBell, 1024, 10, 23},
                    Recording{kSpeech, 2048, 4, 61}, Recording{kAlarm, 4096, 4, 211}),
    [](const auto &each) { return "By" + std::to_string(each.param.length); });

// ---- Inputs ----

TEST_F(SpectrumLevels, EveryFormatOfTheSameSamplesHasTheSameLevels) {
  const Audio source = tones(kWav16, 44100, 2, 3000);
  table_of(source, 256);
  const std::string expected = read_bytes(out_);
  for (const int format : {SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_W64 | SF_FORMAT_DOUBLE,
                           SF_FORMAT_AIFF | SF_FORMAT_PCM_24, kWavFloat}) {
    Audio other = source;
    other.format = format;
    table_of(other, 256);
    EXPECT_EQ(read_bytes(out_), expected) << std::hex << format;
  }
}

TEST_F(SpectrumLevels, StandardInputServes) {
  table_of(tones(kWav16, 44100, 2, 3000), 256);
  const std::string expected = read_bytes(out_);
  Environment environment;
  environment.piped_input = read_bytes(in_);
  ASSERT_EQ(run({"spectrum", "-", out_, "-n", "256"}, environment).exit_code, 0);
  EXPECT_EQ(read_bytes(out_), expected);
}

// As an encoder leaves it that can't go back to its header.
TEST_F(SpectrumLevels, StreamThatDoesntKnowItsLengthServes) {
  Audio audio = tones(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 1, 30000);
  table_of(audio, 256);
  const std::string expected = read_bytes(out_);
  std::string bytes = read_bytes(in_);
  bytes[21] = static_cast<char>(bytes[21] & 0xF0);  // 36 bits of STREAMINFO
  bytes.replace(22, 4, 4, '\0');
  write_bytes(in_, bytes);
  SF_INFO info{};
  SNDFILE *file = sf_open(in_.c_str(), SFM_READ, &info);
  ASSERT_NE(file, nullptr);
  sf_close(file);
  ASSERT_EQ(info.frames, SF_COUNT_MAX);
  table_of(in_, 256);
  EXPECT_EQ(read_bytes(out_), expected);
}

TEST_F(SpectrumLevels, UnusableSamplesCountAsSilenceAndAreReported) {
  Audio audio = tones(kWavFloat, 48000, 2, 20000);
  const std::pair<std::size_t, double> unusable[] = {
      {7, NAN}, {500, INFINITY}, {501, -INFINITY}, {16385, 3e38}, {39999, -2e18}};
  audio.samples[1000] = 1e18;  // counts
  for (const auto &[at, value] : unusable) audio.samples[at] = 0.0;
  table_of(audio, 256);
  const std::string expected = read_bytes(out_);
  for (const auto &[at, value] : unusable) audio.samples[at] = value;
  write_audio(in_, audio);
  const Outcome outcome = run({"spectrum", in_, out_, "--length", "256"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err,
            "mvk: note: 5 samples aren't finite numbers, or lie beyond 360 dBFS; they count as "
            "silence\n");
  EXPECT_EQ(read_bytes(out_), expected);
  table_of(in_, 256, {"--quiet"});
  EXPECT_EQ(read_bytes(out_), expected);
}

TEST_F(SpectrumLevels, TruncatedWavIsAnalysedAsFarAsItGoesWithANote) {
  write_audio(in_, tones(kWav16, 48000, 2, 20000));
  truncate_to(in_, 0.5);
  const long long left = read_audio(in_).frames();
  const Outcome outcome = run({"spectrum", in_, out_, "-n", "64"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "mvk: note: " + in_ +
                             " ends before the length in its header; what is there gets "
                             "analysed\n");
  EXPECT_EQ(static_cast<long long>(read_spectrum_table(out_).times.size()),
            spectrum_rows(left, 64));
  table_of(in_, 64, {"-q"});
}

}  // namespace
}  // namespace host
