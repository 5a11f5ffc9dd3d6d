// Loads and unloads the agent through its two exports.

#include "tests/support/LoadedAgent.h"

using namespace corvane::test;

static std::list<EnvGuard>
define(const std::vector<std::pair<std::string, std::string>> &variables) {
  std::list<EnvGuard> environment;
  for (const auto &[name, value] : variables)
    environment.emplace_back(name.c_str(), value);
  return environment;
}

LoadedAgent::LoadedAgent(
    FakeRuntime &loadInto,
    const std::vector<std::pair<std::string, std::string>> &variables)
    : runtime(loadInto), environment(define(variables)),
      loadStatus(clAgent_OnLoad(loadInto.agent().operations())) {}

LoadedAgent::~LoadedAgent() { unload(); }

cl_int LoadedAgent::loadAgain() {
  return clAgent_OnLoad(runtime.agent().operations());
}

void LoadedAgent::unload() { clAgent_OnUnload(runtime.agent().operations()); }
