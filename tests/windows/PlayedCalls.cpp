// OpenCL's functions for the example programs, through the played runtime's
// table.

#include "tests/windows/PlayedRuntime.h"

#include <CL/cl.h>

using corvane::test::playedTable;

cl_int CL_API_CALL clGetPlatformIDs(cl_uint capacity, cl_platform_id *platforms,
                                    cl_uint *count) {
  return playedTable().clGetPlatformIDs(capacity, platforms, count);
}

cl_int CL_API_CALL clGetDeviceIDs(cl_platform_id platform, cl_device_type type,
                                  cl_uint capacity, cl_device_id *devices,
                                  cl_uint *count) {
  return playedTable().clGetDeviceIDs(platform, type, capacity, devices, count);
}

cl_int CL_API_CALL clGetDeviceInfo(cl_device_id device, cl_device_info info,
                                   size_t size, void *value, size_t *sizeRet) {
  return playedTable().clGetDeviceInfo(device, info, size, value, sizeRet);
}

cl_context CL_API_CALL clCreateContext(
    const cl_context_properties *properties, cl_uint count,
    const cl_device_id *devices,
    void(CL_CALLBACK *notify)(const char *, const void *, size_t, void *),
    void *userData, cl_int *status) {
  return playedTable().clCreateContext(properties, count, devices, notify,
                                       userData, status);
}

cl_command_queue CL_API_CALL
clCreateCommandQueue(cl_context context, cl_device_id device,
                     cl_command_queue_properties properties, cl_int *status) {
  return playedTable().clCreateCommandQueue(context, device, properties,
                                            status);
}

cl_program CL_API_CALL clCreateProgramWithSource(cl_context context,
                                                 cl_uint count,
                                                 const char **texts,
                                                 const size_t *lengths,
                                                 cl_int *status) {
  return playedTable().clCreateProgramWithSource(context, count, texts, lengths,
                                                 status);
}

cl_int CL_API_CALL clBuildProgram(cl_program program, cl_uint count,
                                  const cl_device_id *devices,
                                  const char *options,
                                  void(CL_CALLBACK *notify)(cl_program, void *),
                                  void *userData) {
  return playedTable().clBuildProgram(program, count, devices, options, notify,
                                      userData);
}

cl_int CL_API_CALL clGetProgramBuildInfo(cl_program program,
                                         cl_device_id device,
                                         cl_program_build_info info,
                                         size_t size, void *value,
                                         size_t *sizeRet) {
  return playedTable().clGetProgramBuildInfo(program, device, info, size, value,
                                             sizeRet);
}

cl_mem CL_API_CALL clCreateBuffer(cl_context context, cl_mem_flags flags,
                                  size_t size, void *host, cl_int *status) {
  return playedTable().clCreateBuffer(context, flags, size, host, status);
}

cl_kernel CL_API_CALL clCreateKernel(cl_program program, const char *name,
                                     cl_int *status) {
  return playedTable().clCreateKernel(program, name, status);
}

cl_int CL_API_CALL clSetKernelArg(cl_kernel kernel, cl_uint index, size_t size,
                                  const void *value) {
  return playedTable().clSetKernelArg(kernel, index, size, value);
}

cl_int CL_API_CALL clEnqueueNDRangeKernel(
    cl_command_queue queue, cl_kernel kernel, cl_uint workDim,
    const size_t *offset, const size_t *global, const size_t *local,
    cl_uint waitCount, const cl_event *waitList, cl_event *event) {
  return playedTable().clEnqueueNDRangeKernel(queue, kernel, workDim, offset,
                                              global, local, waitCount,
                                              waitList, event);
}

cl_int CL_API_CALL clEnqueueReadBuffer(cl_command_queue queue, cl_mem buffer,
                                       cl_bool blocking, size_t offset,
                                       size_t size, void *host,
                                       cl_uint waitCount,
                                       const cl_event *waitList,
                                       cl_event *event) {
  return playedTable().clEnqueueReadBuffer(
      queue, buffer, blocking, offset, size, host, waitCount, waitList, event);
}

cl_int CL_API_CALL clFinish(cl_command_queue queue) {
  return playedTable().clFinish(queue);
}

cl_int CL_API_CALL clReleaseContext(cl_context context) {
  return playedTable().clReleaseContext(context);
}

cl_int CL_API_CALL clReleaseCommandQueue(cl_command_queue queue) {
  return playedTable().clReleaseCommandQueue(queue);
}

cl_int CL_API_CALL clReleaseProgram(cl_program program) {
  return playedTable().clReleaseProgram(program);
}

cl_int CL_API_CALL clReleaseKernel(cl_kernel kernel) {
  return playedTable().clReleaseKernel(kernel);
}

cl_int CL_API_CALL clReleaseMemObject(cl_mem buffer) {
  return playedTable().clReleaseMemObject(buffer);
}
