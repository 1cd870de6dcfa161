// The pictures that mvk bands draws.
#ifdef MVK_PICTURES

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "host/audio.h"
#include "host/folder.h"
#include "host/picture.h"
#include "host/process.h"

namespace host {
namespace {

constexpr int kBands[] = {8, 16, 32, 48, 64};

// The prototype's middle, which is also the largest of its taps, for any number of bands.
constexpr double kMiddle = 0.860848;

using Signal = std::function<double(int frame)>;

class BandsPicture : public testing::Test {
 protected:
  // From the file that was written.
  Picture picture(int bands, const std::string &note = "") {
    const Outcome outcome = run({"bands", in_, out_, "--bands", std::to_string(bands)});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, note);
    return Picture(out_);
  }

  void write(int frames, const std::vector<Signal> &channels) {
    Audio audio{kWavFloat, 48000, static_cast<int>(channels.size()), {}};
    for (int i = 0; i < frames; ++i) {
      for (const Signal &signal : channels) audio.samples.push_back(signal(i));
    }
    write_audio(in_, audio);
  }
  void write(int frames, const Signal &signal) { write(frames, std::vector{signal}); }

  void write_impulse(int frames, int at) {
    write(frames, [at](int i) { return i == at ? 1.0 : 0.0; });
  }

