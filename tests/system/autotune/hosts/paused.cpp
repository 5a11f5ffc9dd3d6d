// Launches a kernel, says so, and goes on with every line that it is sent.

#include "tests/system/autotune/hosts/Host.h"

#include <iostream>
#include <string>

using namespace hosts;

int main() {
  examples::setProgramName("paused");
  constexpr size_t count = 1024;
  const Session session;
  const Queue queue = session.queue();
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  std::string line;
  do {
    launch(queue.get(), kernel, count, 64);
    finish(queue.get());
    print("y", read(queue.get(), y.get(), count));
  } while (std::getline(std::cin, line));
  return 0;
}
