// Runs a kernel's variants and the kernel itself, and has every run timed.

#pragma once

#include "launch/Launch.h"

namespace corvane {

struct AgentState;

/// Runs each variant that accepts \p launch and the application's kernel last,
/// all on the buffer contents that the application left. Waits for nothing. A
/// kernel without a record is launched as it is; without a state nothing is
/// launched. A failure is reported and returned. Hold the agent lock.
cl_int launchForAutotuning(AgentState *state, const Launch &launch);

} // namespace corvane
