// What mvk says and leaves behind when it can't do its work.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// Expects a failed run that leaves only what was there before: in.*, and an
// old out.wav that is whole.
class Failing : public testing::Test {
 protected:
  Failing() { write_bytes(out_, "the old output"); }

  void write_input(int frames = 20000, int channels = 1) {
    write_audio(in_, tones(kWav16, 48000, channels, frames));
  }

  // Returns what mvk said.
  std::string fail(const std::string &in, const std::string &out,
                   const Environment &environment = {}, const std::string &rate = "96000") {
    const Outcome outcome = run({"resample", in, out, "--rate", rate}, environment);
    EXPECT_EQ(outcome.exit_code, 1) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(read_bytes(out_), "the old output");
    for (const std::string &name : folder_.names()) {
      EXPECT_TRUE(name == "out.wav" || name.starts_with("in.")) << name << " is left";
    }
    return outcome.err;
  }

  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.wav");
};

TEST_F(Failing, MissingInputIsNamed) {
  EXPECT_EQ(fail(in_, out_), "mvk: can't open " + in_ +
                                 ": No such file or directory; check the name and its "
                                 "permissions\n");
}

TEST_F(Failing, FolderIsNoInput) {
  EXPECT_EQ(fail(folder_.path(), out_),
            "mvk: " + folder_.path() + " is a folder; name an audio file\n");
}

TEST_F(Failing, TextIsNotAudio) {
  write_bytes(in_, "This is a letter, not a song.");
  EXPECT_EQ(fail(in_, out_).find("mvk: " + in_ + " can't be read as audio: "), 0U);
}

TEST_F(Failing, FileOfNoBytesIsNotAudio) {
  write_bytes(in_, "");
  EXPECT_EQ(fail(in_, out_).find("mvk: " + in_ + " can't be read as audio: "), 0U);
}

TEST_F(Failing, EmptyStandardInputIsNotAudio) {
  EXPECT_EQ(fail("-", out_).find("mvk: standard input can't be read as audio: "), 0U);
}

TEST_F(Failing, MoreThan35ChannelsAreTooMany) {
  write_input(300, 36);
  EXPECT_EQ(fail(in_, out_), "mvk: " + in_ + " has 36 channels; at most 35 can be resampled\n");
}

TEST_F(Failing, CutOffFlacIsNotTakenForWhole) {
  const std::string flac = folder_.file("in.flac");
  write_audio(flac, tones(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 48000, 1, 20000));
  truncate_to(flac, 0.6);
  const std::string message = fail(flac, out_);
  EXPECT_EQ(message.find("mvk: can't read " + flac + ": "), 0U) << message;
  EXPECT_NE(message.find(" It is cut off or damaged\n"), std::string::npos) << message;
}

TEST_F(Failing, CutOffMp3IsNotTakenForWhole) {
  const std::string mp3 = folder_.file("in.mp3");
  write_audio(mp3, tones(SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 48000, 1, 48000));
  truncate_to(mp3, 0.5);
  const std::string message = fail(mp3, out_);
  EXPECT_NE(message.find("mvk: " + mp3 + " ends after "), std::string::npos) << message;
  EXPECT_NE(message.find(" of 48000 frames; it is cut off or damaged\n"), std::string::npos);
}

TEST_F(Failing, CutOffVorbisIsNotTakenForWhole) {
  const std::string ogg = folder_.file("in.ogg");
  write_bytes(ogg, read_bytes("/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga"));
  truncate_to(ogg, 0.1);
  EXPECT_EQ(fail(ogg, out_), "mvk: " + ogg + " gives no audio; it is cut off or damaged\n");
}

TEST_F(Failing, FolderThatDoesntExistIsNoPlace) {
  write_input();
  const std::string message = fail(in_, folder_.file("nowhere/x.wav"));
  EXPECT_NE(message.find("No such file or directory; check the folder"), std::string::npos)
      << message;
}

TEST_F(Failing, FolderThatCantBeWrittenIsNoPlace) {
  write_input();
  const std::string message = fail(in_, "/proc/mvk-test.wav");
  EXPECT_EQ(message.find("mvk: can't write /proc/mvk-test.wav: "), 0U) << message;
}

