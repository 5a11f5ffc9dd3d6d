// Copies argument values into their slots.

#include "launch/ArgSlot.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace corvane;

static bool isSmall(std::size_t size) {
  return size == 1 || size == 2 || size == 4 || size == 8;
}

void *ArgSlot::roomFor(std::size_t newSize) {
  if (isSmall(newSize))
    return small;
  if (!block || blockSize != newSize) {
    block.reset(std::malloc(std::max<std::size_t>(newSize, 1)));
    if (!block)
      throw std::bad_alloc();
    blockSize = newSize;
  }
  return block.get();
}

void ArgSlot::record(std::uint32_t newIndex, std::size_t newSize,
                     const void *newValue) {
  value = nullptr;
  if (newValue) {
    void *room = roomFor(newSize);
    std::memcpy(room, newValue, newSize);
    value = room;
  }
  index = newIndex;
  size = newSize;
}
