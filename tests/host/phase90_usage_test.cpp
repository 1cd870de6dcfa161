// What mvk phase90 refuses, what it can't do, and how it takes its options.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/command_test.h"
#include "host/process.h"

namespace host {
namespace {

class Phase90Usage : public CommandTest {
 protected:
  Phase90Usage() : CommandTest("phase90", {"out.wav"}) {}

  const std::string out_ = folder_.file("out.wav");
};

TEST_F(Phase90Usage, FilesAreRequired) {
  EXPECT_EQ(message(2, {}), "mvk: IN is required; see 'mvk phase90 --help'\n");
  EXPECT_EQ(message(2, {in_}), "mvk: OUT is required; see 'mvk phase90 --help'\n");
}

TEST_F(Phase90Usage, FrameThatThereIsNoneOfListsThoseThatThereAre) {
  for (const char *frame : {"0", "1", "256", "511", "1000", "4096", "66048", "4294967295"}) {
    EXPECT_EQ(message(2, {in_, out_, "--frame", frame}),
              std::string("mvk: the phase shifter has no frames of ") + frame +
                  " samples; use --frame 512, 1024 or 2048\n");
  }
  for (const char *text : {"-512", "512.5", "long"}) {
    EXPECT_EQ(
        message(2, {in_, out_, "--frame", text}),
        std::string("mvk: Could not convert: --frame = ") + text + "; see 'mvk phase90 --help'\n");
  }
}

TEST_F(Phase90Usage, FilesThatCantBeReadAreNamed) {
  for (const auto &[file, problem] : unreadable_files()) {
    EXPECT_EQ(message(1, {file, out_}).find(problem), 0U);
  }
}

TEST_F(Phase90Usage, CutOffFileIsntTakenForWhole) {
  const std::string flac = cut_off_file();
  const std::string error = message(1, {flac, out_});
  EXPECT_EQ(error.find("mvk: can't read " + flac + ": "), 0U) << error;
  EXPECT_NE(error.find(" It is cut off or damaged\n"), std::string::npos) << error;
}

TEST_F(Phase90Usage, FullDiskIsReported) {
  for (const rlim_t limit : {5000U, 12043U}) {
    Environment environment;
    environment.file_size_limit = limit;
    EXPECT_EQ(message(1, {in_, out_}, environment),
              "mvk: can't write " + out_ + ": File too large; nothing was changed\n");
  }
}

TEST_F(Phase90Usage, FolderIsNoOutput) {
  EXPECT_EQ(message(2, {in_, folder_.path()}),
            "mvk: " + folder_.path() + " is a folder; name a file in it\n");
}

TEST_F(Phase90Usage, FormatThatDoesntExistIsRefused) {
  EXPECT_EQ(message(2, {in_, out_, "--format", "flac:float"}),
            "mvk: flac:float doesn't exist; this container takes s8 s16 s24\n");
}

TEST_F(Phase90Usage, WrongLibraryIsNamed) {
  const std::string error = message(1, {in_, out_, "--library", "libm.so.6"});
  EXPECT_EQ(error.find("mvk: libm.so.6 doesn't export "), 0U) << error;
  EXPECT_NE(error.find("_Phase90Hilbert"), std::string::npos) << error;
  EXPECT_EQ(message(1, {in_, out_, "--library", folder_.file("in.so")})
                .find("mvk: can't load the library: "),
            0U);
  const Outcome right = run({"phase90", in_, "-", "--library", library()});
  EXPECT_EQ(right.exit_code, 0) << right.err;
}

TEST_F(Phase90Usage, HelpShowsExamplesFramesAndFormats) {
  const Outcome outcome = run({"phase90", "--help"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char *part : {"Usage: mvk phase90", "Examples:\n  mvk phase90 ", "90 degrees",
                           "--frame", " flac ", " s16 "}) {
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
  }
  EXPECT_NE(run({"--help"}).out.find("mvk phase90 "), std::string::npos);
}

}  // namespace
}  // namespace host
