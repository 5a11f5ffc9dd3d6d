// The operations of the agent object.

#include "layer/LayerAgent.h"

#include <cstddef>
#include <cstring>

using namespace corvane::layer;

// The structure is an interface between two libraries that share no header.
static_assert(offsetof(LayerAgent, getDispatchTable) == 7 * sizeof(void *),
              "the agent library expects this operation at position 7");
static_assert(offsetof(LayerAgent, setDispatchTable) == 8 * sizeof(void *),
              "the agent library expects this operation at position 8");

static cl_int CL_API_CALL notSupported(LayerAgent *) {
  return CL_INVALID_OPERATION;
}

static bool isWholeTable(const LayerAgent *agent, const void *table,
                         size_t size) {
  return agent && table && size == agentTableSize;
}

static cl_int CL_API_CALL getDispatchTable(LayerAgent *agent, void *table,
                                           size_t size) {
  if (!isWholeTable(agent, table, size))
    return CL_INVALID_VALUE;
  std::memcpy(table, &agent->table->agent, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setDispatchTable(LayerAgent *agent, void *table,
                                           size_t size) {
  if (!isWholeTable(agent, table, size))
    return CL_INVALID_VALUE;
  if (!agent->acceptsTable)
    return CL_INVALID_OPERATION;
  std::memcpy(&agent->table->agent, table, size);
  return CL_SUCCESS;
}

LayerAgent &corvane::layer::layerAgent(LayerTable &table) {
  static LayerAgent agent;
  for (OtherOperation &operation : agent.before)
    operation = notSupported;
  agent.getDispatchTable = getDispatchTable;
  agent.setDispatchTable = setDispatchTable;
  for (OtherOperation &operation : agent.after)
    operation = notSupported;
  agent.table = &table;
  agent.acceptsTable = true;
  return agent;
}
