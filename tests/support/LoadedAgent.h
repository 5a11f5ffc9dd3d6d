// The agent, loaded into a scripted runtime for the length of a test.

#pragma once

#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"

#include <list>
#include <string>
#include <utility>
#include <vector>

// The exports that a runtime calls.
extern "C" {
cl_int clAgent_OnLoad(corvane::AgentOperations *agent);
void clAgent_OnUnload(corvane::AgentOperations *agent);
}

namespace corvane::test {

/// Loads the agent and unloads it at the end, so that no state is left for the
/// next test.
class LoadedAgent {
public:
  /// Defines the variables, which last as long as this object, and loads.
  explicit LoadedAgent(
      FakeRuntime &loadInto,
      const std::vector<std::pair<std::string, std::string>> &variables = {});
  ~LoadedAgent();
  LoadedAgent(const LoadedAgent &) = delete;
  LoadedAgent &operator=(const LoadedAgent &) = delete;

  /// What the load returned.
  cl_int status() const { return loadStatus; }

  /// The table through which an application calls: the one that the agent
  /// has set, or the runtime's own if it set none.
  const DispatchTable &table() const { return runtime.agent().current; }

  /// Loads once more, as a runtime does that loads the library for a second
  /// context, and returns the status.
  cl_int loadAgain();

  /// Unloads, which flushes the results. Any number of times.
  void unload();

private:
  FakeRuntime &runtime;
  std::list<EnvGuard> environment;
  cl_int loadStatus;
};

} // namespace corvane::test
