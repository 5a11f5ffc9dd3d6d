// The hook of a queue's creation: turns profiling on, by which runs are timed.

#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"

using namespace corvane;

// Unlocked: nothing is kept.
cl_command_queue CL_API_CALL hooks::clCreateCommandQueue(
    cl_context context, cl_device_id device,
    cl_command_queue_properties properties, cl_int *errcodeRet) {
  return runtime().clCreateCommandQueue(
      context, device, properties | CL_QUEUE_PROFILING_ENABLE, errcodeRet);
}
