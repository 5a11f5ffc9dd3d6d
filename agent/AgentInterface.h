// Describes the agent object that the runtime hands to the library, as far as
// we use it.

#pragma once

#include <CL/cl.h>

#include <cstddef>

namespace corvane {

struct AgentOperations;

/// Reads or installs the runtime's dispatch table: the agent itself, the
/// caller's table and its size in bytes. Returns an OpenCL status.
using TableOperation = cl_int(CL_API_CALL *)(AgentOperations *agent,
                                             void *table, std::size_t size);

/// The object that the runtime passes to the exported functions. Nothing is
/// assumed about its operations other than the two that we call.
struct AgentOperations {
  void (*unused[7])();
  TableOperation getICDDispatchTable;
  TableOperation setICDDispatchTable;
};

static_assert(offsetof(AgentOperations, getICDDispatchTable) ==
                      7 * sizeof(void *) &&
                  offsetof(AgentOperations, setICDDispatchTable) ==
                      8 * sizeof(void *),
              "the table operations stand at positions 7 and 8");

} // namespace corvane
