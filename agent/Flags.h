// Process-wide switches that are set while the agent is being loaded.

#pragma once

namespace corvane {

/// Whether autotuning is on: at load the raw timing log could be created. May
/// be read on any thread.
bool autotuneOutput();
void setAutotuneOutput(bool on);

/// Whether the runtime has accepted our hooks, and whether the environment asks
/// to bypass the vectorisation safety check. Kept for a debugger's eyes;
/// nothing in the library depends on them.
void setHooksInstalled(bool installed);
void setBypassVectorizationSafetyCheck(bool bypass);

} // namespace corvane
