/* mvk info: what the library says about itself. */
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "library.h"
#include "messages.h"
#include "orvane_resampler.h"

namespace mvk {
namespace {

void print_component(const acli_component &component) {
  char *identity = nullptr;
  component.get_identity(1, &identity);
  if (identity == nullptr) fail("the component doesn't give its short name");
  std::printf("name         %s\n", component.name);
  std::printf("implementor  %s\n", component.implementor);
  std::printf("short name   %s\n", identity);
  std::printf("version      0x%08X\n", component.version);
  component.release_identity(identity);
}

void print_engines(const Library &library) {
  const auto query = library.find<decltype(orvane_resampler_query)>("orvane_resampler_query");
  const auto init = library.find<decltype(orvane_resampler_init)>("orvane_resampler_init");
  const auto block_size = library.find<decltype(orvane_resampler_get_processing_block_size)>(
      "orvane_resampler_get_processing_block_size");
  const auto output_latency = library.find<decltype(orvane_resampler_get_output_latency)>(
      "orvane_resampler_get_output_latency");

  std::printf("\nfactor  direction  frames in  frames out  latency (output frames)\n");
  for (unsigned factor : {1U, 2U, 4U}) {
    for (bool up : {true, false}) {
      std::vector<unsigned char> arena(query(factor, 1, up));
      const orvane_resampler *engine = init(factor, 1, up, arena.data());
      if (engine == nullptr) fail("the library can't build an engine");
      uint64_t in_frames = 0;
      uint64_t out_frames = 0;
      block_size(engine, &in_frames, &out_frames);
      std::printf("%6u  %-9s  %9llu  %10llu  %7u\n", factor, up ? "up" : "down",
                  static_cast<unsigned long long>(in_frames),
                  static_cast<unsigned long long>(out_frames), output_latency(engine));
    }
  }
}

}  // namespace

void add_info(CLI::App &program) {
  auto path = std::make_shared<std::string>();
  CLI::App *command = program.add_subcommand("info", "Show the resampler's names and figures");
  command->add_option("--library", *path, "The resampler's shared library")->type_name("PATH");
  command->footer(
      "Examples:\n"
      "  mvk info\n"
      "  mvk info --library ./libmavokresampler.so\n");
  command->callback([path] {
    const Library library(*path);
    print_component(library.component());
    print_engines(library);
  });
}

}  // namespace mvk
