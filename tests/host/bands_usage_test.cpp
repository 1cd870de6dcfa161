// What mvk bands refuses, what it can't do, and how it takes its options.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/command_test.h"
#include "host/process.h"

namespace host {
namespace {

class BandsUsage : public CommandTest {
 protected:
  BandsUsage() : CommandTest("bands", {"out.wav", "out.png"}) {}

  // What a run without --roundtrip begins with, and one with it.
  std::vector<std::vector<std::string>> both_ways(const std::string &in) const {
    std::vector<std::vector<std::string>> ways = {{"--roundtrip", in, wav_}};
#ifdef MVK_PICTURES
    ways.push_back({in, png_});
#endif
    return ways;
  }

  const std::string wav_ = folder_.file("out.wav");
  const std::string png_ = folder_.file("out.png");
};

TEST_F(BandsUsage, FilesAreRequired) {
  EXPECT_EQ(message(2, {}), "mvk: IN is required; see 'mvk bands --help'\n");
  EXPECT_EQ(message(2, {in_}), "mvk: OUT is required; see 'mvk bands --help'\n");
  EXPECT_EQ(message(2, {"--roundtrip", in_}), "mvk: OUT is required; see 'mvk bands --help'\n");
}

TEST_F(BandsUsage, OtherNumbersOfBandsAreRefusedWithThoseThatThereAre) {
  for (const char *bands :
       {"0", "1", "4", "7", "9", "24", "63", "65", "128", "-64", "32.0", "064", "many", ""}) {
    for (std::vector<std::string> arguments :
         {std::vector{in_, png_}, {"--roundtrip", in_, wav_}}) {
      arguments.insert(arguments.end(), {"--bands", bands});
      EXPECT_EQ(message(2, arguments), std::string("mvk: --bands '") + bands +
                                           "' isn't one of 8, 16, 32, 48 or 64 subbands\n");
    }
  }
}

TEST_F(BandsUsage, PictureIsAPng) {
  for (const std::string &out : {wav_, folder_.file("in.png.wav"), folder_.path(),
                                 std::string("png"), std::string("-"), folder_.file("x.png/")}) {
    EXPECT_EQ(message(2, {in_, out}), "mvk: OUT is '" + out +
                                          "', but must end with .png for a picture; "
                                          "--roundtrip writes audio\n");
  }
}

TEST_F(BandsUsage, FormatIsThatOfAudio) {
  EXPECT_EQ(message(2, {in_, png_, "--format", "wav"}),
            "mvk: --format requires --roundtrip; see 'mvk bands --help'\n");
  EXPECT_EQ(message(2, {"--roundtrip", in_, wav_, "--format", "flac:float"}),
            "mvk: flac:float doesn't exist; this container takes s8 s16 s24\n");
}

TEST_F(BandsUsage, FilesThatCantBeReadAreNamed) {
  for (const auto &[file, problem] : unreadable_files()) {
    for (const auto &arguments : both_ways(file)) {
      EXPECT_EQ(message(1, arguments).find(problem), 0U);
    }
  }
}

TEST_F(BandsUsage, CutOffFileIsntTakenForWhole) {
  const std::string flac = cut_off_file();
  for (const auto &arguments : both_ways(flac)) {
    const std::string error = message(1, arguments);
    EXPECT_EQ(error.find("mvk: can't read " + flac + ": "), 0U) << error;
    EXPECT_NE(error.find(" It is cut off or damaged\n"), std::string::npos) << error;
  }
}

TEST_F(BandsUsage, FullDiskIsReported) {
  for (const auto &arguments : both_ways(in_)) {
    for (const rlim_t limit : {100U, 5000U}) {
      Environment environment;
      environment.file_size_limit = limit;
      EXPECT_EQ(message(1, arguments, environment),
                "mvk: can't write " + arguments.back() + ": File too large; nothing was changed\n");
    }
  }
}

TEST_F(BandsUsage, PlacesThatCantBeWrittenAreNamed) {
  for (auto arguments : both_ways(in_)) {
    arguments.back() = folder_.file("nowhere/") + (arguments.size() == 2 ? "x.png" : "x.wav");
    EXPECT_EQ(message(1, arguments),
              "mvk: can't write " + arguments.back() +
                  ": No such file or directory; check the folder and its permissions\n");
  }
  EXPECT_EQ(message(2, {"--roundtrip", in_, folder_.path()}),
            "mvk: " + folder_.path() + " is a folder; name a file in it\n");
}

TEST_F(BandsUsage, WrongLibraryIsNamed) {
  for (auto arguments : both_ways(in_)) {
    arguments.insert(arguments.end(), {"--library", "libm.so.6"});
    const std::string error = message(1, arguments);
    EXPECT_EQ(error.find("mvk: libm.so.6 doesn't export MVK_"), 0U) << error;
    arguments.back() = folder_.file("in.so");
    EXPECT_EQ(message(1, arguments).find("mvk: can't load the library: "), 0U);
  }
  EXPECT_EQ(run({"bands", "--roundtrip", in_, "-", "--library", library()}).exit_code, 0);
}

TEST_F(BandsUsage, HelpShowsExamplesBandsAndUnits) {
  const Outcome outcome = run({"bands", "--help"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char *part : {"Usage: mvk bands", "Examples:\n  mvk bands ", "mvk bands --roundtrip ",
                           ".png", "--bands", "8, 16, 32, 48 or 64", "dBFS", " flac ", " s16 "}) {
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
  }
  EXPECT_NE(run({"--help"}).out.find("mvk bands "), std::string::npos);
}

#ifdef MVK_PICTURES
TEST_F(BandsUsage, AudioOfNoFramesShowsNothing) {
  write_audio(in_, Audio{kWav16, 48000, 1, {}});
  EXPECT_EQ(message(1, {in_, png_}), "mvk: " + in_ + " holds no audio; there is nothing to show\n");
}
#else
TEST_F(BandsUsage, PictureCantBeDrawnWithoutCairo) {
  EXPECT_EQ(message(2, {in_, png_}), "mvk: this mvk was built without cairo and can't draw " +
                                         png_ + "; install libcairo2-dev and build it again\n");
}
#endif

}  // namespace
}  // namespace host
