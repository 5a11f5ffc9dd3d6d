// The calls that the layer puts before its upper half while launches are tuned.

#pragma once

#include <CL/cl.h>

/// Each has the name of the entry that it takes the place of, and calls the
/// upper half. `CommandHooks.h` makes more of them, for the calls that differ
/// in nothing but their kind. `LayerHooks.cpp` lists all and tells when they
/// are called. Any thread may call.
namespace corvane::layer::tuning {

// What commands work on.

cl_int CL_API_CALL clRetainMemObject(cl_mem object);

cl_int CL_API_CALL clReleaseMemObject(cl_mem object);

cl_kernel CL_API_CALL clCreateKernel(cl_program program, const char *name,
                                     cl_int *errcodeRet);

cl_int CL_API_CALL clCreateKernelsInProgram(cl_program program,
                                            cl_uint capacity,
                                            cl_kernel *created,
                                            cl_uint *countRet);

cl_kernel CL_API_CALL clCloneKernel(cl_kernel source, cl_int *errcodeRet);

cl_int CL_API_CALL clRetainKernel(cl_kernel kernel);

cl_int CL_API_CALL clReleaseKernel(cl_kernel kernel);

cl_int CL_API_CALL clSetKernelArg(cl_kernel kernel, cl_uint index, size_t size,
                                  const void *value);

// Commands.

cl_int CL_API_CALL clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *globalOffset, const size_t *globalSize,
    const size_t *localSize, cl_uint waitCount, const cl_event *waitList,
    cl_event *event);

cl_int CL_API_CALL clEnqueueUnmapMemObject(cl_command_queue queue,
                                           cl_mem object, void *region,
                                           cl_uint waitCount,
                                           const cl_event *waitList,
                                           cl_event *event);

cl_int CL_API_CALL clEnqueueMarker(cl_command_queue queue, cl_event *event);

cl_int CL_API_CALL clEnqueueBarrier(cl_command_queue queue);

cl_int CL_API_CALL clEnqueueWaitForEvents(cl_command_queue queue, cl_uint count,
                                          const cl_event *events);

cl_int CL_API_CALL clFinish(cl_command_queue queue);

// Questions, and releases of what commands use.

cl_int CL_API_CALL clGetEventInfo(cl_event event, cl_event_info name,
                                  size_t capacity, void *value, size_t *length);

cl_int CL_API_CALL clGetCommandQueueInfo(cl_command_queue queue,
                                         cl_command_queue_info name,
                                         size_t capacity, void *value,
                                         size_t *length);

cl_int CL_API_CALL clGetContextInfo(cl_context context, cl_context_info name,
                                    size_t capacity, void *value,
                                    size_t *length);

cl_int CL_API_CALL clGetMemObjectInfo(cl_mem object, cl_mem_info name,
                                      size_t capacity, void *value,
                                      size_t *length);

cl_int CL_API_CALL clReleaseCommandQueue(cl_command_queue queue);

cl_int CL_API_CALL clReleaseContext(cl_context context);

} // namespace corvane::layer::tuning
