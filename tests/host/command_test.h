/* What tests of a command's refusals and failures have in common. */
#ifndef MVK_TESTS_HOST_COMMAND_TEST_H
#define MVK_TESTS_HOST_COMMAND_TEST_H

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {

/* Beside an input, in.wav, of 3000 frames of stereo tones at 48 kHz there are outputs of
 * an earlier run, whose names begin with "out.". Every run leaves them as they are. */
class CommandTest : public testing::Test {
 protected:
  CommandTest(std::string command, std::vector<std::string> old_outputs);

  /* The message of a run that ends with this code. */
  std::string message(int exit_code, std::vector<std::string> arguments,
                      const Environment &environment = {});

  /* Files that can't be read as audio, with what a message about each begins with. */
  std::vector<std::pair<std::string, std::string>> unreadable_files() const;

  /* A FLAC file that ends early. */
  std::string cut_off_file() const;

 private:
  const std::string command_;
  const std::vector<std::string> old_outputs_;

 protected:
  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
};

}  // namespace host

#endif
