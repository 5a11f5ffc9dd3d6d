// Counts calls to the program's operator new, which this file replaces.
// Compilers warn about operator new and delete if they can inline only one of
// them; in a file of their own they can inline neither.
#include "AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

static std::atomic<long> allocations{0};

long corvane::test::allocationCount() { return allocations; }

void *operator new(std::size_t size) {
  ++allocations;
  if (void *memory = std::malloc(size ? size : 1))
    return memory;
  throw std::bad_alloc();
}

void operator delete(void *memory) noexcept { std::free(memory); }

void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
