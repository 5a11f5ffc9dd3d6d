// The launch of a kernel while its versions are being measured.

#pragma once

#include "launch/Launch.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

struct AgentState;

/// Launches the version that measuring has chosen for the sizes of \p launch.
/// If nothing is chosen yet and the launch can be measured, the application's
/// kernel runs after a job of the tuning thread's has measured all versions;
/// otherwise it runs at once. Waits for nothing. A failure is reported and
/// returned. \p state has a Tuning; \p log, the diagnostic log, may be null.
/// Hold the agent lock.
cl_int launchForTuning(AgentState &state, const Launch &launch,
                       llvm::raw_ostream *log);

} // namespace corvane
