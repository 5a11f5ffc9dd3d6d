// The agent object that the layer shows to the agent library.

#pragma once

#include "layer/LayerTable.h"

#include <atomic>

namespace corvane::layer {

struct LayerAgent;

/// Reads or installs the first `agentEntries` entries of a dispatch table.
/// `size` is in bytes and must be `agentTableSize`.
using TableOperation = cl_int(CL_API_CALL *)(LayerAgent *agent, void *table,
                                             size_t size);

/// An operation that a layer has no answer for, whatever its arguments are.
using OtherOperation = cl_int(CL_API_CALL *)(LayerAgent *agent);

/// What a runtime with an agent interface would give to an agent: a structure
/// of operations, each called with the structure itself as first argument. The
/// operations on the dispatch table have the positions 7 and 8; all others
/// answer `CL_INVALID_OPERATION`, for none is null and any may be tried.
///
/// Its memory stays valid until the process ends.
struct LayerAgent {
  OtherOperation before[7];
  TableOperation getDispatchTable;
  TableOperation setDispatchTable;
  OtherOperation after[23];

  LayerTable *table;
  /// False once the loader has a table: a change would have no effect.
  std::atomic<bool> acceptsTable;
};

/// The one agent object of the process, over `table` and ready for the agent.
LayerAgent &layerAgent(LayerTable &table);

} // namespace corvane::layer
