// The program mvk on damaged files. The first byte chooses a command, the rest is the file.
#include <dlfcn.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "require.h"

int mvk_main(int argc, char **argv);

// The library is part of the program.
extern "C" void *__real_dlopen(const char *name, int mode);
extern "C" void *__wrap_dlopen(const char * /*name*/, int mode) {
  return __real_dlopen(nullptr, mode);
}

namespace {

using Arguments = std::vector<std::string>;

// A folder for outputs that goes with the program.
class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "mvk-fuzz-XXXXXX").string();
    Require(mkdtemp(pattern.data()) != nullptr, "makes a folder");
    path_ = pattern;
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  std::string File(const std::string &name) const { return path_ / name; }
  bool Empty() const { return std::filesystem::is_empty(path_); }
  void Clear() const {
    for (const auto &entry : std::filesystem::directory_iterator(path_)) {
      std::filesystem::remove(entry);
    }
  }

 private:
  std::filesystem::path path_;
};

Arguments Command(unsigned choice, const std::string &in, const Folder &folder) {
  const std::string wav = folder.File("out.wav");
  switch (choice % 8) {
    case 0:
      return {"resample", in, folder.File("out"), "--rate", "96000"};
    case 1:
      return {"resample", in, wav, "--rate", "24000"};
    case 2:
      return {"limit", in, wav, "--peak", "-1dB", "--boost", "20dB"};
    case 3:
      return {"limit", in, wav, "--peak", "-6dB", "--hard-clip", "--format", "s16"};
    case 4:
      return {"phase90", in, wav};
    case 5:
      return {"spectrum", in, folder.File("out.csv"), "--length", "256"};
    case 6:
      return {"bands", "--roundtrip", in, wav, "--bands", "16"};
    default:
      return {"compare", in, in};
  }
}

int Run(Arguments arguments) {
  arguments.insert(arguments.begin(), "mvk");
  std::vector<char *> argv;
  for (std::string &argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  return mvk_main(static_cast<int>(arguments.size()), argv.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
  static const Folder folder;
  if (size == 0) return 0;
  const int file = memfd_create("in", MFD_CLOEXEC);
  Require(file >= 0 && write(file, bytes + 1, size - 1) == static_cast<ssize_t>(size - 1),
          "writes a file into memory");
  const int code = Run(Command(bytes[0], "/proc/self/fd/" + std::to_string(file), folder));
  close(file);
  Require(code >= 0 && code <= 2, "ends with a code of its own");
  Require(code == 0 || folder.Empty(), "leaves no output behind a failure");
  folder.Clear();
  return 0;
}
