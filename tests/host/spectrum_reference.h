/* What the levels of a spectrum must be, from the sums that define them. */
#ifndef MVK_TESTS_HOST_SPECTRUM_REFERENCE_H
#define MVK_TESTS_HOST_SPECTRUM_REFERENCE_H

#include <string>
#include <vector>

#include "host/audio.h"

namespace host {

/* A table as mvk spectrum writes it. */
struct SpectrumTable {
  std::vector<double> frequencies;
  std::vector<double> times;
  std::vector<std::vector<double>> levels;  // for each time, in decibels
};

/* Reads a table, and throws if it isn't one of plain numbers in rows of one length, each
 * ended by CR and LF, below a row that begins with "seconds". */
SpectrumTable read_spectrum_table(const std::string &path);

/* The rows that audio of so many frames has. */
long long spectrum_rows(long long frames, int length);

/* An amplitude, with full scale 1, and how far float arithmetic may be from it. */
struct ExpectedAmplitude {
  double value;
  double error;
};

/* Of bin `bin` in row `row`. The error includes that of levels in steps of a thousandth
 * of a decibel. */
ExpectedAmplitude spectrum_amplitude(const Audio &audio, int length, long long row, int bin);

}  // namespace host

#endif
