// Asks the runtime for devices and build logs, and screens the logs.

#include "programs/BuiltDevices.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "variants/SpillScreen.h"

#include <algorithm>
#include <cstdint>

using namespace corvane;

static cl_int queryCount(cl_program program, cl_uint &count) {
  // The runtime is offered 8 bytes and fills the 4 that it needs.
  union {
    std::uint64_t offered = 0;
    cl_uint value;
  } answer;
  const cl_int status = runtime().clGetProgramInfo(
      program, CL_PROGRAM_NUM_DEVICES, sizeof answer, &answer, nullptr);
  if (status == CL_SUCCESS)
    count = answer.value;
  return status;
}

cl_int corvane::programDevices(cl_program program, DeviceList &devices) {
  cl_uint count = 0;
  cl_int status = queryCount(program, count);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::DeviceCount, status);
    return status;
  }

  const std::size_t size = std::size_t{count} * sizeof(cl_device_id);
  auto ids = allocateZeroed<cl_device_id>(std::max<std::size_t>(count, 1));
  if (!ids)
    return CL_SUCCESS;
  std::size_t written = size;
  status = runtime().clGetProgramInfo(program, CL_PROGRAM_DEVICES, size,
                                      ids.get(), &written);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::DeviceList, status);
    return status;
  }
  devices.count =
      static_cast<cl_uint>(std::min(size, written) / sizeof(cl_device_id));
  devices.ids = std::move(ids);
  return CL_SUCCESS;
}

// The size of the log with its terminating zero; 0 when it cannot be had.
static std::size_t logSize(cl_program program, cl_device_id device) {
  std::size_t size = 0;
  const cl_int status = runtime().clGetProgramBuildInfo(
      program, device, CL_PROGRAM_BUILD_LOG, 0, nullptr, &size);
  if (status == CL_SUCCESS)
    return size;
  reportClError(CallSite::BuildLogSize, status);
  return 0;
}

static bool logIsFlagged(cl_program program, cl_device_id device) {
  const std::size_t size = logSize(program, device);
  if (size <= 1 || size == SIZE_MAX)
    return false;

  const auto text = allocateZeroed<char>(size + 1);
  if (!text)
    return false;
  const cl_int status = runtime().clGetProgramBuildInfo(
      program, device, CL_PROGRAM_BUILD_LOG, size, text.get(), nullptr);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::BuildLogText, status);
    return false;
  }
  text[size] = '\0';
  return screenBuildLog(text.get());
}

bool corvane::screenBuild(cl_program program,
                          llvm::ArrayRef<cl_device_id> devices) {
  bool clean = true;
  for (cl_device_id device : devices)
    if (device && logIsFlagged(program, device))
      clean = false;
  return clean;
}
