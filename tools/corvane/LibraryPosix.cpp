// Loads libraries by the calls of Posix.

#include "tools/corvane/Library.h"

#include <dlfcn.h>
#include <unistd.h>

using namespace corvane;

const char *const corvane::loaderFile = "libOpenCL.so.1";

void *corvane::openLibrary(const std::string &file) {
  return ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

bool corvane::isLoaded(const std::string &file) {
  return ::dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD) != nullptr;
}

void *corvane::symbolIn(void *library, const char *name) {
  return ::dlsym(library, name);
}

std::string corvane::fileOfAddress(const void *address) {
  Dl_info info = {};
  return ::dladdr(address, &info) && info.dli_fname ? info.dli_fname : "";
}

void corvane::endAfter(unsigned seconds) { ::alarm(seconds); }
