// A loader's layer that starts the agent as a runtime with an agent interface
// would, and corrects nothing: programs see the bare agent.

#include "tests/host/AgentHost.h"

#include <CL/cl_layer.h>

#include <dlfcn.h>

#include <cstring>

using namespace corvane;

static cl_icd_dispatch table;

static bool startAgent(const cl_icd_dispatch &loaders) {
  static test::AgentHost host;
  std::memcpy(&host.table(), &loaders, sizeof(DispatchTable));
  void *library = dlopen(AGENT_FILE, RTLD_NOW);
  void *onLoad = library ? dlsym(library, "clAgent_OnLoad") : nullptr;
  if (!onLoad || reinterpret_cast<cl_int(CL_API_CALL *)(AgentOperations *)>(
                     onLoad)(host.operations()) != CL_SUCCESS)
    return false;
  std::memcpy(&table, &host.table(), sizeof(DispatchTable));
  return true;
}

extern "C" cl_int CL_API_CALL clInitLayer(cl_uint count,
                                          const cl_icd_dispatch *loaders,
                                          cl_uint *countRet,
                                          const cl_icd_dispatch **tableRet) {
  if (count < sizeof(DispatchTable) / sizeof(void *))
    return CL_INVALID_VALUE;
  if (!startAgent(*loaders))
    return CL_INVALID_OPERATION;
  *countRet = sizeof(DispatchTable) / sizeof(void *);
  *tableRet = &table;
  return CL_SUCCESS;
}
