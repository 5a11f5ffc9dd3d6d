// The runtime's own table, and the one with the agent's hooks.

#include "bench/null/NullRuntime.h"

#include "agent/entry/Exports.h"
#include "tests/host/AgentHost.h"

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
static test::AgentHost host{null::theTable};

const DispatchTable &bench::hooked() { return host.table(); }

LoadedAgent::LoadedAgent() {
  host.table() = null::theTable;
  clAgent_OnLoad(host.operations());
}

LoadedAgent::~LoadedAgent() { clAgent_OnUnload(host.operations()); }

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
