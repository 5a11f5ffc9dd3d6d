// Finds and loads libraries by the dynamic linker of POSIX systems.

#include "layer/Library.h"

#include <dlfcn.h>

using namespace corvane;

std::filesystem::path layer::ownFolder() {
  // The address of any object of this library tells its file.
  static const char here = 0;
  Dl_info info = {};
  if (!dladdr(&here, &info) || !info.dli_fname)
    return {};
  return std::filesystem::path(info.dli_fname).parent_path();
}

void *layer::openLibrary(const std::filesystem::path &file,
                         std::string &problem) {
  void *library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library)
    return library;
  const char *text = dlerror();
  problem = text ? text : "cannot load " + file.string();
  return nullptr;
}

void *layer::findExport(void *library, const char *name) {
  return dlsym(library, name);
}
