// The sanitizer's allocator under the names by which it takes the place of the
// C library's.

#include "tests/support/memory/Allocator.h"

#include <cstdlib>
#include <new>

using namespace corvane::test;

extern "C" {
void *__interceptor_malloc(std::size_t size);
void *__interceptor_calloc(std::size_t count, std::size_t size);
void *__interceptor_realloc(void *memory, std::size_t size);
void __interceptor_free(void *memory);
}

void *allocator::get(std::size_t size) { return __interceptor_malloc(size); }

void *allocator::getZeroed(std::size_t count, std::size_t size) {
  return __interceptor_calloc(count, size);
}

void *allocator::resize(void *memory, std::size_t size) {
  return __interceptor_realloc(memory, size);
}

void allocator::giveBack(void *memory) { __interceptor_free(memory); }

// The sanitizer's own operators would not call the functions above.
#pragma GCC visibility push(default)
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
  return operator new(size, std::nothrow);
}
void *operator new(std::size_t size) {
  if (void *memory = operator new(size, std::nothrow))
    return memory;
  throw std::bad_alloc();
}
void *operator new[](std::size_t size) { return operator new(size); }
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete[](void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void *memory, std::size_t) noexcept {
  std::free(memory);
}
#pragma GCC visibility pop
