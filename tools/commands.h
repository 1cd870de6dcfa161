/* The subcommands of mvk. */
#ifndef MVK_TOOLS_COMMANDS_H
#define MVK_TOOLS_COMMANDS_H

#include <CLI/CLI.hpp>

namespace mvk {

/* Each adds its subcommand, whose callback does the work and throws a Failure
 * if it can't. */
void add_resample(CLI::App &program);
void add_limit(CLI::App &program);
void add_phase90(CLI::App &program);
void add_spectrum(CLI::App &program);
void add_bands(CLI::App &program);
void add_info(CLI::App &program);
void add_compare(CLI::App &program);

}  // namespace mvk

#endif
