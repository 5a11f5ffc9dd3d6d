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
void addDevices(DispatchTable &table);

/// The only device. Nothing but its address is of use.
cl_device_id theDevice();

} // namespace corvane::test::loose
