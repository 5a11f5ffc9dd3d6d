// The side of the agent interface that a runtime has: it gives its dispatch
// table out and takes another one for it.

#pragma once

#include "agent/AgentInterface.h"
#include "agent/DispatchTable.h"

#include <cstddef>
#include <cstring>

namespace corvane::test {

/// What a runtime passes to `clAgent_OnLoad`, and the table that applications
/// call through. For programs that play a runtime in a process of their own;
/// the scripted runtime has a FakeAgent, which also records and answers the
/// calls.
///
/// Must exist from the load to the unload. Not locked: nothing may call through
/// the table while the agent replaces it.
class AgentHost {
public:
  explicit AgentHost(const DispatchTable &own = {}) : object{{}, own} {
    object.operations.getICDDispatchTable = get;
    object.operations.setICDDispatchTable = set;
  }
  AgentHost(const AgentHost &) = delete;
  AgentHost &operator=(const AgentHost &) = delete;

  AgentOperations *operations() { return &object.operations; }

  /// The runtime's own entries; after the load, what the agent has made of
  /// them.
  DispatchTable &table() { return object.table; }

private:
  struct Object {
    AgentOperations operations;
    DispatchTable table;
  };

  // The operations are the first member of the object, so they have its
  // address.
  static DispatchTable &tableOf(AgentOperations *agent) {
    return reinterpret_cast<Object *>(agent)->table;
  }

  static cl_int CL_API_CALL get(AgentOperations *agent, void *table,
                                std::size_t size) {
    if (!table || size != sizeof(DispatchTable))
      return CL_INVALID_VALUE;
    std::memcpy(table, &tableOf(agent), size);
    return CL_SUCCESS;
  }

  static cl_int CL_API_CALL set(AgentOperations *agent, void *table,
                                std::size_t size) {
    if (!table || size != sizeof(DispatchTable))
      return CL_INVALID_VALUE;
    std::memcpy(&tableOf(agent), table, size);
    return CL_SUCCESS;
  }

  Object object;
};

} // namespace corvane::test
