// Counts by means of Linux and its C library, or of the sanitizer's allocator.

#include "tests/soak/Process.h"

#include <filesystem>
#include <iterator>

#include <malloc.h>

extern "C" __attribute__((weak)) std::size_t
__sanitizer_get_current_allocated_bytes();

std::size_t soak::liveBytes() {
  if (__sanitizer_get_current_allocated_bytes)
    return __sanitizer_get_current_allocated_bytes();
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

// The descriptor that reading the folder takes is not counted.
std::size_t soak::openFiles() {
  namespace fs = std::filesystem;
  const fs::directory_iterator files("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files))) - 1;
}
