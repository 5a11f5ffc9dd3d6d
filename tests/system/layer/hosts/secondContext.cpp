// Works in one context before and after another one is released.

#include "tests/system/layer/hosts/Program.h"

#include <cstdio>

using namespace hosts;

static constexpr size_t count = 1024;

static void releaseAnother(const Session &session) {
  cl_int status = CL_SUCCESS;
  cl_device_id device = session.device();
  const Context other(
      clCreateContext(nullptr, 1, &device, nullptr, nullptr, &status));
  check(status, "clCreateContext");
}

static void launchAll(const Session &session, const Kernel &kernel) {
  const cl_uint references = referencesTo(kernel.get());
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  setAccumulate(kernel, y.get(), x.get(), 5);
  const Queue queue = session.queue();
  // Launches with and without an event, with and without a wait list.
  const Event first = launch(queue.get(), kernel, count, 64);
  const size_t local = 32;
  cl_event waits[] = {first.get()};
  check(clEnqueueNDRangeKernel(queue.get(), kernel.get(), 1, nullptr, &count,
                               &local, 1, waits, nullptr),
        "clEnqueueNDRangeKernel");
  print("y", read(queue.get(), y.get(), count));
  cl_int state = 77;
  check(clGetEventInfo(first.get(), CL_EVENT_COMMAND_EXECUTION_STATUS,
                       sizeof state, &state, nullptr),
        "clGetEventInfo");
  const size_t tooLarge = 7;
  std::printf("state %d, unfit: %d\n", state,
              clEnqueueNDRangeKernel(queue.get(), kernel.get(), 1, nullptr,
                                     &count, &tooLarge, 0, nullptr, nullptr));
  finish(queue.get(), kernel.get(), references);
}

static void tellKernels(const Program &program) {
  char names[256] = "";
  check(clGetProgramInfo(program.get(), CL_PROGRAM_KERNEL_NAMES, sizeof names,
                         names, nullptr),
        "clGetProgramInfo");
  cl_kernel kernels[16] = {};
  cl_uint number = 0;
  check(clCreateKernelsInProgram(program.get(), 16, kernels, &number),
        "clCreateKernelsInProgram");
  std::printf("kernels %u %s\n", number, names);
  for (cl_uint i = 0; i < number; ++i)
    check(clReleaseKernel(kernels[i]), "clReleaseKernel");
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("secondContext");
  readOptions(argumentCount, arguments);
  const Session session(commonOptions.c_str());
  const Program program = sourceProgram(session);
  check(build(session, program), "clBuildProgram");
  cl_int status = CL_SUCCESS;
  Kernel early(clCreateKernel(program.get(), "accumulate", &status));
  check(status, "clCreateKernel");
  launchAll(session, early);
  tellKernels(program);
  releaseAnother(session);
  launchAll(session, early);
  const Kernel later = session.kernel("accumulate");
  launchAll(session, later);
  tellKernels(program);
  releaseAnother(session);
  launchAll(session, later);
  {
    const Kernel last(early.release());
    launchAll(session, last);
  }
  // This fails if anything still holds a kernel of the program.
  check(build(session, program, "-DMORE_KERNELS"), "clBuildProgram");
  return 0;
}
