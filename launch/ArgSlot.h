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

  /// Takes a copy of \p newValue, which may be null. Allocates only when the
  /// size is none of 1, 2, 4, 8 and differs from the block's.
  void record(std::uint32_t newIndex, std::size_t newSize,
              const void *newValue);

private:
  void *roomFor(std::size_t newSize);

  alignas(8) unsigned char small[8]{};
  std::unique_ptr<void, FreeMemory> block;
  std::size_t blockSize = 0;
};

} // namespace corvane
