#include "formats.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace mvk {
namespace {

// Where containers share a suffix, the usual owner comes first.
constexpr std::array kContainers = {
    Container{"wav", SF_FORMAT_WAV, "wav wave bwf", false},
    Container{"wavex", SF_FORMAT_WAVEX, "wav wave", false},
    Container{"rf64", SF_FORMAT_RF64, "rf64 wav", true},
    Container{"w64", SF_FORMAT_W64, "w64", true},
    Container{"aiff", SF_FORMAT_AIFF, "aiff aif aifc", false},
    Container{"au", SF_FORMAT_AU, "au snd", false},
    Container{"caf", SF_FORMAT_CAF, "caf", true},
    Container{"flac", SF_FORMAT_FLAC, "flac", true},
    Container{"ogg", SF_FORMAT_OGG, "ogg oga opus", true},
    Container{"mp3", SF_FORMAT_MPEG, "mp3", true},
    Container{"voc", SF_FORMAT_VOC, "voc", false},
    Container{"svx", SF_FORMAT_SVX, "iff svx 8svx", false},
    Container{"nist", SF_FORMAT_NIST, "nist sph wav", true},
    Container{"ircam", SF_FORMAT_IRCAM, "sf ircam", true},
    Container{"paf", SF_FORMAT_PAF, "paf", true},
    Container{"pvf", SF_FORMAT_PVF, "pvf", true},
    Container{"htk", SF_FORMAT_HTK, "htk", false},
    Container{"avr", SF_FORMAT_AVR, "avr", false},
    Container{"sds", SF_FORMAT_SDS, "sds", false},
    Container{"mpc2k", SF_FORMAT_MPC2K, "mpc snd", false},
    Container{"mat5", SF_FORMAT_MAT5, "mat", false},
    Container{"mat4", SF_FORMAT_MAT4, "mat", false},
    Container{"wve", SF_FORMAT_WVE, "wve", false},
    Container{"raw", SF_FORMAT_RAW, "raw", true},
};

// Companded samples stand for integers of 14 (mu-law) and 13 bits (A-law), and
// the ADPCM codecs predict 16-bit ones.
constexpr std::array kSampleFormats = {
    SampleFormat{"s8", SF_FORMAT_PCM_S8, 8, SF_FORMAT_PCM_S8},
    SampleFormat{"u8", SF_FORMAT_PCM_U8, 8, SF_FORMAT_PCM_U8},
    SampleFormat{"s16", SF_FORMAT_PCM_16, 16, SF_FORMAT_PCM_16},
    SampleFormat{"s24", SF_FORMAT_PCM_24, 24, SF_FORMAT_PCM_24},
    SampleFormat{"s32", SF_FORMAT_PCM_32, 32, SF_FORMAT_PCM_32},
    SampleFormat{"float", SF_FORMAT_FLOAT, 0, SF_FORMAT_FLOAT},
    SampleFormat{"double", SF_FORMAT_DOUBLE, 0, SF_FORMAT_DOUBLE},
    SampleFormat{"vorbis", SF_FORMAT_VORBIS, 0, SF_FORMAT_FLOAT},
    SampleFormat{"opus", SF_FORMAT_OPUS, 0, SF_FORMAT_FLOAT},
    SampleFormat{"layer3", SF_FORMAT_MPEG_LAYER_III, 0, SF_FORMAT_FLOAT},
    SampleFormat{"ulaw", SF_FORMAT_ULAW, 14, SF_FORMAT_PCM_16},
    SampleFormat{"alaw", SF_FORMAT_ALAW, 13, SF_FORMAT_PCM_16},
    SampleFormat{"alac16", SF_FORMAT_ALAC_16, 16, SF_FORMAT_PCM_16},
    SampleFormat{"alac20", SF_FORMAT_ALAC_20, 20, SF_FORMAT_PCM_24},
    SampleFormat{"alac24", SF_FORMAT_ALAC_24, 24, SF_FORMAT_PCM_24},
    SampleFormat{"alac32", SF_FORMAT_ALAC_32, 32, SF_FORMAT_PCM_32},
    SampleFormat{"dwvw16", SF_FORMAT_DWVW_16, 16, SF_FORMAT_PCM_16},
    SampleFormat{"dwvw24", SF_FORMAT_DWVW_24, 24, SF_FORMAT_PCM_24},
    SampleFormat{"ima-adpcm", SF_FORMAT_IMA_ADPCM, 16, SF_FORMAT_PCM_16},
    SampleFormat{"ms-adpcm", SF_FORMAT_MS_ADPCM, 16, SF_FORMAT_PCM_16},
    SampleFormat{"vox-adpcm", SF_FORMAT_VOX_ADPCM, 16, SF_FORMAT_PCM_16},
    SampleFormat{"gsm610", SF_FORMAT_GSM610, 16, SF_FORMAT_PCM_16},
    SampleFormat{"nms-adpcm16", SF_FORMAT_NMS_ADPCM_16, 16, SF_FORMAT_PCM_16},
    SampleFormat{"nms-adpcm24", SF_FORMAT_NMS_ADPCM_24, 16, SF_FORMAT_PCM_16},
    SampleFormat{"nms-adpcm32", SF_FORMAT_NMS_ADPCM_32, 16, SF_FORMAT_PCM_16},
    SampleFormat{"g721-32", SF_FORMAT_G721_32, 16, SF_FORMAT_PCM_16},
    SampleFormat{"g723-24", SF_FORMAT_G723_24, 16, SF_FORMAT_PCM_16},
    SampleFormat{"g723-40", SF_FORMAT_G723_40, 16, SF_FORMAT_PCM_16},
};

template <typename Row, typename Condition>
const Row *find_row(std::span<const Row> rows, Condition holds) {
  const auto row = std::find_if(rows.begin(), rows.end(), holds);
  return row == rows.end() ? nullptr : &*row;
}

// The names of a table in lines of the width of a terminal.
template <typename Row>
std::string name_list(std::span<const Row> rows) {
  constexpr std::size_t kWidth = 76;
  std::string list = " ";
  std::size_t column = list.size();
  for (const Row &row : rows) {
    if (column + 1 + row.name.size() > kWidth) {
      list.append("\n ");
      column = 1;
    }
    list.append(" ").append(row.name);
    column += 1 + row.name.size();
  }
  return list.append("\n");
}

}  // namespace

