// Counts allocations through the sanitizer's hooks.

#include "tests/behaviour/launch/AllocationCount.h"

#include <cstddef>

extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*allocated)(const volatile void *, std::size_t),
    void (*freed)(const volatile void *));

static thread_local long allocations = 0;

static void countAllocation(const volatile void *, std::size_t) {
  ++allocations;
}

static void ignoreRelease(const volatile void *) {}

long corvane::test::allocationCount() {
  static const int installed =
      __sanitizer_install_malloc_and_free_hooks(countAllocation, ignoreRelease);
  return installed != 0 ? allocations : -1;
}
