// Gives kernels pointers to shared virtual memory.

#include "tests/system/layer/hosts/Program.h"

#include <algorithm>

using namespace hosts;

static constexpr size_t count = 1024;

namespace {
/// Shared memory that holds a copy of values.
class SharedValues {
public:
  SharedValues(const Session &session, const Values &values)
      : context(session.context()),
        memory(static_cast<cl_uint *>(clSVMAlloc(context, CL_MEM_READ_WRITE,
                                                 count * sizeof(cl_uint), 0))) {
    check(memory ? CL_SUCCESS : CL_OUT_OF_RESOURCES, "clSVMAlloc");
    queue = session.queue();
    map();
    std::copy(values.begin(), values.end(), memory);
    unmap();
  }
  ~SharedValues() { clSVMFree(context, memory); }
  SharedValues(const SharedValues &) = delete;
  SharedValues &operator=(const SharedValues &) = delete;

  void *pointer() const { return memory; }

  void tell(const char *name) const {
    map();
    print(name, Values(memory, memory + count));
    unmap();
  }

private:
  void map() const {
    check(clEnqueueSVMMap(queue.get(), CL_TRUE, CL_MAP_READ | CL_MAP_WRITE,
                          memory, count * sizeof(cl_uint), 0, nullptr, nullptr),
          "clEnqueueSVMMap");
  }
  void unmap() const {
    check(clEnqueueSVMUnmap(queue.get(), memory, 0, nullptr, nullptr),
          "clEnqueueSVMUnmap");
    check(clFinish(queue.get()), "clFinish");
  }

  cl_context context;
  cl_uint *memory;
  Queue queue;
};
} // namespace

static void setPointer(const Kernel &kernel, cl_uint index,
                       const SharedValues &values) {
  check(clSetKernelArgSVMPointer(kernel.get(), index, values.pointer()),
        "clSetKernelArgSVMPointer");
}

static void launchAndWait(const Session &session, const Kernel &kernel) {
  const Queue queue = session.queue();
  launch(queue.get(), kernel, count, 64);
  finish(queue.get());
}

static void allShared(const Session &session) {
  const SharedValues y(session, someValues(count, 1));
  const SharedValues x(session, someValues(count, 2));
  const Kernel kernel = session.kernel("accumulate");
  setPointer(kernel, 0, y);
  setPointer(kernel, 1, x);
  setArgument(kernel.get(), 2, cl_uint{3});
  launchAndWait(session, kernel);
  y.tell("y");
}

static void oneShared(const Session &session) {
  const Buffer y = session.bufferOf(someValues(count, 3));
  const SharedValues x(session, someValues(count, 4));
  const Kernel kernel = session.kernel("accumulate");
  setArgument(kernel.get(), 0, y.get());
  setPointer(kernel, 1, x);
  setArgument(kernel.get(), 2, cl_uint{5});
  launchAndWait(session, kernel);
  print("y", read(session.queue().get(), y.get(), count));
}

static void noneShared(const Session &session) {
  const Kernel kernel = session.kernel("accumulate");
  runAccumulate(session, kernel.get(), 32);
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("sharedMemory");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  allShared(session);
  oneShared(session);
  noneShared(session);
  return 0;
}
