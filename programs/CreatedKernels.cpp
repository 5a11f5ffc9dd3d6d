// Creates and releases kernels through the runtime.

#include "programs/CreatedKernels.h"

#include "agent/RuntimeTable.h"

#include <algorithm>
#include <new>

using namespace corvane;

CreatedKernels::~CreatedKernels() {
  while (!empty())
    releaseFront();
}

cl_int CreatedKernels::createUpTo(cl_uint room, cl_program program) {
  if (room != 0) {
    kernels = allocateZeroed<cl_kernel>(room);
    if (!kernels)
      throw std::bad_alloc();
  }
  cl_uint created = 0;
  const cl_int status = runtime().clCreateKernelsInProgram(
      program, room, kernels.get(), &created);
  if (status == CL_SUCCESS)
    count = std::min(created, room);
  return status;
}

cl_int CreatedKernels::releaseFront() {
  return runtime().clReleaseKernel(takeFront());
}
