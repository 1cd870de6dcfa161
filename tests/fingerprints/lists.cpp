#include "fingerprints/lists.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "fingerprints/entries.h"

namespace testing_support {
namespace {

// The lists are read where the sources are.
std::ifstream Open(const char *name) {
  return std::ifstream(std::filesystem::path(__FILE__).parent_path() / name);
}

template <typename... Values>
std::string Printed(const char *format, Values... values) {
  char text[64];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

// Streams don't read hexadecimal fractions.
double ReadDouble(std::istream &in) {
  std::string text;
  in >> text;
  return std::strtod(text.c_str(), nullptr);
}

using Results = std::map<std::string, std::vector<float>>;

Results ReadResults(const char *path) {
  Results results;
  std::ifstream in(path);
  if (!in) throw std::runtime_error(std::string("can't read ") + path);
  for (std::string line, name; std::getline(in, line);) {
    std::istringstream words(line);
    words >> name;
    for (std::string word; words >> word;) {
      results[name].push_back(std::strtof(word.c_str(), nullptr));
    }
  }
  return results;
}

// Over the greatest magnitude.
double LargestDifference(const std::vector<float> &a, const std::vector<float> &b) {
  if (a.size() != b.size()) return INFINITY;
  double largest = 0, greatest = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    largest = std::max(largest, std::fabs(double{a[i]} - b[i]));
    greatest = std::max(greatest, std::fabs(double{a[i]}));
  }
  return largest / greatest;
}

}  // namespace

std::string Hexadecimal(uint64_t fingerprint) {
  return Printed("%016llx", static_cast<unsigned long long>(fingerprint));
}

std::set<std::string> ReadExports() {
  std::set<std::string> names;
  std::ifstream in = Open("../abi/exports.txt");
  for (std::string name; in >> name;) names.insert(name);
  return names;
}

Fingerprints ReadExpected() {
  Fingerprints fingerprints;
  std::ifstream in = Open("expected.txt");
  for (std::string name, fingerprint; in >> name >> fingerprint;) fingerprints[name] = fingerprint;
  return fingerprints;
}

OpenLines ReadOpen() {
  OpenLines lines;
  std::ifstream in = Open("open.txt");
  for (std::string name; in >> name;) {
    OpenLine &line = lines[name];
    in >> line.size;
    line.difference = ReadDouble(in);
    for (OpenLine::Place &place : line.places) {
      in >> place.index;
      place.want.value = ReadDouble(in);
      place.want.bound = ReadDouble(in);
    }
  }
  return lines;
}

void PrintExpected(std::ostream &out) {
  std::set<std::string> lines;
  for (const Group &group : Groups()) {
    for (const Entry &entry : EntriesOf(group)) {
      lines.insert(entry.name + " " + Hexadecimal(FingerprintOf(entry)));
    }
  }
  for (const std::string &line : lines) out << line << "\n";
}

void PrintOpenResults(std::ostream &out) {
  for (const OpenCase &open : OpenCases()) {
    out << open.name;
    for (float x : open.result()) out << Printed(" %a", double{x});
    out << "\n";
  }
}

void PrintOpen(std::ostream &out, std::span<const char *const> other_results) {
  std::vector<Results> others;
  for (const char *path : other_results) others.push_back(ReadResults(path));
  std::set<std::string> lines;
  for (const OpenCase &open : OpenCases()) {
    std::vector<std::vector<float>> results = {open.result()};
    for (Results &other : others) results.push_back(other[open.name]);
    double difference = 0;
    for (const auto &a : results) {
      for (const auto &b : results) difference = std::max(difference, LargestDifference(a, b));
    }
    std::string line = Printed("%s %u %.1e", open.name.c_str(), open.size, difference);
    const std::vector<Bounded> exact = open.exact();
    for (size_t i = 0; i < OpenLine::kPlaces; ++i) {
      // From the second half on, where a bank's history is full; at even places and odd ones.
      const size_t index = exact.size() * (5 + i) / 9 / 2 * 2 + i % 2;
      line += Printed("  %zu %a %.2e", index, exact[index].value, exact[index].bound);
    }
    lines.insert(line);
  }
  for (const std::string &line : lines) out << line << "\n";
}

}  // namespace testing_support
