// The layer's calls in place of the runtime's, as the agent finds them.

#pragma once

#include <CL/cl.h>

/// Each has the name of the entry that it takes the place of, and calls the
/// runtime. `LayerHooks.cpp` lists them and tells when they are called. Any
/// thread may call.
namespace corvane::layer::lower {

cl_int CL_API_CALL clBuildProgram(cl_program program, cl_uint numDevices,
                                  const cl_device_id *devices,
                                  const char *options,
                                  void(CL_CALLBACK *notify)(cl_program, void *),
                                  void *userData);

cl_program CL_API_CALL clLinkProgram(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *options, cl_uint numInputs, const cl_program *inputs,
    void(CL_CALLBACK *notify)(cl_program, void *), void *userData,
    cl_int *errcodeRet);

cl_kernel CL_API_CALL clCreateKernel(cl_program program, const char *name,
                                     cl_int *errcodeRet);

cl_int CL_API_CALL clCreateKernelsInProgram(cl_program program,
                                            cl_uint capacity,
                                            cl_kernel *created,
                                            cl_uint *countRet);

cl_int CL_API_CALL clRetainKernel(cl_kernel kernel);

cl_int CL_API_CALL clReleaseKernel(cl_kernel kernel);

cl_int CL_API_CALL clGetKernelInfo(cl_kernel kernel, cl_kernel_info name,
                                   size_t capacity, void *value,
                                   size_t *length);

cl_int CL_API_CALL clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event);

// Only where programs may have companions.

cl_int CL_API_CALL clGetProgramInfo(cl_program program, cl_program_info name,
                                    size_t capacity, void *value,
                                    size_t *length);

cl_int CL_API_CALL clGetProgramBuildInfo(cl_program program,
                                         cl_device_id device,
                                         cl_program_build_info name,
                                         size_t capacity, void *value,
                                         size_t *length);

cl_int CL_API_CALL clGetKernelArgInfo(cl_kernel kernel, cl_uint index,
                                      cl_kernel_arg_info name, size_t capacity,
                                      void *value, size_t *length);

// Of tuned launches.

cl_event CL_API_CALL clCreateUserEvent(cl_context context, cl_int *errcodeRet);

} // namespace corvane::layer::lower
