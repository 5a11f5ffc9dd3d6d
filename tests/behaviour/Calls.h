// Calls that applications make, shorter than OpenCL has them.

#pragma once

#include "tests/support/LoadedAgent.h"

#include <CL/cl.h>

#include <cstddef>
#include <string>
#include <vector>

namespace corvane::test {

/// A build log that says that a variant spills registers.
inline constexpr const char *spillLog =
    "calclCompile failed to keep k_coarsed_g0S4 in registers\n";

inline cl_int build(const DispatchTable &cl, cl_program program) {
  return cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr);
}

/// The number of kernels as the application sees it; 99 if it cannot be had.
inline std::size_t kernelCount(const DispatchTable &cl, cl_program program) {
  std::size_t count = 99;
  cl.clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS, sizeof count, &count,
                      nullptr);
  return count;
}

/// The names as the application sees them; "?" if they cannot be had.
inline std::string kernelNames(const DispatchTable &cl, cl_program program) {
  std::size_t size = 0;
  if (cl.clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES, 0, nullptr,
                          &size) != CL_SUCCESS)
    return "?";
  std::vector<char> names(size + 1, '?');
  if (cl.clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES, size, names.data(),
                          nullptr) != CL_SUCCESS)
    return "?";
  return names.data();
}

inline cl_mem createBuffer(FakeRuntime &runtime, const DispatchTable &cl,
                           std::size_t size = 8) {
  return cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, size, nullptr,
                           nullptr);
}

/// Whether the agent autotunes, which shows in that it asks for a notification
/// of the end of buffers.
inline bool isAutotuning(FakeRuntime &runtime, const DispatchTable &cl) {
  const char *entry = "clSetMemObjectDestructorCallback";
  const std::size_t before = runtime.transcript({entry}).size();
  cl.clReleaseMemObject(createBuffer(runtime, cl));
  return runtime.transcript({entry}).size() != before;
}

} // namespace corvane::test
