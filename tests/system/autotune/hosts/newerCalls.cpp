// Makes queues and buffers by lists of properties, as programs of today do.

#include "tests/system/autotune/hosts/Host.h"

using namespace hosts;

static constexpr size_t count = 1024;

static Buffer makeBuffer(const Session &session,
                         const cl_mem_properties *properties, cl_uint seed) {
  Values values = someValues(count, seed);
  cl_int status = CL_SUCCESS;
  Buffer buffer(clCreateBufferWithProperties(
      session.context(), properties, CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR,
      count * sizeof(cl_uint), values.data(), &status));
  check(status, "clCreateBufferWithProperties");
  return buffer;
}

static void work(const Session &session, const cl_queue_properties *properties,
                 size_t local) {
  cl_int status = CL_SUCCESS;
  const Queue queue(clCreateCommandQueueWithProperties(
      session.context(), session.device(), properties, &status));
  check(status, "clCreateCommandQueueWithProperties");
  const cl_mem_properties none[] = {0};
  const Buffer y = makeBuffer(session, nullptr, 1);
  const Buffer x = makeBuffer(session, none, 2);
  const Kernel kernel = session.kernel("accumulate");
  setAccumulate(kernel, y.get(), x.get(), 3);
  Event last = launch(queue.get(), kernel, count, local);
  for (int i = 0; i < 3; ++i)
    last = launch(queue.get(), kernel, count, local, {last.get()});
  print("y", read(queue.get(), y.get(), count, {last.get()}));
  print("x", read(queue.get(), x.get(), count));
  finish(queue.get());
}

int main() {
  examples::setProgramName("newerCalls");
  const Session session;
  const cl_queue_properties empty[] = {0};
  const cl_queue_properties plain[] = {CL_QUEUE_PROPERTIES, 0, 0};
  const cl_queue_properties outOfOrder[] = {
      CL_QUEUE_PROPERTIES, CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE, 0};
  work(session, nullptr, 64);
  work(session, empty, 32);
  work(session, plain, 16);
  work(session, outOfOrder, 128);
  return 0;
}
