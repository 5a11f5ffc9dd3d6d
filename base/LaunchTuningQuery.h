// The question by which the agent learns whether it may tune a launch.

#pragma once

#include <CL/cl.h>

namespace corvane {

/// A parameter of clGetKernelInfo that the agent may ask for within a call to
/// clEnqueueNDRangeKernel, on the thread of that call, of the kernel that is
/// launched. The answer is a cl_uint with a value of `LaunchTuning`. The layer
/// answers; a runtime that loads the agent itself refuses the parameter.
constexpr cl_kernel_info launchTuningQuery = 0x43410002;

/// What the agent may do with a launch.
enum class LaunchTuning : cl_uint {
  /// Something else may use its memory meanwhile, or what it waits for may wait
  /// for the application: no tuning. A variant may run in place of the kernel.
  NotNow = 0,
  /// It may be tuned, at once or later on another thread. In the second case
  /// the application's own run waits for a user event that the agent creates
  /// within the call, and commands that use the same memory wait for that run.
  /// Nothing may be tuned if that run was refused. The agent gives all
  /// references to the application's objects back before it completes the
  /// event: a program that has kernels, for example, cannot be built again.
  Allowed = 1,
  /// The kernel must run as it is, on the application's queue: it was given
  /// shared virtual memory, which no variant knows of, or has a global offset.
  /// Whatever is launched within the call, the layer has this kernel run.
  KernelOnly = 2,
};

/// What holds for the launch of \p kernel that this thread is serving;
/// \p getKernelInfo is the runtime's entry as the agent found it. Without a
/// layer every launch may be tuned, as far as the layer could tell.
template <typename GetKernelInfo>
LaunchTuning askForLaunchTuning(GetKernelInfo getKernelInfo, cl_kernel kernel) {
  cl_uint answer = 0;
  if (!getKernelInfo || getKernelInfo(kernel, launchTuningQuery, sizeof answer,
                                      &answer, nullptr) != CL_SUCCESS)
    return LaunchTuning::Allowed;
  switch (static_cast<LaunchTuning>(answer)) {
  case LaunchTuning::NotNow:
  case LaunchTuning::Allowed:
  case LaunchTuning::KernelOnly:
    return static_cast<LaunchTuning>(answer);
  }
  return LaunchTuning::NotNow;
}

} // namespace corvane
