// Creates what every OpenCL program creates first.

#include "bench/opencl/Session.h"

using namespace corvane::bench;

Session::Session(const char *source) {
  cl_platform_id platform = nullptr;
  check(clGetPlatformIDs(1, &platform, nullptr), "clGetPlatformIDs");
  check(clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr),
        "clGetDeviceIDs");
  cl_int status = CL_SUCCESS;
  ownContext.reset(
      clCreateContext(nullptr, 1, &device, nullptr, nullptr, &status));
  check(status, "clCreateContext");
  ownQueue.reset(clCreateCommandQueue(context(), device,
                                      CL_QUEUE_PROFILING_ENABLE, &status));
  check(status, "clCreateCommandQueue");
  ownProgram.reset(
      clCreateProgramWithSource(context(), 1, &source, nullptr, &status));
  check(status, "clCreateProgramWithSource");
  check(clBuildProgram(program(), 1, &device, "", nullptr, nullptr),
        "clBuildProgram");
}

Kernel Session::kernel(const char *name) const {
  cl_int status = CL_SUCCESS;
  Kernel kernel(clCreateKernel(program(), name, &status));
  check(status, "clCreateKernel");
  return kernel;
}

Buffer Session::buffer(std::size_t size) const {
  cl_int status = CL_SUCCESS;
  Buffer buffer(
      clCreateBuffer(context(), CL_MEM_READ_WRITE, size, nullptr, &status));
  check(status, "clCreateBuffer");
  return buffer;
}
