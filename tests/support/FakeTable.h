// The dispatch table of the scripted runtime.

#pragma once

#include "agent/DispatchTable.h"

#include <array>
#include <cstddef>

namespace corvane::test {

inline constexpr std::size_t entryCount = 119;

/// The names of the entries in table order.
extern const std::array<const char *, entryCount> entryNames;

/// A table in which all entries differ. An entry that the scripted runtime does
/// not play stops the process with its name when it is called.
DispatchTable makeFakeTable();

/// The entries as they are in memory, bit for bit.
std::array<const void *, entryCount> entriesOf(const DispatchTable &table);

/// The table with these entries.
DispatchTable tableOf(const std::array<const void *, entryCount> &entries);

} // namespace corvane::test
