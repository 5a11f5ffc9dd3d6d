// The steps of the load, each defined in a file of its own.

#pragma once

#include "agent/AgentInterface.h"

namespace corvane {

// OutputLocation.cpp

/// Creates the output directory and an empty raw timing log in it, and switches
/// autotuning on if that worked. Without CORVANE_AUTOTUNE autotuning is off;
/// with an unusable directory the error stream says so too. Hold the agent
/// lock.
void prepareOutput();

// Records.cpp

/// Makes the state, unless there is one. Hold the agent lock.
void createAgentState();

// TuningSwitch.cpp

/// Gives the state what tuning needs, if CORVANE_TUNE asks for it and the
/// process does not autotune. A second load changes nothing. Hold the agent
/// lock.
void prepareTuning();

/// Has measuring end as soon as it can, and waits for the job under way, so
/// that it does not meet a runtime that is gone; not for ever, and not where
/// the job's thread has been stopped. With \p atExit a job that goes on calls
/// the runtime no more. Hold no lock.
void endTuning(bool atExit);

// ProcessDetachPosix.cpp and ProcessDetachWindows.cpp

/// From now on the results are flushed when the process exits or the library is
/// closed, if no unload has done so before. Any number of calls.
///
/// That flush takes no lock: on Windows the other threads have been stopped by
/// then, and one may have held any lock.
void watchForProcessDetach();

// HookTable.cpp

/// Saves the table of \p agent's runtime and hands it back with thirteen
/// entries replaced. Entries that the runtime leaves null stay null. Returns
/// the status of the first table operation that failed, or 0. Hold the agent
/// lock.
cl_int installHooks(AgentOperations &agent);

} // namespace corvane
