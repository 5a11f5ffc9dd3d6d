// The calls that tell reference counts, while the layer holds events itself.
//
// Counts are told as they would be without those events, and events are given
// back before a queue or a context is released.

#include "layer/CommandsInFlight.h"
#include "layer/TuningHooks.h"

using namespace corvane::layer;

// The held references are read before the answer: an event that is given back
// meanwhile is counted.
cl_int CL_API_CALL tuning::clGetEventInfo(cl_event event, cl_event_info name,
                                          size_t capacity, void *value,
                                          size_t *length) {
  const cl_uint held =
      name == CL_EVENT_REFERENCE_COUNT ? heldReferences(event) : 0;
  const cl_int status =
      upperHalf().clGetEventInfo(event, name, capacity, value, length);
  if (status == CL_SUCCESS && value && held != 0)
    *static_cast<cl_uint *>(value) -= held;
  return status;
}

// An event holds its queue, and that its context, in some runtimes.
cl_int CL_API_CALL tuning::clGetCommandQueueInfo(cl_command_queue queue,
                                                 cl_command_queue_info name,
                                                 size_t capacity, void *value,
                                                 size_t *length) {
  if (name == CL_QUEUE_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return upperHalf().clGetCommandQueueInfo(queue, name, capacity, value,
                                           length);
}

cl_int CL_API_CALL tuning::clGetContextInfo(cl_context context,
                                            cl_context_info name,
                                            size_t capacity, void *value,
                                            size_t *length) {
  if (name == CL_CONTEXT_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return upperHalf().clGetContextInfo(context, name, capacity, value, length);
}

cl_int CL_API_CALL tuning::clGetMemObjectInfo(cl_mem object, cl_mem_info name,
                                              size_t capacity, void *value,
                                              size_t *length) {
  if (name == CL_MEM_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return upperHalf().clGetMemObjectInfo(object, name, capacity, value, length);
}

cl_int CL_API_CALL tuning::clReleaseCommandQueue(cl_command_queue queue) {
  commandsInFlight().settleAll();
  return upperHalf().clReleaseCommandQueue(queue);
}

cl_int CL_API_CALL tuning::clReleaseContext(cl_context context) {
  commandsInFlight().settleAll();
  return upperHalf().clReleaseContext(context);
}
