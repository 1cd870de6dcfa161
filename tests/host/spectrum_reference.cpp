#include "host/spectrum_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <stdexcept>

#include "host/folder.h"

namespace host {
namespace {

std::vector<std::string> split(const std::string &text, const std::string &separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find(separator, begin)) != std::string::npos;) {
    parts.push_back(text.substr(begin, end - begin));
    begin = end + separator.size();
  }
  parts.push_back(text.substr(begin));
  return parts;
}

// A sign, digits and a point at most; no exponent.
double plain_number(const std::string &text) {
  char *end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  const bool plain = text.find_first_not_of("-0123456789.") == std::string::npos;
  if (text.empty() || !plain || *end != '\0') throw std::runtime_error("no number: " + text);
  return value;
}

std::vector<double> plain_numbers(const std::vector<std::string> &fields) {
  std::vector<double> numbers;
  for (const std::string &field : fields) numbers.push_back(plain_number(field));
  return numbers;
}

// sin(2 pi i / length) for i from 0 to 5/4 of the length.
std::vector<long double> sines(int length) {
  std::vector<long double> result;
  for (int i = 0; i < length + length / 4; ++i) {
    result.push_back(std::sin(2 * std::numbers::pi_v<long double> * i / length));
  }
  return result;
}

}  // namespace

SpectrumTable read_spectrum_table(const std::string &path) {
  std::vector<std::string> lines = split(read_bytes(path), "\r\n");
  if (lines.back() != "") throw std::runtime_error("the last line has no end");
  lines.pop_back();
  SpectrumTable table;
  for (const std::string &line : lines) {
    std::vector<std::string> fields = split(line, ",");
    const std::string first = fields.front();
    fields.erase(fields.begin());
    if (&line == &lines.front()) {
      if (first != "seconds") throw std::runtime_error("the table begins with " + first);
      table.frequencies = plain_numbers(fields);
      continue;
    }
    table.times.push_back(plain_number(first));
    table.levels.push_back(plain_numbers(fields));
    if (table.levels.back().size() != table.frequencies.size()) {
      throw std::runtime_error("rows differ in length");
    }
  }
  return table;
}

long long spectrum_rows(long long frames, int length) {
  const long long hop = length / 4;
  return (frames + hop - 1) / hop;
}

ExpectedAmplitude spectrum_amplitude(const Audio &audio, int length, long long row, int bin) {
  const std::vector<long double> sine = sines(length);
  const auto cosine = [&](int i) { return sine[static_cast<std::size_t>(i + length / 4)]; };
  const long long first = row * (length / 4) - length / 2;
  const bool edge = bin == 0 || bin == length / 2;
  long double power = 0;           // the mean of the channels
  long double windowed_power = 0;  // of the samples, likewise
  for (int c = 0; c < audio.channels; ++c) {
    long double real = 0;
    long double imaginary = 0;
    for (int i = 0; i < length; ++i) {
      const long long frame = first + i;
      if (frame < 0 || frame >= audio.frames()) continue;
      const long double sample =
          audio.samples[static_cast<std::size_t>(frame * audio.channels + c)];
      const long double windowed = sample * (1 - cosine(i)) / 2;
      const int turn = static_cast<int>(static_cast<long long>(i) * bin % length);
      real += windowed * cosine(turn);
      imaginary -= windowed * sine[static_cast<std::size_t>(turn)];
      windowed_power += windowed * windowed / length / audio.channels;
    }
    // Of a sine, half is at the negative frequency; the window's mean is a half.
    const long double gain = (edge ? 2.0L : 4.0L) / length;
    power += gain * gain * (real * real + imaginary * imaginary) / audio.channels;
  }
  const auto amplitude = static_cast<double>(std::sqrt(power));

  // In units of half a step of a float: 2 for the window and its product with a sample;
  // for each halving of the transform, 2.3 for a complex product, 0.7 for its factor and 1
  // for a sum; for the parting of a real spectrum, the same and another sum, on top of that
  // halving. By Parseval's theorem this is relative to the mean power of the samples. The
  // power then has a product, two sums and a quotient, and a sum for each channel.
  const double unit = std::ldexp(1.0, -24);
  const double transform = 4 * unit * (2 + 4 * (std::log2(length) - 1) + 4 + 1);
  const double powers = unit * (4 + audio.channels) / 2;
  const double step = std::pow(10.0, 0.0005 / 20.0) - 1.0;
  return {amplitude,
          transform * static_cast<double>(std::sqrt(windowed_power)) + amplitude * (powers + step)};
}

}  // namespace host
