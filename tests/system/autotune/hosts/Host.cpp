// OpenCL's steps for the small programs: each ends the program when it fails.

#include "tests/system/autotune/hosts/Host.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <future>
#include <thread>

using namespace hosts;

extern const char kernelsSource[];

Session::Session(const char *buildOptions) {
  cl_platform_id platform = nullptr;
  check(clGetPlatformIDs(1, &platform, nullptr), "clGetPlatformIDs");
  check(clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &ownDevice, nullptr),
        "clGetDeviceIDs");
  cl_int status = CL_SUCCESS;
  ownContext.reset(
      clCreateContext(nullptr, 1, &ownDevice, nullptr, nullptr, &status));
  check(status, "clCreateContext");
  const char *source = kernelsSource;
  program.reset(
      clCreateProgramWithSource(context(), 1, &source, nullptr, &status));
  check(status, "clCreateProgramWithSource");
  check(clBuildProgram(program.get(), 1, &ownDevice, buildOptions, nullptr,
                       nullptr),
        "clBuildProgram");
}

Queue Session::queue(cl_command_queue_properties properties) const {
  cl_int status = CL_SUCCESS;
  Queue queue(clCreateCommandQueue(context(), device(), properties, &status));
  check(status, "clCreateCommandQueue");
  return queue;
}

Kernel Session::kernel(const char *name) const {
  cl_int status = CL_SUCCESS;
  Kernel kernel(clCreateKernel(program.get(), name, &status));
  check(status, "clCreateKernel");
  return kernel;
}

Buffer Session::bufferOf(const Values &values) const {
  cl_int status = CL_SUCCESS;
  Buffer buffer(clCreateBuffer(context(),
                               CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR,
                               values.size() * sizeof(cl_uint),
                               const_cast<cl_uint *>(values.data()), &status));
  check(status, "clCreateBuffer");
  return buffer;
}

Values hosts::someValues(size_t count, cl_uint seed) {
  Values values(count);
  cl_uint state = seed;
  for (cl_uint &value : values)
    value = state = state * 1664525u + 1013904223u;
  return values;
}

void hosts::setArgument(cl_kernel kernel, cl_uint index, cl_mem value) {
  check(clSetKernelArg(kernel, index, sizeof value, &value), "clSetKernelArg");
}

void hosts::setArgument(cl_kernel kernel, cl_uint index, cl_uint value) {
  check(clSetKernelArg(kernel, index, sizeof value, &value), "clSetKernelArg");
}

void hosts::setAccumulate(const Kernel &kernel, cl_mem y, cl_mem x,
                          cl_uint factor) {
  setArgument(kernel.get(), 0, y);
  setArgument(kernel.get(), 1, x);
  setArgument(kernel.get(), 2, factor);
}

static const cl_event *listOf(const std::vector<cl_event> &waits) {
  return waits.empty() ? nullptr : waits.data();
}

Event hosts::launch(cl_command_queue queue, const Kernel &kernel, size_t global,
                    size_t local, const std::vector<cl_event> &waits) {
  cl_event event = nullptr;
  check(clEnqueueNDRangeKernel(queue, kernel.get(), 1, nullptr, &global, &local,
                               static_cast<cl_uint>(waits.size()),
                               listOf(waits), &event),
        "clEnqueueNDRangeKernel");
  return Event(event);
}

static void CL_CALLBACK completed(cl_event, cl_int, void *userData) {
  static_cast<std::promise<void> *>(userData)->set_value();
}

void hosts::finish(cl_command_queue queue) {
  cl_event marker = nullptr;
  check(clEnqueueMarkerWithWaitList(queue, 0, nullptr, &marker),
        "clEnqueueMarkerWithWaitList");
  const Event owner(marker);
  std::promise<void> heard;
  check(clSetEventCallback(marker, CL_COMPLETE, completed, &heard),
        "clSetEventCallback");
  check(clFinish(queue), "clFinish");
  heard.get_future().wait();
}

cl_uint hosts::referencesTo(cl_kernel kernel) {
  cl_uint references = 0;
  check(clGetKernelInfo(kernel, CL_KERNEL_REFERENCE_COUNT, sizeof references,
                        &references, nullptr),
        "clGetKernelInfo");
  return references;
}

void hosts::finish(cl_command_queue queue, cl_kernel kernel,
                   cl_uint references) {
  finish(queue);
  while (referencesTo(kernel) > references)
    std::this_thread::yield();
}

Values hosts::read(cl_command_queue queue, cl_mem buffer, size_t count,
                   const std::vector<cl_event> &waits) {
  Values values(count);
  check(clEnqueueReadBuffer(queue, buffer, CL_TRUE, 0, count * sizeof(cl_uint),
                            values.data(), static_cast<cl_uint>(waits.size()),
                            listOf(waits), nullptr),
        "clEnqueueReadBuffer");
  return values;
}

void hosts::print(const std::string &name, const Values &values) {
  std::uint64_t hash = 14695981039346656037u;
  for (const cl_uint value : values)
    for (unsigned shift = 0; shift < 32; shift += 8)
      hash = (hash ^ ((value >> shift) & 0xff)) * 1099511628211u;
  std::printf("%s count=%zu hash=%016" PRIx64 "\n", name.c_str(), values.size(),
              hash);
  std::fflush(stdout);
}
