#include "host/command_test.h"

#include <algorithm>
#include <utility>

namespace host {

CommandTest::CommandTest(std::string command, std::vector<std::string> old_outputs)
    : command_(std::move(command)), old_outputs_(std::move(old_outputs)) {
  write_audio(in_, tones(kWav16, 48000, 2, 3000));
  for (const std::string &name : old_outputs_) write_bytes(folder_.file(name), "the old output");
}

std::string CommandTest::message(int exit_code, std::vector<std::string> arguments,
                                 const Environment &environment) {
  arguments.insert(arguments.begin(), command_);
  const Outcome outcome = run(arguments, environment);
  EXPECT_EQ(outcome.exit_code, exit_code) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  for (const std::string &name : old_outputs_) {
    EXPECT_EQ(read_bytes(folder_.file(name)), "the old output") << name;
  }
  std::vector<std::string> others;
  for (const std::string &name : folder_.names()) {
    if (!name.starts_with("in.") && std::ranges::count(old_outputs_, name) == 0) {
      others.push_back(name);
    }
  }
  EXPECT_EQ(others, std::vector<std::string>{});
  return outcome.err;
}

std::vector<std::pair<std::string, std::string>> CommandTest::unreadable_files() const {
  const std::string nowhere = folder_.file("in.nowhere");
  const std::string text = folder_.file("in.text");
  write_bytes(text, "This is a letter, not a song.");
  return {{nowhere, "mvk: can't open " + nowhere + ": "},
          {text, "mvk: " + text + " can't be read as audio: "},
          {folder_.path(), "mvk: " + folder_.path() + " is a folder"}};
}

std::string CommandTest::cut_off_file() const {
  const std::string flac = folder_.file("in.flac");
  write_audio(flac, tones(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 48000, 1, 20000));
  truncate_to(flac, 0.6);
  return flac;
}

}  // namespace host
