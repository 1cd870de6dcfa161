/* A command that makes one audio file of another, at work. */
#ifndef MVK_TESTS_HOST_AUDIO_COMMAND_H
#define MVK_TESTS_HOST_AUDIO_COMMAND_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {

class AudioCommand : public testing::Test {
 protected:
  /* What the command is, ahead of the names of its files. */
  explicit AudioCommand(std::vector<std::string> command) : command_(std::move(command)) {}

  /* What it makes of a file, with these arguments behind the files. */
  Audio run_on(const std::string &in, const std::vector<std::string> &more = {});
  Audio run_on(const Audio &source, const std::vector<std::string> &more = {});

  /* Compressed files made of a recording, with these arguments behind the files, have its
   * frames, rate and channels. */
  void expect_compressed_whole(const std::vector<std::string> &more = {});

 private:
  Audio made(const std::string &in, const std::string &out, const std::vector<std::string> &more);

  const std::vector<std::string> command_;

 protected:
  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.wav");
  Outcome outcome_;
};

/* The result has the rate and channels of the source, and these samples. */
void expect_same(const Audio &result, const Audio &source, const std::vector<double> &samples);

/* With `make` given a --format, its result has these samples, rounded as the format has it. */
void expect_every_format(const std::function<Audio(const std::vector<std::string> &)> &make,
                         const Audio &source, const std::vector<double> &samples);

}  // namespace host

#endif
