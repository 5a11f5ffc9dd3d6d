// Records an enqueued command and runs it, or keeps it for later.

#include "tests/support/entries/Enqueue.h"

#include "tests/support/Words.h"

#include <utility>

using namespace corvane::test;
using fake::Enqueued;

using Lock = std::lock_guard<std::recursive_mutex>;

static cl_int takePlace(World &world, const Enqueued &enqueued,
                        Command &command) {
  const auto queue = world.objects.find(enqueued.queue);
  if (!queue)
    return CL_INVALID_COMMAND_QUEUE;
  if ((enqueued.waitCount == 0) != (enqueued.waitList == nullptr))
    return CL_INVALID_EVENT_WAIT_LIST;
  for (cl_uint i = 0; i != enqueued.waitCount; ++i) {
    auto event = world.objects.find(enqueued.waitList[i]);
    if (!event)
      return CL_INVALID_EVENT_WAIT_LIST;
    command.waitList.push_back(std::move(event));
  }
  command.event->profiled =
      (queue->properties & CL_QUEUE_PROFILING_ENABLE) != 0;
  return CL_SUCCESS;
}

static void giveEvent(World &world, const Enqueued &enqueued,
                      const Command &command) {
  if (enqueued.event)
    *enqueued.event = world.objects.add<cl_event>(command.event);
  else
    command.event->references = 0;
}

static cl_int make(World &world, const Enqueued &enqueued,
                   const std::function<cl_int(Command &)> &plan,
                   Command &command) {
  Lock guard(world.lock);
  command.event = std::make_shared<Event>();
  if (const cl_int status = plan(command))
    return status;
  if (const cl_int status = takePlace(world, enqueued, command))
    return status;
  giveEvent(world, enqueued, command);
  return CL_SUCCESS;
}

cl_int fake::enqueue(World &world, const char *entry,
                     std::vector<std::string> words, const Enqueued &enqueued,
                     const std::function<cl_int(Command &)> &plan) {
  words.push_back(world.sayAll(enqueued.waitCount, enqueued.waitList));
  words.push_back(place(enqueued.event));

  const auto failure = world.failureOf(entry);
  Command command;
  const cl_int status =
      failure ? *failure : make(world, enqueued, plan, command);
  // The transcript names the event once the call has made it.
  if (status == CL_SUCCESS && enqueued.event)
    words.back() = command.event->name;
  world.transcript.add(entry, words);
  if (status != CL_SUCCESS)
    return status;
  command.what = std::string(entry) + "(" + joined(words) + ")";
  world.commands.submit(std::move(command));
  return CL_SUCCESS;
}
