// Linux and its relatives.

#include "agent/platform/Platform.h"

#include <cerrno>
#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

const char *const platform::directorySeparator = "/";

void platform::defineVariable(const char *name, const char *value) {
  setenv(name, value, 1);
}

void platform::removeVariable(const char *name) { unsetenv(name); }

bool platform::createDirectory(const char *path) {
  return mkdir(path, 0777) == 0 || errno == EEXIST;
}

void platform::cutFile(std::FILE *file, long length) {
  // Nobody can be told of a failure, but the compiler wants it looked at.
  if (ftruncate(fileno(file), length) != 0)
    return;
}

void platform::makeErrorStreamBinary() {}
