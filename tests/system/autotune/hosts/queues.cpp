// Works on several queues at once, in order and out of order.

#include "tests/system/autotune/hosts/Host.h"

using namespace hosts;

static constexpr size_t count = 1024;

// Launches on one buffer in two queues in turn, each launch after the last.
static void takeTurns(const Session &session, cl_mem x) {
  const Queue queues[] = {session.queue(), session.queue()};
  const Kernel kernel = session.kernel("accumulate");
  const Buffer y = session.bufferOf(someValues(count, 2));
  setAccumulate(kernel, y.get(), x, 3);
  Event last;
  for (size_t i = 0; i < 6; ++i) {
    const auto waits =
        last ? std::vector<cl_event>{last.get()} : std::vector<cl_event>{};
    last = launch(queues[i % 2].get(), kernel, count, 64, waits);
    check(clFlush(queues[i % 2].get()), "clFlush");
  }
  print("turns", read(queues[0].get(), y.get(), count, {last.get()}));
  finish(queues[0].get());
  finish(queues[1].get());
}

// Launches in two queues at the same time, which read the same buffer.
static void sideBySide(const Session &session, cl_mem x) {
  const Queue queues[] = {session.queue(), session.queue()};
  const Buffer results[] = {session.bufferOf(someValues(count, 3)),
                            session.bufferOf(someValues(count, 4))};
  const Kernel kernel = session.kernel("accumulate");
  for (size_t i = 0; i < 8; ++i) {
    setAccumulate(kernel, results[i % 2].get(), x, 5);
    launch(queues[i % 2].get(), kernel, count, 32);
  }
  for (size_t i = 0; i < 2; ++i) {
    print("side", read(queues[i].get(), results[i].get(), count));
    finish(queues[i].get());
  }
}

// Launches in a queue out of order, ordered by events alone.
static void outOfOrder(const Session &session, cl_mem x) {
  const Queue queue = session.queue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
  const Kernel kernel = session.kernel("accumulate");
  const Buffer chains[] = {session.bufferOf(someValues(count, 5)),
                           session.bufferOf(someValues(count, 6))};
  const Values fresh = someValues(count, 7);
  cl_event written = nullptr;
  check(clEnqueueWriteBuffer(queue.get(), chains[0].get(), CL_FALSE, 0,
                             count * sizeof(cl_uint), fresh.data(), 0, nullptr,
                             &written),
        "clEnqueueWriteBuffer");
  Event last[] = {Event(written), Event()};
  for (size_t i = 0; i < 8; ++i) {
    Event &before = last[i % 2];
    const auto waits =
        before ? std::vector<cl_event>{before.get()} : std::vector<cl_event>{};
    setAccumulate(kernel, chains[i % 2].get(), x, 7);
    before = launch(queue.get(), kernel, count, 16, waits);
  }
  for (size_t i = 0; i < 2; ++i)
    print("chain", read(queue.get(), chains[i].get(), count, {last[i].get()}));
  finish(queue.get());
}

int main() {
  examples::setProgramName("queues");
  const Session session;
  const Buffer x = session.bufferOf(someValues(count, 1));
  takeTurns(session, x.get());
  sideBySide(session, x.get());
  outOfOrder(session, x.get());
  const Queue queue = session.queue();
  print("x", read(queue.get(), x.get(), count));
  return 0;
}
