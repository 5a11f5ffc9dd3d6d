// The devices that a program was built for, and its build log on each.

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

/// True when no device's build log flags a variant. Every device is asked; a
/// log that cannot be read is reported and flags nothing.
bool screenBuild(cl_program program, llvm::ArrayRef<cl_device_id> devices);

} // namespace corvane
