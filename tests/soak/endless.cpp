// Launches as many short kernels as its argument says, with new kernels and
// buffers all the time. Measures its memory and files after a fifth of them and
// at the end.

#include "tests/soak/Process.h"
#include "tests/system/autotune/hosts/Host.h"

#include <cstdlib>
#include <iostream>

using namespace hosts;

static constexpr size_t count = 64;

static void launchSome(const Session &session, cl_command_queue queue,
                       cl_mem sum, long launches) {
  const Buffer x = session.bufferOf(someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, sum, x.get(), 3);
  for (long i = 0; i != launches; ++i)
    launch(queue, kernel, count, 16);
  finish(queue);
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("endless");
  constexpr long atATime = 10;
  const long launches = argumentCount > 1 ? std::atol(arguments[1]) : 0;
  long warm = 0;
  size_t bytes = 0;
  size_t files = 0;
  const Session session;
  const Queue queue = session.queue();
  const Buffer sum = session.bufferOf(someValues(count, 1));
  for (long done = 0; done < launches; done += atATime) {
    launchSome(session, queue.get(), sum.get(), atATime);
    if (done <= launches / 5) {
      warm = done + atATime;
      bytes = soak::liveBytes();
      files = soak::openFiles();
    }
  }
  const auto grown =
      static_cast<long>(soak::liveBytes()) - static_cast<long>(bytes);
  const auto opened =
      static_cast<long>(soak::openFiles()) - static_cast<long>(files);
  print("sum", read(queue.get(), sum.get(), count));
  std::cout << launches - warm << " " << grown << " " << opened << "\n";
  return 0;
}
