// Loads the agent library that lies beside the layer.

#include "layer/AgentLibrary.h"
#include "layer/Library.h"

using namespace corvane::layer;

template <typename Function>
static Function exportedFunction(void *library, const char *name) {
  return reinterpret_cast<Function>(findExport(library, name));
}

AgentLibrary corvane::layer::loadAgentLibrary(std::string &problem) {
  problem.clear();
  AgentLibrary agent;

  const std::filesystem::path folder = ownFolder();
  if (folder.empty()) {
    problem = "the system does not tell where the layer lies, so the agent "
              "library cannot be found beside it; give the layer's full path";
    return agent;
  }

  const std::filesystem::path file = folder / CORVANE_AGENT_FILE;
  std::string reason;
  void *library = openLibrary(file, reason);
  if (!library) {
    problem = "the agent library cannot be loaded (" + reason +
              "); put it into the layer's folder";
    return agent;
  }

  agent.onLoad =
      exportedFunction<decltype(agent.onLoad)>(library, "clAgent_OnLoad");
  agent.onUnload =
      exportedFunction<decltype(agent.onUnload)>(library, "clAgent_OnUnload");
  if (!agent.onLoad || !agent.onUnload)
    problem = file.u8string() +
              " does not export clAgent_OnLoad and clAgent_OnUnload; put the "
              "agent library that belongs to the layer in its place";
  return agent;
}
