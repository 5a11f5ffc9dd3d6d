// Copies argument values into their slots.

#include "launch/ArgSlot.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

using namespace corvane;

static bool isSmall(std::size_t size) {
  return size == 1 || size == 2 || size == 4 || size == 8;
}

void ArgSlot::makeRoom(std::size_t newSize) {
  if (isSmall(newSize) || block.fits(newSize) || next.fits(newSize))
    return;
  next.bytes.reset(std::malloc(std::max<std::size_t>(newSize, 1)));
  if (!next.bytes)
    throw std::bad_alloc();
  next.size = newSize;
}

void *ArgSlot::roomFor(std::size_t newSize) {
  if (isSmall(newSize))
    return small;
  if (!block.fits(newSize))
    block = std::move(next);
  return block.bytes.get();
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
