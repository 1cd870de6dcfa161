// What mvk spectrum refuses, and what it says and leaves when it can't do its work.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/command_test.h"
#include "host/process.h"

namespace host {
namespace {

#ifdef MVK_PICTURES
constexpr const char *kSuffixes[] = {".csv", ".png"};
#else
constexpr const char *kSuffixes[] = {".csv"};
#endif

class SpectrumUsage : public CommandTest {
 protected:
  SpectrumUsage() : CommandTest("spectrum", {"out.csv", "out.png", "out.txt"}) {}

  const std::string out_ = folder_.file("out");
};

TEST_F(SpectrumUsage, FilesAreRequired) {
  EXPECT_EQ(message(2, {}), "mvk: IN is required; see 'mvk spectrum --help'\n");
  EXPECT_EQ(message(2, {in_}), "mvk: OUT is required; see 'mvk spectrum --help'\n");
}

TEST_F(SpectrumUsage, OtherSuffixesAreRefused) {
  for (const std::string &out : {out_ + ".txt", out_, folder_.file("in.png.wav"), folder_.path(),
                                 std::string("png"), std::string("-"), folder_.file("x.csv/")}) {
    EXPECT_EQ(
        message(2, {in_, out}),
        "mvk: OUT is '" + out + "', but must end with .png for a picture or .csv for numbers\n");
  }
}

TEST_F(SpectrumUsage, SuffixCanBeInCapitals) {
  for (const std::string suffix : kSuffixes) {
    const std::string lower = folder_.file("in" + suffix);
    const std::string upper = folder_.file(suffix == ".csv" ? "in.CsV" : "in.PNG");
    EXPECT_EQ(message(0, {in_, lower}), "");
    EXPECT_EQ(message(0, {in_, upper}), "");
    EXPECT_EQ(read_bytes(upper), read_bytes(lower));
  }
}

TEST_F(SpectrumUsage, OtherLengthsAreRefusedWithThoseThatThereAre) {
  for (const char *length : {"0", "1", "2", "4", "16", "31", "33", "1000", "1023", "8192", "65536",
                             "-1024", "64.5", "many", ""}) {
    for (const char *suffix : {".csv", ".png"}) {
      EXPECT_EQ(message(2, {in_, out_ + suffix, "--length", length}),
                std::string("mvk: --length '") + length +
                    "' isn't one of 32, 64, 128, 256, 512, 1024, 2048 or 4096 samples\n");
    }
  }
}

TEST_F(SpectrumUsage, AudioOfNoFramesShowsNothing) {
  write_audio(in_, Audio{kWav16, 48000, 1, {}});
  for (const std::string suffix : kSuffixes) {
    EXPECT_EQ(message(1, {in_, out_ + suffix}),
              "mvk: " + in_ + " holds no audio; there is nothing to show\n");
  }
}

TEST_F(SpectrumUsage, FilesThatCantBeReadAreNamed) {
  const std::string nowhere = folder_.file("in.nowhere");
  const std::string text = folder_.file("in.text");
  write_bytes(text, "This is a letter, not a song.");
  for (const std::string suffix : kSuffixes) {
    EXPECT_EQ(message(1, {nowhere, out_ + suffix}),
              "mvk: can't open " + nowhere +
                  ": No such file or directory; check the name and its permissions\n");
    EXPECT_EQ(message(1, {folder_.path(), out_ + suffix}),
              "mvk: " + folder_.path() + " is a folder; name an audio file\n");
    EXPECT_EQ(message(1, {text, out_ + suffix}).find("mvk: " + text + " can't be read as audio: "),
              0U);
  }
}

TEST_F(SpectrumUsage, CutOffFileIsntTakenForWhole) {
  const std::string flac = cut_off_file();
  for (const std::string suffix : kSuffixes) {
    const std::string error = message(1, {flac, out_ + suffix});
    EXPECT_EQ(error.find("mvk: can't read " + flac + ": "), 0U) << error;
    EXPECT_NE(error.find(" It is cut off or damaged\n"), std::string::npos) << error;
  }
}

TEST_F(SpectrumUsage, PlacesThatCantBeWrittenAreNamed) {
  for (const std::string suffix : kSuffixes) {
    const std::string nowhere = folder_.file("nowhere/x" + suffix);
    EXPECT_EQ(message(1, {in_, nowhere}),
              "mvk: can't write " + nowhere +
                  ": No such file or directory; check the folder and its permissions\n");
  }
}

TEST_F(SpectrumUsage, FullDiskIsReported) {
  for (const std::string suffix : kSuffixes) {
    const std::string whole = folder_.file("in" + suffix);
    EXPECT_EQ(message(0, {in_, whole}), "");
    for (const rlim_t limit : {rlim_t{100}, read_bytes(whole).size() - 1}) {
      Environment environment;
      environment.file_size_limit = limit;
      EXPECT_EQ(message(1, {in_, out_ + suffix}, environment),
                "mvk: can't write " + out_ + suffix + ": File too large; nothing was changed\n");
    }
  }
}

TEST_F(SpectrumUsage, WrongLibraryIsNamed) {
  EXPECT_EQ(message(1, {in_, out_ + ".csv", "--library", "libm.so.6"}),
            "mvk: libm.so.6 doesn't export MVK_fft_CLfwd_scaledL; name the right library with "
            "--library PATH\n");
  EXPECT_EQ(message(1, {in_, out_ + ".csv", "--library", folder_.file("in.so")})
                .find("mvk: can't load the library: "),
            0U);
  EXPECT_EQ(message(0, {in_, folder_.file("in.csv"), "--library", library()}), "");
}

TEST_F(SpectrumUsage, HelpShowsExamplesLengthsAndUnits) {
  const Outcome outcome = run({"spectrum", "--help"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char *part : {"Usage: mvk spectrum", "Examples:\n  mvk spectrum ", ".png", ".csv",
                           "--length", "32, 64, 128,", "dBFS", "Hann", "N / 4", "-200 dBFS"}) {
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
  }
  EXPECT_NE(run({"--help"}).out.find("mvk spectrum "), std::string::npos);
}

#ifndef MVK_PICTURES
TEST_F(SpectrumUsage, PictureCantBeDrawnWithoutCairo) {
  EXPECT_EQ(message(2, {in_, out_ + ".png"}),
            "mvk: this mvk was built without cairo and can't draw " + out_ +
                ".png; name a .csv file, or install libcairo2-dev and build it again\n");
}
#endif

}  // namespace
}  // namespace host