TEST_F(Failing, FullDeviceIsReported) {
  write_input();
  EXPECT_EQ(fail(in_, "/dev/full"),
            "mvk: can't write /dev/full: No space left on device; its content isn't complete\n");
}

TEST_F(Failing, FullStandardOutputIsReported) {
  write_input();
  Environment environment;
  environment.stdout_path = "/dev/full";
  EXPECT_EQ(fail(in_, "-", environment),
            "mvk: can't write standard output: No space left on device; "
            "its content isn't complete\n");
}

// A limit on the size of files stands for a full disk: writes fail from some
// byte on, be it in the header, in the audio or in what completes the file.
TEST_F(Failing, FullDiskIsReportedForEveryFormat) {
  write_input();
  for (const char *format : {"wav:s16", "wav:float", "aiff:s24", "w64:s16", "caf:s16", "rf64:s16",
                             "flac:s16", "ogg:vorbis", "au:s16"}) {
    const Outcome whole = run({"resample", in_, "-", "--rate", "96000", "--format", format});
    ASSERT_EQ(whole.exit_code, 0) << whole.err;
    for (const rlim_t limit : {whole.out.size() / 2, whole.out.size() - 1}) {
      Environment environment;
      environment.file_size_limit = limit;
      const Outcome outcome =
          run({"resample", in_, out_, "--rate", "96000", "--format", format}, environment);
      // A Vorbis file has random numbers in it and isn't always of one size.
      if (std::string(format) == "ogg:vorbis" && limit > whole.out.size() / 2) continue;
      EXPECT_EQ(outcome.exit_code, 1) << format << " of " << limit << " bytes";
      EXPECT_EQ(outcome.err,
                "mvk: can't write " + out_ + ": File too large; nothing was changed\n");
      EXPECT_EQ(read_bytes(out_), "the old output");
      EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.wav", "out.wav"}));
    }
  }
}

// This encoder keeps its audio in a file of its own and crashes when it can't.
TEST_F(Failing, CrashOfAnEncoderLeavesNothingBesideTheOutput) {
  write_input();
  Environment environment;
  environment.file_size_limit = 6000;
  environment.temporary = folder_.file("in.temporary");
  fs::create_directory(environment.temporary);
  const Outcome outcome =
      run({"resample", in_, out_, "--rate", "96000", "--format", "caf:alac16"}, environment);
  EXPECT_NE(outcome.exit_code, 0);
  EXPECT_EQ(read_bytes(out_), "the old output");
  EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.temporary", "in.wav", "out.wav"}));
}

TEST_F(Failing, FullTemporaryFolderIsReported) {
  write_input();
  Environment environment;
  environment.file_size_limit = 5000;
  environment.temporary = folder_.path();
  EXPECT_EQ(
      fail(in_, "-", environment).find("mvk: can't write a temporary file in " + folder_.path()),
      0U);
  environment.piped_input = read_bytes(in_);
  EXPECT_EQ(
      fail("-", out_, environment).find("mvk: can't write a temporary file in " + folder_.path()),
      0U);
}

TEST_F(Failing, MissingTemporaryFolderIsReported) {
  write_input();
  Environment environment;
  environment.temporary = folder_.file("nowhere");
  EXPECT_EQ(fail(in_, "-", environment),
            "mvk: can't make a temporary file in " + environment.temporary +
                ": No such file or directory; set TMPDIR to a folder with room\n");
}

