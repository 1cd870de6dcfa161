// Which container and sample format the output gets.
#include <gtest/gtest.h>

#include "host/audio.h"
#include "host/folder.h"
#include "host/process.h"

namespace host {
namespace {

// The format of the output of `mvk resample in.x OUT --rate 24000 MORE...`, where
// in.x is 48000 Hz of format `source`; 0 if mvk fails.
int format_of(int source, const std::string &out, const std::string &wish = {}, int channels = 1) {
  const Folder folder;
  write_audio(folder.file("in.x"), tones(source, 48000, channels, 600));
  std::vector<std::string> arguments = {"resample", folder.file("in.x"), folder.file(out), "--rate",
                                        "24000"};
  if (!wish.empty()) arguments.insert(arguments.end(), {"--format", wish});
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  return outcome.exit_code == 0 ? read_audio(folder.file(out)).format : 0;
}

// The refusal's text.
std::string refusal(int source, const std::string &out, const std::string &wish, int channels = 1) {
  const Folder folder;
  write_audio(folder.file("in.x"), tones(source, 48000, channels, 600));
  const Outcome outcome =
      run({"resample", folder.file("in.x"), folder.file(out), "--rate", "24000", "--format", wish});
  EXPECT_EQ(outcome.exit_code, 2);
  EXPECT_EQ(folder.names(), std::set<std::string>{"in.x"});
  return outcome.err;
}

constexpr int kWav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
constexpr int kOggVorbis = SF_FORMAT_OGG | SF_FORMAT_VORBIS;

TEST(Format, StaysThatOfTheInputWithoutAKnownSuffix) {
  for (const int format :
       {kWav16, kWav24, kWavFloat, SF_FORMAT_WAV | SF_FORMAT_PCM_U8,
        SF_FORMAT_WAV | SF_FORMAT_DOUBLE, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
        SF_FORMAT_FLAC | SF_FORMAT_PCM_24, kOggVorbis, SF_FORMAT_AIFF | SF_FORMAT_PCM_S8,
        SF_FORMAT_AU | SF_FORMAT_ULAW, SF_FORMAT_CAF | SF_FORMAT_ALAC_16,
        SF_FORMAT_W64 | SF_FORMAT_PCM_32, SF_FORMAT_RF64 | SF_FORMAT_PCM_16,
        SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, SF_FORMAT_VOC | SF_FORMAT_PCM_16}) {
    for (const char *out : {"out", "out.unknown"}) {
      EXPECT_EQ(format_of(format, out), format) << std::hex << format;
    }
  }
}

TEST(Format, KeepsTheByteOrderOfTheInput) {
  const int little_aiff = SF_FORMAT_AIFF | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE;
  EXPECT_EQ(format_of(little_aiff, "out.aiff"), little_aiff);
  const int big_wav = kWav16 | SF_ENDIAN_BIG;
  EXPECT_EQ(format_of(big_wav, "out.wav"), big_wav);
}

TEST(Format, FollowsTheSuffix) {
  EXPECT_EQ(format_of(kWav16, "out.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(kWav16, "out.FLAC"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(kWav16, "out.aif"), SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(kWavFloat, "out.w64"), SF_FORMAT_W64 | SF_FORMAT_FLOAT);
  EXPECT_EQ(format_of(kWav24, "out.caf"), SF_FORMAT_CAF | SF_FORMAT_PCM_24);
  EXPECT_EQ(format_of(kWav16, "out.rf64"), SF_FORMAT_RF64 | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(kWav24, "out.au"), SF_FORMAT_AU | SF_FORMAT_PCM_24);
}

TEST(Format, SamplesBecomeTheNearestThatTheSuffixAllows) {
  EXPECT_EQ(format_of(kWavFloat, "out.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
  EXPECT_EQ(format_of(kWav24, "out.voc"), SF_FORMAT_VOC | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(SF_FORMAT_WAV | SF_FORMAT_PCM_U8, "out.flac"),
            SF_FORMAT_FLAC | SF_FORMAT_PCM_S8);
  EXPECT_EQ(format_of(SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, "out.wav"),
            SF_FORMAT_WAV | SF_FORMAT_PCM_U8);
  EXPECT_EQ(format_of(SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, "out.rf64"),
            SF_FORMAT_RF64 | SF_FORMAT_PCM_U8);
  EXPECT_EQ(format_of(kOggVorbis, "out.wav"), kWavFloat);
  EXPECT_EQ(format_of(kOggVorbis, "out.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
  EXPECT_EQ(format_of(SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, "out.wav"), kWavFloat);
  EXPECT_EQ(format_of(kWav16, "out.ogg"), kOggVorbis);
  EXPECT_EQ(format_of(kWav16, "out.opus"), SF_FORMAT_OGG | SF_FORMAT_OPUS);
  EXPECT_EQ(format_of(kWav16, "out.mp3"), SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
  EXPECT_EQ(format_of(SF_FORMAT_CAF | SF_FORMAT_ALAC_24, "out.wav"), kWav24);
  EXPECT_EQ(format_of(SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, "out.flac"),
            SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
}

TEST(Format, SuffixesThatContainersShareDontChangeThem) {
  const int extensible = SF_FORMAT_WAVEX | SF_FORMAT_PCM_16;
  EXPECT_EQ(format_of(extensible, "out.wav"), extensible);
  const int rf64 = SF_FORMAT_RF64 | SF_FORMAT_PCM_16;
  EXPECT_EQ(format_of(rf64, "out.wav"), rf64);
}

TEST(Format, SurroundGoesIntoExtensibleWav) {
  EXPECT_EQ(format_of(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, "out.wav", "", 6),
            SF_FORMAT_WAVEX | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, "out.wav", "", 2), kWav16);
  EXPECT_EQ(format_of(kWav16, "out.wav", "", 6), kWav16);
}

TEST(Format, WishCountsBeforeTheSuffix) {
  EXPECT_EQ(format_of(kWav16, "out.wav", "flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  EXPECT_EQ(format_of(kWav16, "out.wav", "float"), kWavFloat);
  EXPECT_EQ(format_of(kWav16, "out.flac", "s24"), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
  EXPECT_EQ(format_of(kWav16, "out.x", "aiff:s32"), SF_FORMAT_AIFF | SF_FORMAT_PCM_32);
  EXPECT_EQ(format_of(kWav16, "out.x", "ulaw"), SF_FORMAT_WAV | SF_FORMAT_ULAW);
  EXPECT_EQ(format_of(kWav16, "out.ogg", "opus"), SF_FORMAT_OGG | SF_FORMAT_OPUS);
  EXPECT_EQ(format_of(kWavFloat, "out.x", "flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
}

TEST(Format, EverySampleFormatHoldsTheAudio) {
  const Folder folder;
  const auto convert = [&](const std::string &format) {
    const Outcome outcome = run({"resample", kSpeech, folder.file("out"), "--rate", "12000",
                                 "--quiet", "--format", format});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  };
  convert("float");
  const std::vector<double> exact = read_audio(folder.file("out")).samples;
  for (const char *format :
       {"aiff:s8",         "wav:u8",          "wav:s16",         "wav:s24",      "wav:s32",
        "wav:double",      "ogg:vorbis",      "ogg:opus",        "mp3:layer3",   "wav:ulaw",
        "wav:alaw",        "caf:alac16",      "caf:alac20",      "caf:alac24",   "caf:alac32",
        "aiff:dwvw16",     "aiff:dwvw24",     "wav:ima-adpcm",   "wav:ms-adpcm", "wav:gsm610",
        "wav:nms-adpcm16", "wav:nms-adpcm24", "wav:nms-adpcm32", "wav:g721-32",  "au:g723-24",
        "au:g723-40",      "rf64:s16",        "w64:s16",         "voc:s16",      "svx:s16",
        "nist:s16",        "ircam:s16",       "paf:s16",         "pvf:s16",      "avr:s16",
        "sds:s16",         "mpc2k:s16",       "mat5:s16",        "mat4:s16"}) {
    SCOPED_TRACE(format);
    convert(format);
    const std::vector<double> stored = read_audio(folder.file("out")).samples;
    // Codecs that work in packets add silence.
    ASSERT_GE(stored.size(), exact.size());
    double noise = 0.0;
    double signal = 0.0;
    for (std::size_t i = 0; i < exact.size(); ++i) {
      noise += (stored[i] - exact[i]) * (stored[i] - exact[i]);
      signal += exact[i] * exact[i];
    }
    EXPECT_LT(noise, 0.2 * signal);
  }
}

TEST(Format, WishThatTheContainerCannotHoldIsRefused) {
  EXPECT_EQ(refusal(kWav16, "out.x", "flac:float"),
            "mvk: flac:float doesn't exist; this container takes s8 s16 s24\n");
  EXPECT_EQ(refusal(kWav16, "out.flac", "float"),
            "mvk: flac:float doesn't exist; this container takes s8 s16 s24\n");
  EXPECT_EQ(refusal(kWav16, "out.wav", "vorbis").find("mvk: wav:vorbis doesn't exist; "), 0U);
}

TEST(Format, UnknownWishIsRefused) {
  for (const char *wish : {"mp4", "wav:", ":s16", "wav:s12", "s16:wav", "wav:s16:s16", "WAV"}) {
    EXPECT_EQ(refusal(kWav16, "out.wav", wish),
              std::string("mvk: --format ") + wish +
                  " isn't a known format; 'mvk resample --help' lists them\n");
  }
}

TEST(Format, TooManyChannelsForTheContainerAreRefused) {
  EXPECT_EQ(refusal(kWav16, "out.flac", "flac", 9),
            "mvk: flac:s16 can't hold 9 channels; choose another format with --format\n");
}

TEST(Format, ContainerThatCanOnlyBeReadNeedsAnotherForTheOutput) {
  const int instrument = SF_FORMAT_XI | SF_FORMAT_DPCM_16;
  const Folder folder;
  write_audio(folder.file("in.xi"), tones(instrument, 44100, 1, 600));
  const Outcome outcome =
      run({"resample", folder.file("in.xi"), folder.file("out.xi"), "--rate", "22050"});
  EXPECT_EQ(outcome.exit_code, 2);
  EXPECT_EQ(outcome.err,
            "mvk: this kind of file can only be read; choose a format for the output with "
            "--format\n");
  EXPECT_EQ(
      run({"resample", folder.file("in.xi"), folder.file("out.wav"), "--rate", "22050"}).exit_code,
      0);
  EXPECT_EQ(read_audio(folder.file("out.wav")).format, kWavFloat);
}

TEST(Format, RateThatTheFormatCannotHoldIsAnError) {
  const Folder folder;
  write_audio(folder.file("in.wav"), tones(kWav16, 44100, 1, 600));
  const Outcome outcome =
      run({"resample", folder.file("in.wav"), folder.file("out.opus"), "--rate", "88200"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.err.find("mvk: can't write " + folder.file("out.opus") +
                             " as ogg:opus at 88200 Hz: "),
            0U)
      << outcome.err;
  EXPECT_EQ(folder.names(), std::set<std::string>{"in.wav"});
}

TEST(Format, OutputBeyond4GibIsRefusedBeforeItBegins) {
  const Folder folder;
  write_sparse_au(folder.file("in.au"), 600'000'000, 8000);
  for (const char *out : {"out.au", "out.wav", "out.aiff"}) {
    const Outcome outcome =
        run({"resample", folder.file("in.au"), folder.file(out), "--rate", "32000"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_NE(outcome.err.find("would pass the 4 GiB"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("use --format rf64, w64 or caf"), std::string::npos) << outcome.err;
    EXPECT_EQ(folder.names(), std::set<std::string>{"in.au"});
  }
}

}  // namespace
}  // namespace host
