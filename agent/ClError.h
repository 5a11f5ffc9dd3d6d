// Names for OpenCL status codes, and the one way to report a failed call.

#pragma once

#include <CL/cl.h>

#include <string>

namespace corvane {

/// Where a call failed. The numbers are part of the interface: each
/// report contains one, and people search for them.
enum class CallSite : int {
  DeviceCount = 128,
  DeviceList = 131,
  ReleaseProgram = 148,
  BuildLogSize = 227,
  BuildLogText = 234,
  CollectKernels = 259,
  ReleaseCollectedKernel = 281,
  BuildDevices = 321,
  BuildProgram = 342,
  CreateVariant = 460,
  CountKernelsInProgram = 535,
  CreateKernelsInProgram = 576,
  KernelReferenceCount = 599,
  ReleaseKernel = 601,
  ReplayArgument = 721,
  ProfilingStart = 741,
  ProfilingEnd = 745,
  Launch = 910,
  BaselineCallback = 1123,
  AutotuneLaunch = 1145,
  BufferCallback = 1211,
  LinkDevices = 1263,
};

/// The standard name of a status, or "unknown code(<n>)" for one that
/// OpenCL 1.1 did not have.
std::string clErrorName(cl_int code);

/// Writes one line about a failed call on the error stream. Any thread; needs
/// no memory.
void reportClError(CallSite site, cl_int code);

} // namespace corvane