TEST_F(Failing, EmptyFlacCantBeWritten) {
  write_input(0);
  const Outcome outcome = run({"resample", in_, folder_.file("x.flac"), "--rate", "96000"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.err,
            "mvk: flac:s16 can't hold an empty file; choose another format with --format\n");
  EXPECT_FALSE(fs::exists(folder_.file("x.flac")));
}

TEST_F(Failing, ContainerThatWouldRoundTheRateIsNotTaken) {
  write_audio(in_, tones(kWav16, 44100, 1, 300));
  const Outcome outcome = run({"resample", in_, folder_.file("x.htk"), "--rate", "88200"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.err,
            "mvk: htk:s16 can't hold a rate of 88200 Hz; choose another format with --format\n");
  EXPECT_FALSE(fs::exists(folder_.file("x.htk")));
}

TEST_F(Failing, WrongLibraryIsNamed) {
  write_input();
  const auto with_library = [&](const std::string &library) {
    return run({"resample", in_, out_, "--rate", "96000", "--library", library});
  };
  const Outcome missing = with_library(folder_.file("in.so"));
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.err.find("mvk: can't load the library: "), 0U) << missing.err;
  const Outcome other = with_library("libm.so.6");
  EXPECT_EQ(other.exit_code, 1);
  EXPECT_EQ(other.err,
            "mvk: libm.so.6 doesn't export ACLI; name the right library with --library PATH\n");
  EXPECT_EQ(read_bytes(out_), "the old output");
}

TEST(Truncated, WavIsResampledAsFarAsItGoesWithANote) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 2, 20000));
  truncate_to(folder.file("in.wav"), 0.5);
  const long long left = read_audio(folder.file("in.wav")).frames();
  ASSERT_LT(left, 10001);
  const Outcome outcome =
      run({"resample", folder.file("in.wav"), folder.file("out.wav"), "--rate", "96000"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "mvk: note: " + folder.file("in.wav") +
                             " ends before the length in its header; what is there gets "
                             "resampled\n");
  EXPECT_EQ(read_audio(folder.file("out.wav")).frames(), 2 * left);
}

TEST(Truncated, StreamedWavOfUnknownLengthNeedsNoNote) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 48000, 2, 2000));
  std::string bytes = read_bytes(folder.file("in.wav"));
  bytes.replace(4, 4, 4, '\xFF');
  bytes.replace(bytes.find("data") + 4, 4, 4, '\xFF');
  write_bytes(folder.file("in.wav"), bytes);
  const Outcome outcome =
      run({"resample", folder.file("in.wav"), folder.file("out.wav"), "--rate", "96000"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(read_audio(folder.file("out.wav")).frames(), 4000);
}

// A run that would take minutes, with its temporary file already there.
class Interrupted : public Failing {
 protected:
  Process start_long_run(int ignored_signal = 0) {
    write_sparse_au(folder_.file("in.au"), 4'000'000'000, 48000);
    Environment environment;
    environment.ignored_signal = ignored_signal;
    const Process process =
        start({"resample", folder_.file("in.au"), out_, "--rate", "12000", "--format", "w64:u8"},
              environment);
    for (int wait = 0; wait < 5000 && !temporary_file_exists(); ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(temporary_file_exists());
    return process;
  }

  bool temporary_file_exists() const { return folder_.names().size() > 2; }

  void expect_nothing_left() const {
    EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.au", "out.wav"}));
    EXPECT_EQ(read_bytes(out_), "the old output");
  }
};

TEST_F(Interrupted, SignalsLeaveNothing) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    const Process process = start_long_run();
    kill(process.pid, signal);
    EXPECT_EQ(finish(process).signal, signal);
    expect_nothing_left();
  }
}

TEST_F(Interrupted, IgnoredSignalStaysIgnored) {
  const Process process = start_long_run(SIGHUP);
  kill(process.pid, SIGHUP);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(temporary_file_exists());
  kill(process.pid, SIGTERM);
  EXPECT_EQ(finish(process).signal, SIGTERM);
  expect_nothing_left();
}

TEST_F(Interrupted, SignalWhileReadingAnOpenPipeLeavesNothing) {
  fs::create_directory(folder_.file("in.temporary"));
  Environment environment;
  environment.temporary = folder_.file("in.temporary");
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const Process process = start({"resample", "-", out_, "--rate", "96000"}, environment, ends[0]);
  close(ends[0]);
  const std::string half_a_header = "RIFF\x24";
  ASSERT_EQ(write(ends[1], half_a_header.data(), half_a_header.size()), 5);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  kill(process.pid, SIGTERM);
  EXPECT_EQ(finish(process).signal, SIGTERM);
  close(ends[1]);
  EXPECT_TRUE(fs::is_empty(folder_.file("in.temporary")));
  EXPECT_EQ(read_bytes(out_), "the old output");
  EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.temporary", "out.wav"}));
}

}  // namespace
}  // namespace host
