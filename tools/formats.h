/* The containers and sample formats of audio files, by name: all those that
 * libsndfile can write, with the rate, into one stream of bytes. */
#ifndef MVK_TOOLS_FORMATS_H
#define MVK_TOOLS_FORMATS_H

#include <span>
#include <string>
#include <string_view>

namespace mvk {

struct Container {
  std::string_view name;
  int code;                   // SF_FORMAT_..., of SF_FORMAT_TYPEMASK
  std::string_view suffixes;  // separated by blanks
  bool beyond_4_gib;          // whether its sizes have more than 32 bits
};

struct SampleFormat {
  std::string_view name;
  int code;           // SF_FORMAT_..., of SF_FORMAT_SUBMASK
  int bits;           // of the integers that it stores or compresses; 0: floats
  int nearest_plain;  // the PCM or float format that keeps as much, or itself
};

std::span<const Container> containers();
std::span<const SampleFormat> sample_formats();

const Container *find_container(std::string_view name);
const Container *container_of(int format);
const SampleFormat *find_sample_format(std::string_view name);
const SampleFormat *sample_format_of(int format);

/* Whether files of that container bear that suffix, given without the dot. */
bool has_suffix(const Container &container, std::string_view suffix);

/* The usual container of a suffix, or null. */
const Container *container_of_suffix(std::string_view suffix);

/* "wav:s16", as --format takes it. */
std::string format_name(int format);

/* The names that --format takes, for --help. */
std::string format_help();

}  // namespace mvk

#endif
