// The dispatch table of the scripted runtime.

#pragma once

#include "agent/DispatchTable.h"

#include <array>
#include <cstddef>

namespace corvane::test {

inline constexpr std::size_t entryCount = 119;

/// The names of the entries in table order.
extern const std::array<const char *, entryCount> entryNames;

/// A table in which each entry has a value of its own. Those that the scripted
/// runtime does not play stop the process with their name when they are called.
DispatchTable makeFakeTable();

/// The entries as they stand in memory, bit for bit.
std::array<const void *, entryCount> entriesOf(const DispatchTable &table);

/// The same the other way round.
DispatchTable tableOf(const std::array<const void *, entryCount> &entries);

} // namespace corvane::test
