// The allocator that the replaced functions call.

#pragma once

#include <cstddef>

namespace corvane::test::allocator {

void *get(std::size_t size);
void *getZeroed(std::size_t count, std::size_t size);
void *resize(void *memory, std::size_t size);
void giveBack(void *memory);

} // namespace corvane::test::allocator
