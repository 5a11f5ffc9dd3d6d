// A runtime with an agent interface, over the real functions of opencl.dll.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test {

/// The table through which the application calls: the real functions, and the
/// agent's hooks. The first call loads the agent, whose DLL must be in the
/// program's folder.
///
/// When the program ends, PLAYED_END says how the agent ends: "unload" (and
/// then the library is freed), "free" (the library is only freed), or "exit"
/// (neither).
const DispatchTable &playedTable();

} // namespace corvane::test
