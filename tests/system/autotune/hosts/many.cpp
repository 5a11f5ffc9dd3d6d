// Launches as many short kernels as its argument says.

#include "tests/system/autotune/hosts/Host.h"

#include <cstdlib>

using namespace hosts;

int main(int argumentCount, char **arguments) {
  examples::setProgramName("many");
  constexpr size_t count = 64;
  const long launches = argumentCount > 1 ? std::atol(arguments[1]) : 0;
  const Session session;
  const Queue queue = session.queue();
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  for (long i = 1; i <= launches; ++i) {
    launch(queue.get(), kernel, count, 16);
    // A million launches at once would need much memory.
    if (i % 16 == 0)
      check(clFinish(queue.get()), "clFinish");
  }
  print("y", read(queue.get(), y.get(), count));
  finish(queue.get());
  return 0;
}
