// Remembers arguments and replays them just before a launch.

#pragma once

#include "launch/KernelRecord.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstdint>

namespace corvane {

namespace detail {
void recordUnusualSetting(KernelRecord &record, cl_uint index, std::size_t size,
                          const void *value);
bool replayAllArguments(const KernelRecord &record, cl_kernel target);
} // namespace detail

/// A slot this far out could only be reached over as many others, and no kernel
/// has as many arguments: a runtime that accepts the index is wrong.
inline constexpr cl_uint mostArguments = 1U << 16;
/// The same goes for a value that is larger than the memory of any kernel for
/// all its arguments.
inline constexpr std::size_t mostBytes = std::size_t{1} << 20;

inline bool canBeRecorded(std::size_t size, const void *value) {
  return size <= mostBytes || !value;
}

/// Gets the memory to remember a setting that the runtime has yet to accept for
/// \p record's kernel. An exception has no other effect.
inline void makeRoomForArgument(KernelRecord &record, cl_uint index,
                                std::size_t size, const void *value) {
  if (index >= mostArguments)
    return;
  ArgSlot *slot = record.argSlots.find(index);
  if (!slot)
    slot = &record.argSlots.make(index);
  if (value && canBeRecorded(size, value))
    slot->makeRoom(size);
}

/// Remembers a setting for which there is room. One that cannot be recorded
/// keeps the variants from running until the argument is set again to what can;
/// for an index out of reach, that is never.
inline void recordArgument(KernelRecord &record, cl_uint index,
                           std::size_t size, const void *value) {
  if (index >= mostArguments) {
    ++record.lostArguments;
    return;
  }
  ArgSlot &slot = *record.argSlots.find(index);
  if (slot.index != index || slot.isLost || !canBeRecorded(size, value))
    return detail::recordUnusualSetting(record, index, size, value);
  slot.record(index, size, value);
  ++record.argSetCount;
}

/// Sets all recorded arguments on \p target, a variant of \p record's or its
/// own kernel, if it has missed a setting since it was last brought up to date.
/// \p seen is the number of settings that it knew of, and knows of from now on:
/// a failure is reported and the replay goes on, and a setting that could not
/// be recorded is left out. A setting made meanwhile, by a
/// callback of the runtime's, is one that it does not know of. Returns whether
/// the runtime took every argument.
inline bool replayArguments(const KernelRecord &record, cl_kernel target,
                            std::uint64_t &seen) {
  if (seen >= record.argSetCount)
    return true;
  const std::uint64_t replayed = record.argSetCount;
  const bool complete = detail::replayAllArguments(record, target);
  seen = replayed;
  return complete;
}

} // namespace corvane
