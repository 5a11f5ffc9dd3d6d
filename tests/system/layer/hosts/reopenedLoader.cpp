// Opens the OpenCL loader three times, and closes it each time while its last
// launch waits for an event of the application's.

#include "examples/common/Failure.h"

#include <CL/cl_icd.h>

#include <cstdio>
#include <numeric>
#include <vector>

#include <dlfcn.h>

using examples::check;

static const char source[] = R"(
__kernel void triple(__global uint *y) { y[get_global_id(0)] *= 3; }

#ifndef WITHOUT_VARIANTS
__kernel void triple_coarsed_g0S4(__global uint *y) {
  const size_t first = 4 * get_global_id(0);
  for (size_t i = first; i < first + 4; ++i)
    y[i] *= 3;
}
#endif
)";

static constexpr size_t count = 1024;

/// An entry point of the loader that was opened.
#define CALL(name) reinterpret_cast<decltype(&::name)>(dlsym(loader, #name))

/// The runtime's own table, which every object begins with.
template <typename Handle>
static const cl_icd_dispatch &dispatchOf(Handle object) {
  return **reinterpret_cast<const cl_icd_dispatch *const *>(object);
}

namespace {
/// What is still running when the loader has been closed.
struct Running {
  cl_event gate = nullptr;
  cl_event end = nullptr;
  cl_command_queue queue = nullptr;
  cl_mem buffer = nullptr;
};
} // namespace

static cl_program buildProgram(void *loader, cl_context context,
                               const char *options) {
  cl_int status = CL_SUCCESS;
  const char *text = source;
  cl_program program =
      CALL(clCreateProgramWithSource)(context, 1, &text, nullptr, &status);
  check(status, "clCreateProgramWithSource");
  check(CALL(clBuildProgram)(program, 0, nullptr, options, nullptr, nullptr),
        "clBuildProgram");
  return program;
}

static cl_mem createBuffer(void *loader, cl_context context) {
  std::vector<cl_uint> values(count);
  std::iota(values.begin(), values.end(), 1u);
  cl_int status = CL_SUCCESS;
  cl_mem buffer =
      CALL(clCreateBuffer)(context, CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR,
                           count * sizeof(cl_uint), values.data(), &status);
  check(status, "clCreateBuffer");
  return buffer;
}

static void launch(void *loader, cl_program program, Running &running) {
  cl_int status = CL_SUCCESS;
  cl_kernel kernel = CALL(clCreateKernel)(program, "triple", &status);
  check(status, "clCreateKernel");
  check(CALL(clSetKernelArg)(kernel, 0, sizeof(cl_mem), &running.buffer),
        "clSetKernelArg");
  const size_t local = 64;
  check(CALL(clEnqueueNDRangeKernel)(running.queue, kernel, 1, nullptr, &count,
                                     &local, 1, &running.gate, &running.end),
        "clEnqueueNDRangeKernel");
  check(CALL(clFlush)(running.queue), "clFlush");
  check(CALL(clReleaseKernel)(kernel), "clReleaseKernel");
}

static Running start(void *loader, const char *options) {
  cl_platform_id platform = nullptr;
  check(CALL(clGetPlatformIDs)(1, &platform, nullptr), "clGetPlatformIDs");
  cl_device_id device = nullptr;
  check(CALL(clGetDeviceIDs)(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr),
        "clGetDeviceIDs");
  cl_int status = CL_SUCCESS;
  cl_context context =
      CALL(clCreateContext)(nullptr, 1, &device, nullptr, nullptr, &status);
  check(status, "clCreateContext");
  cl_program program = buildProgram(loader, context, options);

  Running running;
  running.buffer = createBuffer(loader, context);
  running.queue = CALL(clCreateCommandQueue)(context, device, 0, &status);
  check(status, "clCreateCommandQueue");
  running.gate = CALL(clCreateUserEvent)(context, &status);
  check(status, "clCreateUserEvent");
  launch(loader, program, running);
  check(CALL(clReleaseProgram)(program), "clReleaseProgram");
  check(CALL(clReleaseContext)(context), "clReleaseContext");
  return running;
}

static void finish(const Running &running) {
  const cl_icd_dispatch &cl = dispatchOf(running.queue);
  check(cl.clSetUserEventStatus(running.gate, CL_COMPLETE),
        "clSetUserEventStatus");
  check(cl.clFinish(running.queue), "clFinish");
  std::vector<cl_uint> values(count);
  check(cl.clEnqueueReadBuffer(running.queue, running.buffer, CL_TRUE, 0,
                               count * sizeof(cl_uint), values.data(), 0,
                               nullptr, nullptr),
        "clEnqueueReadBuffer");
  for (cl_uint value : values)
    std::printf("%u ", value);
  std::printf("\n");
  check(cl.clReleaseEvent(running.gate), "clReleaseEvent");
  check(cl.clReleaseEvent(running.end), "clReleaseEvent");
  check(cl.clReleaseMemObject(running.buffer), "clReleaseMemObject");
  check(cl.clReleaseCommandQueue(running.queue), "clReleaseCommandQueue");
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("reopenedLoader");
  for (int opening = 0; opening < 3; ++opening) {
    void *loader = dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    check(loader ? CL_SUCCESS : CL_INVALID_OPERATION, "dlopen");
    const Running running =
        start(loader, argumentCount > 1 ? arguments[1] : "");
    dlclose(loader);
    finish(running);
  }
  return 0;
}
