/* mvk: the library's command-line host. */
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "commands.h"
#include "messages.h"

namespace {

constexpr const char *kFooter =
    "Examples:\n"
    "  mvk resample speech.wav speech-96k.wav --rate 96000\n"
    "  mvk limit speech.wav loud.wav --peak -1dB --boost 12dB\n"
    "  mvk phase90 speech.wav shifted.wav\n"
    "  mvk spectrum speech.wav speech.png\n"
    "  mvk bands speech.wav bands.png\n"
    "  mvk compare speech.wav other.wav\n"
    "  mvk info\n\n"
    "'mvk COMMAND --help' tells more about a command. The exit code is 0 on success,\n"
    "1 if processing failed and 2 if the command can't be carried out as given.\n";

std::string usage_error(const CLI::App &program, const CLI::ParseError &error) {
  const auto commands = program.get_subcommands();
  if (!commands.empty()) {
    return error.what() + ("; see 'mvk " + commands.front()->get_name() + " --help'");
  }
  const auto unknown = program.remaining();
  if (!unknown.empty()) return "'" + unknown.front() + "' isn't a command; see 'mvk --help'";
  return std::string(error.what()) + "; see 'mvk --help'";
}

int run(int argc, char **argv) {
  CLI::App program("Audio signal processing with the mavokresampler library", "mvk");
  program.set_version_flag("--version", "mvk " MVK_VERSION, "Show the version");
  program.set_help_flag("-h,--help", "Show this help");
  program.require_subcommand(1);
  program.footer(kFooter);
  mvk::add_resample(program);
  mvk::add_limit(program);
  mvk::add_phase90(program);
  mvk::add_spectrum(program);
  mvk::add_bands(program);
  mvk::add_info(program);
  mvk::add_compare(program);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success &request) {
    program.exit(request, std::cout, std::cerr);  // --help or --version
    std::cout.flush();
    return mvk::kDone;
  } catch (const CLI::ParseError &error) {
    mvk::complain(usage_error(program, error));
    return mvk::kUsage;
  }
  return mvk::kDone;
}

}  // namespace

int main(int argc, char **argv) {
  // Writing past a limit on the size of files becomes an error that is reported.
  std::signal(SIGXFSZ, SIG_IGN);
  int code = mvk::kFailed;
  try {
    code = run(argc, argv);
  } catch (const mvk::Failure &failure) {
    mvk::complain(failure.message);
    return failure.exit_code;
  } catch (const std::exception &error) {
    mvk::complain(error.what());
    return mvk::kFailed;
  }
  if (std::fflush(stdout) != 0 || !std::cout) {
    mvk::complain("can't write standard output; is the disk full?");
    return mvk::kFailed;
  }
  return code;
}
