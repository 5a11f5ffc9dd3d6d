// Copies the less usual argument values.

#include "launch/ArgSlot.h"

#include <algorithm>
#include <new>
#include <utility>

using namespace corvane;

static bool isSmall(std::size_t size) {
  return size == 1 || size == 2 || size == 4 || size == 8;
}

void ArgSlot::makeRoomForUnusual(std::size_t newSize) {
  if (isSmall(newSize) || next.fits(newSize))
    return;
  next.bytes.reset(std::malloc(std::max<std::size_t>(newSize, 1)));
  if (!next.bytes)
    throw std::bad_alloc();
  next.size = newSize;
}

// Vectors and matrices have these sizes. A copy whose size is known is a few
// moves; any other is a call that looks at the size again.
static void copyBytes(void *to, const void *from, std::size_t size) {
  switch (size) {
  case 16:
    std::memcpy(to, from, 16);
    return;
  case 32:
    std::memcpy(to, from, 32);
    return;
  case 64:
    std::memcpy(to, from, 64);
    return;
  default:
    std::memcpy(to, from, size);
  }
}

const void *ArgSlot::copyUnusual(std::size_t newSize, const void *newValue) {
  if (!block.fits(newSize)) {
    if (isSmall(newSize))
      return std::memcpy(small, newValue, newSize);
    // A setting made within this one may have used the room.
    makeRoomForUnusual(newSize);
    block = std::move(next);
  }
  copyBytes(block.bytes.get(), newValue, newSize);
  return block.bytes.get();
}
