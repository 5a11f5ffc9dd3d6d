// Decides what really runs when the application launches a kernel.

#pragma once

#include "launch/Launch.h"

namespace corvane {

struct AgentState;

/// Launches the first variant that accepts \p launch in place of its kernel, or
/// else the kernel. A failure is reported and returned. \p state may be null.
/// Hold the agent lock.
cl_int launchNormally(AgentState *state, const Launch &launch);

} // namespace corvane
