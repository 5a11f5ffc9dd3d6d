// Threads that each work on a part of one buffer, with queues of their own and
// with one that they share.

#include "tests/system/autotune/hosts/Host.h"

#include <array>
#include <thread>

using namespace hosts;

static constexpr size_t part = 4096;
static constexpr size_t bytes = part * sizeof(cl_uint);
static constexpr cl_uint threadCount = 4;
static constexpr cl_uint rounds = 12;

namespace {
struct Shared {
  Session session;
  Queue inOrder = session.queue();
  Queue outOfOrder = session.queue(CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
  Buffer y = session.bufferOf(someValues(threadCount * part, 1));
  Buffer x = session.bufferOf(someValues(threadCount * part, 2));
};
} // namespace

// One round. Its commands are ordered by events alone, so any queue will do.
static void work(const Shared &shared, cl_uint number) {
  const Queue own = shared.session.queue();
  const cl_command_queue queues[] = {own.get(), shared.inOrder.get(),
                                     shared.outOfOrder.get()};
  const Kernel kernel = shared.session.kernel("accumulatePart");
  setAccumulate(kernel, shared.y.get(), shared.x.get(), 3);
  setArgument(kernel.get(), 3, static_cast<cl_uint>(number * part));
  for (cl_uint round = 0; round != rounds; ++round) {
    const auto queue = [&](cl_uint step) {
      return queues[(number + round + step) % 3];
    };
    const Values fresh = someValues(part / 2, number * rounds + round);
    cl_event written = nullptr;
    check(clEnqueueWriteBuffer(queue(0), shared.y.get(), CL_FALSE,
                               number * bytes, bytes / 2, fresh.data(), 0,
                               nullptr, &written),
          "clEnqueueWriteBuffer");
    const Event before(written);
    check(clFlush(queue(0)), "clFlush");
    const Event run = launch(queue(1), kernel, part, 64, {written});
    check(clFlush(queue(1)), "clFlush");
    Values result(part);
    const cl_event waits[] = {run.get()};
    check(clEnqueueReadBuffer(queue(2), shared.y.get(), CL_TRUE, number * bytes,
                              bytes, result.data(), 1, waits, nullptr),
          "clEnqueueReadBuffer");
  }
  check(clFinish(own.get()), "clFinish");
}

int main() {
  examples::setProgramName("crowd");
  const Shared shared;
  std::array<std::thread, threadCount> threads;
  for (cl_uint i = 0; i != threadCount; ++i)
    threads[i] = std::thread([&shared, i] { work(shared, i); });
  for (std::thread &thread : threads)
    thread.join();
  check(clFinish(shared.inOrder.get()), "clFinish");
  check(clFinish(shared.outOfOrder.get()), "clFinish");
  work(shared, 0); // while no other thread works
  print("y", read(shared.inOrder.get(), shared.y.get(), threadCount * part));
  finish(shared.inOrder.get());
  finish(shared.outOfOrder.get());
  return 0;
}
