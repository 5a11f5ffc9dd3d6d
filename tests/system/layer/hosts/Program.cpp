// Makes programs from the kernels of these tests, and prints what they compute.

#include "tests/system/layer/hosts/Program.h"

using namespace hosts;

extern const char kernelsSource[];

std::string hosts::commonOptions;

static constexpr size_t count = 1024;

void hosts::readOptions(int argumentCount, char **arguments) {
  if (argumentCount > 1)
    commonOptions = arguments[1];
}

Program hosts::sourceProgram(const Session &session) {
  cl_int status = CL_SUCCESS;
  const char *source = kernelsSource;
  Program program(clCreateProgramWithSource(session.context(), 1, &source,
                                            nullptr, &status));
  check(status, "clCreateProgramWithSource");
  return program;
}

cl_int hosts::build(const Session &session, const Program &program,
                    const std::string &options) {
  cl_device_id device = session.device();
  return clBuildProgram(program.get(), 1, &device,
                        (commonOptions + " " + options).c_str(), nullptr,
                        nullptr);
}

Program hosts::compiledProgram(const Session &session,
                               const std::string &options) {
  Program program = sourceProgram(session);
  cl_device_id device = session.device();
  check(clCompileProgram(program.get(), 1, &device,
                         (commonOptions + " " + options).c_str(), 0, nullptr,
                         nullptr, nullptr, nullptr),
        "clCompileProgram");
  return program;
}

static void run(const Session &session, cl_kernel kernel, cl_mem result,
                size_t local) {
  const cl_uint references = referencesTo(kernel);
  const Queue queue = session.queue();
  check(clEnqueueNDRangeKernel(queue.get(), kernel, 1, nullptr, &count, &local,
                               0, nullptr, nullptr),
        "clEnqueueNDRangeKernel");
  print(nameOf(kernel), read(queue.get(), result, count));
  finish(queue.get(), kernel, references);
}

void hosts::runNegate(const Session &session, cl_kernel kernel) {
  const Buffer y = session.bufferOf(someValues(count, 1));
  setArgument(kernel, 0, y.get());
  run(session, kernel, y.get(), 64);
}

void hosts::runAccumulate(const Session &session, cl_kernel kernel,
                          size_t local) {
  const Buffer y = session.bufferOf(someValues(count, 1));
  const Buffer x = session.bufferOf(someValues(count, 2));
  setArgument(kernel, 0, y.get());
  setArgument(kernel, 1, x.get());
  setArgument(kernel, 2, cl_uint{3});
  run(session, kernel, y.get(), local);
}

std::string hosts::nameOf(cl_kernel kernel) {
  char name[128] = "";
  check(clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME, sizeof name, name,
                        nullptr),
        "clGetKernelInfo");
  return name;
}

cl_uint hosts::referencesTo(cl_program program) {
  cl_uint references = 0;
  check(clGetProgramInfo(program, CL_PROGRAM_REFERENCE_COUNT, sizeof references,
                         &references, nullptr),
        "clGetProgramInfo");
  return references;
}
