// The agent library and its two exports.

#pragma once

#include "layer/LayerAgent.h"

#include <string>

namespace corvane::layer {

/// The two exports of a loaded agent library.
///
/// `onUnload` is required but never called: a loader does not tell its layers
/// that it leaves, so the agent stays until the process ends and then cleans up
/// through its own process-detach handler.
struct AgentLibrary {
  cl_int(CL_API_CALL *onLoad)(LayerAgent *agent) = nullptr;
  void(CL_API_CALL *onUnload)(LayerAgent *agent) = nullptr;
};

/// Loads the agent library that lies beside the layer's own file and never
/// closes it again. On failure `problem` receives a line without line feed that
/// says what is wrong and what to do; it is empty on success.
AgentLibrary loadAgentLibrary(std::string &problem);

} // namespace corvane::layer
