// Launches kernels again and again that read what they wrote before.

#include "tests/system/autotune/hosts/Host.h"

using namespace hosts;

static constexpr size_t count = 1024;

static void accumulate(const Session &session, cl_command_queue queue) {
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  for (int i = 0; i < 5; ++i)
    launch(queue, kernel, count, 64);
  for (cl_uint factor : {4u, 7u}) {
    setArgument(kernel.get(), 2, factor);
    launch(queue, kernel, count, 32);
  }
  print("y", read(queue, y.get(), count));
  print("x", read(queue, x.get(), count));
}

// An odd number of work-groups, so that a version runs over a rounded range.
static void accumulateUnevenly(const Session &session, cl_command_queue queue) {
  constexpr size_t uneven = size_t{3} * 10;
  const Buffer y = session.bufferOf(someValues(uneven + 10, 7));
  const Buffer x = session.bufferOf(someValues(uneven + 10, 8));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  launch(queue, kernel, uneven, 10);
  launch(queue, kernel, uneven, 10);
  print("uneven", read(queue, y.get(), uneven + 10));
}

static void scale(const Session &session, cl_command_queue queue) {
  const Buffer y = session.bufferOf(someValues(count, 3));
  const Kernel kernel = session.kernel("scale");
  setArgument(kernel.get(), 0, y.get());
  for (cl_uint factor : {3u, 6u, 5u, 2u}) {
    setArgument(kernel.get(), 1, factor);
    launch(queue, kernel, count, 64);
  }
  print("scaled", read(queue, y.get(), count));
}

static void grid(const Session &session, cl_command_queue queue) {
  const size_t range[] = {32, 16};
  const Buffer cells = session.bufferOf(someValues(range[0] * range[1], 4));
  const Kernel kernel = session.kernel("grid");
  setArgument(kernel.get(), 0, cells.get());
  setArgument(kernel.get(), 1, cl_uint{5});
  for (int i = 0; i < 3; ++i)
    check(clEnqueueNDRangeKernel(queue, kernel.get(), 2, nullptr, range,
                                 nullptr, 0, nullptr, nullptr),
          "clEnqueueNDRangeKernel");
  print("cells", read(queue, cells.get(), range[0] * range[1]));
}

static void negate(const Session &session, cl_command_queue queue) {
  const Buffer y = session.bufferOf(someValues(count, 5));
  const Kernel kernel = session.kernel("negate");
  setArgument(kernel.get(), 0, y.get());
  launch(queue, kernel, count, 64);
  print("negated", read(queue, y.get(), count));
}

int main() {
  examples::setProgramName("inPlace");
  const Session session;
  const Queue queue = session.queue();
  accumulate(session, queue.get());
  accumulateUnevenly(session, queue.get());
  scale(session, queue.get());
  grid(session, queue.get());
  negate(session, queue.get());
  finish(queue.get());
  return 3; // a crash or a loader would give another code
}
