// The GNU C library's allocator under its second names.

#include "tests/support/memory/Allocator.h"

using namespace corvane::test;

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void __libc_free(void *memory);
}

void *allocator::get(std::size_t size) { return __libc_malloc(size); }

void *allocator::getZeroed(std::size_t count, std::size_t size) {
  return __libc_calloc(count, size);
}

void *allocator::resize(void *memory, std::size_t size) {
  return __libc_realloc(memory, size);
}

void allocator::giveBack(void *memory) { __libc_free(memory); }
