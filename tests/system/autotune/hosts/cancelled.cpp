// Cancels the event that launches wait for, so none of them runs.

#include "tests/system/autotune/hosts/Host.h"

#include <cstdio>

using namespace hosts;

static constexpr size_t count = 1024;

// Each round has a queue of its own, because a runtime may refuse further
// commands in a queue in which one has failed.
static void cancel(const Session &session, const Kernel &kernel,
                   cl_command_queue_properties properties) {
  const Queue queue = session.queue(properties);
  cl_int status = CL_SUCCESS;
  const Event start(clCreateUserEvent(session.context(), &status));
  check(status, "clCreateUserEvent");
  const Event run = launch(queue.get(), kernel, count, 64, {start.get()});
  check(clSetUserEventStatus(start.get(), CL_OUT_OF_RESOURCES),
        "clSetUserEventStatus");
  const cl_event events[] = {run.get()};
  std::printf("the launch ended with %d\n", clWaitForEvents(1, events));
}

int main() {
  examples::setProgramName("cancelled");
  const Session session;
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  for (int i = 0; i != 5; ++i) {
    cancel(session, kernel, 0);
    cancel(session, kernel, CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
  }
  const Queue queue = session.queue();
  print("y", read(queue.get(), y.get(), count));
  launch(queue.get(), kernel, count, 32);
  print("y", read(queue.get(), y.get(), count));
  finish(queue.get());
  return 0;
}
