/* The shared library, loaded at run time. */
#ifndef MVK_TOOLS_LIBRARY_H
#define MVK_TOOLS_LIBRARY_H

#include <string>

#include "acli.h"

namespace mvk {

/* A shared library. It stays loaded until the program ends: libraries beneath
 * it don't give back all that they hold when they are unloaded. */
class Library {
 public:
  /* An empty path stands for the installed library. */
  explicit Library(const std::string &path);

  /* The address of an exported name. */
  template <typename Type>
  Type *find(const char *name) const {
    return reinterpret_cast<Type *>(find_symbol(name));
  }

  /* The component's record, its tag, version and slots checked. */
  const acli_component &component() const;

 private:
  void *find_symbol(const char *name) const;

  std::string name_;
  void *handle_;
};

}  // namespace mvk

#endif
