// Tags and channel maps that go from the input to the output.
#include <gtest/gtest.h>

#include <map>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

using Tags = std::map<int, std::string>;

const Tags kTags = {{SF_STR_TITLE, "Title"},     {SF_STR_COPYRIGHT, "Copyright"},
                    {SF_STR_ARTIST, "Artist"},   {SF_STR_COMMENT, "A comment of some length"},
                    {SF_STR_DATE, "2024-02-29"}, {SF_STR_ALBUM, "Album"},
                    {SF_STR_LICENSE, "Licence"}, {SF_STR_TRACKNUMBER, "7"},
                    {SF_STR_GENRE, "Genre"}};

void write_tagged(const std::string &path, int format, const Tags &tags,
                  std::vector<int> channel_map = {}) {
  SF_INFO info{};
  info.samplerate = 48000;
  info.channels = channel_map.empty() ? 1 : static_cast<int>(channel_map.size());
  info.format = format;
  SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &info);
  ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
  for (const auto &[tag, text] : tags) sf_set_string(file, tag, text.c_str());
  if (!channel_map.empty()) {
    EXPECT_EQ(sf_command(file, SFC_SET_CHANNEL_MAP_INFO, channel_map.data(),
                         static_cast<int>(channel_map.size() * sizeof(int))),
              SF_TRUE);
  }
  const Audio audio = tones(format, 48000, info.channels, 300);
  sf_writef_double(file, audio.samples.data(), audio.frames());
  ASSERT_EQ(sf_close(file), 0);
}

Tags tags_of(const std::string &path) {
  SF_INFO info{};
  SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
  Tags tags;
  if (file == nullptr) return tags;
  for (int tag = SF_STR_FIRST; tag <= SF_STR_LAST; ++tag) {
    if (const char *text = sf_get_string(file, tag); text != nullptr) tags[tag] = text;
  }
  sf_close(file);
  return tags;
}

std::vector<int> channel_map_of(const std::string &path) {
  SF_INFO info{};
  SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) return {};
  std::vector<int> map(static_cast<std::size_t>(info.channels));
  const int known = sf_command(file, SFC_GET_CHANNEL_MAP_INFO, map.data(),
                               static_cast<int>(map.size() * sizeof(int)));
  sf_close(file);
  return known == SF_TRUE ? map : std::vector<int>{};
}

// Resamples to 96000 Hz and returns what mvk said.
std::string resample(const std::string &in, const std::string &out) {
  const Outcome outcome = run({"resample", in, out, "--rate", "96000"});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  return outcome.err;
}

// `tags` with only those numbered.
Tags only(const Tags &tags, const std::vector<int> &numbers) {
  Tags some;
  for (int number : numbers) some[number] = tags.at(number);
  return some;
}

TEST(Metadata, TagsOfAVorbisFileAreKept) {
  const Folder folder;
  write_tagged(folder.file("in.ogg"), SF_FORMAT_OGG | SF_FORMAT_VORBIS, kTags);
  resample(folder.file("in.ogg"), folder.file("out.ogg"));
  Tags tags = tags_of(folder.file("out.ogg"));
  tags.erase(SF_STR_SOFTWARE);
  EXPECT_EQ(tags, kTags);
}

TEST(Metadata, TagsGoToTheOtherContainersThatHoldThem) {
  const Folder folder;
  write_tagged(folder.file("in.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16, kTags);
  for (const char *out : {"out.flac", "out.ogg", "out.caf"}) {
    resample(folder.file("in.flac"), folder.file(out));
    Tags tags = tags_of(folder.file(out));
    tags.erase(SF_STR_SOFTWARE);
    EXPECT_EQ(tags, kTags) << out;
  }
}

TEST(Metadata, ContainersWithFewerTagsGetThoseTheyHold) {
  const Folder folder;
  write_tagged(folder.file("in.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16, kTags);
  EXPECT_EQ(resample(folder.file("in.flac"), folder.file("out.wav")), "");
  EXPECT_EQ(only(tags_of(folder.file("out.wav")),
                 {SF_STR_TITLE, SF_STR_ARTIST, SF_STR_COMMENT, SF_STR_ALBUM, SF_STR_GENRE}),
            only(kTags, {SF_STR_TITLE, SF_STR_ARTIST, SF_STR_COMMENT, SF_STR_ALBUM, SF_STR_GENRE}));
  EXPECT_EQ(resample(folder.file("in.flac"), folder.file("out.aiff")), "");
  EXPECT_EQ(only(tags_of(folder.file("out.aiff")), {SF_STR_TITLE, SF_STR_COPYRIGHT, SF_STR_ARTIST}),
            only(kTags, {SF_STR_TITLE, SF_STR_COPYRIGHT, SF_STR_ARTIST}));
  EXPECT_EQ(resample(folder.file("in.flac"), folder.file("out.au")), "");
  EXPECT_EQ(tags_of(folder.file("out.au")), Tags{});
}

TEST(Metadata, SoftwareTagIsKeptAndNamesTheWriterOnce) {
  const Folder folder;
  write_tagged(folder.file("in.wav"), kWav16, {{SF_STR_SOFTWARE, "Recorder 1.0"}});
  const std::string before = tags_of(folder.file("in.wav"))[SF_STR_SOFTWARE];
  ASSERT_EQ(before.find("Recorder 1.0"), 0U);
  resample(folder.file("in.wav"), folder.file("out.wav"));
  EXPECT_EQ(tags_of(folder.file("out.wav"))[SF_STR_SOFTWARE], before);
}

TEST(Metadata, FileWithoutTagsGetsNone) {
  const Folder folder;
  write_tagged(folder.file("in.wav"), kWav16, {});
  resample(folder.file("in.wav"), folder.file("out.wav"));
  EXPECT_EQ(tags_of(folder.file("out.wav")), Tags{});
}

const std::vector<int> kSurround = {SF_CHANNEL_MAP_LEFT,      SF_CHANNEL_MAP_RIGHT,
                                    SF_CHANNEL_MAP_CENTER,    SF_CHANNEL_MAP_LFE,
                                    SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT};

TEST(Metadata, ChannelMapIsKept) {
  const Folder folder;
  const int format = SF_FORMAT_WAVEX | SF_FORMAT_PCM_16;
  write_tagged(folder.file("in.wav"), format, {}, kSurround);
  const std::vector<int> map = channel_map_of(folder.file("in.wav"));
  ASSERT_EQ(map.size(), 6U);
  for (const char *out : {"out.wav", "out.unknown"}) {
    EXPECT_EQ(resample(folder.file("in.wav"), folder.file(out)), "");
    EXPECT_EQ(channel_map_of(folder.file(out)), map) << out;
  }
}

TEST(Metadata, ChannelMapGoesToOtherContainers) {
  const Folder folder;
  write_tagged(folder.file("in.rf64"), SF_FORMAT_RF64 | SF_FORMAT_PCM_16, {}, kSurround);
  const std::vector<int> map = channel_map_of(folder.file("in.rf64"));
  ASSERT_EQ(map.size(), 6U);
  EXPECT_EQ(resample(folder.file("in.rf64"), folder.file("out.rf64")), "");
  EXPECT_EQ(channel_map_of(folder.file("out.rf64")), map);
}

TEST(Metadata, LayoutThatTheContainerCannotHoldIsNoted) {
  const Folder folder;
  write_tagged(folder.file("in.wav"), SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, {}, kSurround);
  EXPECT_EQ(resample(folder.file("in.wav"), folder.file("out.au")),
            "mvk: note: au:s16 can't hold this layout of channels; they keep their order\n");
}

}  // namespace
}  // namespace host
