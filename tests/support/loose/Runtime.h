// A runtime that does not order calls: it has no lock, no log, and its own
// threads.

#pragma once

#include "agent/AgentInterface.h"
#include "agent/DispatchTable.h"
#include "tests/support/loose/SharedState.h"

#include <CL/cl.h>

#include <atomic>
#include <string>
#include <vector>

namespace corvane::test::loose {

/// The runtime of a test that looks for races or runs for long. The scripted
/// one records every call under one lock, which orders all calls and needs more
/// and more memory; this one does neither. See README.md.
class Runtime {
public:
  explicit Runtime(Behaviour behaviour);
  /// The agent must be unloaded by then.
  ~Runtime();
  Runtime(const Runtime &) = delete;
  Runtime &operator=(const Runtime &) = delete;

  /// Loads and unloads the agent; any number of times, on any thread.
  cl_int load();
  void unload();

  /// The table that the application calls through: the agent's own, in its
  /// place.
  const DispatchTable &cl() const {
    return *current.load(std::memory_order_acquire);
  }
  cl_context context() const { return theContext; }

  SharedState shared;

private:
  struct Agent {
    AgentOperations operations;
    Runtime *owner;
  };
  static cl_int CL_API_CALL get(AgentOperations *agent, void *table,
                                std::size_t size);
  static cl_int CL_API_CALL set(AgentOperations *agent, void *table,
                                std::size_t size);

  const DispatchTable own;
  std::atomic<const DispatchTable *> current{&own};
  Agent agent{};
  cl_context theContext;
};

} // namespace corvane::test::loose
