// Lets launches wait for a user event that the application completes later, in
// every way in which the application may expect that all comes to an end.

#include "tests/system/autotune/hosts/Host.h"

#include <vector>

using namespace hosts;

static constexpr size_t count = 1024;
static constexpr size_t bytes = count * sizeof(cl_uint);

namespace {
struct Work {
  Session session;
  Buffer y = session.bufferOf(someValues(count, 1));
  Buffer x = session.bufferOf(someValues(count, 2));
  Kernel kernel = session.kernel("accumulate");
  Values fresh = someValues(count / 2, 3);
  Work() { setAccumulate(kernel, y.get(), x.get(), 3); }

  Event gate() const {
    cl_int status = CL_SUCCESS;
    Event event(clCreateUserEvent(session.context(), &status));
    check(status, "clCreateUserEvent");
    return event;
  }
  Event run(const Queue &queue, size_t local,
            const std::vector<cl_event> &waits = {}) const {
    return launch(queue.get(), kernel, count, local, waits);
  }
  Event write(const Queue &queue, cl_bool blocking,
              const std::vector<cl_event> &waits = {}) const {
    cl_event event = nullptr;
    check(clEnqueueWriteBuffer(queue.get(), y.get(), blocking, 0, bytes / 2,
                               fresh.data(), static_cast<cl_uint>(waits.size()),
                               waits.empty() ? nullptr : waits.data(), &event),
          "clEnqueueWriteBuffer");
    return Event(event);
  }
  void printAll(const char *name) const {
    const Queue queue = session.queue();
    print(name, read(queue.get(), y.get(), count));
  }
};
} // namespace

static void open(const Event &gate) {
  check(clSetUserEventStatus(gate.get(), CL_COMPLETE), "clSetUserEventStatus");
}

static void await(const Event &event) {
  const cl_event events[] = {event.get()};
  check(clWaitForEvents(1, events), "clWaitForEvents");
}

// A launch waits for a user event. The application completes the event only
// after a transfer in another queue is over.
static void gateInTheWaitList(const Work &work) {
  const Queue queues[] = {work.session.queue(), work.session.queue()};
  const Event gate = work.gate();
  const Event run = work.run(queues[0], 64, {gate.get()});
  check(clFlush(queues[0].get()), "clFlush");
  work.write(queues[1], CL_TRUE);
  open(gate);
  await(run);
  work.printAll("wait list");
}

// The same, but a command before the launch in its queue waits for the event.
static void gateInFrontInTheQueue(const Work &work) {
  const Queue queues[] = {work.session.queue(), work.session.queue()};
  const Event gate = work.gate();
  const cl_event waits[] = {gate.get()};
  cl_event marker = nullptr;
  check(clEnqueueMarkerWithWaitList(queues[0].get(), 1, waits, &marker),
        "clEnqueueMarkerWithWaitList");
  const Event owner(marker);
  const Event run = work.run(queues[0], 64);
  check(clFlush(queues[0].get()), "clFlush");
  work.write(queues[1], CL_TRUE);
  open(gate);
  await(run);
  work.printAll("in front");
}

// The same, but the launch waits for a command in a third queue, which waits
// for the event.
static void gateBeyondAnotherQueue(const Work &work) {
  const Queue queues[] = {work.session.queue(), work.session.queue(),
                          work.session.queue()};
  const Event gate = work.gate();
  const Event before = work.write(queues[2], CL_FALSE, {gate.get()});
  check(clFlush(queues[2].get()), "clFlush");
  const Event run = work.run(queues[0], 64, {before.get()});
  check(clFlush(queues[0].get()), "clFlush");
  work.write(queues[1], CL_TRUE);
  open(gate);
  await(run);
  work.printAll("beyond");
}

// The same, but a barrier before the launch in a queue out of order waits for
// the event.
static void gateAtABarrier(const Work &work) {
  const Queue queue =
      work.session.queue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
  const Queue other = work.session.queue();
  const Event gate = work.gate();
  const cl_event waits[] = {gate.get()};
  check(clEnqueueBarrierWithWaitList(queue.get(), 1, waits, nullptr),
        "clEnqueueBarrierWithWaitList");
  const Event run = work.run(queue, 64);
  check(clFlush(queue.get()), "clFlush");
  work.write(other, CL_TRUE);
  open(gate);
  await(run);
  work.printAll("barrier");
}

static void CL_CALLBACK openGate(cl_event, cl_int, void *gate) {
  check(clSetUserEventStatus(static_cast<cl_event>(gate), CL_COMPLETE),
        "clSetUserEventStatus");
}

// A callback at the end of the launch completes the event that the next command
// waits for.
static void gateOpenedByACallback(const Work &work) {
  const Queue queues[] = {work.session.queue(), work.session.queue()};
  const Event gate = work.gate();
  const Event run = work.run(queues[0], 32);
  check(clSetEventCallback(run.get(), CL_COMPLETE, openGate, gate.get()),
        "clSetEventCallback");
  check(clFlush(queues[0].get()), "clFlush");
  const Event write = work.write(queues[1], CL_FALSE, {gate.get()});
  check(clFlush(queues[1].get()), "clFlush");
  const Event next = work.run(queues[0], 128, {write.get()});
  check(clFinish(queues[0].get()), "clFinish");
  await(next);
  work.printAll("callback");
}

// Blocking transfers beside launches on the same buffer. The application orders
// neither after the other; all must come to an end.
static void blockingBesideLaunches(const Work &work) {
  const Queue queues[] = {
      work.session.queue(), work.session.queue(),
      work.session.queue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE)};
  const Buffer other = work.session.bufferOf(someValues(count, 9));
  setAccumulate(work.kernel, other.get(), work.x.get(), 3);
  for (int i = 0; i != 8; ++i) {
    work.run(queues[0], 16);
    // The launch was not flushed; the wait for it must flush it.
    (void)read(queues[1].get(), work.x.get(), count);
    const Event run = work.run(queues[2], 8);
    (void)read(queues[2].get(), work.x.get(), count);
    check(clFinish(queues[i % 2].get()), "clFinish");
    await(run);
    check(clFinish(queues[0].get()), "clFinish");
  }
  print("blocking", read(queues[0].get(), other.get(), count));
  setAccumulate(work.kernel, work.y.get(), work.x.get(), 3);
}

int main() {
  examples::setProgramName("gates");
  const Work work;
  gateInTheWaitList(work);
  gateInFrontInTheQueue(work);
  gateBeyondAnotherQueue(work);
  gateAtABarrier(work);
  gateOpenedByACallback(work);
  blockingBesideLaunches(work);
  const Queue queue = work.session.queue();
  work.run(queue, 4);
  check(clFinish(queue.get()), "clFinish");
  work.printAll("last");
  finish(queue.get());
  return 0;
}
