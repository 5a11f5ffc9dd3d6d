// A test agent that installs a table of null entries and then refuses to start.

#include <CL/cl.h>

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  void *table[119] = {};
  static_cast<Operation *>(agent)[8](agent, table, sizeof(table));
  return CL_OUT_OF_RESOURCES;
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}
