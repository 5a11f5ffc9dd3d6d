// Answers about reference counts while the layer holds events.

#include "layer/WatchedQuestions.h"

#include "layer/CommandsInFlight.h"

using namespace corvane::layer;

static const cl_icd_dispatch *next = nullptr;

// Read before the answer: an event that is given back meanwhile is counted.
static cl_int CL_API_CALL askEvent(cl_event event, cl_event_info name,
                                   size_t room, void *value, size_t *length) {
  const cl_uint held =
      name == CL_EVENT_REFERENCE_COUNT ? heldReferences(event) : 0;
  const cl_int status = next->clGetEventInfo(event, name, room, value, length);
  if (status == CL_SUCCESS && value && held != 0)
    *static_cast<cl_uint *>(value) -= held;
  return status;
}

// An event holds its queue, and that its context, in some runtimes.
static cl_int CL_API_CALL askQueue(cl_command_queue queue,
                                   cl_command_queue_info name, size_t room,
                                   void *value, size_t *length) {
  if (name == CL_QUEUE_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return next->clGetCommandQueueInfo(queue, name, room, value, length);
}

static cl_int CL_API_CALL askContext(cl_context context, cl_context_info name,
                                     size_t room, void *value, size_t *length) {
  if (name == CL_CONTEXT_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return next->clGetContextInfo(context, name, room, value, length);
}

static cl_int CL_API_CALL askMemory(cl_mem object, cl_mem_info name,
                                    size_t room, void *value, size_t *length) {
  if (name == CL_MEM_REFERENCE_COUNT)
    commandsInFlight().settleAll();
  return next->clGetMemObjectInfo(object, name, room, value, length);
}

static cl_int CL_API_CALL releaseQueue(cl_command_queue queue) {
  commandsInFlight().settleAll();
  return next->clReleaseCommandQueue(queue);
}

static cl_int CL_API_CALL releaseContext(cl_context context) {
  commandsInFlight().settleAll();
  return next->clReleaseContext(context);
}

void corvane::layer::watchQuestions(cl_icd_dispatch &calls,
                                    const cl_icd_dispatch &nextCalls) {
  next = &nextCalls;
  replace(calls.clGetEventInfo, &askEvent);
  replace(calls.clGetCommandQueueInfo, &askQueue);
  replace(calls.clGetContextInfo, &askContext);
  replace(calls.clGetMemObjectInfo, &askMemory);
  replace(calls.clReleaseCommandQueue, &releaseQueue);
  replace(calls.clReleaseContext, &releaseContext);
}
