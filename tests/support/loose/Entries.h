// The entries of the loose runtime, and their table.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test::loose {

/// The table. An entry that is not played stops the process with its name.
DispatchTable makeTable();

// Each puts the entries of one file into the table.
void addLives(DispatchTable &table);
void addPrograms(DispatchTable &table);
void addKernels(DispatchTable &table);
void addCommands(DispatchTable &table);
void addEvents(DispatchTable &table);

} // namespace corvane::test::loose
