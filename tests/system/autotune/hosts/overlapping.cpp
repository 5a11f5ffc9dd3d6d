// Gives kernels the same memory in more than one way. The argument, if any, is
// for the compiler.

#include "tests/system/autotune/hosts/Host.h"

#include <algorithm>

using namespace hosts;

static constexpr size_t count = 1024;

static void sameTwice(const Session &session, cl_command_queue queue,
                      const Kernel &kernel) {
  const Buffer both = session.bufferOf(someValues(count, 1));
  setAccumulate(kernel, both.get(), both.get(), 3);
  launch(queue, kernel, count, 64);
  launch(queue, kernel, count, 64);
  print("both", read(queue, both.get(), count));
}

static void hostMemory(const Session &session, cl_command_queue queue,
                       const Kernel &kernel) {
  alignas(128) static cl_uint memory[count];
  const Values first = someValues(count, 2);
  std::copy(first.begin(), first.end(), memory);
  cl_int status = CL_SUCCESS;
  const Buffer y(clCreateBuffer(session.context(),
                                CL_MEM_READ_WRITE | CL_MEM_USE_HOST_PTR,
                                sizeof memory, memory, &status));
  check(status, "clCreateBuffer");
  const Buffer x = session.bufferOf(someValues(count, 3));
  setAccumulate(kernel, y.get(), x.get(), 5);
  launch(queue, kernel, count, 32);
  launch(queue, kernel, count, 32);
  print("host", read(queue, y.get(), count));
}

static Buffer half(const Buffer &parent, size_t number) {
  const cl_buffer_region region = {number * count * sizeof(cl_uint),
                                   count * sizeof(cl_uint)};
  cl_int status = CL_SUCCESS;
  Buffer sub(clCreateSubBuffer(parent.get(), 0, CL_BUFFER_CREATE_TYPE_REGION,
                               &region, &status));
  check(status, "clCreateSubBuffer");
  return sub;
}

static void parts(const Session &session, cl_command_queue queue,
                  const Kernel &kernel) {
  const Buffer parent = session.bufferOf(someValues(2 * count, 4));
  const Buffer left = half(parent, 0);
  const Buffer right = half(parent, 1);
  const auto accumulate = [&](cl_mem y, cl_mem x, size_t local) {
    setAccumulate(kernel, y, x, 3);
    launch(queue, kernel, count, local);
    launch(queue, kernel, count, local);
    print("parent", read(queue, parent.get(), 2 * count));
  };
  accumulate(left.get(), right.get(), 16);
  accumulate(parent.get(), right.get(), 128);

  const Buffer whole = session.bufferOf(someValues(count, 5));
  accumulate(right.get(), whole.get(), 8);
  accumulate(whole.get(), left.get(), 256);
  print("whole", read(queue, whole.get(), count));
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("overlapping");
  const Session session(argumentCount > 1 ? arguments[1] : "");
  const Queue queue = session.queue();
  const Kernel kernel = session.kernel("accumulate");
  sameTwice(session, queue.get(), kernel);
  hostMemory(session, queue.get(), kernel);
  parts(session, queue.get(), kernel);
  finish(queue.get());
  return 0;
}
