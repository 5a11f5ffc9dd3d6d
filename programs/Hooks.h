// The hooks of this folder. Each has the signature and the contract of the
// entry point that it stands in for and returns what the runtime returned.

#pragma once

#include <CL/cl.h>

namespace corvane::hooks {

/// Flushes the autotuning results first, if the environment asks for it.
cl_int CL_API_CALL clReleaseContext(cl_context context);

/// Creates every queue with profiling, so that launches can be timed.
cl_command_queue CL_API_CALL clCreateCommandQueue(
    cl_context context, cl_device_id device,
    cl_command_queue_properties properties, cl_int *errcodeRet);

/// In autotuning mode remembers the buffer.
cl_mem CL_API_CALL clCreateBuffer(cl_context context, cl_mem_flags flags,
                                  size_t size, void *hostPtr,
                                  cl_int *errcodeRet);

cl_program CL_API_CALL clCreateProgramWithSource(cl_context context,
                                                 cl_uint count,
                                                 const char **strings,
                                                 const size_t *lengths,
                                                 cl_int *errcodeRet);

/// Forgets the program with the last of its builds.
cl_int CL_API_CALL clReleaseProgram(cl_program program);

/// Finds the variants that a build has made.
cl_int CL_API_CALL clBuildProgram(cl_program program, cl_uint numDevices,
                                  const cl_device_id *deviceList,
                                  const char *options,
                                  void(CL_CALLBACK *notify)(cl_program program,
                                                            void *userData),
                                  void *userData);

/// Answers kernel count and kernel names without the variants.
cl_int CL_API_CALL clGetProgramInfo(cl_program program,
                                    cl_program_info paramName,
                                    size_t paramValueSize, void *paramValue,
                                    size_t *paramValueSizeRet);

/// Finds the variants in a linked program.
cl_program CL_API_CALL
clLinkProgram(cl_context context, cl_uint numDevices,
              const cl_device_id *deviceList, const char *options,
              cl_uint numInputPrograms, const cl_program *inputPrograms,
              void(CL_CALLBACK *notify)(cl_program program, void *userData),
              void *userData, cl_int *errcodeRet);

} // namespace corvane::hooks
