// The agent object that the scripted runtime passes to the library.

#pragma once

#include "agent/AgentInterface.h"
#include "agent/DispatchTable.h"

#include <cstddef>
#include <vector>

namespace corvane::test {

class World;

/// Gives the runtime's table out and takes the agent's. Every other operation
/// stops the process. In the transcript the calls are "GetICDDispatchTable" and
/// "SetICDDispatchTable".
class FakeAgent {
public:
  explicit FakeAgent(World &ofRuntime);
  FakeAgent(const FakeAgent &) = delete;
  FakeAgent &operator=(const FakeAgent &) = delete;

  AgentOperations *operations() { return &object.operations; }

  /// The table that the next get gives: the runtime's own, or the last one set.
  DispatchTable current;

  /// Each table that was set, as it was then, and where it was.
  std::vector<DispatchTable> tablesSet;
  const void *lastPlace = nullptr;

private:
  static constexpr std::size_t operationsBeyond = 16;
  struct Object {
    AgentOperations operations;
    void (*beyond[operationsBeyond])();
    FakeAgent *owner;
  };
  static cl_int CL_API_CALL get(AgentOperations *agent, void *table,
                                std::size_t size);
  static cl_int CL_API_CALL set(AgentOperations *agent, void *table,
                                std::size_t size);
  static FakeAgent &ownerOf(AgentOperations *agent);

  World &world;
  Object object{};
};

} // namespace corvane::test
