// Creates the agent's state.

#pragma once

namespace corvane {

/// Makes the state, unless there is one. Hold the agent lock.
void createAgentState();

} // namespace corvane
