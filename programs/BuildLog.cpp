// Fetches build logs from the runtime and has them screened.

#include "programs/BuildLog.h"

#include "agent/ClError.h"
#include "agent/Owned.h"
#include "agent/RuntimeTable.h"
#include "variants/SpillScreen.h"

#include <cstdint>

using namespace corvane;

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
