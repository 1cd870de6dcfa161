#include "transfer.h"

#include <cstdint>

#include "format_choice.h"
#include "formats.h"
#include "messages.h"
#include "metadata.h"

namespace mvk {
namespace {

SF_INFO output_info(const AudioInput &input, const FileOptions &options, int rate,
                    sf_count_t frames) {
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = input.info.channels;
  info.format = choose_format(input.info.format, options.format, options.out, info);
  if (has_length(input)) check_size(info, frames, options.out);
  return info;
}

}  // namespace

void add_files(CLI::App &command, FileOptions &options) {
  command.add_option("IN", options.in, "Audio to read; - is standard input")->required();
  command.add_option("OUT", options.out, "File to write; - is standard output")->required();
}

void add_file_options(CLI::App &command, FileOptions &options) {
  command
      .add_option("-f,--format", options.format,
                  "CONTAINER, SAMPLES or CONTAINER:SAMPLES, see below")
      ->type_name("F");
  command.add_option("--library", options.library, "The shared library")->type_name("PATH");
  command.add_flag("-q,--quiet", options.quiet, "Print errors only");
}

std::string file_options_help() {
  return "Without --format the suffix of OUT decides, and then the format of IN. Samples\n"
         "that a container doesn't hold become the nearest that it does.\n\n" +
         format_help();
}

Transfer::Transfer(const AudioInput &input, const FileOptions &options, int rate, sf_count_t frames,
                   const std::string &participle)
    : info_(output_info(input, options, rate, frames)),
      quiet_(options.quiet),
      file_(options.out),
      output_(file_, info_, options.out) {
  carry_tags(input.file.get(), output_.sndfile());
  const bool map_carried = carry_channel_map(input.file.get(), output_.sndfile(), info_.channels);
  if (quiet_) return;
  if (!map_carried && info_.channels > 2) {
    complain("note: " + format_name(info_.format) +
             " can't hold this layout of channels; they keep their order");
  }
  note_early_end(input, participle);
}

void Transfer::commit() {
  output_.finish();
  file_.commit();
}

void Transfer::report_limits() const {
  if (quiet_) return;
  if (output_.limited() > 0) {
    complain("note: " + std::to_string(output_.limited()) +
             " samples lay beyond full scale and were limited to it; --format float keeps them");
  }
  if (output_.at_full_scale() > 0) {
    complain("note: " + std::to_string(output_.at_full_scale()) +
             " samples lie at full scale and may have been limited to it; "
             "--format float keeps what lies beyond");
  }
}

Progress progress_through(const AudioInput &input, bool quiet, const std::string &title) {
  const auto frames = has_length(input) ? static_cast<uint64_t>(input.info.frames) : 0;
  return Progress("mvk: " + title, frames, !quiet);
}

}  // namespace mvk
