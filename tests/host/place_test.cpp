// Where the output goes: files, links, the input itself, pipes and devices.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class Place : public testing::Test {
 protected:
  Place() {
    write_audio(in_, tones(kWav16, 48000, 2, 3000));
    const Outcome outcome = run({"resample", in_, folder_.file("expected.wav"), "--rate", "96000"});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    expected_ = read_bytes(folder_.file("expected.wav"));
    fs::remove(folder_.file("expected.wav"));
  }

  Outcome resample(const std::string &in, const std::string &out,
                   const Environment &environment = {}) {
    return run({"resample", in, out, "--rate", "96000"}, environment);
  }

  mode_t mode_of(const std::string &name) {
    struct stat status {};
    EXPECT_EQ(stat(folder_.file(name).c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  std::string expected_;
};

TEST_F(Place, SameInputGivesTheSameBytes) {
  ASSERT_EQ(resample(in_, folder_.file("out.wav")).exit_code, 0);
  EXPECT_EQ(read_bytes(folder_.file("out.wav")), expected_);
}

TEST_F(Place, NoTimeOfDayIsWritten) {
  // libsndfile would put one into the peak chunk of files of floats.
  ASSERT_EQ(
      run({"resample", in_, folder_.file("out.wav"), "--rate", "96000", "-f", "float"}).exit_code,
      0);
  EXPECT_EQ(read_bytes(folder_.file("out.wav")).find("PEAK"), std::string::npos);
}

TEST_F(Place, InputCanBeTheOutput) {
  ASSERT_EQ(resample(in_, in_).exit_code, 0);
  EXPECT_EQ(read_bytes(in_), expected_);
  EXPECT_EQ(folder_.names(), std::set<std::string>{"in.wav"});
}

TEST_F(Place, NewFileGetsTheUsualPermissions) {
  Environment environment;
  environment.mask = 027;
  ASSERT_EQ(resample(in_, folder_.file("out.wav"), environment).exit_code, 0);
  EXPECT_EQ(mode_of("out.wav"), 0640U);
  EXPECT_EQ(folder_.names(), (std::set<std::string>{"in.wav", "out.wav"}));
}

TEST_F(Place, ReplacedFileKeepsItsPermissions) {
  write_bytes(folder_.file("out.wav"), "old");
  fs::permissions(folder_.file("out.wav"), fs::perms{0604});
  ASSERT_EQ(resample(in_, folder_.file("out.wav")).exit_code, 0);
  EXPECT_EQ(mode_of("out.wav"), 0604U);
  EXPECT_EQ(read_bytes(folder_.file("out.wav")), expected_);
}

TEST_F(Place, LinkStaysALinkToTheNewFile) {
  fs::create_directory(folder_.file("far"));
  write_bytes(folder_.file("far/target.wav"), "old");
  fs::create_symlink("far/target.wav", folder_.file("middle.wav"));
  fs::create_symlink("middle.wav", folder_.file("out.wav"));
  ASSERT_EQ(resample(in_, folder_.file("out.wav")).exit_code, 0);
  EXPECT_TRUE(fs::is_symlink(folder_.file("out.wav")));
  EXPECT_TRUE(fs::is_symlink(folder_.file("middle.wav")));
  EXPECT_EQ(read_bytes(folder_.file("far/target.wav")), expected_);
}

TEST_F(Place, LinkToNothingMakesItsTarget) {
  fs::create_symlink("target.wav", folder_.file("out.wav"));
  ASSERT_EQ(resample(in_, folder_.file("out.wav")).exit_code, 0);
  EXPECT_TRUE(fs::is_symlink(folder_.file("out.wav")));
  EXPECT_EQ(read_bytes(folder_.file("target.wav")), expected_);
}

TEST_F(Place, DashIsStandardOutput) {
  const Outcome outcome = resample(in_, "-");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, expected_);
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Place, DashIsStandardInputFromAFile) {
  Environment environment;
  environment.stdin_path = in_;
  const Outcome outcome = resample("-", "-", environment);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out, expected_);
}

TEST_F(Place, DashIsStandardInputFromAPipe) {
  Environment environment;
  environment.piped_input = read_bytes(in_);
  const Outcome outcome = resample("-", folder_.file("out.wav"), environment);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(read_bytes(folder_.file("out.wav")), expected_);
}

TEST_F(Place, EveryContainerGoesThroughPipes) {
  for (const char *format : {"flac", "ogg:vorbis", "caf", "w64", "aiff"}) {
    Environment environment;
    environment.piped_input = read_bytes(in_);
    const Outcome up =
        run({"resample", "-", "-", "--rate", "96000", "--format", format}, environment);
    ASSERT_EQ(up.exit_code, 0) << up.err;
    environment.piped_input = up.out;
    const Outcome down =
        run({"resample", "-", folder_.file("out"), "--rate", "48000"}, environment);
    ASSERT_EQ(down.exit_code, 0) << down.err;
    EXPECT_EQ(read_audio(folder_.file("out")).frames(), 3000) << format;
  }
}

TEST_F(Place, NamedPipesWork) {
  const std::string from = folder_.file("from");
  const std::string to = folder_.file("to");
  ASSERT_EQ(mkfifo(from.c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(to.c_str(), 0600), 0);
  const std::string source = read_bytes(in_);
  std::thread writer([&] { write_bytes(from, source); });
  std::string result;
  std::thread reader([&] { result = read_bytes(to); });
  const Outcome outcome = resample(from, to);
  writer.join();
  reader.join();
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(result, expected_);
  EXPECT_TRUE(fs::is_fifo(to));
}

TEST_F(Place, DevicesArentReplaced) {
  EXPECT_EQ(resample(in_, "/dev/null").exit_code, 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Place, TemporaryFilesOfPipesLeaveNothing) {
  fs::create_directory(folder_.file("temporary"));
  Environment environment;
  environment.temporary = folder_.file("temporary");
  environment.piped_input = read_bytes(in_);
  EXPECT_EQ(resample("-", "-", environment).exit_code, 0);
  EXPECT_TRUE(fs::is_empty(folder_.file("temporary")));
}

}  // namespace
}  // namespace host
