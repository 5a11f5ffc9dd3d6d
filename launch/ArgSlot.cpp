// Copies the less usual argument values.

#include "launch/ArgSlot.h"

#include <algorithm>
#include <new>
#include <utility>

using namespace corvane;

ArgSlot::ArgSlot(ArgSlot &&other) noexcept
    : index(other.index), size(other.size), value(other.value),
      block(std::move(other.block)), next(std::move(other.next)) {
  std::memcpy(small, other.small, sizeof small);
  if (value == other.small)
    value = small;
}

void ArgSlot::makeBlock(std::size_t newSize) {
  if (next.fits(newSize))
    return;
  next.bytes.reset(std::malloc(std::max<std::size_t>(newSize, 1)));
  if (!next.bytes)
    throw std::bad_alloc();
  next.size = newSize;
}

const void *ArgSlot::copyUnusual(std::size_t newSize, const void *newValue) {
  if (isSmall(newSize))
    return std::memcpy(small, newValue, newSize);
  if (!block.fits(newSize))
    block = std::move(next);
  return std::memcpy(block.bytes.get(), newValue, newSize);
}
