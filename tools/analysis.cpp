#include "analysis.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <utility>
#include <vector>

#include "columns.h"
#include "messages.h"

namespace mvk {
namespace {

// Far below the largest float, so that no power overflows.
constexpr float kGreatest = 0x1p60F;
static_assert(kHighestLevel / 20.0 * 3.3219280948873623 < 60.0);  // log2(10)

std::string subtitle(const AudioInput &input, double seconds, const std::string &method) {
  char text[128];
  std::snprintf(text, sizeof text, "%d Hz, %d channel%s, %.3f s; ", input.info.samplerate,
                input.info.channels, input.info.channels == 1 ? "" : "s", seconds);
  return text + method;
}

// A hundred decibels, which end with the whole ten above the loudest.
Axis colour_scale(const std::vector<float> &levels) {
  constexpr double kRange = 100.0;
  constexpr double kSlack = 0.5;  // a level of 0 may be a little more by rounding
  const double loudest = *std::max_element(levels.begin(), levels.end());
  const double top =
      std::max(10.0 * std::ceil((loudest - kSlack) / 10.0), kLowestLevel + kRange) + 0.0;
  return {"Level (dBFS)", top - kRange, top};
}

}  // namespace

uint64_t silence_unusable(std::span<float> samples) {
  uint64_t count = 0;
  for (float &sample : samples) {
    if (std::fabs(sample) <= kGreatest) continue;
    sample = 0.0F;
    ++count;
  }
  return count;
}

void note_silenced(uint64_t count) {
  if (count == 0) return;
  complain("note: " + std::to_string(count) + " samples aren't finite numbers, or lie beyond " +
           std::to_string(kHighestLevel) + " dBFS; they count as silence");
}

Analysed analyse(const AudioInput &input, Analyser &analyser,
                 const std::function<void(std::span<const float>)> &take, Progress &progress) {
  constexpr std::size_t kBlock = 8192;  // frames read at a time
  const Framing &framing = analyser.framing();
  const std::size_t channels = analyser.channels();
  const std::size_t window = framing.window * channels;
  std::vector<float> audio(framing.lead * channels);
  Analysed analysed;
  auto told_about = -static_cast<sf_count_t>(framing.late);  // by the next window
  bool ended = false;
  while (!ended || told_about < analysed.frames) {
    const std::size_t kept = audio.size();
    audio.resize(kept + kBlock * channels);
    if (!ended) {
      const sf_count_t got = read_frames(input, &audio[kept], kBlock);
      analysed.frames += got;
      analysed.silenced += silence_unusable(std::span(audio).subspan(kept));
      ended = got < static_cast<sf_count_t>(kBlock);
      if (ended) check_complete(input, analysed.frames);
    }
    std::size_t at = 0;
    while (at + window <= audio.size() && (!ended || told_about < analysed.frames)) {
      const std::span<const float> powers = analyser.powers(&audio[at]);
      if (told_about >= 0) take(powers);
      at += framing.hop * channels;
      told_about += static_cast<sf_count_t>(framing.hop);
    }
    audio.erase(audio.begin(), audio.begin() + static_cast<std::ptrdiff_t>(at));
    progress.show(static_cast<uint64_t>(analysed.frames));
  }
  return analysed;
}

double level_of(double power) {
  return power > 0.0 ? std::max(10.0 * std::log10(power), kLowestLevel) : kLowestLevel;
}

bool is_named(const std::string &path, std::string_view suffix) {
  std::string name = path;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name.ends_with(suffix);
}

Analysed draw_levels(const AudioInput &input, Analyser &analyser, const std::string &method,
                     const Cells &rows, OutputFile &file, const std::string &path,
                     Progress &progress) {
  // Twice the width, so that the groups are finer than a pixel.
  Columns columns(rows.count, std::size_t{2} * kPlotWidth);
  const Analysed analysed = analyse(
      input, analyser, [&](std::span<const float> powers) { columns.add(powers); }, progress);
  if (analysed.frames == 0) return analysed;

  std::vector<float> levels(columns.values().size());
  std::transform(columns.values().begin(), columns.values().end(), levels.begin(),
                 [](float power) { return static_cast<float>(level_of(power)); });
  const double rate = input.info.samplerate;
  const double seconds = static_cast<double>(analysed.frames) / rate;
  const double hop = static_cast<double>(analyser.framing().hop) / rate;
  const HeatMap map{
      std::filesystem::path(input.name).filename().string(),
      subtitle(input, seconds, method),
      {"Time", 0.0, seconds, Axis::Marks::kTimes},
      {"Frequency (kHz)", 0.0, rate / 2000.0},
      colour_scale(levels),
      {-hop / 2.0, hop * static_cast<double>(columns.group()), columns.count()},
      rows,
      std::move(levels),
  };
  draw(map, file, path);
  return analysed;
}

}  // namespace mvk
