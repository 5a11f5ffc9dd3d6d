// Replaces the GNU C library's allocator by one that counts, for this program
// and the libraries in it.

#include "tests/behaviour/launch/AllocationCount.h"

#include <cstddef>

static thread_local long allocations = 0;

long corvane::test::allocationCount() { return allocations; }

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

__attribute__((visibility("default"))) void *malloc(std::size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(std::size_t count,
                                                    std::size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *memory,
                                                     std::size_t size) {
  ++allocations;
  return __libc_realloc(memory, size);
}
}
