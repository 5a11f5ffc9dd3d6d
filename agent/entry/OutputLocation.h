// The place for autotuning results, checked when the agent is loaded.

#pragma once

namespace corvane {

/// Creates the output directory and an empty raw timing log in it, and switches
/// autotuning on if that worked. Without CORVANE_AUTOTUNE autotuning is off;
/// with an unusable directory the error stream says so too. Hold the agent
/// lock.
void prepareOutput();

} // namespace corvane
