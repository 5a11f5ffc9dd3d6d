// Implements the platform functions for Posix systems.

#include "base/Platform.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <dlfcn.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

const char *const platform::directorySeparator = "/";
const bool platform::keepsEmptyVariables = true;

void platform::defineVariable(const char *name, const char *value) {
  setenv(name, value, 1);
}

void platform::removeVariable(const char *name) { unsetenv(name); }

bool platform::hasForeignRights() { return getauxval(AT_SECURE) != 0; }

// They go on while destructors run. A forked child does not ask.
bool platform::otherThreadsAreGone() { return false; }

bool platform::createDirectory(const char *path) {
  return mkdir(path, 0777) == 0 || errno == EEXIST;
}

platform::NewDirectory platform::createNewDirectory(const char *path) {
  if (mkdir(path, 0777) == 0)
    return NewDirectory::Made;
  return errno == EEXIST ? NewDirectory::NameIsTaken : NewDirectory::NotMade;
}

std::string platform::hostName() {
  std::array<char, 256> name{};
  // A longer name is cut off, perhaps without a zero at its end.
  (void)gethostname(name.data(), name.size() - 1);
  return name.data();
}

std::string platform::currentFolder() {
  std::error_code unknown;
  const std::filesystem::path folder = std::filesystem::current_path(unknown);
  if (unknown || !std::filesystem::equivalent(folder, ".", unknown))
    return {};
  return folder.string();
}

// A relative path in either variable means nothing, by the custom that they
// come from.
std::string platform::userCacheFolder() {
  const char *const caches = std::getenv("XDG_CACHE_HOME");
  if (caches && *caches == '/')
    return caches;
  const char *const home = std::getenv("HOME");
  return home && *home == '/' ? std::string(home) + "/.cache" : std::string();
}

std::string platform::comparableFileName(std::string name) { return name; }

void platform::cutFile(std::FILE *file, long length) {
  // Failures are ignored, but the compiler wants the result to be used.
  if (ftruncate(fileno(file), length) != 0)
    return;
}

// Not asked for what it tells, but for the one error that means nothing is
// there.
bool platform::isOccupied(const void *address) {
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto bits = reinterpret_cast<std::uintptr_t>(address);
  void *const page = reinterpret_cast<void *>(bits - bits % pageSize);
  unsigned char resident = 0;
  return mincore(page, 1, &resident) == 0 || errno != ENOMEM;
}

void platform::keepLibraryOf(const void *address) {
  Dl_info info = {};
  if (dladdr(address, &info) != 0 && info.dli_fname)
    (void)dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

void platform::makeErrorStreamBinary() {}
