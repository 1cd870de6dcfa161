// Commands that can't be carried out as given, and help.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

std::string usage_error(const std::vector<std::string> &arguments) {
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.exit_code, 2);
  EXPECT_EQ(outcome.out, "");
  return outcome.err;
}

TEST(Usage, WrongCommandLinesAreRefused) {
  EXPECT_EQ(usage_error({}), "mvk: A subcommand is required; see 'mvk --help'\n");
  EXPECT_EQ(usage_error({"sing"}), "mvk: 'sing' isn't a command; see 'mvk --help'\n");
  EXPECT_EQ(usage_error({"resample"}), "mvk: IN is required; see 'mvk resample --help'\n");
  EXPECT_EQ(usage_error({"resample", "a.wav"}),
            "mvk: OUT is required; see 'mvk resample --help'\n");
  EXPECT_EQ(usage_error({"resample", "a.wav", "b.wav"}),
            "mvk: --rate is required; see 'mvk resample --help'\n");
  EXPECT_EQ(usage_error({"compare", "a.wav"}), "mvk: B is required; see 'mvk compare --help'\n");
  for (const char *rate : {"0", "-48000", "fast", "48000.5", "3000000000"}) {
    EXPECT_EQ(usage_error({"resample", "a.wav", "b.wav", "--rate", rate}),
              std::string("mvk: --rate: Value ") + rate +
                  " not in range 1 to 2147483647; see 'mvk resample --help'\n");
  }
}

TEST(Usage, RateThatDoesntSuitTheFileListsThoseThatDo) {
  const Folder folder;
  const struct {
    int rate;
    const char *others;
  } files[] = {{48000, "96000, 192000, 24000 or 12000"},
               {44100, "88200, 176400, 22050 or 11025"},
               {11025, "22050 or 44100"},
               {22050, "44100, 88200 or 11025"},
               {8001, "16002 or 32004"}};
  for (const auto &file : files) {
    const std::string in = folder.file("in.wav");
    write_audio(in, tones(kWav16, file.rate, 1, 300));
    for (const int rate : {file.rate, 3 * file.rate, 8 * file.rate, 7, 5512}) {
      EXPECT_EQ(
          usage_error({"resample", in, folder.file("out.wav"), "--rate", std::to_string(rate)}),
          "mvk: " + in + " has " + std::to_string(file.rate) + " Hz, which can't become " +
              std::to_string(rate) + " Hz; use --rate " + file.others + "\n");
    }
    EXPECT_EQ(folder.names(), std::set<std::string>{"in.wav"});
  }
}

TEST(Usage, FolderIsNoOutput) {
  const Folder folder;
  EXPECT_EQ(usage_error({"resample", kSpeech, folder.path(), "--rate", "96000"}),
            "mvk: " + folder.path() + " is a folder; name a file in it\n");
}

TEST(Usage, HelpShowsExamplesAndGoesToStandardOutput) {
  for (const std::vector<std::string> &command :
       {std::vector<std::string>{}, {"resample"}, {"info"}, {"compare"}}) {
    std::vector<std::string> arguments = command;
    arguments.push_back("--help");
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string usage = "Usage: mvk" + (command.empty() ? "" : " " + command[0]);
    EXPECT_NE(outcome.out.find(usage), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("Examples:\n  mvk "), std::string::npos) << outcome.out;
  }
}

TEST(Usage, HelpListsTheFormats) {
  const std::string help = run({"resample", "--help"}).out;
  for (const char *name : {" wav ", " flac ", " aiff ", " ogg ", " w64 ", " caf ", " au ", " rf64 ",
                           " s8 ", " u8 ", " s16 ", " s24 ", " s32 ", " float ", " double ",
                           " vorbis ", " opus ", " ulaw ", " alaw "}) {
    EXPECT_NE(help.find(name), std::string::npos) << name;
  }
}

TEST(Usage, VersionIsShown) {
  const Outcome outcome = run({"--version"});
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_EQ(outcome.out.find("mvk "), 0U);
}

TEST(Usage, HelpThatCantBeWrittenIsAFailure) {
  Environment environment;
  environment.stdout_path = "/dev/full";
  EXPECT_EQ(run({"--help"}, environment).exit_code, 1);
  EXPECT_EQ(run({"info"}, environment).exit_code, 1);
}

}  // namespace
}  // namespace host
