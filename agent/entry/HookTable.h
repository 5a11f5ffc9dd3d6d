// Puts our hooks into the runtime's dispatch table.

#pragma once

#include "agent/AgentInterface.h"

namespace corvane {

/// Saves the table of \p agent's runtime and hands it back with thirteen
/// entries replaced. Entries that the runtime leaves null stay null. Returns
/// the status of the first table operation that failed, or 0. Hold the agent
/// lock.
cl_int installHooks(AgentOperations &agent);

} // namespace corvane
