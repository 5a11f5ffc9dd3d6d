// A test agent under which a launch runs one work-item, so results are wrong.

#include <CL/cl_icd.h>

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

static cl_icd_dispatch table;
static decltype(table.clEnqueueNDRangeKernel) nextLaunch;

static constexpr size_t tableSize = 119 * sizeof(void *);

static cl_int CL_API_CALL launchOneItem(cl_command_queue queue,
                                        cl_kernel kernel, cl_uint workDim,
                                        const size_t *offset, const size_t *,
                                        const size_t *, cl_uint numEvents,
                                        const cl_event *events,
                                        cl_event *event) {
  const size_t one[] = {1, 1, 1};
  return nextLaunch(queue, kernel, workDim, offset, one, one, numEvents, events,
                    event);
}

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  const Operation *operations = static_cast<Operation *>(agent);
  const cl_int status = operations[7](agent, &table, tableSize);
  if (status != CL_SUCCESS)
    return status;
  nextLaunch = table.clEnqueueNDRangeKernel;
  table.clEnqueueNDRangeKernel = launchOneItem;
  return operations[8](agent, &table, tableSize);
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}
