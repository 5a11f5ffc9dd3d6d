// A runtime with an agent interface, over the real functions of opencl.dll.

#pragma once

#include "agent/DispatchTable.h"

namespace corvane::test {

/// The table through which the application calls: the real functions, with the
/// agent's hooks in it. The first call loads the agent, whose DLL must lie
/// beside the program.
///
/// The agent leaves when the program ends, in the way that PLAYED_END says:
/// "unload" (with the library freed after it), "free" (the library alone), or
/// "exit" (by nothing but the end of the process).
const DispatchTable &playedTable();

} // namespace corvane::test
