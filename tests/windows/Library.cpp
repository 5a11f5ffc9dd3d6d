// Loads and frees DLLs; a failure ends the process.

#include "tests/windows/Library.h"

#include <cstdio>
#include <cstdlib>

#include <windows.h>

using namespace corvane;

void *test::loadOrEnd(const char *name) {
  HMODULE library = LoadLibraryA(name);
  if (!library) {
    std::fprintf(stderr, "%s cannot be loaded: error %lu\n", name,
                 GetLastError());
    std::exit(3);
  }
  return reinterpret_cast<void *>(library);
}

void test::freeLibrary(void *library) {
  FreeLibrary(static_cast<HMODULE>(library));
}

void *test::findExport(void *library, const char *name) {
  return reinterpret_cast<void *>(
      GetProcAddress(static_cast<HMODULE>(library), name));
}
