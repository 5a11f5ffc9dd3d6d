// The layer's calls in place of the agent's, as the application finds them.

#pragma once

#include <CL/cl.h>

/// Each has the name of the entry that it takes the place of, and calls the
/// agent, or the runtime where the agent must not see the call.
/// `LayerHooks.cpp` lists them and tells when they are called. Any thread may
/// call.
namespace corvane::layer::upper {

// Programs.

cl_program CL_API_CALL clCreateProgramWithSource(cl_context context,
                                                 cl_uint count,
                                                 const char **strings,
                                                 const size_t *lengths,
                                                 cl_int *errcodeRet);

cl_program CL_API_CALL clCreateProgramWithBinary(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const size_t *lengths, const unsigned char **binaries, cl_int *binaryStatus,
    cl_int *errcodeRet);

cl_program CL_API_CALL clCreateProgramWithBuiltInKernels(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *kernelNames, cl_int *errcodeRet);

cl_program CL_API_CALL clCreateProgramWithIL(cl_context context, const void *il,
                                             size_t length, cl_int *errcodeRet);

cl_int CL_API_CALL clRetainProgram(cl_program program);

cl_int CL_API_CALL clReleaseProgram(cl_program program);

cl_int CL_API_CALL clBuildProgram(cl_program program, cl_uint numDevices,
                                  const cl_device_id *devices,
                                  const char *options,
                                  void(CL_CALLBACK *notify)(cl_program, void *),
                                  void *userData);

cl_int CL_API_CALL clGetProgramBuildInfo(cl_program program,
                                         cl_device_id device,
                                         cl_program_build_info name,
                                         size_t capacity, void *value,
                                         size_t *length);

cl_program CL_API_CALL clLinkProgram(
    cl_context context, cl_uint numDevices, const cl_device_id *devices,
    const char *options, cl_uint numInputs, const cl_program *inputs,
    void(CL_CALLBACK *notify)(cl_program, void *), void *userData,
    cl_int *errcodeRet);

cl_int CL_API_CALL clGetProgramInfo(cl_program program, cl_program_info name,
                                    size_t capacity, void *value,
                                    size_t *length);

/// Only where programs may have companions.
cl_int CL_API_CALL clGetContextInfo(cl_context context, cl_context_info name,
                                    size_t capacity, void *value,
                                    size_t *length);

// Kernels.

cl_kernel CL_API_CALL clCreateKernel(cl_program program, const char *name,
                                     cl_int *errcodeRet);

cl_int CL_API_CALL clCreateKernelsInProgram(cl_program program,
                                            cl_uint capacity,
                                            cl_kernel *kernels,
                                            cl_uint *countRet);

cl_kernel CL_API_CALL clCloneKernel(cl_kernel source, cl_int *errcodeRet);

cl_int CL_API_CALL clReleaseKernel(cl_kernel kernel);

cl_int CL_API_CALL clSetKernelArgSVMPointer(cl_kernel kernel, cl_uint index,
                                            const void *pointer);

cl_int CL_API_CALL clSetKernelExecInfo(cl_kernel kernel,
                                       cl_kernel_exec_info name, size_t size,
                                       const void *value);

cl_int CL_API_CALL clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event);

// Queues and their events.

cl_command_queue CL_API_CALL clCreateCommandQueue(
    cl_context context, cl_device_id device,
    cl_command_queue_properties properties, cl_int *errcodeRet);

cl_command_queue CL_API_CALL clCreateCommandQueueWithProperties(
    cl_context context, cl_device_id device,
    const cl_queue_properties *properties, cl_int *errcodeRet);

cl_int CL_API_CALL clRetainCommandQueue(cl_command_queue queue);

cl_int CL_API_CALL clReleaseCommandQueue(cl_command_queue queue);

cl_int CL_API_CALL clGetCommandQueueInfo(cl_command_queue queue,
                                         cl_command_queue_info name,
                                         size_t capacity, void *value,
                                         size_t *length);

cl_int CL_API_CALL clGetEventProfilingInfo(cl_event event,
                                           cl_profiling_info name,
                                           size_t capacity, void *value,
                                           size_t *length);

// Buffers.

cl_mem CL_API_CALL clCreateBufferWithProperties(
    cl_context context, const cl_mem_properties *properties, cl_mem_flags flags,
    size_t size, void *hostPtr, cl_int *errcodeRet);

} // namespace corvane::layer::upper
