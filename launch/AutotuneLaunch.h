// The launch of a kernel's variants and of the kernel itself, all timed.

#pragma once

#include "launch/Launch.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

struct AgentState;

/// Runs each variant that accepts \p launch and the application's kernel last,
/// all on the buffer contents that the application left. Waits for nothing. A
/// kernel without a record is launched as it is; without a state nothing is
/// launched. A failure is reported and returned. \p log, the diagnostic log,
/// may be null. Hold the agent lock.
cl_int launchForAutotuning(AgentState *state, const Launch &launch,
                           llvm::raw_ostream *log);

} // namespace corvane
