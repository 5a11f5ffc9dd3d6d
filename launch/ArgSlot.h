// One argument as the application has set it.

#pragma once

#include "agent/ZeroedArray.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace corvane {

/// Remembers the bytes of an argument. Reading is by the public fields; value
/// may point into the slot itself, so a slot is never moved.
struct ArgSlot {
  static constexpr std::uint32_t unset = UINT32_MAX;

  std::uint32_t index = unset; ///< the argument's; unset: never recorded
  std::size_t size = 0;        ///< bytes
  /// The bytes, owned by the slot; null for local memory and in a fresh slot.
  const void *value = nullptr;
  /// Whether the argument was last set to bytes that are not kept.
  bool isLost = false;

  ArgSlot() = default;
  explicit ArgSlot(std::uint32_t ofArgument) : index(ofArgument) {}
  ArgSlot(const ArgSlot &) = delete;
  ArgSlot &operator=(const ArgSlot &) = delete;

  /// Gets the memory that a value of this size will need, and leaves the one
  /// that there is alone. Allocates only when the size is none of 1, 2, 4, 8
  /// and differs from the last one's.
  void makeRoom(std::size_t newSize) {
    if (newSize != 8 && newSize != 4 && !block.fits(newSize))
      makeRoomForUnusual(newSize);
  }

  /// Takes a copy of \p newValue, for which there is room, or which is null.
  void record(std::uint32_t newIndex, std::size_t newSize,
              const void *newValue) {
    value = newValue ? copyOf(newSize, newValue) : nullptr;
    index = newIndex;
    size = newSize;
  }

private:
  struct Block {
    std::unique_ptr<void, FreeMemory> bytes;
    std::size_t size = 0;

    bool fits(std::size_t wanted) const { return bytes && size == wanted; }
  };

  void makeRoomForUnusual(std::size_t newSize);

  // Handles and most scalars have one of these two sizes; each is one move.
  const void *copyOf(std::size_t newSize, const void *newValue) {
    if (newSize == 8)
      return std::memcpy(small, newValue, 8);
    if (newSize == 4)
      return std::memcpy(small, newValue, 4);
    return copyUnusual(newSize, newValue);
  }
  const void *copyUnusual(std::size_t newSize, const void *newValue);

  alignas(8) unsigned char small[8]{};
  Block block; ///< where a large value is
  Block next;  ///< where the next one will be
};

} // namespace corvane
