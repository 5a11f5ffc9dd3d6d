// Queries about the loose runtime's events, and their callbacks.

#include "tests/support/loose/Answer.h"
#include "tests/support/loose/Entries.h"
#include "tests/support/loose/Objects.h"

#include <thread>

using namespace corvane;
using namespace corvane::test::loose;

static cl_int CL_API_CALL setCallback(cl_event event, cl_int,
                                      EventCallback callback, void *userData) {
  objectOf(event)->whenComplete(callback, userData);
  return CL_SUCCESS;
}

static cl_int CL_API_CALL tellTimes(cl_event handle, cl_profiling_info what,
                                    size_t capacity, void *value,
                                    size_t *size) {
  const Event &event = *objectOf(handle);
  if (!event.isOver())
    return CL_PROFILING_INFO_NOT_AVAILABLE;
  const Wanted wanted{capacity, value, size};
  return wanted.give(what == CL_PROFILING_COMMAND_START ? event.started
                                                        : event.ended);
}

static cl_int CL_API_CALL tell(cl_event handle, cl_event_info what,
                               size_t capacity, void *value, size_t *size) {
  const Event &event = *objectOf(handle);
  const Wanted wanted{capacity, value, size};
  switch (what) {
  case CL_EVENT_COMMAND_TYPE:
    return wanted.give<cl_command_type>(event.isUsers ? CL_COMMAND_USER
                                                      : CL_COMMAND_MARKER);
  case CL_EVENT_COMMAND_EXECUTION_STATUS:
    return wanted.give(event.status.load(std::memory_order_acquire));
  default:
    return CL_INVALID_VALUE;
  }
}

static cl_event CL_API_CALL createUserEvent(cl_context context,
                                            cl_int *status) {
  auto *event = new Event(objectOf(context)->shared);
  event->isUsers = true;
  *status = CL_SUCCESS;
  return handleOf<cl_event>(event);
}

static cl_int CL_API_CALL setStatus(cl_event handle, cl_int status) {
  Event &event = *objectOf(handle);
  if (status != CL_COMPLETE)
    event.shared.reportMistake("a user event was completed with a failure");
  event.complete();
  return CL_SUCCESS;
}

static cl_int CL_API_CALL wait(cl_uint count, const cl_event *events) {
  for (cl_uint i = 0; i != count; ++i)
    while (!objectOf(events[i])->isOver())
      std::this_thread::yield();
  return CL_SUCCESS;
}

void corvane::test::loose::addEvents(DispatchTable &table) {
  table.clSetEventCallback = setCallback;
  table.clGetEventProfilingInfo = tellTimes;
  table.clGetEventInfo = tell;
  table.clCreateUserEvent = createUserEvent;
  table.clSetUserEventStatus = setStatus;
  table.clWaitForEvents = wait;
}
