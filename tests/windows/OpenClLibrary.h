// The real OpenCL functions of opencl.dll.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test {

/// A table of what opencl.dll exports; null where it lacks an entry. Without
/// the library the process ends with a line that says so.
DispatchTable openClTable();

} // namespace corvane::test