  const Folder folder_;
  const std::string in_ = folder_.file("in.wav");
  const std::string out_ = folder_.file("out.png");
};

// At a frequency in widths of a band.
double sine(double frequency, int bands, int frame) {
  return std::sin(std::numbers::pi * frequency / bands * frame + 0.3);
}

// A row in the middle of a band.
int row_of(int band, int bands) { return static_cast<int>((band + 0.5) * kPlot.height / bands); }

// A column in the middle of what a hop's levels fill.
int column_of(double hop, int bands, int frames) {
  return static_cast<int>(hop * bands * kPlot.width / frames);
}

double amplitude(double decibels) { return std::pow(10.0, decibels / 20.0); }
double decibels(double amplitude) { return 20.0 * std::log10(amplitude); }

// ---- Frequencies and levels ----

TEST_F(BandsPicture, ToneIsTheBrightestBand) {
  for (const int bands : kBands) {
    // One after another, each for a fifth of the time.
    const int places[] = {0, 1, bands / 2, bands - 2, bands - 1};
    const int each = 20 * bands;
    write(5 * each, [&](int i) { return amplitude(-4) * sine(places[i / each] + 0.5, bands, i); });
    const Picture drawn = picture(bands);
    const double height = static_cast<double>(kPlot.height) / bands;
    for (int tone = 0; tone < 5; ++tone) {
      const int band = places[tone];
      SCOPED_TRACE("band " + std::to_string(band) + " of " + std::to_string(bands));
      const int column = (2 * tone + 1) * kPlot.width / 10;
      const std::vector<int> rows = drawn.brightest_rows(column);
      // Seen in every pixel whose middle is in it.
      EXPECT_EQ(rows.front(), std::lrint(std::ceil(band * height - 0.5)));
      EXPECT_EQ(rows.back(), std::lrint(std::ceil((band + 1) * height - 0.5)) - 1);
      EXPECT_EQ(rows.size(), static_cast<std::size_t>(rows.back() - rows.front() + 1));
      expect_near(drawn.plot(column, row_of(band, bands)), drawn.legend(-4, 0));
    }
  }
}

// They begin and end slowly, for a sudden begin overshoots.
TEST_F(BandsPicture, SinesOfFullScaleHaveTheLevelZero) {
  for (const int bands : kBands) {
    const int places[] = {0, 3, bands - 1};
    const int frames = 60 * bands;
    write(frames, [&](int i) {
      double sum = 0;
      for (const int band : places) sum += sine(band + 0.5, bands, i);
      return sum * std::min({1.0, i / (20.0 * bands), (frames - i) / (20.0 * bands)});
    });
    const Picture drawn = picture(bands);
    for (const int band : places) {
      SCOPED_TRACE(testing::Message() << "band " << band << " of " << bands);
      expect_near(drawn.plot(kPlot.width / 2, row_of(band, bands)), drawn.legend(0, 0));
    }
  }
}

TEST_F(BandsPicture, OtherBandsAreSeventyDecibelsBelowATone) {
  for (const int bands : kBands) {
    SCOPED_TRACE(bands);
    write(100 * bands, [&](int i) { return sine(3.5, bands, i); });
    const Picture drawn = picture(bands);
    for (int band = 0; band < bands; ++band) {
      // The neighbours have as much as leaks in beside the middle of a band.
      if (std::abs(band - 3) < 2) continue;
      EXPECT_LE(drawn.plot(kPlot.width / 2, row_of(band, bands)).brightness(),
                drawn.legend(-69, 0).brightness())
          << band;
    }
  }
}

TEST_F(BandsPicture, LevelHasTheColourOfTheLegend) {
  for (const int bands : {8, 48, 64}) {
    for (const double loudest : {-4.0, 14.0}) {
      SCOPED_TRACE(testing::Message() << bands << " bands, " << loudest << " dB");
      // A steady tone beside one that grows fainter in steps, but stays far above what leaks
      // in of the steady one.
      const double steps[] = {0.0, 10.0, 20.0, 35.0};
      const int step_frames = 40 * bands;
      write(4 * step_frames, [&](int i) {
        return amplitude(loudest) * sine(1.5, bands, i) +
               amplitude(loudest - steps[i / step_frames]) * sine(5.5, bands, i);
      });
      const Picture drawn = picture(bands);
      const double top = 10 * std::ceil(loudest / 10);
      for (int step = 0; step < 4; ++step) {
        const int column = (2 * step + 1) * kPlot.width / 8;
        expect_near(drawn.plot(column, row_of(1, bands)), drawn.legend(loudest, top));
        expect_near(drawn.plot(column, row_of(5, bands)), drawn.legend(loudest - steps[step], top));
      }
    }
  }
}

TEST_F(BandsPicture, ToneOnABorderIsThreeDecibelsLowerInBothBands) {
  for (const int bands : kBands) {
    SCOPED_TRACE(bands);
    write(60 * bands, [&](int i) { return sine(1.5, bands, i) + sine(5, bands, i); });
    const Picture drawn = picture(bands);
    for (const int band : {4, 5}) {
      expect_near(drawn.plot(kPlot.width / 2, row_of(band, bands)), drawn.legend(-3.01, 0));
    }
  }
}

TEST_F(BandsPicture, PowersOfTheChannelsAreAveraged) {
  for (const int channels : {2, 3}) {
    std::vector<Signal> signals;
    for (int c = 0; c < channels; ++c) {
      signals.emplace_back([c](int i) { return sine(10 * c + 5.5, 64, i); });
    }
    write(6400, signals);
    const Picture drawn = picture(64);
    for (int c = 0; c < channels; ++c) {
      SCOPED_TRACE(c);
      expect_near(drawn.plot(kPlot.width / 2, row_of(10 * c + 5, 64)),
                  drawn.legend(-10 * std::log10(channels), 0));
    }
  }
}

// ---- Times ----

// In every band its response is half the prototype over twice the bands, about its place.
TEST_F(BandsPicture, ImpulseIsBrightestWhereItIsInTime) {
  for (const int bands : kBands) {
    SCOPED_TRACE(bands);
    const int frames = 41 * bands;
    write_impulse(frames, 20 * bands);
    const Picture drawn = picture(bands);
    const double level = decibels(std::sqrt(8.0) * kMiddle / (2 * bands));
    const double top = 10 * std::ceil((level - 0.5) / 10);
    const int row = row_of(bands / 2, bands);
    const auto at = [&](double hop) { return drawn.plot(column_of(hop, bands, frames), row); };
    // The whole width of the hop: from half a hop before it to half a hop after it.
    for (const double hop : {19.6, 20.0, 20.4}) expect_near(at(hop), drawn.legend(level, top));
    for (int away = 1; away < 6; ++away) {
      EXPECT_LT(at(20 + away).brightness(), at(20).brightness()) << away;
      expect_near(at(20 + away), at(20 - away));
    }
    // Filters end five slots away.
    for (const double hop : {0.1, 14.4, 25.6, 40.8}) EXPECT_LT(at(hop).brightness(), 40) << hop;
  }
}

// A hop has its filters' middle at its frame, if that is in the file.
TEST_F(BandsPicture, EndsOfTheFileAreSeen) {
  for (const int bands : {8, 64}) {
    SCOPED_TRACE(bands);
    const double level = decibels(std::sqrt(8.0) * kMiddle / (2 * bands));
    const double top = 10 * std::ceil((level - 0.5) / 10);
    const int row = row_of(1, bands);
    const int frames = 12 * bands + 1;
    write_impulse(frames, 0);
    const Picture first = picture(bands);
    expect_near(first.plot(0, row), first.legend(level, top));
    write_impulse(frames, frames - 1);
    const Picture last = picture(bands);
    expect_near(last.plot(kPlot.width - 1, row), last.legend(level, top));
    // Half of the last hop is beyond the end.
    expect_near(last.plot(column_of(11.6, bands, frames), row), last.legend(level, top));
    EXPECT_LT(last.plot(column_of(11.4, bands, frames), row).brightness(),
              last.legend(level - 1, top).brightness());
  }
}

TEST_F(BandsPicture, FileShorterThanASlotFillsTheAxis) {
  for (const int bands : {8, 64}) {
    for (const int frames : {1, bands - 1, bands}) {
      SCOPED_TRACE(testing::Message() << frames << " frames, " << bands << " bands");
      write_impulse(frames, 0);
      const Picture drawn = picture(bands);
      const double level = decibels(std::sqrt(8.0) * kMiddle / (2 * bands));
      const double top = 10 * std::ceil((level - 0.5) / 10);
      for (const int column : {0, kPlot.width / 2, kPlot.width - 1}) {
        for (const int band : {0, bands - 1}) {
          expect_near(drawn.plot(column, row_of(band, bands)), drawn.legend(level, top));
        }
      }
    }
  }
}

// ---- The whole ----

TEST_F(BandsPicture, SilenceIsDarkThroughout) {
  write(30000, [](int) { return 0.0; });
  const Picture drawn = picture(64);
  const Colour dark = drawn.plot(0, 0);
  EXPECT_LT(dark.brightness(), 40);
  for (int column = 0; column < kPlot.width; ++column) {
    for (int row = 0; row < kPlot.height; ++row) ASSERT_EQ(drawn.plot(column, row), dark);
  }
}

TEST_F(BandsPicture, HasItsSizeAndItsTexts) {
  write(48000, [](int i) { return sine(3.5, 64, i); });
  const Picture drawn = picture(64);
  EXPECT_EQ(drawn.width(), kWidth);
  EXPECT_EQ(drawn.height(), kHeight);
  const int below = kPlot.top + kPlot.height;
  for (const Box &box : {kTitle,
                         kSubtitle,
                         {kPlot.left + kPlot.width / 2 - 40, below + 32, 80, 18},    // time
                         {14, kPlot.top + kPlot.height / 2 - 60, 16, 120},           // frequency
                         {1250, kLegend.top + kLegend.height / 2 - 50, 16, 100}}) {  // level
    EXPECT_FALSE(drawn.blank(box)) << box.left << ", " << box.top;
  }
}

TEST_F(BandsPicture, BandsAre64IfNotGiven) {
  std::string pictures[2];
  for (const int bands : {64, 48}) {
    write(5000, [](int i) { return sine(3.5, 64, i); });
    picture(bands);
    pictures[bands == 64 ? 0 : 1] = read_bytes(out_);
  }
  EXPECT_EQ(run({"bands", in_, out_}).exit_code, 0);
  EXPECT_EQ(read_bytes(out_), pictures[0]);
  EXPECT_NE(read_bytes(out_), pictures[1]);
  const std::string capitals = folder_.file("out.PNG");
  EXPECT_EQ(run({"bands", in_, capitals, "-b", "48"}).exit_code, 0);
  EXPECT_EQ(read_bytes(capitals), pictures[1]);
}

TEST_F(BandsPicture, UnusableSamplesAreSilenceAndNoted) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const Signal clean = [](int i) { return i / 100 == 10 ? 0.0 : sine(3.5, 64, i); };
  write(5000, clean);
  picture(64);
  const std::string expected = read_bytes(out_);
  write(5000, [&](int i) {
    return i == 1003 ? NAN : i == 1050 ? -kInfinity : i == 1099 ? 1e30 : clean(i);
  });
  picture(64,
          "mvk: note: 3 samples aren't finite numbers, or lie beyond 360 dBFS; they count as "
          "silence\n");
  EXPECT_EQ(read_bytes(out_), expected);
  const Outcome quiet = run({"bands", in_, out_, "-q"});
  EXPECT_EQ(quiet.exit_code, 0);
  EXPECT_EQ(quiet.err, "");
}

TEST_F(BandsPicture, TruncatedFileIsDrawnAsFarAsItGoes) {
  write(20000, [](int i) { return sine(3.5, 64, i); });
  truncate_to(in_, 0.5);
  picture(64, "mvk: note: " + in_ +
                  " ends before the length in its header; what is there gets analysed\n");
}

}  // namespace
}  // namespace host

#endif
