// One argument as the application has set it.

#pragma once

#include "agent/ZeroedArray.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvane {

/// Remembers the bytes of an argument. Reading is by the public fields; value
/// points into the slot itself, so a slot is never moved.
struct ArgSlot {
  static constexpr std::uint32_t unset = UINT32_MAX;

  std::uint32_t index = unset; ///< the argument's; unset: never recorded
  std::size_t size = 0;        ///< bytes
  /// The bytes, owned by the slot; null for local memory and in a fresh slot.
  const void *value = nullptr;

  ArgSlot() = default;
  ArgSlot(const ArgSlot &) = delete;
  ArgSlot &operator=(const ArgSlot &) = delete;

  /// Gets the memory that a value of this size will need, and leaves the one
  /// that there is alone. Allocates only when the size is none of 1, 2, 4, 8
  /// and differs from the last one's.
  void makeRoom(std::size_t newSize);

  /// Takes a copy of \p newValue, for which there is room, or which is null.
  void record(std::uint32_t newIndex, std::size_t newSize,
              const void *newValue);

private:
  struct Block {
    std::unique_ptr<void, FreeMemory> bytes;
    std::size_t size = 0;

    bool fits(std::size_t wanted) const { return bytes && size == wanted; }
  };
  void *roomFor(std::size_t newSize);

  alignas(8) unsigned char small[8]{};
  Block block; ///< where a large value is
  Block next;  ///< where the next one will be
};

} // namespace corvane
