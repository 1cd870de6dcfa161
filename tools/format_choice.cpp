#include "format_choice.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <vector>

#include "formats.h"
#include "messages.h"

namespace mvk {
namespace {

struct Wish {
  const Container *container = nullptr;
  const SampleFormat *samples = nullptr;
};

Wish parse_wish(const std::string &text) {
  Wish wish;
  const auto colon = text.find(':');
  const std::string first = text.substr(0, colon);
  wish.container = find_container(first);
  if (colon != std::string::npos) {
    wish.samples = find_sample_format(text.substr(colon + 1));
  } else if (wish.container == nullptr) {
    wish.samples = find_sample_format(first);
  }
  const bool understood = colon == std::string::npos
                              ? wish.container != nullptr || wish.samples != nullptr
                              : wish.container != nullptr && wish.samples != nullptr;
  if (!understood) {
    refuse("--format " + text + " isn't a known format; 'mvk resample --help' lists them");
  }
  return wish;
}

std::string suffix_of(const std::string &path) {
  std::string suffix = std::filesystem::path(path).extension().string();
  if (!suffix.empty()) suffix.erase(0, 1);
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return suffix;
}

bool can_be_written(int format, SF_INFO out) {
  out.format = format;
  // libsndfile accepts a few formats here that it can't write; except for this
  // one, the tables leave them out.
  if (format == (SF_FORMAT_WAV | SF_FORMAT_MPEG_LAYER_III)) return false;
  if (container_of(format) == nullptr || sample_format_of(format) == nullptr) return false;
  return sf_format_check(&out) == SF_TRUE;
}

// Plain formats from coarse to fine, then what some containers have instead.
constexpr std::array kCoarseToFine = {SF_FORMAT_PCM_S8, SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16,
                                      SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT,
                                      SF_FORMAT_DOUBLE};
constexpr std::array kLastResorts = {SF_FORMAT_VORBIS, SF_FORMAT_MPEG_LAYER_III, SF_FORMAT_ALAW};

// All sample formats that may stand in for `samples`, the nearest first: the
// next finer ones, for nothing is lost in them, and then the next coarser ones.
std::vector<int> stand_ins(int samples) {
  const SampleFormat *known = sample_format_of(samples);
  const int plain = known != nullptr ? known->nearest_plain : int{SF_FORMAT_FLOAT};
  std::vector<int> order{samples, plain};
  // Signed and unsigned bytes are equally fine.
  const auto start =
      plain == SF_FORMAT_PCM_U8
          ? kCoarseToFine.begin()
          : std::find(kCoarseToFine.begin(), kCoarseToFine.end(), static_cast<int>(plain));
  order.insert(order.end(), start, kCoarseToFine.end());
  order.insert(order.end(), std::make_reverse_iterator(start), kCoarseToFine.rend());
  order.insert(order.end(), kLastResorts.begin(), kLastResorts.end());
  return order;
}

// The nearest format that the container holds, or 0.
int nearest_format(int container, int samples, const SF_INFO &out) {
  for (int each : stand_ins(samples)) {
    if (can_be_written(container | each, out)) return container | each;
  }
  return 0;
}

// More than two channels have a layout in a WAV file only with the extensible
// header.
int with_layout(int format, int source, const SF_INFO &out) {
  const int extensible = SF_FORMAT_WAVEX | (format & SF_FORMAT_SUBMASK);
  const bool wav = (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAV;
  const bool was_wav = (source & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAV;
  return wav && !was_wav && out.channels > 2 && can_be_written(extensible, out) ? extensible
                                                                                : format;
}

[[noreturn]] void refuse_format(int format, const SF_INFO &out) {
  if (container_of(format) == nullptr) {
    refuse("this kind of file can only be read; choose a format for the output with --format");
  }
  const std::string name = format_name(format);
  SF_INFO mono = out;
  mono.channels = 1;
  if (out.channels > 1 && can_be_written(format, mono)) {
    refuse(name + " can't hold " + std::to_string(out.channels) +
           " channels; choose another format with --format");
  }
  const int container = format & SF_FORMAT_TYPEMASK;
  std::string choices;
  for (const SampleFormat &each : sample_formats()) {
    if (can_be_written(container | each.code, out)) choices.append(" ").append(each.name);
  }
  if (choices.empty()) {
    refuse(name + " can't be written; choose another format with --format");
  }
  refuse(name + " doesn't exist; this container takes" + choices);
}

}  // namespace

int choose_format(int source, const std::string &wish_text, const std::string &path,
                  const SF_INFO &out) {
  const Wish wish = wish_text.empty() ? Wish{} : parse_wish(wish_text);
  int container = source & SF_FORMAT_TYPEMASK;
  int samples = source & SF_FORMAT_SUBMASK;
  const std::string suffix = suffix_of(path);
  if (wish.container != nullptr) {
    container = wish.container->code;
  } else if (const Container *usual = container_of_suffix(suffix); usual != nullptr) {
    const Container *own = container_of(source);
    if (own == nullptr || !has_suffix(*own, suffix)) container = usual->code;
    if (container == SF_FORMAT_OGG && suffix == "opus") samples = SF_FORMAT_OPUS;
  }
  if (wish.samples != nullptr) samples = wish.samples->code;

  // An unchanged format keeps its byte order too.
  const int same = container | samples | (source & SF_FORMAT_ENDMASK);
  if (same == source && can_be_written(same, out)) return same;

  const int wanted = container | samples;
  if (wish.samples != nullptr) {
    if (!can_be_written(wanted, out)) refuse_format(wanted, out);
    return with_layout(wanted, source, out);
  }
  const int format = nearest_format(container, samples, out);
  if (format == 0) refuse_format(wanted, out);
  return with_layout(format, source, out);
}

}  // namespace mvk
