// The entries of the loose runtime, and the table that carries them.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test::loose {

/// Entries without a function stop the process with their name.
DispatchTable makeTable();

// One file a theme; each puts its entries into the table.
void addLives(DispatchTable &table);
void addPrograms(DispatchTable &table);
void addKernels(DispatchTable &table);
void addCommands(DispatchTable &table);
void addEvents(DispatchTable &table);

} // namespace corvane::test::loose
