// Memory at low addresses on Linux and its relatives.

#include "tests/support/LowMemory.h"

#include <cstddef>
#include <cstdint>

#include <sys/mman.h>

static constexpr std::size_t size = 4096;

char *corvane::test::mapLowPage() {
  // The address is a wish, which is granted unless something lies there.
  constexpr std::uintptr_t wish = 0x30000000;
  void *page = mmap(reinterpret_cast<void *>(wish), size, PROT_READ,
                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const bool isLow = reinterpret_cast<std::uintptr_t>(page) >> 32 == 0;
  return page != MAP_FAILED && isLow ? static_cast<char *>(page) : nullptr;
}

void corvane::test::unmapLowPage(char *page) { munmap(page, size); }
