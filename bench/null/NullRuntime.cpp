// The runtime's own table, and the one with the agent's hooks.

#include "bench/null/NullRuntime.h"

#include "agent/entry/Exports.h"

#include <cstring>

using namespace corvane;
using namespace corvane::bench;

static DispatchTable makeTable() {
  DispatchTable table{};
  null::addPrograms(table);
  null::addKernels(table);
  null::addBuffers(table);
  null::addCommands(table);
  return table;
}

const DispatchTable null::theTable = makeTable();
static DispatchTable hookedTable = null::theTable;

const DispatchTable &bench::hooked() { return hookedTable; }

static cl_int CL_API_CALL getTable(AgentOperations *, void *table,
                                   std::size_t size) {
  std::memcpy(table, &null::theTable, size);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL setTable(AgentOperations *, void *table,
                                   std::size_t size) {
  std::memcpy(&hookedTable, table, size);
  return CL_SUCCESS;
}

LoadedAgent::LoadedAgent() {
  operations.getICDDispatchTable = getTable;
  operations.setICDDispatchTable = setTable;
  clAgent_OnLoad(&operations);
}

LoadedAgent::~LoadedAgent() { clAgent_OnUnload(&operations); }

cl_int null::answer(const void *data, std::size_t size, std::size_t capacity,
                    void *value, std::size_t *sizeRet) {
  if (value && capacity < size)
    return CL_INVALID_VALUE;
  if (value)
    std::memcpy(value, data, size);
  if (sizeRet)
    *sizeRet = size;
  return CL_SUCCESS;
}
