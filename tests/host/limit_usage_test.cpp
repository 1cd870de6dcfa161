// What mvk limit refuses, what it can't do, and how it takes its options.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/command_test.h"
#include "host/process.h"

namespace host {
namespace {

constexpr const char *kChoices =
    "\n  --sub-block 32, 40 or 64: 24000, 32000, 44100, 48000, 64000, 88200, 96000, 176400 and "
    "192000 Hz"
    "\n  --sub-block 128: 48000, 64000, 88200, 96000, 176400 and 192000 Hz"
    "\n  --sub-block 256: 96000, 176400 and 192000 Hz\n";

class LimitUsage : public CommandTest {
 protected:
  LimitUsage() : CommandTest("limit", {"out.wav"}) {}

  // That the command can't be carried out with these options.
  std::string refusal(const std::vector<std::string> &options) {
    std::vector<std::string> arguments = {in_, out_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return message(2, arguments);
  }

  const std::string out_ = folder_.file("out.wav");
};

TEST_F(LimitUsage, FilesAndPeakAreRequired) {
  EXPECT_EQ(message(2, {}), "mvk: IN is required; see 'mvk limit --help'\n");
  EXPECT_EQ(message(2, {in_}), "mvk: OUT is required; see 'mvk limit --help'\n");
  EXPECT_EQ(refusal({}), "mvk: --peak is required; see 'mvk limit --help'\n");
}

TEST_F(LimitUsage, LevelsAreDecibelsWithOrWithoutTheUnit) {
  const auto result = [&](const std::vector<std::string> &options) {
    const std::string to = folder_.file("in.limited");
    std::vector<std::string> arguments = {"limit", in_, to};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return read_bytes(to);
  };
  const std::string expected = result({"--peak", "-6dB", "--boost", "3dB"});
  EXPECT_EQ(result({"--peak", "-6", "--boost", "3"}), expected);
  EXPECT_EQ(result({"--peak", "-6 dB", "--boost", "3  dB"}), expected);
  EXPECT_EQ(result({"--peak=-6.0db", "--boost=+3DB"}), expected);
  EXPECT_EQ(result({"-p", "-6dB", "-b", "3dB", "--sub-block", "64"}), expected);
  EXPECT_NE(result({"--peak", "-6dB"}), expected);
  EXPECT_EQ(result({"--peak", "-6dB", "--boost", "0dB"}), result({"--peak", "-6dB"}));
  EXPECT_EQ(result({"--peak", "-120dB", "--boost", "120dB"}).size(), expected.size());
}

TEST_F(LimitUsage, NonsenseIsNoLevel) {
  for (const std::string level : {"loud", "dB", "-6dBFS", "-6%", "-6 dB dB", "1e", "--boost"}) {
    EXPECT_EQ(refusal({"--peak=" + level}),
              "mvk: --peak '" + level + "' isn't a number of decibels, such as -1dB or -1\n");
    EXPECT_EQ(refusal({"--peak=-1dB", "--boost=" + level}),
              "mvk: --boost '" + level + "' isn't a number of decibels, such as -1dB or -1\n");
  }
}

TEST_F(LimitUsage, LevelsHaveARange) {
  for (const std::string level : {"120.1dB", "-121", "1e9dB", "inf", "-inf", "nan", "1e999"}) {
    EXPECT_EQ(refusal({"--peak=" + level}),
              "mvk: --peak '" + level + "' is out of range; it takes decibels from -120 to 120\n");
    EXPECT_EQ(refusal({"--peak=-1dB", "--boost=" + level}),
              "mvk: --boost '" + level + "' is out of range; it takes decibels from -120 to 120\n");
  }
}

TEST_F(LimitUsage, SubBlockThatThereIsNoneOfListsThoseThatThereAre) {
  for (const char *frames : {"0", "1", "31", "48", "512", "4294967295"}) {
    EXPECT_EQ(refusal({"--peak", "-1dB", "--sub-block", frames}),
              std::string("mvk: the limiter has no sub-blocks of ") + frames + " frames; it takes" +
                  kChoices);
  }
  for (const char *text : {"-64", "64.5", "many"}) {
    EXPECT_EQ(refusal({"--peak", "-1dB", "--sub-block", text}),
              std::string("mvk: Could not convert: --sub-block = ") + text +
                  "; see 'mvk limit --help'\n");
  }
}

TEST_F(LimitUsage, RateThatTheSubBlockDoesntServeListsThoseThatAreServed) {
  const struct {
    int rate;
    const char *sub_block;
  } cases[] = {{8000, "32"},   {22050, "64"},  {47999, "40"},  {44100, "128"},
               {64000, "256"}, {32000, "256"}, {384000, "128"}};
  for (const auto &each : cases) {
    write_audio(in_, tones(kWav16, each.rate, 1, 300));
    EXPECT_EQ(refusal({"--peak", "-1dB", "--sub-block", each.sub_block}),
              "mvk: " + in_ + " has " + std::to_string(each.rate) + " Hz, which sub-blocks of " +
                  each.sub_block + " frames don't serve; the limiter takes" + kChoices);
  }
}

TEST_F(LimitUsage, OtherFileHasTheSameRate) {
  const std::string other = folder_.file("in.other");
  write_audio(other, tones(kWav16, 44100, 2, 300));
  EXPECT_EQ(
      refusal({"--peak", "-1dB", "--detect", other}),
      "mvk: " + other + " has 44100 Hz and " + in_ + " 48000 Hz; bring them to one rate first\n");
}

TEST_F(LimitUsage, ClippingTakesNoOtherFile) {
  EXPECT_NE(refusal({"--peak", "-1dB", "--hard-clip", "--detect", in_}).find("excludes"),
            std::string::npos);
}

TEST_F(LimitUsage, FolderIsNoOutput) {
  EXPECT_EQ(message(2, {in_, folder_.path(), "--peak", "-1dB"}),
            "mvk: " + folder_.path() + " is a folder; name a file in it\n");
}

TEST_F(LimitUsage, FormatThatDoesntExistIsRefused) {
  EXPECT_EQ(refusal({"--peak", "-1dB", "--format", "flac:float"}),
            "mvk: flac:float doesn't exist; this container takes s8 s16 s24\n");
}

TEST_F(LimitUsage, FilesThatCantBeReadAreNamed) {
  for (const auto &[file, problem] : unreadable_files()) {
    EXPECT_EQ(message(1, {file, out_, "--peak", "-1dB"}).find(problem), 0U);
    EXPECT_EQ(message(1, {in_, out_, "--peak", "-1dB", "--detect", file}).find(problem), 0U);
  }
}

TEST_F(LimitUsage, CutOffFilesArentTakenForWhole) {
  const std::string flac = cut_off_file();
  write_audio(in_, tones(kWav16, 48000, 1, 30000));
  for (const std::vector<std::string> &arguments :
       {std::vector<std::string>{flac, out_, "--peak", "-1dB"},
        {in_, out_, "--peak", "-1dB", "--detect", flac}}) {
    const std::string error = message(1, arguments);
    EXPECT_EQ(error.find("mvk: can't read " + flac + ": "), 0U) << error;
    EXPECT_NE(error.find(" It is cut off or damaged\n"), std::string::npos) << error;
  }
}

TEST_F(LimitUsage, FullDiskIsReported) {
  for (const rlim_t limit : {5000U, 12043U}) {
    Environment environment;
    environment.file_size_limit = limit;
    EXPECT_EQ(message(1, {in_, out_, "--peak", "-1dB"}, environment),
              "mvk: can't write " + out_ + ": File too large; nothing was changed\n");
  }
}

TEST_F(LimitUsage, WrongLibraryIsNamed) {
  EXPECT_EQ(message(1, {in_, out_, "--peak", "-1dB", "--library", "libm.so.6"})
                .find("mvk: libm.so.6 doesn't export orvane_ht_ztlim_"),
            0U);
  EXPECT_EQ(message(1, {in_, out_, "--peak", "-1dB", "--library", folder_.file("in.so")})
                .find("mvk: can't load the library: "),
            0U);
  const Outcome right = run({"limit", in_, "-", "--peak", "-1dB", "--library", library()});
  EXPECT_EQ(right.exit_code, 0) << right.err;
}

TEST_F(LimitUsage, HelpShowsExamplesLevelsAndFormats) {
  const Outcome outcome = run({"limit", "--help"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.err, "");
  for (const char *part :
       {"Usage: mvk limit", "Examples:\n  mvk limit ", "decibels", "--peak", "--boost",
        "--sub-block", "--hard-clip", "--detect", " flac ", " s16 "}) {
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
  }
  EXPECT_NE(run({"--help"}).out.find("mvk limit "), std::string::npos);
}

}  // namespace
}  // namespace host
