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

// The loader makes no other query.
extern "C" cl_int CL_API_CALL clGetLayerInfo(cl_layer_info name,
                                             size_t capacity, void *value,
                                             size_t *length) {
  const cl_layer_api_version version = CL_LAYER_API_VERSION_100;
  if (name != CL_LAYER_API_VERSION || (value && capacity < sizeof version))
    return CL_INVALID_VALUE;
  if (value)
    std::memcpy(value, &version, sizeof version);
  if (length)
    *length = sizeof version;
  return CL_SUCCESS;
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
