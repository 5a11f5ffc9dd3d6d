// An application that calls every hook once.

#pragma once

#include "tests/behaviour/Calls.h"
#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

namespace corvane::test {

/// The entries of the runtime that are called by hooks that take the lock.
inline const char *const calledWithLock[] = {"clBuildProgram",
                                             "clGetProgramInfo",
                                             "clCreateKernel",
                                             "clGetProgramBuildInfo",
                                             "clGetKernelInfo",
                                             "clCreateKernelsInProgram",
                                             "clReleaseKernel",
                                             "clCreateBuffer",
                                             "clSetKernelArg",
                                             "clSetMemObjectDestructorCallback",
                                             "clReleaseEvent",
                                             "clEnqueueReadBuffer",
                                             "clSetEventCallback",
                                             "clEnqueueNDRangeKernel",
                                             "clFlush",
                                             "clEnqueueWriteBuffer",
                                             "clReleaseProgram",
                                             "clLinkProgram"};

/// Is autotuned, and has built a program with a kernel "k" and its variant.
struct WholeLife : TuningApplication {
  WholeLife()
      : TuningApplication(Variables{{variable::flushOnReleaseContext, "1"}}) {
    program.kernel("k", 1, [](const Launch &l) { ++l.buffer(0)[0]; });
    program.kernel("k_coarsed_g0S4", 1,
                   [](const Launch &l) { l.buffer(0)[0] = 99; });
    build();
    // With this reference the context exists after a release that flushes.
    cl.clRetainContext(runtime.context());
  }

  /// Creates, uses and releases a program, its kernels and a buffer.
  void liveThrough() {
    useOneKernel();
    useAllKernels();
    linkAProgram();
  }

private:
  void useOneKernel() {
    cl_mem buffer = test::createBuffer(runtime, cl);
    cl_program another = runtime.addProgram().log("fine").kernel("j", 1).kernel(
        "j_coarsed_g0S2", 1);
    test::build(cl, another);
    cl_kernel kernel = cl.clCreateKernel(another, "j", nullptr);
    set(kernel, 0, buffer);
    launch(kernel, {16});
    release(kernel);
    cl.clReleaseMemObject(buffer);
    cl.clReleaseProgram(another);
  }

  // If the runtime does not tell the variant's name, it counts as a kernel.
  void useAllKernels() {
    cl_kernel kernels[2] = {};
    if (cl.clCreateKernelsInProgram(program, 1, kernels, nullptr) != CL_SUCCESS)
      return;
    for (cl_kernel kernel : kernels)
      if (kernel)
        release(kernel);
  }

  void linkAProgram() {
    runtime.linkMakes().kernel("linked");
    cl.clReleaseProgram(cl.clLinkProgram(runtime.context(), 0, nullptr, nullptr,
                                         0, nullptr, nullptr, nullptr,
                                         nullptr));
  }
};

} // namespace corvane::test
