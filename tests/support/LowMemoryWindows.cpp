// Memory at low addresses on Windows.

#include "tests/support/LowMemory.h"

#include <cstdint>

#include <windows.h>

char *corvane::test::mapLowPage() {
  constexpr std::uintptr_t step = 0x10000000;
  for (std::uintptr_t at = step; at < 16 * step; at += step)
    if (void *page = VirtualAlloc(reinterpret_cast<void *>(at), 1,
                                  MEM_RESERVE | MEM_COMMIT, PAGE_READONLY))
      return static_cast<char *>(page);
  return nullptr;
}

void corvane::test::unmapLowPage(char *page) {
  VirtualFree(page, 0, MEM_RELEASE);
}
