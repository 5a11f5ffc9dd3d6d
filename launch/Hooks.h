// The hooks on kernels, arguments and launches. Each has the signature and the
// contract of the entry point that it replaces, and returns what the runtime
// returned.

#pragma once

#include <CL/cl.h>

namespace corvane::hooks {

/// Also creates the kernel's variants.
cl_kernel CL_API_CALL clCreateKernel(cl_program program, const char *kernelName,
                                     cl_int *errcodeRet);

/// Creates the program's ordinary kernels, and the variants of each.
cl_int CL_API_CALL clCreateKernelsInProgram(cl_program program,
                                            cl_uint numKernels,
                                            cl_kernel *kernels,
                                            cl_uint *numKernelsRet);

/// Releases the variants when the kernel has been destroyed.
cl_int CL_API_CALL clReleaseKernel(cl_kernel kernel);

/// Remembers the argument for the variants.
cl_int CL_API_CALL clSetKernelArg(cl_kernel kernel, cl_uint argIndex,
                                  size_t argSize, const void *argValue);

/// Launches a variant in place of the kernel, or times the kernel and all its
/// variants.
cl_int CL_API_CALL clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint numEventsInWaitList,
    const cl_event *eventWaitList, cl_event *event);

} // namespace corvane::hooks
