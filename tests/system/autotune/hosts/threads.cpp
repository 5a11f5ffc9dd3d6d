// Four threads in one context, each with kernels, queue and buffers of its own.

#include "tests/system/autotune/hosts/Host.h"

#include <array>
#include <thread>

using namespace hosts;

static constexpr size_t count = 1024;

static Values work(const Session &session, cl_uint number) {
  const Queue queue = session.queue();
  const Buffer y = session.bufferOf(someValues(count, number));
  const Buffer x = session.bufferOf(someValues(count, number + 100));
  for (cl_uint round = 0; round < 3; ++round) {
    const Kernel kernel = session.kernel("accumulate");
    setAccumulate(kernel, y.get(), x.get(), 2 * round + number);
    launch(queue.get(), kernel, count, 64);
    launch(queue.get(), kernel, count, 32);
  }
  Values values = read(queue.get(), y.get(), count);
  finish(queue.get());
  return values;
}

int main() {
  examples::setProgramName("threads");
  const Session session;
  std::array<Values, 4> results;
  std::array<std::thread, 4> threads;
  for (cl_uint i = 0; i < 4; ++i)
    threads[i] = std::thread(
        [&results, &session, i] { results[i] = work(session, i + 1); });
  for (std::thread &thread : threads)
    thread.join();
  for (const Values &values : results)
    print("thread", values);
  return 0;
}
