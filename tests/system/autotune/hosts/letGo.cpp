// Releases each kernel right after its launch, as C++ wrappers do, so that the
// launch may not have run yet and the next kernel may get the same handle.

#include "tests/system/autotune/hosts/Host.h"

using namespace hosts;

static constexpr size_t width = 32;
static constexpr size_t count = width * width;

static void grid(const Session &session, cl_command_queue queue, cl_mem cells) {
  const Kernel kernel = session.kernel("grid");
  setArgument(kernel.get(), 0, cells);
  setArgument(kernel.get(), 1, cl_uint{3});
  const size_t global[] = {width, width};
  check(clEnqueueNDRangeKernel(queue, kernel.get(), 2, nullptr, global, nullptr,
                               0, nullptr, nullptr),
        "clEnqueueNDRangeKernel");
}

int main() {
  examples::setProgramName("letGo");
  const Session session;
  const Queue queue = session.queue();
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  for (cl_uint round = 0; round < 20; ++round) {
    {
      const Kernel kernel = session.kernel("accumulate");
      setAccumulate(kernel, y.get(), x.get(), 2 * round + 1);
      launch(queue.get(), kernel, count, 64);
    }
    grid(session, queue.get(), y.get());
    const Kernel kernel = session.kernel("negate");
    setArgument(kernel.get(), 0, y.get());
    launch(queue.get(), kernel, count, 64);
  }
  print("y", read(queue.get(), y.get(), count));
  finish(queue.get());
  return 0;
}
