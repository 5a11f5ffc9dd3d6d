// The devices that a program was built for.

#pragma once

#include "agent/Owned.h"

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

namespace corvane {

/// A list that was read from the runtime.
struct DeviceList {
  ZeroedArray<cl_device_id> ids; ///< null when the list is empty
  cl_uint count = 0;

  operator llvm::ArrayRef<cl_device_id>() const { return {ids.get(), count}; }
};

/// Asks the runtime for the devices of \p program. A failure is reported and
/// returned, and leaves \p devices empty.
cl_int programDevices(cl_program program, DeviceList &devices);

} // namespace corvane
