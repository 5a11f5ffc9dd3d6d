// Events of the scripted runtime.

#include "tests/support/entries/Entries.h"

#include "tests/support/Words.h"
#include "tests/support/World.h"

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

cl_event CL_API_CALL fake::clCreateUserEvent(cl_context context,
                                             cl_int *status) {
  World &world = World::current("clCreateUserEvent");
  if (const auto failure = world.begin("clCreateUserEvent",
                                       {world.say(context), place(status)})) {
    setStatus(status, *failure);
    return nullptr;
  }
  Lock guard(world.lock);
  const bool valid = world.objects.find(context) != nullptr;
  setStatus(status, valid ? CL_SUCCESS : CL_INVALID_CONTEXT);
  if (!valid)
    return nullptr;
  auto event = std::make_shared<Event>();
  event->isUsers = true;
  return world.objects.add<cl_event>(event);
}

cl_int CL_API_CALL fake::clSetUserEventStatus(cl_event handle, cl_int status) {
  World &world = World::current("clSetUserEventStatus");
  if (const auto failure = world.begin(
          "clSetUserEventStatus", {world.say(handle), std::to_string(status)}))
    return *failure;
  std::shared_ptr<Event> event;
  {
    Lock guard(world.lock);
    event = world.objects.find(handle);
  }
  if (!event || !event->isUsers)
    return CL_INVALID_EVENT;
  if (status > CL_COMPLETE)
    return CL_INVALID_VALUE;
  world.commands.endUserEvent(event, status);
  return CL_SUCCESS;
}

// Another thread may have to end what an event waits for.
cl_int CL_API_CALL fake::clWaitForEvents(cl_uint count,
                                         const cl_event *handles) {
  World &world = World::current("clWaitForEvents");
  if (const auto failure =
          world.begin("clWaitForEvents", {world.sayAll(count, handles)}))
    return *failure;
  if (count == 0 || !handles)
    return CL_INVALID_VALUE;
  bool allSucceeded = true;
  for (cl_uint i = 0; i != count; ++i) {
    std::shared_ptr<Event> event;
    {
      Lock guard(world.lock);
      event = world.objects.find(handles[i]);
    }
    if (!event)
      return CL_INVALID_EVENT;
    world.commands.waitUntilOver(*event);
    allSucceeded &= event->status == CL_COMPLETE;
  }
  return allSucceeded ? CL_SUCCESS
                      : CL_EXEC_STATUS_ERROR_FOR_EVENTS_IN_WAIT_LIST;
}

cl_int CL_API_CALL fake::clRetainEvent(cl_event event) {
  return World::current("clRetainEvent")
      .retain("clRetainEvent", event, CL_INVALID_EVENT);
}

cl_int CL_API_CALL fake::clReleaseEvent(cl_event event) {
  return World::current("clReleaseEvent")
      .release("clReleaseEvent", event, CL_INVALID_EVENT);
}

cl_int CL_API_CALL fake::clGetEventInfo(cl_event handle, cl_event_info what,
                                        size_t capacity, void *value,
                                        size_t *size) {
  World &world = World::current("clGetEventInfo");
  if (const auto failure =
          world.begin("clGetEventInfo",
                      {world.say(handle), eventInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto event = world.objects.find(handle);
  if (!event)
    return CL_INVALID_EVENT;
  switch (what) {
  case CL_EVENT_COMMAND_TYPE:
    return answerValue(
        Wanted{capacity, value, size},
        static_cast<cl_command_type>(
            event->isUsers ? CL_COMMAND_USER : CL_COMMAND_NDRANGE_KERNEL));
  case CL_EVENT_COMMAND_EXECUTION_STATUS:
    return answerValue(Wanted{capacity, value, size}, event->status);
  case CL_EVENT_REFERENCE_COUNT:
    return answerValue(Wanted{capacity, value, size}, event->references);
  default:
    return CL_INVALID_VALUE;
  }
}

cl_int CL_API_CALL fake::clSetEventCallback(
    cl_event handle, cl_int type,
    void(CL_CALLBACK *callback)(cl_event, cl_int, void *), void *userData) {
  World &world = World::current("clSetEventCallback");
  if (const auto failure = world.begin("clSetEventCallback",
                                       {world.say(handle), std::to_string(type),
                                        place(callback), place(userData)}))
    return *failure;
  std::shared_ptr<Event> event;
  {
    Lock guard(world.lock);
    event = world.objects.find(handle);
  }
  if (!event)
    return CL_INVALID_EVENT;
  if (!callback || type != CL_COMPLETE)
    return CL_INVALID_VALUE;
  world.commands.whenOver(
      event, [=](cl_int status) { callback(handle, status, userData); });
  return CL_SUCCESS;
}

cl_int CL_API_CALL fake::clGetEventProfilingInfo(cl_event handle,
                                                 cl_profiling_info what,
                                                 size_t capacity, void *value,
                                                 size_t *size) {
  World &world = World::current("clGetEventProfilingInfo");
  if (const auto failure =
          world.begin("clGetEventProfilingInfo",
                      {world.say(handle), profilingInfoName(what),
                       std::to_string(capacity), place(value), place(size)}))
    return *failure;
  Lock guard(world.lock);
  const auto event = world.objects.findInUse(handle);
  if (!event)
    return CL_INVALID_EVENT;
  if (!event->profiled || !event->over())
    return CL_PROFILING_INFO_NOT_AVAILABLE;
  switch (what) {
  case CL_PROFILING_COMMAND_START:
    return answerValue(Wanted{capacity, value, size}, event->start);
  case CL_PROFILING_COMMAND_END:
    return answerValue(Wanted{capacity, value, size}, event->end);
  default:
    return CL_INVALID_VALUE;
  }
}
