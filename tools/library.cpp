#include "library.h"

#include <dlfcn.h>

#include <cstdint>

#include "messages.h"

namespace mvk {
namespace {

constexpr uint32_t kTag = 0x41434C54;  // "TLCA" in memory
constexpr uint32_t kVersion = 0x00000100;

}  // namespace

Library::Library(const std::string &path)
    : name_(path.empty() ? "libmavokresampler.so" : path),
      // A name without a folder is looked for along the program's run path.
      handle_(dlopen(name_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    fail("can't load the library: " + std::string(dlerror()) +
         "; name its file with --library PATH");
  }
}

void *Library::find_symbol(const char *name) const {
  void *address = dlsym(handle_, name);
  if (address == nullptr) {
    fail(name_ + " doesn't export " + name + "; name the right library with --library PATH");
  }
  return address;
}

const acli_component &Library::component() const {
  const acli_component &record = *find<const acli_component>("ACLI");
  if (record.tag != kTag || record.version != kVersion) {
    fail(name_ + " isn't a component of version 1.0; name the right library with --library PATH");
  }
  if (record.create == nullptr || record.process == nullptr || record.destroy == nullptr ||
      record.get_identity == nullptr || record.release_identity == nullptr) {
    fail(name_ + " lacks an operation; name the right library with --library PATH");
  }
  return record;
}

}  // namespace mvk
