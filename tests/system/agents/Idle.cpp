// A test agent under which no launch has any effect, so every result is wrong.

#include <CL/cl_icd.h>

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

static cl_icd_dispatch table;

static constexpr size_t tableSize = 119 * sizeof(void *);

static cl_int CL_API_CALL launchNothing(cl_command_queue, cl_kernel, cl_uint,
                                        const size_t *, const size_t *,
                                        const size_t *, cl_uint,
                                        const cl_event *, cl_event *) {
  return CL_SUCCESS;
}

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  const Operation *operations = static_cast<Operation *>(agent);
  const cl_int status = operations[7](agent, &table, tableSize);
  if (status != CL_SUCCESS)
    return status;
  table.clEnqueueNDRangeKernel = launchNothing;
  return operations[8](agent, &table, tableSize);
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}
