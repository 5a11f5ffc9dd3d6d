// The played runtime's own entries, in place of those of opencl.dll.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test {

/// Puts our own entries into \p table, which keeps the real functions below:
///  - clSetEventCallback and clSetMemObjectDestructorCallback, which Wine's
///    opencl.dll does not offer;
///  - clEnqueueNDRangeKernel, which records each launch in the file that
///    PLAYED_LAUNCHES names: "matmul 512x512 16x16".
void replaceEntries(DispatchTable &table);

/// Waits until every callback has returned.
void finishCallbacks();

} // namespace corvane::test
