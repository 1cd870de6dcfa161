#include "host/folder.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace host {

namespace fs = std::filesystem;

Folder::Folder() : path_((fs::temp_directory_path() / "mvk-test-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

Folder::~Folder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::set<std::string> Folder::names() const {
  std::set<std::string> names;
  for (const auto &entry : fs::directory_iterator(path_)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

std::string read_bytes(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write_bytes(const std::string &path, const std::string &bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("can't write " + path);
}

void truncate_to(const std::string &path, double part) {
  const double size = static_cast<double>(fs::file_size(path));
  fs::resize_file(path, static_cast<std::uintmax_t>(size * part));
}

void write_sparse_au(const std::string &path, long long frames, int rate) {
  std::string header = ".snd";
  const auto add_word = [&](uint32_t word) {
    for (int shift : {24, 16, 8, 0}) header.push_back(static_cast<char>(word >> shift & 0xFF));
  };
  constexpr uint32_t kHeaderSize = 24;
  constexpr uint32_t kLinear16 = 3;
  add_word(kHeaderSize);
  add_word(0xFFFFFFFF);  // the length is that of the file
  add_word(kLinear16);
  add_word(static_cast<uint32_t>(rate));
  add_word(1);
  uint32_t state = 1;
  for (int i = 0; i < rate; ++i) {
    state = state * 1664525 + 1013904223;
    header.push_back(static_cast<char>(state >> 26));
    header.push_back(static_cast<char>(state >> 16 & 0xFF));
  }
  write_bytes(path, header);
  fs::resize_file(path, kHeaderSize + static_cast<std::uintmax_t>(frames) * 2);
}

}  // namespace host