std::span<const Container> containers() { return kContainers; }

std::span<const SampleFormat> sample_formats() { return kSampleFormats; }

const Container *find_container(std::string_view name) {
  return find_row(containers(), [&](const Container &c) { return c.name == name; });
}

const Container *container_of(int format) {
  const int code = format & SF_FORMAT_TYPEMASK;
  return find_row(containers(), [&](const Container &c) { return c.code == code; });
}

const SampleFormat *find_sample_format(std::string_view name) {
  return find_row(sample_formats(), [&](const SampleFormat &s) { return s.name == name; });
}

const SampleFormat *sample_format_of(int format) {
  const int code = format & SF_FORMAT_SUBMASK;
  return find_row(sample_formats(), [&](const SampleFormat &s) { return s.code == code; });
}

bool has_suffix(const Container &container, std::string_view suffix) {
  std::istringstream suffixes{std::string(container.suffixes)};
  for (std::string each; suffixes >> each;) {
    if (each == suffix) return true;
  }
  return false;
}

const Container *container_of_suffix(std::string_view suffix) {
  return find_row(containers(), [&](const Container &c) { return has_suffix(c, suffix); });
}

std::string format_name(int format) {
  const Container *container = container_of(format);
  const SampleFormat *samples = sample_format_of(format);
  return std::string(container != nullptr ? container->name : "an unknown container") + ":" +
         std::string(samples != nullptr ? samples->name : "unknown samples");
}

std::string format_help() {
  return "Containers:\n" + name_list(containers()) + "Sample formats:\n" +
         name_list(sample_formats());
}

}  // namespace mvk
