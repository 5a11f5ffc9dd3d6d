// The two functions that a runtime with an agent interface looks up by name.

#pragma once

#include "agent/AgentInterface.h"

extern "C" {

/// Takes the runtime's dispatch table from \p agent and puts our hooks into it.
/// Returns the status of the runtime's table operations, 0 on success. In a
/// forked child, where the hooks pass every call through, it does nothing.
[[gnu::visibility("default")]] cl_int
clAgent_OnLoad(corvane::AgentOperations *agent);

/// Writes the autotuning results, if there are any, and ends all bookkeeping.
/// The hooks stay where they are and only pass calls on.
[[gnu::visibility("default")]] void
clAgent_OnUnload(corvane::AgentOperations *agent);
}
