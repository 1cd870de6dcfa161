// The pictures that mvk spectrum draws.
#ifdef MVK_PICTURES

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "host/audio.h"
#include "host/folder.h"
#include "host/picture.h"
#include "host/process.h"

namespace host {
namespace {

constexpr int kRate = 48000;

using Signal = std::function<double(int frame)>;

class SpectrumPicture : public testing::Test {
 protected:
  // From the file that was written.
  Picture picture(const std::vector<std::string> &options = {}) {
    std::vector<std::string> arguments = {"spectrum", in_, out_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    return Picture(out_);
  }

  void write(int frames, const Signal &signal, int rate = kRate) {
    Audio audio{kWavFloat, rate, 1, {}};
    for (int i = 0; i < frames; ++i) audio.samples.push_back(signal(i));
    write_audio(in_, audio);
  }

  const Folder folder_;
  std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.png");
};

double sine(double cycles_per_frame, int frame) {
  return std::sin(2 * std::numbers::pi * cycles_per_frame * frame + 0.3);
}

TEST_F(SpectrumPicture, IsAPngOfItsSize) {
  write(5000, [](int i) { return sine(0.1, i); });
  const Picture drawn = picture();
  const std::string bytes = read_bytes(out_);
  EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1A\n");
  EXPECT_EQ(bytes.substr(bytes.size() - 8, 4), "IEND");
  EXPECT_EQ(drawn.width(), kWidth);
  EXPECT_EQ(drawn.height(), kHeight);
}

TEST_F(SpectrumPicture, SameAudioHasTheSamePicture) {
  write(5000, [](int i) { return sine(0.1, i); });
  picture();
  const std::string first = read_bytes(out_);
  picture();
  EXPECT_EQ(read_bytes(out_), first);
}

// ---- Frequencies ----

// A bin lies from half a step below its frequency to half a step above. Bins higher than
// a pixel are seen in every pixel whose middle is in them; others in every pixel that
// they reach.
TEST_F(SpectrumPicture, ToneIsTheBrightestRow) {
  for (const int length : {32, 512, 1024, 4096}) {
    // One after another, each for a third of the time.
    const std::vector<int> bins = {length / 16, length / 4, length / 2 - 3};
    const int each = 4 * length;
    write(3 * each, [&](int i) {
      return sine(static_cast<double>(bins[static_cast<std::size_t>(i / each)]) / length, i);
    });
    const Picture drawn = picture({"--length", std::to_string(length)});
    const double height = 2.0 * kPlot.height / length;  // of a bin
    for (int tone = 0; tone < 3; ++tone) {
      const int bin = bins[static_cast<std::size_t>(tone)];
      SCOPED_TRACE("bin " + std::to_string(bin) + " of " + std::to_string(length));
      const std::vector<int> rows = drawn.brightest_rows((2 * tone + 1) * kPlot.width / 6);
      const double bottom = (bin - 0.5) * height;
      const double top = (bin + 0.5) * height;
      if (height >= 1.0) {
        EXPECT_EQ(rows.front(), std::lrint(std::ceil(bottom - 0.5)));
        EXPECT_EQ(rows.back(), std::lrint(std::ceil(top - 0.5)) - 1);
      } else {
        EXPECT_EQ(rows.front(), std::lrint(std::floor(bottom)));
        EXPECT_NEAR(rows.back(), top, 1.0);
      }
      EXPECT_EQ(rows.size(), static_cast<std::size_t>(rows.back() - rows.front() + 1));
    }
  }
}

TEST_F(SpectrumPicture, EndsOfTheSpectrumAreTheEndsOfTheAxis) {
  write(4096, [](int i) { return i % 2 == 0 ? 1.0 : -1.0; });
  EXPECT_EQ(picture().brightest_rows(kPlot.width / 2).back(), kPlot.height - 1);
  write(4096, [](int) { return 1.0; });
  EXPECT_EQ(picture().brightest_rows(kPlot.width / 2).front(), 0);
}

// ---- Times ----

TEST_F(SpectrumPicture, SoundLiesWhereItIsInTime) {
  constexpr int kFrames = 40000;
  constexpr int kFrom = 10000;
  constexpr int kTo = 30000;
  write(kFrames, [](int i) { return i >= kFrom && i < kTo ? sine(0.25, i) : 0.0; });
  const Picture drawn = picture({"-n", "128"});
  const int row = kPlot.height / 2;  // half of half the rate
  const int loud = drawn.plot(kPlot.width / 2, row).brightness();
  // Windows reach 64 frames to either side, and the next hop is 32 frames away.
  for (int column = 0; column < kPlot.width; ++column) {
    const double first = static_cast<double>(column) * kFrames / kPlot.width;
    const double last = static_cast<double>(column + 1) * kFrames / kPlot.width;
    const int brightness = drawn.plot(column, row).brightness();
    if (first > kFrom + 96 && last < kTo - 96) {
      ASSERT_EQ(brightness, loud) << column;
    } else if (last < kFrom - 96 || first > kTo + 96) {
      ASSERT_EQ(brightness, drawn.plot(0, row).brightness()) << column;
      ASSERT_LT(brightness, 40) << column;
    }
  }
}

// Impulses so short, in files so long, that each is in one of many hops of a column.
TEST_F(SpectrumPicture, NothingShortIsLostInALongFile) {
  for (const int frames : {20000, 100000, 400000}) {
    SCOPED_TRACE(std::to_string(frames) + " frames");
    const auto is_impulse = [&](int frame) { return frame % (frames / 7) == frames / 14; };
    write(frames, [&](int i) { return is_impulse(i) ? 1.0 : 0.0; });
    const Picture drawn = picture({"-n", "32"});
    std::vector<double> nearest(kPlot.width, 1e9);  // frames to an impulse
    for (int frame = 0; frame < frames; ++frame) {
      if (!is_impulse(frame)) continue;
      for (int column = 0; column < kPlot.width; ++column) {
        const double from = static_cast<double>(column) * frames / kPlot.width;
        const double to = from + static_cast<double>(frames) / kPlot.width;
        auto &gap = nearest[static_cast<std::size_t>(column)];
        gap = std::min(gap, std::max({0.0, from - frame, frame - to}));
      }
    }
    // A window reaches 16 frames to either side, and the groups of hops that share their
    // levels are half a column to a column.
    const double reach = 24 + static_cast<double>(frames) / kPlot.width;
    for (int column = 0; column < kPlot.width; ++column) {
      const int brightness = drawn.plot(column, kPlot.height / 2).brightness();
      const double gap = nearest[static_cast<std::size_t>(column)];
      if (gap == 0.0) {
        ASSERT_GT(brightness, 300) << column;
      } else if (gap > reach) {
        ASSERT_LT(brightness, 40) << column;
      }
    }
  }
}

TEST_F(SpectrumPicture, FileShorterThanTheWindowFillsTheAxis) {
  for (const int frames : {1, 256, 257}) {
    write(frames, [](int) { return 0.5; });
    const Picture drawn = picture();
    for (const int column : {0, kPlot.width / 2, kPlot.width - 1}) {
      EXPECT_LE(drawn.brightest_rows(column).front(), 1) << frames;
      EXPECT_GT(drawn.plot(column, 0).brightness(), 200) << frames;
    }
  }
}

// ---- Colours ----

TEST_F(SpectrumPicture, LegendIsTheBrighterTheHigher) {
  write(5000, [](int i) { return sine(0.1, i); });
  const Picture drawn = picture();
  const int middle = kLegend.left + kLegend.width / 2;
  for (int y = kLegend.top + 10; y < kLegend.top + kLegend.height; ++y) {
    // Each of the three parts is rounded.
    ASSERT_LT(drawn.at(middle, y).brightness(), drawn.at(middle, y - 1).brightness() + 3) << y;
    ASSERT_LT(drawn.at(middle, y).brightness(), drawn.at(middle, y - 10).brightness()) << y;
  }
  EXPECT_GT(drawn.at(middle, kLegend.top).brightness(), 700);
  EXPECT_LT(drawn.at(middle, kLegend.top + kLegend.height - 1).brightness(), 40);
}

// The scale is 100 dB, and its end the least ten above the loudest.
TEST_F(SpectrumPicture, LevelHasTheColourOfTheLegend) {
  const auto amplitude = [](double decibels) { return std::pow(10.0, decibels / 20.0); };
  for (const double loudest : {0.0, -4.0, -30.0, 14.0}) {
    SCOPED_TRACE(loudest);
    // A steady tone beside one that grows fainter in steps.
    const double steps[] = {0.0, 10.0, 35.0, 77.0};
    constexpr int kStep = 8192;
    write(4 * kStep, [&](int i) {
      return amplitude(loudest) * sine(128.0 / 1024, i) +
             amplitude(loudest - steps[i / kStep]) * sine(384.0 / 1024, i);
    });
    const Picture drawn = picture();
    const double top = 10 * std::ceil(loudest / 10);
    const auto expect_level = [&](int step, int bin, double level) {
      SCOPED_TRACE(level);
      expect_near(drawn.plot((2 * step + 1) * kPlot.width / 8,
                             static_cast<int>(bin * 2.0 * kPlot.height / 1024)),
                  drawn.legend(level, top));
    };
    for (int step = 0; step < 4; ++step) {
      expect_level(step, 128, loudest);
      expect_level(step, 384, loudest - steps[step]);
    }
  }
}

TEST_F(SpectrumPicture, SilenceIsDarkThroughout) {
  write(30000, [](int) { return 0.0; });
  const Picture drawn = picture();
  const Colour dark = drawn.plot(0, 0);
  EXPECT_LT(dark.brightness(), 40);
  for (int column = 0; column < kPlot.width; ++column) {
    for (int row = 0; row < kPlot.height; ++row) ASSERT_EQ(drawn.plot(column, row), dark);
  }
}

TEST_F(SpectrumPicture, AnyChannelIsSeen) {
  Audio audio{kWavFloat, kRate, 3, {}};
  for (int i = 0; i < 4096; ++i) {
    for (int c = 0; c < 3; ++c) audio.samples.push_back(sine((c + 1) * 128.0 / 1024, i));
  }
  write_audio(in_, audio);
  const Picture drawn = picture();
  for (const int bin : {128, 256, 384}) {
    const int row = static_cast<int>(bin * 2.0 * kPlot.height / 1024);
    EXPECT_GT(drawn.plot(kPlot.width / 2, row).brightness(), 600) << bin;
    EXPECT_LT(drawn.plot(kPlot.width / 2, row + 30).brightness(), 40) << bin;
  }
}

// ---- Axes and texts ----

// Whether the marks on an axis are these, by their places in its pixels.
void expect_marks(const std::vector<double> &places, int pixels,
                  const std::function<Colour(int pixel)> &beside) {
  std::vector<int> seen;
  for (int pixel = 0; pixel < pixels; ++pixel) {
    if (beside(pixel).brightness() < 200) seen.push_back(pixel);
  }
  ASSERT_EQ(seen.size(), places.size());
  for (std::size_t i = 0; i < seen.size(); ++i) {
    EXPECT_NEAR(seen[i] + 0.5, std::min(places[i], pixels - 0.5), 0.5 + 1e-6) << "mark " << i;
  }
}

std::vector<double> steps(double step, double span, int pixels) {
  std::vector<double> places;
  for (int i = 0; i * step <= span * (1 + 1e-12); ++i) places.push_back(i * step / span * pixels);
  return places;
}

TEST_F(SpectrumPicture, MarksAreAtRoundNumbers) {
  const struct {
    int rate;
    int frames;
    double seconds;  // between two marks
    double kilohertz;
  } cases[] = {{48000, 48000, 0.1, 2.0},
               {22050, 60, 0.0005, 1.0},
               {100, 100 * 120, 10, 0.005},
               {8000, 8000 * 121, 15, 0.5},
               {100, 100 * 3601, 600, 0.005}};
  for (const auto &each : cases) {
    SCOPED_TRACE(std::to_string(each.frames) + " frames at " + std::to_string(each.rate));
    write(
        each.frames, [](int) { return 0.0; }, each.rate);
    const Picture drawn = picture();
    EXPECT_EQ(drawn.width(), kWidth);
    expect_marks(steps(each.seconds, static_cast<double>(each.frames) / each.rate, kPlot.width),
                 kPlot.width,
                 [&](int x) { return drawn.at(kPlot.left + x, kPlot.top + kPlot.height + 3); });
    expect_marks(steps(each.kilohertz, each.rate / 2000.0, kPlot.height), kPlot.height,
                 [&](int y) { return drawn.at(kPlot.left - 4, kPlot.top + kPlot.height - 1 - y); });
    expect_marks(steps(10, 100, kLegend.height), kLegend.height, [&](int y) {
      return drawn.at(kLegend.left + kLegend.width + 3, kLegend.top + kLegend.height - 1 - y);
    });
  }
}

TEST_F(SpectrumPicture, EveryTextIsThere) {
  write(48000, [](int i) { return sine(0.1, i); });
  const Picture drawn = picture();
  const int below = kPlot.top + kPlot.height;
  const Box texts[] = {kTitle,
                       kSubtitle,
                       {kPlot.left - 20, below + 8, 40, 16},                     // a time
                       {kPlot.left + kPlot.width / 2 - 40, below + 32, 80, 18},  // "Time (s)"
                       {kPlot.left - 40, below - 10, 30, 20},                    // a frequency
                       {14, kPlot.top + kPlot.height / 2 - 60, 16, 120},  // "Frequency (kHz)"
                       {kLegend.left + kLegend.width + 8, kLegend.top - 8, 40, 16},  // a level
                       {1250, kLegend.top + kLegend.height / 2 - 50, 16, 100}};  // "Level (dBFS)"
  for (const Box &box : texts) EXPECT_FALSE(drawn.blank(box)) << box.left << ", " << box.top;
  EXPECT_TRUE(drawn.blank({0, 0, kWidth, 10}));
  EXPECT_TRUE(drawn.blank({0, kHeight - 10, kWidth, 10}));
  EXPECT_TRUE(drawn.blank({0, 0, 10, kHeight}));
  EXPECT_TRUE(drawn.blank({kWidth - 10, 0, 10, kHeight}));
}

// The name as it is on disk may be no text at all, or longer than the picture.
TEST_F(SpectrumPicture, AnyNameOfAFileIsATitle) {
  write(2000, [](int i) { return sine(0.1, i); });
  const std::string bytes = read_bytes(in_);
  std::vector<Picture> drawn;
  const std::string latin_1 =
      "Gr\xFC\xDF"
      "e";
  const std::string cut = "\xE2\x82";
  const std::string surrogate = "\xED\xA0\x80";
  const std::string overlong = "\xC0\xAF";
  const std::string beyond = "\xF4\x90\x80\x80\xF8\x80";
  for (const std::string &name :
       {std::string("a.wav"), std::string("\xC4\x80.wav"), latin_1 + surrogate + overlong + beyond,
        "new\nline\x7F\x1B[1m" + cut, std::string(250, 'm') + ".wav"}) {
    in_ = folder_.file(name);
    write_bytes(in_, bytes);
    drawn.push_back(picture());
    EXPECT_FALSE(drawn.back().blank(kTitle)) << name;
    EXPECT_TRUE(drawn.back().blank({kWidth - 75, 0, 75, kTitle.top + kTitle.height})) << name;
    // Nothing but the title is another.
    for (int y = kTitle.top + kTitle.height; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        ASSERT_EQ(drawn.back().at(x, y), drawn.front().at(x, y)) << name;
      }
    }
  }
  const auto titles_differ = [&](const Picture &a, const Picture &b) {
    for (int y = kTitle.top; y < kTitle.top + kTitle.height; ++y) {
      for (int x = kTitle.left; x < kWidth; ++x) {
        if (a.at(x, y) != b.at(x, y)) return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(titles_differ(drawn[0], drawn[1]));
  EXPECT_TRUE(titles_differ(drawn[0], drawn[2]));
  // The longest is cut to the width of the plot, not to less than it has room for.
  EXPECT_FALSE(drawn.back().blank({kWidth - 130, kTitle.top, 50, kTitle.height}));
}

}  // namespace
}  // namespace host

#endif
