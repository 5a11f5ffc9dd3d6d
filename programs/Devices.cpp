// Reads a program's devices from the runtime.

#include "programs/Devices.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"

#include <algorithm>
#include <cstdint>

using namespace corvane;

static cl_int queryCount(cl_program program, cl_uint &count) {
  // The runtime is offered 8 bytes and fills the 4 that it needs.
  union {
    std::uint64_t room = 0;
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

  const std::size_t room = std::size_t{count} * sizeof(cl_device_id);
  auto ids = allocateZeroed<cl_device_id>(std::max<std::size_t>(count, 1));
  if (!ids)
    return CL_SUCCESS;
  std::size_t written = room;
  status = runtime().clGetProgramInfo(program, CL_PROGRAM_DEVICES, room,
                                      ids.get(), &written);
  if (status != CL_SUCCESS) {
    reportClError(CallSite::DeviceList, status);
    return status;
  }
  devices.count =
      static_cast<cl_uint>(std::min(room, written) / sizeof(cl_device_id));
  devices.ids = std::move(ids);
  return CL_SUCCESS;
}
